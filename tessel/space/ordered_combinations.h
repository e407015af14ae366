#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tessel/chem/mod.h"
#include "tessel/space/mod_comb.h"

namespace tessel {

/// Fills group 1 (`extraNum` 1) or group 2 of the combinations in ascending order of mass, and its
/// mass lookup: what appending them to each of `bases` (the walk's group 0, in its order) and then
/// sorting them stably would give, without ever holding them in another order. `group` has room for
/// all of them, `records` at most. False, and nothing changed, where the masses are not in order or
/// not within reach of a lookup.
bool fill_in_order(std::vector<CModCombInfo>& group, std::size_t records,
                   std::vector<std::uint32_t>& lookup, const std::vector<CModCombInfo>& bases,
                   const std::vector<CMod>& table, unsigned char extraNum);

}  // namespace tessel
