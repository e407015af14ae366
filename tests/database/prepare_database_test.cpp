#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tessel/condition/condition.h"
#include "tessel/condition/utilities.h"
#include "tessel/platform/file.h"
#include "tests/database/database_folder.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

namespace fs = std::filesystem;
using prepare_database = test::CDatabaseFolder;
using test::kDay;
using test::large_database;

// ---- The target-decoy database ----

TEST_F(prepare_database, without_decoys_the_users_database_is_searched) {
    m_cCondition.m_bAutoRev = false;
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, m_cFolder.Path("db.fasta"));
    EXPECT_EQ(FilesInFolder(), 0U);
}

TEST_F(prepare_database, every_target_is_followed_by_its_numbered_reversed_decoy) {
    m_cFolder.Write("db.fasta", ">P1 first one\nACD\nEF\n>P2 second\nGHI\n");
    EXPECT_EQ(test::captured_output([&] { m_cCondition.SetFastaPath(); }), "");
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"),
              ">P1\tfirst one\t\nACDEF\n>REV_P1\t_REV1\nFEDCA\n"
              ">P2\tsecond\t\nGHI\n>REV_P2\t_REV2\nIHG\n");
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, Target());
    EXPECT_EQ(m_cCondition.m_strFastaPath, m_cFolder.Path("db.fasta"));
    EXPECT_EQ(FilesInFolder(), 2U);
}

TEST_F(prepare_database, unusual_entries_keep_their_texts) {
    m_cFolder.Write("db.fasta", "\xEF\xBB\xBF>P1\r\nac d*\r\n>\n>P3\t \ta > b \n\n>P4 x\nMK\t\nR");
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"),
              ">P1\t\t\nacd*\n>REV_P1\t_REV1\n*dca\n"
              ">\t\t\n\n>REV_\t_REV2\n\n"
              ">P3\ta > b\t\n\n>REV_P3\t_REV3\n\n"
              ">P4\tx\t\nMKR\n>REV_P4\t_REV4\nRKM\n");
}

TEST_F(prepare_database, loader_is_left_at_the_end_with_the_last_decoys) {
    m_cFolder.Write("db.fasta", ">P1 a\nACD\n>P2 b\nEFG\n>P3 c\nHIK\n");
    m_cCondition.m_tMaxProLen = 5;
    m_cCondition.SetFastaPath();
    const CFastaLoader& loader = m_cCondition.m_cFastaLoader;
    ASSERT_EQ(loader.m_vProteins.size(), 1U);
    EXPECT_EQ(loader.m_vProteins[0].m_strAC, "REV_P3");
    EXPECT_EQ(loader.m_vProteins[0].m_strDE, "c");
    EXPECT_EQ(loader.m_vProteins[0].m_strSQ, "KIH");
    EXPECT_EQ(loader.m_tBatchNum, 2U);
    EXPECT_EQ(loader.m_tReadNum, 3U);
    EXPECT_TRUE(loader.m_bEnd);
}

TEST_F(prepare_database, generation_resets_a_loader_that_is_in_use) {
    m_cFolder.Write("db.fasta", ">P1\nA\n");
    m_cCondition.m_strInputFastaPath = m_cFolder.Write("other.fasta", ">X\nC\n>Y\nC\n");
    m_cCondition.m_tMaxProLen = 0;
    EXPECT_TRUE(m_cCondition.m_cFastaLoader.ReadNextBatch());
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), ">P1\t\t\nA\n>REV_P1\t_REV1\nA\n");
}

TEST_F(prepare_database, target_decoy_database_can_be_read_behind_a_reset) {
    m_cFolder.Write("db.fasta", ">P1 a\nACD\n");
    m_cCondition.SetFastaPath();
    CFastaLoader& loader = m_cCondition.m_cFastaLoader;
    loader.Reset();
    EXPECT_FALSE(loader.ReadNextBatch());
    ASSERT_EQ(loader.m_vProteins.size(), 2U);
    EXPECT_EQ(loader.m_vProteins[0].m_strDE, "a");
    EXPECT_EQ(loader.m_vProteins[1].m_strAC, "REV_P1");
    EXPECT_EQ(loader.m_vProteins[1].m_strDE, "_REV1");
    EXPECT_EQ(loader.m_vProteins[1].m_strSQ, "DCA");
}

