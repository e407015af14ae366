// The memory that limits and containers leave, by the files of a Linux system, and its pages.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "tessel/platform/memory.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

constexpr std::uint64_t kAllOnes = std::numeric_limits<std::uint64_t>::max();

// A folder with the system's files, as far as a test writes them.
class available_memory_of : public testing::Test {
protected:
    void Write(const std::string& name, const std::string& text) const {
        const std::string path = m_cFolder.Path(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        test::write_file(path, text);
    }
    std::uint64_t Available() const { return available_memory(m_cFolder.Path()); }

    test::CTempFolder m_cFolder;
};

TEST_F(available_memory_of, an_unknown_system_is_unlimited) {
    EXPECT_EQ(Available(), kAllOnes);
}

TEST_F(available_memory_of, a_machine_is_its_free_memory_and_swap) {
    Write("proc/meminfo", "MemTotal: 9 kB\nMemAvailable:    1000 kB\nSwapFree: 24 kB\n");
    EXPECT_EQ(Available(), 1024U * 1024U);
    Write("proc/meminfo", "MemTotal: 9 kB\nMemAvailable: 5 kB\n");
    EXPECT_EQ(Available(), 5120U);
}

TEST_F(available_memory_of, a_container_of_version_2_is_what_its_limit_leaves) {
    Write("proc/self/cgroup", "0::/a/b\n");
    Write("sys/fs/cgroup/a/b/memory.max", "max\n");
    Write("sys/fs/cgroup/a/memory.max", "1000\n");
    Write("sys/fs/cgroup/a/memory.current", "700\n");
    EXPECT_EQ(Available(), 300U);
    Write("sys/fs/cgroup/a/memory.stat", "anon 7\ninactive_file 50\nactive_file 25\n");
    EXPECT_EQ(Available(), 375U);
    Write("sys/fs/cgroup/a/b/memory.max", "200\n");
    Write("sys/fs/cgroup/a/b/memory.current", "250\n");
    EXPECT_EQ(Available(), 0U);
}

TEST_F(available_memory_of, a_container_of_version_1_is_what_its_limit_leaves) {
    Write("proc/self/cgroup", "5:devices:/x\n4:cpu,memory:/docker/1\n1:cpu:/\n0::/\n");
    Write("sys/fs/cgroup/memory/memory.limit_in_bytes", "1000\n");
    Write("sys/fs/cgroup/memory/memory.usage_in_bytes", "900\n");
    Write("sys/fs/cgroup/memory/memory.stat", "total_inactive_file 30\ntotal_active_file 20\n");
    EXPECT_EQ(Available(), 150U);
    Write("sys/fs/cgroup/memory/docker/1/memory.limit_in_bytes", "100\n");
    EXPECT_EQ(Available(), 100U);
}

TEST_F(available_memory_of, malformed_files_are_ignored) {
    Write("proc/meminfo", "MemAvailable: many\n");
    Write("proc/self/cgroup", "\n:\nx\n0:memory\n::\n");
    Write("sys/fs/cgroup/memory.max", "");
    EXPECT_EQ(Available(), kAllOnes);
}

// Pages of the process's own, none of them present at first.
class fresh_pages : public testing::Test {
protected:
    static constexpr std::size_t kPages = 256;

    void SetUp() override {
        void* const memory = mmap(nullptr, kPages * m_tPage, PROT_READ | PROT_WRITE,
                                  MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(memory, MAP_FAILED);
        m_pMemory = static_cast<char*>(memory);
    }
    void TearDown() override { munmap(m_pMemory, kPages * m_tPage); }
    std::size_t Present() const {
        std::vector<unsigned char> present(kPages);
        mincore(m_pMemory, kPages * m_tPage, present.data());
        std::size_t number = 0;
        for (const unsigned char page : present)
            number += page & 1;
        return number;
    }

    const std::size_t m_tPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    char* m_pMemory = nullptr;
};

TEST_F(fresh_pages, are_present_ahead_of_what_is_written_and_not_behind_the_end) {
    constexpr std::size_t kWanted = kPages - 10;
    CFreshPages pages(m_pMemory, kWanted * m_tPage + 1);
    EXPECT_EQ(Present(), 0U);
    pages.Reach(m_pMemory);
    if (Present() == 0) GTEST_SKIP() << "a system that cannot make pages present";
    EXPECT_GT(Present(), 10U);
    EXPECT_LT(Present(), kWanted);
    for (std::size_t page = 0; page < kWanted; ++page)
        pages.Reach(m_pMemory + page * m_tPage);
    EXPECT_EQ(Present(), kWanted);
}

TEST_F(fresh_pages, keep_what_they_hold) {
    std::string wanted;
    for (std::size_t i = 0; i < kPages * m_tPage; ++i)
        wanted += static_cast<char>(i % 251);
    wanted.copy(m_pMemory, wanted.size());
    CFreshPages pages(m_pMemory + 5, wanted.size() - 7);
    for (std::size_t i = 5; i < wanted.size() - 2; i += 100)
        pages.Reach(m_pMemory + i);
    EXPECT_TRUE(wanted == std::string(m_pMemory, wanted.size()));
}

TEST_F(fresh_pages, may_be_none) {
    CFreshPages pages(nullptr, 0);
    pages.Reach(nullptr);
    CFreshPages few(m_pMemory + 1, 10);
    few.Reach(m_pMemory + 1);
    EXPECT_EQ(Present(), 0U);
}

}  // namespace
}  // namespace tessel
