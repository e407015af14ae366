// Selected modifications and the table come in; the number of combinations that they will make goes
// out.

#include "tessel/space/combination_count.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "tessel/space/termini.h"

namespace tessel {
namespace {

constexpr std::uint64_t kMaxNumber = std::numeric_limits<std::uint64_t>::max();

// Counts saturate: beyond 64 bits the only question left is refused all the same.
std::uint64_t sum(std::uint64_t a, std::uint64_t b) {
    return a > kMaxNumber - b ? kMaxNumber : a + b;
}

std::uint64_t product(std::uint64_t a, std::uint64_t b) {
    return b != 0 && a > kMaxNumber / b ? kMaxNumber : a * b;
}

// Multisets of `size` out of n kinds. The product of the first factors is divided at each step, so
// that it stays a whole number and only the result saturates.
std::uint64_t multisets(std::uint64_t n, std::size_t size) {
    if (n == 0) return size == 0 ? 1 : 0;
    std::uint64_t number = 1;
    for (std::uint64_t i = 1; i <= size; ++i) {
        const std::uint64_t common = std::gcd(number, i);
        number = product(number / common, (n + i - 1) / (i / common));
    }
    return number;
}

// How many modifications there are for the N terminus, for the C terminus, and without terminus.
struct KINDS {
    std::uint64_t m_uNTerm = 0;
    std::uint64_t m_uCTerm = 0;
    std::uint64_t m_uOther = 0;

    void Count(const CMod& mod) {
        std::uint64_t& kind = is_n_terminal(mod)   ? m_uNTerm
                              : is_c_terminal(mod) ? m_uCTerm
                                                   : m_uOther;
        ++kind;
    }
    // Multisets of `size` with at most one modification for each terminus that is free.
    std::uint64_t Multisets(std::size_t size, bool nFree, bool cFree) const {
        std::uint64_t number = multisets(m_uOther, size);
        const auto add = [&](std::uint64_t choices, std::size_t chosen) {
            if (size < chosen) return;
            number = sum(number, product(choices, multisets(m_uOther, size - chosen)));
        };
        if (nFree) add(m_uNTerm, 1);
        if (cFree) add(m_uCTerm, 1);
        if (nFree && cFree) add(product(m_uNTerm, m_uCTerm), 2);
        return number;
    }
};

}  // namespace

COMBINATION_COUNT count_combinations(const std::vector<const CMod*>& selected,
                                     const std::vector<CMod>& table) {
    KINDS bases;
    for (const CMod* mod : selected)
        bases.Count(*mod);
    KINDS extras;
    for (const CMod& mod : table)
        if (mod.m_eType != MOD_PLACEHOLDER) extras.Count(mod);

    COMBINATION_COUNT count;
    for (const bool nUsed : {false, true}) {
        for (const bool cUsed : {false, true}) {
            const std::size_t used = std::size_t{nUsed} + std::size_t{cUsed};
            std::uint64_t number = 0;
            for (std::size_t others = 0; others + used <= kMaxSelectedMods; ++others)
                number = sum(number, multisets(bases.m_uOther, others));
            number =
                product(number, product(nUsed ? bases.m_uNTerm : 1, cUsed ? bases.m_uCTerm : 1));
            for (std::size_t extra = 0; extra < kCombinationGroups; ++extra) {
                const std::uint64_t each = extras.Multisets(extra, !nUsed, !cUsed);
                std::uint64_t& size = count.m_uGroupSizes[extra];
                size = sum(size, product(number, each));
            }
        }
    }
    for (const std::uint64_t size : count.m_uGroupSizes)
        count.m_uNumber = sum(count.m_uNumber, size);
    count.m_uBytes = product(count.m_uNumber, sizeof(CModCombInfo));
    return count;
}

bool fit_lookups(const COMBINATION_COUNT& count) {
    return std::all_of(
        count.m_uGroupSizes.begin(), count.m_uGroupSizes.end(),
        [](std::uint64_t size) { return size <= std::numeric_limits<std::uint32_t>::max(); });
}

}  // namespace tessel
