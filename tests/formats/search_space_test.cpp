// The pages of the lines that define the enzyme and the ion types.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tests/formats/format_page.h"

namespace tessel {
namespace {

using test::CFormatPage;
using test::TableRows;

TEST(enzyme_line_page, gives_the_cuts_of_its_example) {
    const CFormatPage page("enzyme_line");
    std::string line = page.BlockBehind("## Example\n");
    ASSERT_TRUE(line.starts_with("enzyme=") && line.ends_with('\n'));
    line.pop_back();
    CEnzyme enzyme;
    enzyme.Init(line.substr(std::string("enzyme=").size()));

    const std::string protein = "MKPAKDGK";
    const auto word = [](bool answer) { return answer ? "yes" : "no"; };
    TableRows rows;
    for (std::size_t position = 0; position <= protein.size(); ++position) {
        std::string place = "start";
        if (position > 0) {
            place = position == protein.size()
                        ? "end"
                        : std::string(1, protein[position - 1]) + " and " + protein[position];
        }
        rows.push_back({place, std::to_string(position),
                        word(enzyme.IsValidCleavage(protein, position)),
                        word(enzyme.IsValidPosition(protein, position, 0))});
    }
    EXPECT_EQ(rows, page.Table("What the example gives"));
}

// A row for every series, each of which has the charges 1 to 5.
TableRows series(const std::vector<CIonType>& types) {
    TableRows rows;
    for (std::size_t i = 0; i < types.size(); ++i) {
        EXPECT_EQ(types[i].m_nCharge, static_cast<int>(i % 5) + 1);
        if (i % 5 != 0) continue;
        rows.push_back({types[i].m_strName, types[i].m_bNTerm ? "1" : "0",
                        fixed_text(types[i].m_lfOffset, 10)});
    }
    return rows;
}

TEST(ion_type_line_page, gives_the_series_of_both_methods) {
    const CFormatPage page("ion_type_line");
    CCondition hcd;
    hcd.InitHCD();
    EXPECT_EQ(series(hcd.m_vIonTypes), page.Table("What the example gives"));
    EXPECT_EQ(hcd.m_vIonTypes.at(6).m_strDefinition + '\n', page.BlockBehind("## Example\n"));
    CCondition etd;
    etd.InitETD();
    EXPECT_EQ(series(etd.m_vIonTypes), page.Table("What the ETD lines give"));
}

}  // namespace
}  // namespace tessel
