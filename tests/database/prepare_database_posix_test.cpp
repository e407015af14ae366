// The target-decoy database where the system refuses: limits, failing calls and unreadable files
// that only a POSIX system offers.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/database/database_folder.h"
#include "tests/database/indexing_tool.h"
#include "tests/support/captured.h"

namespace {

// While this is set, it is run in place of every rename, which then fails.
std::function<void()> g_beforeFailingRename;

}  // namespace

// Takes the place of the system's function in this program.
extern "C" int rename(const char* from, const char* to) noexcept {
    if (!g_beforeFailingRename) return renameat(AT_FDCWD, from, AT_FDCWD, to);
    g_beforeFailingRename();
    errno = EACCES;
    return -1;
}

namespace tessel {
namespace {

namespace fs = std::filesystem;
using prepare_database_posix = test::CDatabaseFolder;
using test::kDay;
using test::large_database;

// The path of a file stands where the folder should: nothing can be created beside the database.
TEST_F(prepare_database_posix, file_that_cannot_be_created_is_fatal) {
    m_cCondition.m_strFastaPath = "/proc/self/environ";
    m_cCondition.m_eLogType = LOG_SILENT;
    EXPECT_ENDS_PROCESS(m_cCondition.SetFastaPath(),
                        "[Tessel] ALERT: Cannot write the target-decoy database "
                        "/proc/self/environ_td.fasta\n",
                        "");
}

void limit_file_size(rlim_t bytes) {
    rlimit limit;
    limit.rlim_cur = limit.rlim_max = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

// The limit also holds for the captured output, which is far below it.
TEST_F(prepare_database_posix, failed_write_is_fatal_and_keeps_what_was_there) {
    for (const std::size_t proteins : {std::size_t{100}, std::size_t{5000}}) {
        m_cFolder.Write("db.fasta", large_database(proteins));
        m_cFolder.Write("db.fasta_td.fasta", "anything");
        test::set_file_age(Target(), 50);
        EXPECT_ENDS_PROCESS(
            {
                std::signal(SIGXFSZ, SIG_IGN);
                limit_file_size(100'000);
                m_cCondition.SetFastaPath();
            },
            CannotWrite(), "");
        EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "anything");
        EXPECT_EQ(FilesInFolder(), 2U);
    }
}

TEST_F(prepare_database_posix, killed_run_leaves_no_database_that_looks_fresh) {
    m_cFolder.Write("db.fasta", large_database(2000));
    EXPECT_EXIT(
        {
            std::signal(SIGXFSZ, SIG_DFL);
            limit_file_size(1'500'000);
            m_cCondition.SetFastaPath();
        },
        testing::KilledBySignal(SIGXFSZ), "");
    EXPECT_FALSE(m_cFolder.Has("db.fasta_td.fasta"));
    EXPECT_TRUE(HasUnfinishedFile());

    m_cCondition.SetFastaPath();
    EXPECT_EQ(FilesInFolder(), 3U);
    for (const auto& entry : fs::directory_iterator(m_cFolder.Path()))
        test::set_file_age(entry.path().string(), kDay + 10);
    test::set_file_age(m_cFolder.Path("db.fasta"), 0);
    m_cCondition.SetFastaPath();
    EXPECT_EQ(FilesInFolder(), 2U);
    EXPECT_FALSE(HasUnfinishedFile());
}

TEST_F(prepare_database_posix, database_that_cannot_be_read_is_fatal) {
    fs::create_symlink("/proc/self/mem", m_cFolder.Path("db.fasta"));
    EXPECT_ENDS_PROCESS(
        m_cCondition.SetFastaPath(),
        CannotWrite(": " + m_cFolder.Path("db.fasta") + " cannot be read to its end"), "");
    EXPECT_FALSE(m_cFolder.Has("db.fasta_td.fasta"));
}

// A pipe, a process substitution: an open end for writing keeps it from being waited for.
TEST_F(prepare_database_posix, database_that_can_be_read_only_once_is_fatal_and_no_empty_one) {
    const std::string path = m_cFolder.Path("db.fasta");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int bothEnds = open(path.c_str(), O_RDWR);
    ASSERT_GE(bothEnds, 0);
    EXPECT_ENDS_PROCESS(m_cCondition.SetFastaPath(),
                        CannotWrite(": " + path + " cannot be read to its end"), "");
    close(bothEnds);
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(prepare_database_posix, index_file_that_fails_while_it_is_read_is_an_alert) {
    if (!fs::exists("/proc/self/mem")) GTEST_SKIP() << "no such file on this system";
    m_cCondition.m_strInputFastaPath = m_cFolder.Path("db.fasta");
    const std::string path = m_cFolder.Path("db.pac");
    fs::create_symlink("/proc/self/mem", path);
    std::vector<std::string> acs = {"before"};
    EXPECT_EQ(test::captured_output([&] { m_cCondition.ReadProteinAC(acs); }),
              "[Tessel] ALERT: Cannot read the index file: " + path + '\n');
    EXPECT_TRUE(acs.empty());
}

TEST_F(prepare_database_posix, failed_rename_is_fatal) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    g_beforeFailingRename = [] {};
    EXPECT_ENDS_PROCESS(m_cCondition.SetFastaPath(), CannotWrite(), "");
    g_beforeFailingRename = nullptr;
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(prepare_database_posix, failed_rename_is_no_fault_where_another_process_was_faster) {
    m_cFolder.Write("db.fasta", ">P1\nAC\n");
    g_beforeFailingRename = [this] { m_cFolder.Write("db.fasta_td.fasta", "complete"); };
    EXPECT_EQ(test::captured_output([&] { m_cCondition.SetFastaPath(); }), "");
    g_beforeFailingRename = nullptr;
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, Target());
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "complete");
    EXPECT_EQ(FilesInFolder(), 2U);
}

// ---- The indexing tool ----

using indexing_tool_posix = test::CIndexingTool;

TEST_F(indexing_tool_posix, gets_the_path_as_its_one_argument_whatever_it_holds) {
    for (const std::string database :
         {"x\\db.fasta", "/a b/db.fasta", "$HOME `id` $(id)", "it's \"quoted\"", "back\\\\slash\\",
          "a;b&c|d>e<f*?[x]{1,2}~#!%PATH%^", "", "-n", "\xC3\xA4"}) {
        m_cCondition.UpdateProteinAC(database);
        EXPECT_EQ(m_cFolder.Read("arguments"), database + '\n');
    }
}

TEST_F(indexing_tool_posix, gets_a_path_of_any_length) {
    const std::string database(50'000, 'x');
    m_cCondition.UpdateProteinAC(database);
    EXPECT_EQ(m_cFolder.Read("arguments"), database + '\n');
}

}  // namespace
}  // namespace tessel
