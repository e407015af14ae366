// The target-decoy database while others have it open, which Windows does not let be replaced.

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "tessel/condition/utilities.h"
#include "tessel/platform/file.h"
#include "tests/database/database_folder.h"
#include "tests/support/captured.h"
#include "tests/support/system.h"

namespace tessel {
namespace {

// A stale target-decoy database.
class used_database : public test::CDatabaseFolder {
protected:
    used_database() {
        m_cFolder.Write("db.fasta", ">P1\nAC\n");
        m_cFolder.Write("db.fasta_td.fasta", "old");
        test::set_file_age(Target(), 100);
    }
    ~used_database() override {
        for (const char* name : {"TESSEL_TEST_ARGUMENTS", "TESSEL_TEST_HOLD"})
            test::unset_environment(name);
    }

    // Starts a process that has the target-decoy database open while the file "reading" exists.
    void StartReader() const {
        test::set_environment("TESSEL_TEST_ARGUMENTS", m_cFolder.Path("reading"));
        test::set_environment("TESSEL_TEST_HOLD", Target());
        System("\"\" \"" + std::filesystem::path(NOTE_ARGUMENTS).make_preferred().string() + '"',
               true);
        for (int i = 0; i < 3000 && !m_cFolder.Has("reading"); ++i)
            TSleep(20);
    }
};

TEST_F(used_database, that_another_process_reads_is_not_replaced_and_nothing_is_lost) {
    StartReader();
    ASSERT_TRUE(m_cFolder.Has("reading"));
    EXPECT_ENDS_PROCESS(m_cCondition.SetFastaPath(), CannotWrite(), "");
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "old");
    EXPECT_EQ(m_cFolder.Read("db.fasta"), ">P1\nAC\n");
    EXPECT_FALSE(HasUnfinishedFile());

    // Without the reader it is.
    EXPECT_TRUE(remove_file(m_cFolder.Path("reading")));
    const std::string kept = m_cFolder.Path("kept");
    for (int i = 0; i < 3000 && !rename_file(Target(), kept); ++i)
        TSleep(20);
    ASSERT_TRUE(rename_file(kept, Target()));
    m_cCondition.SetFastaPath();
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), ">P1\t\t\nAC\n>REV_P1\t_REV1\nCA\n");
}

TEST_F(used_database, that_becomes_fresh_while_another_is_made_is_used) {
    m_cFolder.Write("db.fasta", test::large_database(20'000));
    test::set_file_age(m_cFolder.Path("db.fasta"), 50);
    const FilePtr reader = open_file(Target(), "rb");
    std::atomic<bool> done{false};
    std::thread other([&] {
        while (!done && !HasUnfinishedFile())
            TSleep(1);
        test::set_file_age(Target(), 0);
    });
    EXPECT_EQ(test::captured_output([&] { m_cCondition.SetFastaPath(); }), "");
    done = true;
    other.join();
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, Target());
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "old");
    EXPECT_FALSE(HasUnfinishedFile());
}

}  // namespace
}  // namespace tessel