std::uint32_t crc32(const std::string& bytes) {
    std::uint32_t sum = 0xFFFFFFFF;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

// python3 tests/support/fasta_figures.py examples/ecoli/ecoli.fasta
TEST_F(prepare_database, real_database_is_the_same_for_every_batch_size) {
    fs::copy_file(test::source_path("examples/ecoli/ecoli.fasta"), m_cFolder.Path("db.fasta"));
    for (const std::size_t limit :
         {std::size_t{0}, std::size_t{50'000}, std::numeric_limits<std::size_t>::max()}) {
        fs::remove(Target());
        m_cCondition.m_tMaxProLen = limit;
        m_cCondition.SetFastaPath();
        const std::string written = m_cFolder.Read("db.fasta_td.fasta");
        EXPECT_EQ(written.size(), 3'094'719U) << limit;
        EXPECT_EQ(crc32(written), 0x701fa513U) << limit;
    }
}

TEST_F(prepare_database, backslashes_in_the_path_are_separators_and_stay_in_the_text) {
    m_cFolder.Write("db.fasta", ">P1\nA\n");
    m_cCondition.m_strFastaPath = m_cFolder.Path() + "\\db.fasta";
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, m_cFolder.Path() + "\\db.fasta_td.fasta");
    EXPECT_EQ(FilesInFolder(), 2U);
    EXPECT_TRUE(m_cFolder.Has("db.fasta_td.fasta"));
}

TEST_F(prepare_database, sub_database_of_the_engine_takes_the_place_of_the_users) {
    m_cFolder.Write("run.sub.fasta", ">P1\nAC\n");
    m_cCondition.m_strOutputPath = m_cFolder.Path() + '\\';
    m_cCondition.m_strOutputName = "run";
    EXPECT_EQ(m_cCondition.SetSubFasta(), 1);
    EXPECT_TRUE(m_cCondition.m_bUseSubFasta);
    EXPECT_EQ(m_cCondition.m_strFastaPath, m_cFolder.Path() + "\\run.sub.fasta");
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, m_cFolder.Path() + "\\run.sub.fasta_td.fasta");
    EXPECT_TRUE(m_cFolder.Has("run.sub.fasta_td.fasta"));
}

TEST_F(prepare_database, sub_database_path_is_joined_without_separators) {
    m_cCondition.m_bAutoRev = false;
    m_cCondition.m_strOutputPath = "out";
    m_cCondition.m_strOutputName = "name";
    m_cCondition.SetSubFasta();
    EXPECT_EQ(m_cCondition.m_strFastaPath, "outname.sub.fasta");
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, "outname.sub.fasta");
}

// ---- Reuse ----

TEST_F(prepare_database, newer_target_decoy_database_is_reused_unchanged) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    m_cFolder.Write("db.fasta_td.fasta", "anything");
    test::set_file_age(m_cFolder.Path("db.fasta"), 100);
    test::set_file_age(Target(), 50);
    const auto time = fs::last_write_time(Target());
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, Target());
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "anything");
    EXPECT_EQ(fs::last_write_time(Target()), time);
    EXPECT_FALSE(m_cCondition.m_cFastaLoader.m_ifsFasta.is_open());
}

TEST_F(prepare_database, equally_old_target_decoy_database_is_reused) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    m_cFolder.Write("db.fasta_td.fasta", "anything");
    fs::last_write_time(Target(), fs::last_write_time(m_cFolder.Path("db.fasta")));
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "anything");
}

TEST_F(prepare_database, second_run_reuses_what_the_first_has_written) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    m_cCondition.SetFastaPath();
    const auto time = fs::last_write_time(Target());
    CCondition second;
    second.m_strFastaPath = m_cCondition.m_strFastaPath;
    second.SetFastaPath();
    EXPECT_EQ(fs::last_write_time(Target()), time);
    EXPECT_FALSE(second.m_cFastaLoader.m_ifsFasta.is_open());
}

TEST_F(prepare_database, touched_database_is_generated_again) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    m_cFolder.Write("db.fasta_td.fasta", "anything");
    test::set_file_age(Target(), 50);
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), ">P1\t\t\nAC\n>REV_P1\t_REV1\nCA\n");
    EXPECT_EQ(FilesInFolder(), 2U);
}

TEST_F(prepare_database, empty_target_decoy_database_is_stale) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    test::set_file_age(m_cFolder.Path("db.fasta"), 50);
    m_cFolder.Write("db.fasta_td.fasta", "");
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), ">P1\t\t\nAC\n>REV_P1\t_REV1\nCA\n");
}

