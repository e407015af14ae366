#pragma once

#include <cstddef>
#include <vector>

#include "tessel/export.h"

namespace tessel {

/// The position-weighted hash of byte sequences. Byte value c at position p counts
/// c * ln(the (p+1)-th prime), so that a sum is the logarithm of the sequence's Goedel number,
/// which is unique; as a double it is a hash with rare collisions.
class TESSEL_API GodelCode {
public:
    static constexpr std::size_t kPositions = 500;   ///< entries of a row; sums stop here
    static constexpr std::size_t kByteValues = 256;  ///< rows of the table

    /// Fills the table (1 MB): build one and share it.
    GodelCode();

    /// Sum over the first `length` bytes, at most kPositions of them; 0.0 for none.
    double GetGodel(const char* sequence, const std::size_t& length) const;

    /// Byte value c at position p stands at c * kPositions + p.
    std::vector<double> m_lfTable;
};

}  // namespace tessel
