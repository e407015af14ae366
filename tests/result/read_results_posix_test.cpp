// Results from what has no length.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

#include "tessel/condition/condition.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

TEST(read_results_posix, pipe_may_hold_any_number_of_hits) {
    const test::CTempFolder folder;
    const std::string path = folder.Path("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&path] {
        test::write_file(path,
                         "S 1 2\nt\n1 AAK 1 1 1 1 0 0 0 0 1 5;1;K;R 0 1 2 3 4 5 1 2 3 4 5 6 7 8\n");
    });
    CCondition condition;
    condition._LoadResult(path, 1, 1.0);
    writer.join();
    ASSERT_EQ(condition.m_mapPSMRes.size(), 1U);
    EXPECT_EQ(condition.m_mapPSMRes.at("t").m_vPeps.size(), 1U);
}

}  // namespace
}  // namespace tessel