TEST_F(prepare_database, empty_database_has_an_empty_target_decoy_database) {
    m_cFolder.Write("db.fasta", "");
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "");
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, Target());
    EXPECT_TRUE(m_cCondition.m_cFastaLoader.m_ifsFasta.is_open());

    CCondition second;
    second.m_strFastaPath = m_cCondition.m_strFastaPath;
    second.SetFastaPath();
    EXPECT_FALSE(second.m_cFastaLoader.m_ifsFasta.is_open());
}

// ---- Databases that are missing or fail ----

std::string thrown_text(CCondition& condition) {
    try {
        condition.SetFastaPath();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST_F(prepare_database, missing_database_throws_and_leaves_an_empty_target_decoy_database) {
    EXPECT_EQ(thrown_text(m_cCondition), "Database " + m_cFolder.Path("db.fasta") + " not exists.");
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, m_cFolder.Path("db.fasta"));
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "");
    EXPECT_EQ(FilesInFolder(), 1U);

    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), ">P1\t\t\nAC\n>REV_P1\t_REV1\nCA\n");
}

TEST_F(prepare_database, missing_database_leaves_an_older_target_decoy_database_alone) {
    m_cFolder.Write("db.fasta_td.fasta", "anything");
    const auto time = fs::last_write_time(Target());
    EXPECT_EQ(thrown_text(m_cCondition), "Database " + m_cFolder.Path("db.fasta") + " not exists.");
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "anything");
    EXPECT_EQ(fs::last_write_time(Target()), time);
}

TEST_F(prepare_database, missing_sub_database_throws_under_its_own_path) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    m_cCondition.m_strOutputPath = m_cFolder.Path("");
    m_cCondition.m_strOutputName = "run";
    const std::string path = m_cFolder.Path("run.sub.fasta");
    EXPECT_THROW(m_cCondition.SetSubFasta(), std::runtime_error);
    EXPECT_TRUE(m_cCondition.m_bUseSubFasta);
    EXPECT_EQ(m_cCondition.m_strFastaPath, path);
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, path);
}

TEST_F(prepare_database, folder_counts_as_a_missing_database) {
    fs::create_directory(m_cFolder.Path("db.fasta"));
    m_cFolder.Write("db.fasta_td.fasta", "anything");
    EXPECT_EQ(thrown_text(m_cCondition), "Database " + m_cFolder.Path("db.fasta") + " not exists.");
}

TEST_F(prepare_database, missing_folder_of_the_database_throws_as_well) {
    m_cCondition.m_strFastaPath = m_cFolder.Path("none/db.fasta");
    EXPECT_EQ(thrown_text(m_cCondition),
              "Database " + m_cFolder.Path("none/db.fasta") + " not exists.");
    EXPECT_EQ(FilesInFolder(), 0U);
}

TEST_F(prepare_database, folder_in_the_place_of_the_target_decoy_database_is_fatal) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    fs::create_directory(Target());
    m_cFolder.Write("db.fasta_td.fasta/kept", "");
    EXPECT_ENDS_PROCESS(m_cCondition.SetFastaPath(), CannotWrite(), "");
    EXPECT_FALSE(HasUnfinishedFile());
    EXPECT_TRUE(m_cFolder.Has("db.fasta_td.fasta/kept"));
}

// ---- Other processes ----

TEST_F(prepare_database, old_leftovers_of_this_database_are_removed) {
    const std::vector<std::string> leftovers = {"db.fasta_td.fasta.1.2.tmp",
                                                "db.fasta_td.fasta.123456.140737488355327.tmp"};
    const std::vector<std::string> others = {"db2.fasta_td.fasta.1.2.tmp",
                                             "db.fasta_td.fasta.tmp",
                                             "db.fasta_td.fasta.1.2.tmp.bak",
                                             "db.fasta_td.fasta.x.2.tmp",
                                             "db.fasta_td.fasta.2023.tmp",
                                             "db.fasta_td.fasta.2023..tmp",
                                             "db.fasta_td.fasta..2023.tmp",
                                             "db.fasta_td.fasta.1.2.3.tmp",
                                             "db.fasta_td.fasta.1.2x.tmp",
                                             "db.fasta_td.fasta12.3.tmp",
                                             "db.fasta_td.fasta..tmp",
                                             "db.fasta_td.fasta...tmp",
                                             "db.fasta.1.2.tmp",
                                             "db.fasta_td.fasta_td.fasta.1.2.tmp"};
    for (const auto* names : {&leftovers, &others})
        for (const std::string& name : *names)
            test::set_file_age(m_cFolder.Write(name, "x"), kDay + 10);
    m_cFolder.Write("db.fasta_td.fasta.3.4.tmp", "x");
    test::set_file_age(m_cFolder.Path("db.fasta_td.fasta.3.4.tmp"), kDay - 60);

    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    m_cCondition.SetFastaPath();
    for (const std::string& name : leftovers)
        EXPECT_FALSE(m_cFolder.Has(name)) << name;
    for (const std::string& name : others)
        EXPECT_TRUE(m_cFolder.Has(name)) << name;
    EXPECT_TRUE(m_cFolder.Has("db.fasta_td.fasta.3.4.tmp"));
}

