#include "tessel/database/fasta_loader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tessel/condition/condition.h"
#include "tests/support/system.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

constexpr std::size_t kAllOnes = std::numeric_limits<std::size_t>::max();

class fasta_loader : public testing::Test {
protected:
    CFastaLoader& Open(const std::string& text, std::size_t maxResidues) {
        m_cCondition.m_strInputFastaPath = m_cFolder.Write("db.fasta", text);
        m_cCondition.m_tMaxProLen = maxResidues;
        return m_cCondition.m_cFastaLoader;
    }

    test::CTempFolder m_cFolder;
    CCondition m_cCondition;
};

std::string accessions(const CFastaLoader& loader) {
    std::string joined;
    for (const CProtein& protein : loader.m_vProteins)
        joined += protein.m_strAC + ' ';
    return joined;
}

TEST_F(fasta_loader, starts_closed_and_empty) {
    const CFastaLoader loader(&m_cCondition);
    EXPECT_FALSE(loader.m_ifsFasta.is_open());
    EXPECT_EQ(loader.m_tEntryNum, 0U);
    EXPECT_EQ(loader.m_tResidueNum, 0U);
    EXPECT_EQ(loader.m_tReadNum, 0U);
    EXPECT_EQ(loader.m_tBatchStart, 0U);
    EXPECT_EQ(loader.m_tBatchNum, 0U);
    EXPECT_FALSE(loader.m_bEnd);
    EXPECT_TRUE(loader.m_vProteins.empty());
    EXPECT_EQ(loader.m_pCondition, &m_cCondition);
}

TEST_F(fasta_loader, limit_of_10_takes_three_sequences_of_4) {
    CFastaLoader& loader = Open(">A\nAAAA\n>B\nCCCC\n>C\nDDDD\n>D\nEEEE\n", 10);
    EXPECT_TRUE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "A B C ");
    EXPECT_EQ(loader.m_tEntryNum, 4U);
    EXPECT_EQ(loader.m_tResidueNum, 12U);
    EXPECT_EQ(loader.m_tReadNum, 3U);
    EXPECT_EQ(loader.m_tBatchStart, 0U);
    EXPECT_EQ(loader.m_tBatchNum, 1U);
    EXPECT_FALSE(loader.m_bEnd);

    EXPECT_FALSE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "D ");
    EXPECT_EQ(loader.m_tResidueNum, 4U);
    EXPECT_EQ(loader.m_tReadNum, 4U);
    EXPECT_EQ(loader.m_tBatchStart, 3U);
    EXPECT_EQ(loader.m_tBatchNum, 2U);
    EXPECT_TRUE(loader.m_bEnd);
}

TEST_F(fasta_loader, reaching_the_limit_does_not_end_a_batch) {
    CFastaLoader& loader = Open(">A\nAAAA\n>B\nCCCCCC\n>C\nD\n>D\nE\n", 10);
    EXPECT_TRUE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "A B C ");
}

TEST_F(fasta_loader, protein_beyond_the_limit_is_a_batch_of_its_own) {
    CFastaLoader& loader = Open(">A\nAAAA\n>B\nCCCC\n", 3);
    EXPECT_TRUE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "A ");
    EXPECT_FALSE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "B ");
}

TEST_F(fasta_loader, limit_of_0_still_takes_a_protein_with_residues) {
    CFastaLoader& loader = Open(">A\n>B\n>C\nD\n>D\n", 0);
    EXPECT_TRUE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "A B C ");
    EXPECT_FALSE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "D ");
}

TEST_F(fasta_loader, empty_database_gives_an_empty_batch_and_false) {
    for (const char* text : {"", "\n", "ACDE\n"}) {
        CFastaLoader& loader = Open(text, 10);
        loader.Reset();
        EXPECT_FALSE(loader.ReadNextBatch());
        EXPECT_TRUE(loader.m_vProteins.empty());
        EXPECT_TRUE(loader.m_bEnd);
        EXPECT_EQ(loader.m_tEntryNum, 0U);
        EXPECT_EQ(loader.m_tBatchNum, 1U);
    }
}

TEST_F(fasta_loader, behind_the_last_batch_only_empty_ones_follow) {
    CFastaLoader& loader = Open(">A\nAAAA\n", 10);
    EXPECT_FALSE(loader.ReadNextBatch());
    EXPECT_FALSE(loader.ReadNextBatch());
    EXPECT_TRUE(loader.m_vProteins.empty());
    EXPECT_EQ(loader.m_tBatchStart, 1U);
    EXPECT_EQ(loader.m_tResidueNum, 0U);
    EXPECT_EQ(loader.m_tBatchNum, 2U);
}

