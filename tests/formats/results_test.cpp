// docs/formats/result_file.md: what it says that its example gives.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tests/formats/format_page.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::CFormatPage;
using test::example_path;
using test::TableRows;

// A condition that has read the example, with the modifications that it names.
class CExampleResults {
public:
    CExampleResults() {
        m_cCondition.m_strModPath = example_path("modification.ini");
        m_cCondition.m_lfMaxDelta = -1.0;
        m_cCondition.ReadMod();
        m_cCondition.CreateModList();
        EXPECT_EQ(test::captured_output(
                      [this] { m_cCondition.LoadResult({example_path("example.res")}, 10, 1.0); }),
                  "");
    }

    CCondition m_cCondition;
};

template <class List, class Text>
std::string joined(const List& list, Text text_of) {
    std::string text;
    for (const auto& element : list)
        text += (text.empty() ? "" : " ") + text_of(element);
    return text;
}

std::string hit_text(const PRO_INFO& hit) {
    return std::to_string(hit.m_nProID) + ';' + std::to_string(hit.m_nSite) + ';' + hit.m_cPrev +
           ';' + hit.m_cNext;
}

TEST(result_file_page, gives_the_fields_of_its_example) {
    const CExampleResults results;
    const auto& map = results.m_cCondition.m_mapPSMRes;
    ASSERT_EQ(map.count("run.7.7.1.0.dta"), 1U);
    const std::vector<CPepRes>& peps = map.at("run.7.7.1.0.dta").m_vPeps;
    ASSERT_EQ(peps.size(), 3U);
    const CPepRes& pep = peps.front();
    const auto number = [](int value) { return std::to_string(value); };
    const std::vector<MOD_SITE> sites(pep.m_pMods, pep.m_pMods + pep.SiteNum());
    const TableRows rows = {
        {"m_strSeq", pep.m_strSeq},
        {"m_lfPepMass", fixed_text(pep.m_lfPepMass, 6)},
        {"m_lfScore", fixed_text(pep.m_lfScore, 6)},
        {"m_lfFinalScore", fixed_text(pep.m_lfFinalScore, 6)},
        {"m_lfQValue", fixed_text(pep.m_lfQValue, 6)},
        {"m_lfMassDev", fixed_text(pep.m_lfMassDev, 6)},
        {"m_pMods", joined(sites,
                           [](const MOD_SITE& site) {
                               return std::to_string(site.m_ucPos) + ':' + site.m_pMod->m_strName;
                           })},
        {"m_ucAuxMax", number(pep.m_ucAuxMax)},
        {"m_bDecoy", number(pep.m_bDecoy)},
        {"m_ucAux1", number(pep.m_ucAux1)},
        {"m_setProteins", joined(pep.m_setProteins, hit_text)},
        {"m_ucAux2", number(pep.m_ucAux2)},
        {"m_lfSubScores", joined(pep.m_lfSubScores, shortest_text)},
        {"m_nAuxA", joined(pep.m_nAuxA, number)},
        {"m_nAuxB", joined(pep.m_nAuxB, number)},
    };
    EXPECT_EQ(rows, CFormatPage("result_file").Table("What the example gives"));
}

TEST(result_file_page, gives_an_empty_list_for_a_spectrum_without_candidates) {
    const CExampleResults results;
    const auto& map = results.m_cCondition.m_mapPSMRes;
    ASSERT_EQ(map.count("run.8.8.2.0.dta"), 1U);
    EXPECT_TRUE(map.at("run.8.8.2.0.dta").m_vPeps.empty());
}

TEST(result_file_example, is_written_again_byte_for_byte) {
    const test::CTempFolder folder;
    const CExampleResults results;
    results.m_cCondition.WriteFinalResult(folder.Path("written"), 0.0);
    EXPECT_EQ(folder.Read("written"), test::read_file(example_path("example.res")));
}

// The columns that the page counts are those of a written line, lists as one column each.
TEST(result_file_page, counts_the_columns_of_a_line) {
    const TableRows columns = CFormatPage("result_file").Table("Columns of a candidate");
    ASSERT_EQ(columns.size(), 17U);
    for (std::size_t i = 0; i < columns.size(); ++i)
        EXPECT_EQ(columns[i].at(0), std::to_string(i + 1));
    const std::string text = test::read_file(example_path("example.res"));
    const std::size_t third = text.find("2\tAGCK");
    const std::string line = text.substr(third, text.find('\n', third) - third);
    // Without sites and hits; five sub-scores, twice four integers.
    EXPECT_EQ(std::count(line.begin(), line.end(), '\t') + 1, 17 - 2 + 4 + 3 + 3);
}

}  // namespace
}  // namespace tessel