TEST_F(prepare_database, database_in_the_working_folder_needs_no_folder_name) {
    const test::CWorkingFolder here(m_cFolder.Path());
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    test::set_file_age(m_cFolder.Write("db.fasta_td.fasta.1.2.tmp", "x"), kDay + 10);
    m_cCondition.m_strFastaPath = "db.fasta";
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, "db.fasta_td.fasta");
    EXPECT_EQ(FilesInFolder(), 2U);
}

// As an engine reads: Windows lets nobody open a file at the moment at which another process
// replaces it, and the library waits for that to pass.
std::string read_as_engine(const std::string& path) {
    std::ifstream stream;
    if (!open_stream(stream, path)) return "cannot be opened";
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

// Whoever is ready finds a complete database, however far the others are.
TEST_F(prepare_database, conditions_may_prepare_one_database_at_once) {
    m_cFolder.Write("db.fasta", large_database(3000));
    m_cCondition.SetFastaPath();
    const std::string expected = m_cFolder.Read("db.fasta_td.fasta");
    for (int delay = 0; delay < 25; delay += 5) {
        fs::remove(Target());
        std::atomic<int> complete{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&, i] {
                TSleep(i * delay);
                CCondition condition;
                condition.m_strFastaPath = m_cCondition.m_strFastaPath;
                condition.SetFastaPath();
                complete += read_as_engine(condition.m_strInputFastaPath) == expected ? 1 : 0;
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(complete, 4);
        EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), expected);
        EXPECT_EQ(FilesInFolder(), 2U);
    }
}

// Appends to a file until it goes out of scope.
class CGrowingFile {
public:
    CGrowingFile(const std::string& path, int appends)
        : m_cThread([this, path, appends]() mutable {
              do {
                  const FilePtr file = open_file(path, "ab");
                  std::fputs(">Q\nC\n", file.get());
              } while (--appends > 0 && !m_bStop);
          }) {}
    ~CGrowingFile() {
        m_bStop = true;
        m_cThread.join();
    }

private:
    std::atomic<bool> m_bStop{false};
    std::thread m_cThread;
};

