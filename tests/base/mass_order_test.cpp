#include "tessel/base/mass_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace tessel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(mass_order, is_defined_for_every_double) {
    std::vector<double> masses{kNaN, kInfinity, 1.0, -kInfinity, -5.0};
    std::stable_sort(masses.begin(), masses.end(), mass_less);
    EXPECT_EQ(masses[0], -5.0);
    EXPECT_EQ(masses[1], 1.0);
    EXPECT_EQ(masses[2], -kInfinity);
    EXPECT_EQ(masses[3], kInfinity);
    EXPECT_TRUE(std::isnan(masses[4]));
    EXPECT_FALSE(mass_less(kNaN, kNaN));
}

}  // namespace
}  // namespace tessel
