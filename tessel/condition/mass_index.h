#pragma once

#include <cmath>
#include <vector>

#include "tessel/base/bucket_index.h"
#include "tessel/base/message_text.h"
#include "tessel/condition/condition.h"

namespace tessel {

/// Rebuilds the mass lookup over entries sorted by mass; massOf(entry) is in Da. A lookup that
/// would be too long stays empty, and one alert names the mass that makes it so: that of the finite
/// end farther out.
template <class Index, class Entries, class MassOf>
void index_masses(const CCondition& condition, std::vector<Index>& index, const Entries& entries,
                  MassOf massOf) {
    if (fill_mass_buckets(index, entries, massOf)) return;
    double farthest = 0.0;
    for (const auto& entry : entries) {
        const double mass = massOf(entry);
        if (std::isfinite(mass) && std::fabs(mass) >= std::fabs(farthest)) farthest = mass;
    }
    condition.Message(
        message_text("Mass out of reach of the lookup table: ", fixed_text(farthest, 6)),
        LOG_ALERT);
}

}  // namespace tessel