TEST_F(prepare_database, database_that_keeps_changing_is_fatal) {
    m_cFolder.Write("db.fasta", large_database(20'000));
    EXPECT_ENDS_PROCESS(
        {
            const CGrowingFile growing(m_cFolder.Path("db.fasta"), 1'000'000);
            m_cCondition.SetFastaPath();
        },
        CannotWrite(": " + m_cFolder.Path("db.fasta") + " keeps changing"), "");
    EXPECT_FALSE(m_cFolder.Has("db.fasta_td.fasta"));
    EXPECT_FALSE(HasUnfinishedFile());
}

// A database that changes once, while its copy is being written, is copied anew. The change may
// come too late in a round; it does not do so in all of them.
TEST_F(prepare_database, database_that_changes_once_is_copied_again) {
    bool copiedAgain = false;
    for (int round = 0; round < 20 && !copiedAgain; ++round) {
        m_cFolder.Write("db.fasta", large_database(5000));
        test::set_file_age(m_cFolder.Path("db.fasta"), 10);
        fs::remove(Target());
        std::atomic<bool> done{false};
        std::thread changing([&] {
            while (!done && !HasUnfinishedFile()) {
            }
            const CGrowingFile once(m_cFolder.Path("db.fasta"), 1);
        });
        m_cCondition.SetFastaPath();
        done = true;
        changing.join();
        copiedAgain = m_cFolder.Read("db.fasta_td.fasta").ends_with(">REV_Q\t_REV5001\nC\n");
        EXPECT_EQ(FilesInFolder(), 2U);
    }
    EXPECT_TRUE(copiedAgain);
}

// ---- Index files ----

TEST_F(prepare_database, index_files_take_the_place_of_the_last_six_characters) {
    const struct {
        const char* database;
        const char* base;
    } rows[] = {
        {"x/db.fasta_td.fasta", "x/db.fasta_td"},
        {"x\\db.fasta", "x\\db"},
        {"123456", ""},
        {"12345", "12345"},
        {"", ""},
        {"database.fa", "datab"},
    };
    for (const auto& row : rows) {
        m_cCondition.m_strInputFastaPath = row.database;
        EXPECT_EQ(m_cCondition.GetACPath(), row.base + std::string(".pac"));
        EXPECT_EQ(m_cCondition.GetDEPath(), row.base + std::string(".pde"));
    }
}

using Lines = std::vector<std::string>;

TEST_F(prepare_database, accessions_end_at_the_first_empty_line) {
    m_cCondition.m_strInputFastaPath = m_cFolder.Path("db.fasta");
    const struct {
        const char* name;
        const char* text;
        Lines lines;
    } rows[] = {
        {"empty third line", "P1\nP2\n\nP4\n", {"P1", "P2"}},
        {"empty third line with carriage return", "P1\r\nP2\r\n\r\nP4\r\n", {"P1", "P2"}},
        {"no line end", "P1\nP2", {"P1", "P2"}},
        {"empty first line", "\nP1\n", {}},
        {"empty file", "", {}},
        {"blanks are text", "P1\n \nP3\n", {"P1", " ", "P3"}},
        {"byte-order mark", "\xEF\xBB\xBFP1\n", {"P1"}},
    };
    for (const auto& row : rows) {
        m_cFolder.Write("db.pac", row.text);
        Lines read = {"before"};
        m_cCondition.ReadProteinAC(read);
        EXPECT_EQ(read, row.lines) << row.name;
    }
}

TEST_F(prepare_database, descriptions_keep_empty_lines) {
    m_cCondition.m_strInputFastaPath = m_cFolder.Path("db.fasta");
    const struct {
        const char* name;
        const char* text;
        Lines lines;
    } rows[] = {
        {"empty third line", "a b\nc\n\nd\n", {"a b", "c", "", "d"}},
        {"empty third line with carriage return", "a\r\nc\r\n\r\nd\r\n", {"a", "c", "", "d"}},
        {"empty last line", "a\n\n", {"a", ""}},
        {"no line end", "a\nb", {"a", "b"}},
        {"empty file", "", {}},
    };
    for (const auto& row : rows) {
        m_cFolder.Write("db.pde", row.text);
        Lines read = {"before"};
        m_cCondition.ReadProteinDE(read);
        EXPECT_EQ(read, row.lines) << row.name;
    }
}

TEST_F(prepare_database, missing_index_files_give_no_lines_and_no_message) {
    m_cCondition.m_strInputFastaPath = m_cFolder.Path("db.fasta");
    Lines acs = {"before"};
    Lines des = {"before"};
    EXPECT_EQ(test::captured_output([&] {
                  m_cCondition.ReadProteinAC(acs);
                  m_cCondition.ReadProteinDE(des);
              }),
              "");
    EXPECT_TRUE(acs.empty());
    EXPECT_TRUE(des.empty());
}

TEST_F(prepare_database, index_file_that_is_there_and_cannot_be_opened_is_an_alert) {
    m_cCondition.m_strInputFastaPath = m_cFolder.Path("db.fasta");
    std::filesystem::create_directory(m_cFolder.Path("db.pac"));
    std::filesystem::create_directory(m_cFolder.Path("db.pde"));
    Lines acs = {"before"};
    Lines des = {"before"};
    EXPECT_EQ(test::captured_output([&] {
                  m_cCondition.ReadProteinAC(acs);
                  m_cCondition.ReadProteinDE(des);
              }),
              "[Tessel] ALERT: Cannot read the index file: " + m_cFolder.Path("db.pac") +
                  "\n[Tessel] ALERT: Cannot read the index file: " + m_cFolder.Path("db.pde") +
                  '\n');
    EXPECT_TRUE(acs.empty());
    EXPECT_TRUE(des.empty());
}

}  // namespace
}  // namespace tessel
