// The pages of the protein files: what they say that their examples give.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tessel/condition/condition.h"
#include "tests/formats/format_page.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::CFormatPage;
using test::example_path;
using test::TableRows;

TEST(fasta_page, gives_the_proteins_and_batches_of_its_example) {
    CCondition condition;
    condition.m_strInputFastaPath = example_path("example.fasta");
    condition.m_tMaxProLen = 6;
    CFastaLoader& loader = condition.m_cFastaLoader;
    TableRows rows;
    std::vector<std::size_t> batches;
    for (bool more = true; more;) {
        more = loader.ReadNextBatch();
        batches.push_back(loader.m_vProteins.size());
        for (const CProtein& protein : loader.m_vProteins)
            rows.push_back({protein.m_strAC, protein.m_strDE, protein.m_strSQ});
    }
    EXPECT_EQ(rows, CFormatPage("fasta").Table("What the example gives"));
    EXPECT_EQ(batches, (std::vector<std::size_t>{2, 1}));
}

TEST(fasta_page, shows_the_target_decoy_database_of_its_example) {
    const test::CTempFolder folder;
    CCondition condition;
    condition.m_strFastaPath =
        folder.Write("example.fasta", test::read_file(example_path("example.fasta")));
    condition.SetFastaPath();
    EXPECT_EQ(folder.Read("example.fasta_td.fasta"),
              test::read_file(example_path("example.fasta_td.fasta")));
}

TEST(index_files_page, gives_the_lines_of_its_example) {
    CCondition condition;
    condition.m_strInputFastaPath = example_path("example.fasta_td.fasta");
    std::vector<std::string> accessions;
    std::vector<std::string> descriptions;
    condition.ReadProteinAC(accessions);
    condition.ReadProteinDE(descriptions);
    ASSERT_EQ(accessions.size(), descriptions.size());
    TableRows rows;
    for (std::size_t i = 0; i < accessions.size(); ++i)
        rows.push_back({accessions[i], descriptions[i]});
    EXPECT_EQ(rows, CFormatPage("index_files").Table("What the example gives"));
}

}  // namespace
}  // namespace tessel