TEST_F(fasta_loader, reset_starts_over_and_keeps_the_residue_count) {
    CFastaLoader& loader = Open(">A\nAAAA\n>B\nCCCC\n>C\nDDDD\n", 5);
    EXPECT_TRUE(loader.ReadNextBatch());
    EXPECT_FALSE(loader.ReadNextBatch());
    const std::size_t capacity = loader.m_vProteins.capacity();
    loader.Reset();
    EXPECT_FALSE(loader.m_ifsFasta.is_open());
    EXPECT_TRUE(loader.m_vProteins.empty());
    EXPECT_EQ(loader.m_vProteins.capacity(), capacity);
    EXPECT_EQ(loader.m_tEntryNum, 0U);
    EXPECT_EQ(loader.m_tReadNum, 0U);
    EXPECT_EQ(loader.m_tBatchStart, 0U);
    EXPECT_EQ(loader.m_tBatchNum, 0U);
    EXPECT_FALSE(loader.m_bEnd);
    EXPECT_EQ(loader.m_tResidueNum, 4U);

    EXPECT_TRUE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "A B ");
    EXPECT_EQ(loader.m_tEntryNum, 3U);
    EXPECT_EQ(loader.m_tBatchNum, 1U);
}

TEST_F(fasta_loader, reset_follows_a_changed_path) {
    CFastaLoader& loader = Open(">A\nAAAA\n", 5);
    EXPECT_FALSE(loader.ReadNextBatch());
    m_cCondition.m_strInputFastaPath = m_cFolder.Write("other.fasta", ">X\nA\n>Y\nC\n");
    loader.Reset();
    EXPECT_FALSE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "X Y ");
}

