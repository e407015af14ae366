#pragma once

#include <cmath>

namespace tessel {

/// Ascending masses, those that are not finite behind all others and NaN last of all, so that
/// sorting is defined whatever a file holds.
inline bool mass_less(double a, double b) {
    const auto rank = [](double mass) {
        return std::isfinite(mass) ? 0 : std::isnan(mass) ? 2 : 1;
    };
    const int rankA = rank(a);
    const int rankB = rank(b);
    return rankA != rankB ? rankA < rankB : a < b;
}

}  // namespace tessel
