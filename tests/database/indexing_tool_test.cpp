#include "tests/database/indexing_tool.h"

#include <gtest/gtest.h>

#include "tests/support/captured.h"

namespace tessel {
namespace {

namespace fs = std::filesystem;
using indexing_tool = test::CIndexingTool;

TEST_F(indexing_tool, runs_unless_both_index_files_are_fresh) {
    EXPECT_TRUE(Runs());
    m_cFolder.Write("db.pac", "");
    EXPECT_TRUE(Runs());
    m_cFolder.Write("db.pde", "");
    EXPECT_FALSE(Runs());
    test::set_file_age(m_cFolder.Path("db.pac"), 100);
    EXPECT_TRUE(Runs());
    m_cFolder.Write("db.pac", "");
    test::set_file_age(m_cFolder.Path("db.pde"), 100);
    EXPECT_TRUE(Runs());
    fs::last_write_time(m_cFolder.Path("db.pde"), fs::last_write_time(m_cFolder.Path("db.fasta")));
    EXPECT_FALSE(Runs());
}

TEST_F(indexing_tool, gets_the_path_as_its_one_argument) {
    for (const std::string database : {"x\\db.fasta", "/a b/db.fasta",
                                       "C:\\it's\\(a)\\b;c&d,e=f^g!.fasta", "", "-n", "\xC3\xA4"}) {
        m_cCondition.UpdateProteinAC(database);
        EXPECT_EQ(m_cFolder.Read("arguments"), database + '\n');
    }
}

TEST_F(indexing_tool, gets_a_long_path) {
    const std::string database(5000, 'x');
    m_cCondition.UpdateProteinAC(database);
    EXPECT_EQ(m_cFolder.Read("arguments"), database + '\n');
}

TEST_F(indexing_tool, its_failure_ends_the_process) {
    test::set_environment("TESSEL_TEST_STATUS", "3");
    EXPECT_ENDS_PROCESS(m_cCondition.UpdateProteinAC("a b"), "",
                        "The Program is exited when called Vantor.exe\n");
    EXPECT_EQ(m_cFolder.Read("arguments"), "a b\n");
}

}  // namespace
}  // namespace tessel
