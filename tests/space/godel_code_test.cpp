#include "tessel/space/godel_code.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace tessel {
namespace {

TEST(godel_code, table_has_a_row_of_500_positions_for_each_byte_value) {
    const GodelCode code;
    ASSERT_EQ(code.m_lfTable.size(), 128000u);
    EXPECT_EQ(code.m_lfTable[0 * 500 + 17], 0.0);
    EXPECT_EQ(code.m_lfTable[1 * 500 + 0], std::log(2.0));
    EXPECT_EQ(code.m_lfTable[65 * 500 + 3], 65.0 * std::log(7.0));
    EXPECT_EQ(code.m_lfTable[255 * 500 + 499], 255.0 * std::log(3571.0));  // the 500th prime
}

TEST(godel_code, hash_sums_the_entries_by_position) {
    const GodelCode code;
    const double expected = 65.0 * std::log(2.0) + 66.0 * std::log(3.0) + 255.0 * std::log(5.0);
    EXPECT_EQ(code.GetGodel("AB\xFF", 3), expected);
    EXPECT_NE(code.GetGodel("AB", 2), code.GetGodel("BA", 2));
}

TEST(godel_code, nothing_hashes_to_0) {
    EXPECT_EQ(GodelCode().GetGodel("", 0), 0.0);
}

TEST(godel_code, sums_stop_at_500_bytes) {
    const GodelCode code;
    const std::string longer(700, 'K');
    EXPECT_EQ(code.GetGodel(longer.data(), 700), code.GetGodel(longer.data(), 500));
    EXPECT_NE(code.GetGodel(longer.data(), 500), code.GetGodel(longer.data(), 499));
}

}  // namespace
}  // namespace tessel
