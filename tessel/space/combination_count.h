#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tessel/space/mod_comb.h"

namespace tessel {

/// Groups of combinations, by their number of extra modifications: none, one, two.
inline constexpr std::size_t kCombinationGroups = 3;
/// Selected modifications of a combination.
inline constexpr unsigned char kMaxSelectedMods = 3;

/// Combinations of more bytes than this are made with a warning.
inline constexpr std::uint64_t kLargeSize = std::uint64_t{1} << 30;

/// What the enumeration of combinations will make. Beyond 64 bits the figures stay at their largest
/// value.
struct COMBINATION_COUNT {
    std::array<std::uint64_t, kCombinationGroups> m_uGroupSizes{};
    std::uint64_t m_uNumber = 0;  ///< in all groups
    std::uint64_t m_uBytes = 0;   ///< of these records
};

/// Counts without enumerating: the selected modifications of a combination decide which termini are
/// left to the extra ones, which are those of the table without its placeholder.
COMBINATION_COUNT count_combinations(const std::vector<const CMod*>& selected,
                                     const std::vector<CMod>& table);

/// Whether the mass lookups, whose entries have 32 bits, can tell the positions in every group.
bool fit_lookups(const COMBINATION_COUNT& count);

}  // namespace tessel
