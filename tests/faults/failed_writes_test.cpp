// Every file that the library writes, while the disk fills up in its middle: nobody may take a part
// for the whole, and what was there for good stays.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <set>

#include "tests/faults/written_files.h"
#include "tests/support/child_process.h"
#include "tests/support/failing_file.h"

namespace tessel {
namespace {

namespace fs = std::filesystem;

using test::CHILD_END;
using test::CWrittenFiles;
using test::FILE_FAULT;
using test::WRITTEN_FILE;

// The bytes of every file after writing without a fault, by the name of its kind.
std::map<std::string, std::string> whole_files(const CWrittenFiles& files) {
    const auto before = files.Contents();
    std::map<std::string, std::string> whole;
    for (const WRITTEN_FILE& file : files.All()) {
        EXPECT_EQ(test::run_in_child([&] { return test::run_writer(file); }).m_strOutput, "");
        whole[file.m_strName] = test::read_file(file.m_strPath);
    }
    files.Restore(before);
    return whole;
}

// The positions at which writing fails: the first and last byte, around the C library's buffer and
// this library's blocks, and in the middle.
std::set<std::size_t> positions(std::size_t size) {
    std::set<std::size_t> all = {0, 1, size / 2, size - 1};
    for (const std::size_t position : {4095, 4096, 4097, 1 << 20, (1 << 20) + 1})
        if (position < size) all.insert(position);
    return all;
}

// What a failed write leaves: nothing but the alert, and in the caller's own file the start.
void expect_failure(const CWrittenFiles& files, const WRITTEN_FILE& file, const CHILD_END& end,
                    const std::map<std::string, std::string>& before) {
    EXPECT_EQ(end.m_nSignal, 0);
    EXPECT_EQ(end.m_nExit, file.m_nExit);
    EXPECT_EQ(end.m_strOutput, file.m_strAlert);
    if (file.m_strName == "spectrum") fs::remove(file.m_strPath);
    EXPECT_EQ(files.Contents() == before, true) << "another file was changed, left or removed";
}

class failed_writes : public testing::TestWithParam<bool> {
protected:
    // Lets every writer run once at every position.
    template <class Run>
    void FailEverywhere(Run run) {
        const CWrittenFiles files(GetParam());
        const auto whole = whole_files(files);
        const auto before = files.Contents();
        for (const WRITTEN_FILE& file : files.All()) {
            for (const std::size_t position : positions(whole.at(file.m_strName).size())) {
                SCOPED_TRACE(file.m_strName + " at byte " + std::to_string(position));
                expect_failure(files, file, run(file, position), before);
            }
        }
    }
};

INSTANTIATE_TEST_SUITE_P(sizes, failed_writes, testing::Bool(), [](const auto& size) {
    return std::string(size.param ? "large" : "small");
});

TEST_P(failed_writes, limit_of_the_file_size_leaves_no_half_file) {
    FailEverywhere([](const WRITTEN_FILE& file, std::size_t position) {
        return test::run_in_child([&] {
            test::limit_file_size(position);
            return test::run_writer(file);
        });
    });
}

CHILD_END run_with(const WRITTEN_FILE& file, const FILE_FAULT& fault) {
    return test::run_in_child([&] {
        const test::CFailingFiles failing(fault);
        return test::run_writer(file);
    });
}

TEST_P(failed_writes, full_disk_leaves_no_half_file) {
    FailEverywhere([](const WRITTEN_FILE& file, std::size_t position) {
        return run_with(file, {file.m_strPath, position, false, false, ENOSPC});
    });
}

// Bytes are missing in the middle, all later ones arrive.
TEST_P(failed_writes, error_that_passes_is_not_forgotten) {
    FailEverywhere([](const WRITTEN_FILE& file, std::size_t position) {
        return run_with(file, {file.m_strPath, position, true, false, EIO});
    });
}

TEST_P(failed_writes, interrupted_call_is_an_error_like_any_other) {
    FailEverywhere([](const WRITTEN_FILE& file, std::size_t position) {
        return run_with(file, {file.m_strPath, position, true, false, EINTR});
    });
}

TEST_P(failed_writes, failing_close_counts) {
    const CWrittenFiles files(GetParam());
    const auto before = files.Contents();
    for (const WRITTEN_FILE& file : files.All()) {
        SCOPED_TRACE(file.m_strName);
        FILE_FAULT fault;
        fault.m_strPath = file.m_strPath;
        fault.m_bCloseFails = true;
        fault.m_nError = EDQUOT;
        expect_failure(files, file, run_with(file, fault), before);
    }
}

// The tests above would say nothing if the fault hit another file, or none.
TEST_P(failed_writes, without_a_fault_every_file_is_whole) {
    const CWrittenFiles files(GetParam());
    const auto whole = whole_files(files);
    for (const WRITTEN_FILE& file : files.All()) {
        SCOPED_TRACE(file.m_strName);
        const std::string& bytes = whole.at(file.m_strName);
        FILE_FAULT fault;
        fault.m_strPath = file.m_strPath;
        fault.m_uFailAt = bytes.size();
        const CHILD_END end = run_with(file, fault);
        EXPECT_EQ(end.m_nExit, 0);
        EXPECT_EQ(end.m_strOutput, "");
        EXPECT_EQ(test::read_file(file.m_strPath) == bytes, true);
    }
}

TEST_P(failed_writes, database_of_an_earlier_run_stays) {
    const CWrittenFiles files(GetParam());
    const WRITTEN_FILE& database = files.All().front();
    test::write_file(database.m_strPath, ">OLD\t\t\nAC\n");
    test::set_file_age(database.m_strPath, 100);
    const auto before = files.Contents();
    for (const std::size_t position : {0, 10, 1000}) {
        expect_failure(files, database,
                       run_with(database, {database.m_strPath, position, false, false, ENOSPC}),
                       before);
    }
}

// Reads a pipe to its end, a little at a time.
std::string drained(const std::string& path) {
    const int pipe = open(path.c_str(), O_RDONLY);
    std::string bytes;
    char buffer[3000];
    for (ssize_t count; (count = read(pipe, buffer, sizeof buffer)) > 0;)
        bytes.append(buffer, static_cast<std::size_t>(count));
    close(pipe);
    return bytes;
}

// Signals cut the calls that write to a slow pipe short, after some of their bytes or all of them.
TEST(short_writes, calls_that_write_a_part_are_continued) {
    const CWrittenFiles files(true);
    const auto whole = whole_files(files);
    for (const WRITTEN_FILE& file : files.All()) {
        if (file.m_strName == "database") continue;  // which is renamed
        SCOPED_TRACE(file.m_strName);
        ASSERT_EQ(mkfifo(file.m_strPath.c_str(), 0600), 0);
        test::CChild child([&] {
            test::signal_often();
            return test::run_writer(file);
        });
        const bool equal = drained(file.m_strPath) == whole.at(file.m_strName);
        const CHILD_END end = child.Wait();
        EXPECT_EQ(end.m_nExit, 0);
        EXPECT_EQ(end.m_strOutput, "");
        EXPECT_TRUE(equal);
        fs::remove(file.m_strPath);
    }
}

}  // namespace
}  // namespace tessel
