#include "tessel/space/combination_count.h"

#include <gtest/gtest.h>

namespace tessel {
namespace {

TEST(combination_count, every_group_has_to_fit_positions_of_32_bits) {
    COMBINATION_COUNT count;
    EXPECT_TRUE(fit_lookups(count));
    for (std::uint64_t& size : count.m_uGroupSizes) {
        size = 4'294'967'295;
        EXPECT_TRUE(fit_lookups(count));
        size = 4'294'967'296;
        EXPECT_FALSE(fit_lookups(count));
        size = 4'294'967'295;
    }
    EXPECT_TRUE(fit_lookups(count));
}

}  // namespace
}  // namespace tessel
