#pragma once

#include <cstddef>

namespace tessel {

// Where the values of an MGF block begin, whatever the key is spelt like: its first letter alone
// counts.
inline constexpr std::size_t kTitleAt = 6;   ///< TITLE=
inline constexpr std::size_t kChargeAt = 7;  ///< CHARGE=
inline constexpr std::size_t kMzAt = 8;      ///< PEPMASS=

}  // namespace tessel
