#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tessel/chem/mod.h"

namespace tessel {

class CCondition;

/// More mass shifts than this are not created.
inline constexpr std::size_t kMaxShifts = 10'000'000;

/// How many shifts lie from -maxDelta to maxDelta, Da; one above kMaxShifts stands for any larger
/// number.
std::size_t number_of_shifts(double maxDelta);

/// Replaces `shifts` by those that the condition's settings ask for, and enters them into `names`,
/// where of equal names the last wins. A range that is not finite, or has more than kMaxShifts, is
/// an alert and leaves `shifts` empty.
void create_shifts(const CCondition& condition, std::vector<CMod>& shifts,
                   std::map<std::string, CMod*>& names);

}  // namespace tessel
