#pragma once

#include <cstdint>
#include <string>

namespace tessel {

class CCondition;

/// CCondition::_LoadResult(), which keeps lists that fail later than at `longList` hits. That
/// number changes the time of reading hostile files, never what is read, though an "Invalid format"
/// of a record that is dropped may be missing; tests choose others.
void load_first_peps(CCondition& condition, const std::string& path, std::uint64_t maxPeps,
                     double maxFinalScore, std::uint64_t longList);

}  // namespace tessel
