// Processes that prepare one database at the same time, and sources that are replaced meanwhile.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tests/support/child_process.h"
#include "tests/support/failing_file.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

namespace fs = std::filesystem;

std::string database(std::size_t proteins, char residue) {
    std::string text;
    for (std::size_t i = 0; i < proteins; ++i)
        text += ">P d\n" + std::string(1000, residue) + '\n';
    return text;
}

std::string target_decoy(std::size_t proteins, char residue) {
    std::string text;
    const std::string sequence(1000, residue);
    for (std::size_t i = 1; i <= proteins; ++i) {
        text +=
            ">P\td\t\n" + sequence + "\n>REV_P\t_REV" + std::to_string(i) + '\n' + sequence + '\n';
    }
    return text;
}

void prepare(const std::string& path) {
    CCondition condition;
    condition.m_strFastaPath = path;
    condition.SetFastaPath();
}

std::size_t files_in(const std::string& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

// Each finds a whole database when it is ready, whoever made it.
TEST(processes, may_prepare_one_database_at_once) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("db.fasta", database(3000, 'A'));
    const std::string expected = target_decoy(3000, 'A');
    for (int round = 0; round < 5; ++round) {
        fs::remove(path + "_td.fasta");
        std::vector<std::unique_ptr<test::CChild>> children;
        for (int i = 0; i < 3; ++i) {
            children.push_back(std::make_unique<test::CChild>([&] {
                prepare(path);
                return test::read_file(path + "_td.fasta") == expected ? 0 : 1;
            }));
        }
        for (const auto& child : children) {
            const test::CHILD_END end = child->Wait();
            EXPECT_EQ(end.m_nExit, 0);
            EXPECT_EQ(end.m_strOutput, "");
        }
        EXPECT_TRUE(folder.Read("db.fasta_td.fasta") == expected);
        EXPECT_EQ(files_in(folder.Path()), 2U);
    }
}

bool has_unfinished_file(const std::string& folder) {
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == ".tmp") return true;
    return false;
}

// Waits, without a pause, until the database is being written or there; at most half a minute, so
// that a child that never begins does not hold up everything behind it.
bool begins_to_write(const std::string& target) {
    const std::string folder = fs::path(target).parent_path().string();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!has_unfinished_file(folder) && !fs::exists(target))
        if (std::chrono::steady_clock::now() > end) return false;
    return true;
}

// Another file of the same size and the same second takes the name while the first one is read. The
// replacement may come too late in a round; it does not do so in all of them.
TEST(processes, source_replaced_meanwhile_is_read_again) {
    const test::CTempFolder folder;
    const std::string path = folder.Path("db.fasta");
    const std::string target = path + "_td.fasta";
    int replaced = 0;
    for (int round = 0; round < 20 && replaced < 3; ++round) {
        fs::remove(target);
        const std::string next = folder.Write("next", database(5000, 'C'));
        test::write_file(path, database(5000, 'A'));
        test::set_file_age(path, 1000);
        fs::last_write_time(next, fs::last_write_time(path));
        test::CChild child([&] {
            prepare(path);
            return 0;
        });
        ASSERT_TRUE(begins_to_write(target));
        const bool inTime = !fs::exists(target);
        fs::rename(next, path);
        EXPECT_EQ(child.Wait().m_nExit, 0);
        const std::string written = test::read_file(target);
        ASSERT_TRUE(written == target_decoy(5000, 'A') || written == target_decoy(5000, 'C'));
        replaced += inTime && written == target_decoy(5000, 'C') ? 1 : 0;
        ASSERT_EQ(files_in(folder.Path()), 2U);
    }
    EXPECT_EQ(replaced, 3);
}

// A source that goes away and does not come back cannot be told from one that is being replaced.
TEST(processes, source_removed_meanwhile_is_fatal_or_whole) {
    const test::CTempFolder folder;
    const std::string path = folder.Path("db.fasta");
    const std::string target = path + "_td.fasta";
    for (int round = 0; round < 5; ++round) {
        fs::remove(target);
        test::write_file(path, database(5000, 'A'));
        test::CChild child([&] {
            prepare(path);
            return 0;
        });
        ASSERT_TRUE(begins_to_write(target));
        fs::remove(path);
        const test::CHILD_END end = child.Wait();
        EXPECT_FALSE(has_unfinished_file(folder.Path()));
        if (end.m_nExit == 0) {
            EXPECT_TRUE(test::read_file(target) == target_decoy(5000, 'A'));
        } else {
            EXPECT_EQ(end.m_strOutput, "thrown: Database " + path + " not exists.\n");
            EXPECT_EQ(test::read_file(target), "");
        }
    }
}

// Whatever changes while it is copied is copied again, but not for ever.
TEST(processes, source_that_changes_in_every_copy_is_copied_three_times) {
    for (const int changes : {2, 3}) {
        const test::CTempFolder folder;
        const std::string path = folder.Write("db.fasta", ">P d\nAC\n");
        const std::string target = path + "_td.fasta";
        const test::CHILD_END end = test::run_in_child([&] {
            int left = changes;
            const test::CWatchedFiles watched(target, [&] {
                if (left-- <= 0) return;
                const FilePtr source = open_file(path, "ab");
                std::fputs("DE\n", source.get());
            });
            prepare(path);
            return 0;
        });
        const bool isFatal = changes == 3;
        EXPECT_EQ(end.m_nExit, isFatal ? 1 : 0);
        EXPECT_EQ(end.m_strOutput, isFatal
                                       ? "[Tessel] ALERT: Cannot write the target-decoy database " +
                                             target + ": " + path + " keeps changing\n"
                                       : "");
        EXPECT_EQ(folder.Has("db.fasta_td.fasta"), !isFatal);
        if (!isFatal) {
            EXPECT_EQ(folder.Read("db.fasta_td.fasta"), ">P\td\t\nACDEDE\n>REV_P\t_REV1\nEDEDCA\n");
        }
        EXPECT_EQ(files_in(folder.Path()), isFatal ? 1u : 2u);
    }
}

}  // namespace
}  // namespace tessel
