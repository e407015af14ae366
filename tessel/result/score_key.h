#pragma once

#include <cstdint>

namespace tessel {

// Scores are compared to four decimals: two candidates tie when their keys are equal. Removing
// duplicates truncates the fifth decimal, ranking rounds it, on purpose.

/// The low 32 bits of a number truncated toward zero; 0 for one that no signed 64-bit integer
/// holds.
inline std::uint32_t low_bits(double number) {
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    if (!(number >= -kLimit && number < kLimit)) return 0;
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(number));
}

inline std::uint32_t truncated_score(double score) {
    return low_bits(score * 10000.0);
}

inline std::uint32_t rounded_score(double score) {
    return low_bits(score * 10000.0 + 0.5);
}

}  // namespace tessel
