#include "tessel/platform/memory.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/system.h"

namespace tessel {
namespace {

TEST(available_memory, is_positive_and_within_reason) {
    EXPECT_GT(available_memory(), std::uint64_t{1} << 20);
    EXPECT_LT(available_memory(), std::uint64_t{1} << 50);
}

#if !defined(__SANITIZE_ADDRESS__)  // which needs the whole address space
TEST(available_memory, follows_the_limit_of_address_space) {
    if (!test::kMemoryCanBeLimited) GTEST_SKIP() << "no limit of address space on this system";
    EXPECT_EXIT(
        {
            test::limit_memory(100'000'000);
            std::exit(available_memory() < 100'000'000 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
}  // namespace tessel
