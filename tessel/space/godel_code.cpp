// The table of the sequence hash.

#include "tessel/space/godel_code.h"

#include <algorithm>
#include <cmath>

namespace tessel {
namespace {

std::vector<unsigned> first_primes(std::size_t count) {
    std::vector<unsigned> primes;
    for (unsigned candidate = 2; primes.size() < count; ++candidate) {
        const bool divisible = std::any_of(primes.begin(), primes.end(),
                                           [candidate](unsigned p) { return candidate % p == 0; });
        if (!divisible) primes.push_back(candidate);
    }
    return primes;
}

}  // namespace

GodelCode::GodelCode() : m_lfTable(kByteValues * kPositions) {
    const std::vector<unsigned> primes = first_primes(kPositions);
    for (std::size_t position = 0; position < kPositions; ++position) {
        const double logarithm = std::log(static_cast<double>(primes[position]));
        for (std::size_t byte = 0; byte < kByteValues; ++byte) {
            m_lfTable[byte * kPositions + position] = static_cast<double>(byte) * logarithm;
        }
    }
}

double GodelCode::GetGodel(const char* sequence, const std::size_t& length) const {
    double sum = 0.0;
    const std::size_t counted = std::min(length, kPositions);
    for (std::size_t position = 0; position < counted; ++position) {
        const auto byte = static_cast<unsigned char>(sequence[position]);
        sum += m_lfTable[byte * kPositions + position];
    }
    return sum;
}

}  // namespace tessel