std::string thrown_text(CFastaLoader& loader) {
    try {
        loader.ReadNextBatch();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST_F(fasta_loader, missing_database_throws_and_changes_nothing) {
    CFastaLoader& loader = Open(">A\nAAAA\n", 5);
    loader.ReadNextBatch();
    loader.m_ifsFasta.close();
    m_cCondition.m_strInputFastaPath = m_cFolder.Path("no\\such.fasta");
    EXPECT_EQ(thrown_text(loader), "Database " + m_cFolder.Path("no\\such.fasta") + " not exists.");
    EXPECT_FALSE(loader.m_ifsFasta.is_open());
    EXPECT_TRUE(loader.m_ifsFasta.good());
    EXPECT_EQ(accessions(loader), "A ");
    EXPECT_EQ(loader.m_tEntryNum, 1U);
    EXPECT_EQ(loader.m_tResidueNum, 4U);
    EXPECT_EQ(loader.m_tReadNum, 1U);
    EXPECT_EQ(loader.m_tBatchNum, 1U);
    EXPECT_TRUE(loader.m_bEnd);
}

TEST_F(fasta_loader, database_that_appears_later_is_read) {
    m_cCondition.m_strInputFastaPath = m_cFolder.Path("late.fasta");
    CFastaLoader& loader = m_cCondition.m_cFastaLoader;
    EXPECT_THROW(loader.ReadNextBatch(), std::runtime_error);
    m_cFolder.Write("late.fasta", ">A\nC\n");
    EXPECT_FALSE(loader.ReadNextBatch());
    EXPECT_EQ(accessions(loader), "A ");
}

TEST_F(fasta_loader, folder_counts_as_missing) {
    m_cCondition.m_strInputFastaPath = m_cFolder.Path();
    EXPECT_EQ(thrown_text(m_cCondition.m_cFastaLoader),
              "Database " + m_cFolder.Path() + " not exists.");
    m_cCondition.m_strInputFastaPath = "";
    EXPECT_EQ(thrown_text(m_cCondition.m_cFastaLoader), "Database  not exists.");
}

TEST_F(fasta_loader, backslashes_in_the_path_are_separators) {
    Open(">A\nC\n", 5);
    m_cCondition.m_strInputFastaPath = m_cFolder.Path() + "\\db.fasta";
    EXPECT_FALSE(m_cCondition.m_cFastaLoader.ReadNextBatch());
    EXPECT_EQ(m_cCondition.m_cFastaLoader.m_tReadNum, 1U);
}

TEST_F(fasta_loader, database_cut_off_after_counting_ends) {
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += ">P" + std::to_string(i) + '\n' + std::string(100, 'A') + '\n';
    CFastaLoader& loader = Open(text, 1000);
    EXPECT_TRUE(loader.ReadNextBatch());
    std::filesystem::resize_file(m_cFolder.Path("db.fasta"), 50'000);
    int batches = 1;
    while (loader.ReadNextBatch())
        ASSERT_LT(++batches, 1000);
    EXPECT_TRUE(loader.m_bEnd);
    EXPECT_EQ(loader.m_tEntryNum, 1000U);
    EXPECT_GT(loader.m_tReadNum, 400U);
    EXPECT_LT(loader.m_tReadNum, 600U);
    EXPECT_EQ(loader.m_vProteins.size(), loader.m_tReadNum - loader.m_tBatchStart);

    EXPECT_FALSE(loader.ReadNextBatch());
    EXPECT_TRUE(loader.m_vProteins.empty());
}

TEST_F(fasta_loader, room_is_reserved_for_the_entries_a_batch_can_hold) {
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += ">P\nA\n";
    CFastaLoader& loader = Open(text, 9);
    EXPECT_TRUE(loader.ReadNextBatch());
    EXPECT_EQ(loader.m_vProteins.size(), 10U);
    EXPECT_EQ(loader.m_vProteins.capacity(), 10U);

    CFastaLoader all(&m_cCondition);
    m_cCondition.m_tMaxProLen = kAllOnes;
    EXPECT_FALSE(all.ReadNextBatch());
    EXPECT_EQ(all.m_vProteins.size(), 1000U);
    EXPECT_EQ(all.m_vProteins.capacity(), 1000U);
}

#if !defined(__SANITIZE_ADDRESS__)  // which needs the whole address space
TEST_F(fasta_loader, room_that_cannot_be_had_is_done_without) {
    if (!test::kMemoryCanBeLimited) GTEST_SKIP() << "no limit of address space on this system";
    // Three million entries may follow the first, whose residues end the batch at once.
    const std::size_t entries = 3'000'000;
    std::string text = ">P\n" + std::string(entries, 'A') + '\n';
    for (std::size_t i = 0; i < entries; ++i)
        text += ">\n";
    CFastaLoader& loader = Open(text, entries - 1);
    text = std::string();
    EXPECT_EXIT(
        {
            test::limit_memory(200'000'000);
            const bool more = loader.ReadNextBatch();
            std::exit(more && loader.m_vProteins.size() == 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

// Whatever the limit, the batches together hold every protein once and in order, and each batch
// ends with the first protein that takes it beyond the limit.
TEST_F(fasta_loader, batches_of_any_size_add_up_to_the_database) {
    std::mt19937 random(2);
    std::vector<std::string> sequences;
    std::string text;
    for (int i = 0; i < 300; ++i) {
        sequences.emplace_back(random() % 4 == 0 ? 0 : random() % 200, 'A' + random() % 26);
        text += ">P" + std::to_string(i) + " d\n" + sequences.back() + '\n';
    }
    for (const std::size_t limit :
         {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{100}, std::size_t{1000},
          std::size_t{29'000}, std::size_t{1'000'000}, kAllOnes - 1, kAllOnes}) {
        CFastaLoader& loader = Open(text, limit);
        loader.Reset();
        std::size_t next = 0;
        for (bool more = true; more;) {
            more = loader.ReadNextBatch();
            EXPECT_EQ(loader.m_tBatchStart, next);
            std::size_t residues = 0;
            for (const CProtein& protein : loader.m_vProteins) {
                EXPECT_LE(residues, limit);
                ASSERT_EQ(protein.m_strAC, "P" + std::to_string(next));
                ASSERT_EQ(protein.m_strSQ, sequences[next++]);
                residues += protein.m_strSQ.size();
            }
            EXPECT_EQ(loader.m_tResidueNum, residues);
            EXPECT_EQ(more, next < sequences.size());
            EXPECT_TRUE(!more || residues > limit);
        }
        EXPECT_EQ(next, sequences.size()) << limit;
    }
}

// python3 tests/support/fasta_figures.py examples/ecoli/ecoli.fasta
TEST_F(fasta_loader, real_database_has_its_known_figures) {
    m_cCondition.m_strInputFastaPath = test::source_path("examples/ecoli/ecoli.fasta");
    m_cCondition.m_tMaxProLen = 100'000;
    CFastaLoader& loader = m_cCondition.m_cFastaLoader;
    std::size_t residues = 0;
    for (bool more = true; more;) {
        more = loader.ReadNextBatch();
        residues += loader.m_tResidueNum;
    }
    EXPECT_EQ(loader.m_tReadNum, 4136U);
    EXPECT_EQ(residues, 1'316'701U);
    EXPECT_EQ(loader.m_tBatchNum, 14U);
}

}  // namespace
}  // namespace tessel
