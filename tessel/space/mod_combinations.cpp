// Combinations of modifications. The selected modifications and the whole table come in; three
// groups of combinations, by the number of extra modifications from the table, are enumerated,
// sorted by mass and tabled.

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "tessel/base/end_process.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/mass_index.h"
#include "tessel/platform/memory.h"

namespace tessel {
namespace {

constexpr std::size_t kGroups = 3;
constexpr unsigned char kMaxSelected = 3;
constexpr std::uint64_t kLargeSize = std::uint64_t{1} << 30;  // bytes
constexpr std::uint64_t kMaxNumber = std::numeric_limits<std::uint64_t>::max();

// ---- Terminal modifications ----

bool is_n_terminal(const CMod& mod) {
    return mod.m_eType == PEP_N || mod.m_eType == PRO_N;
}

bool is_c_terminal(const CMod& mod) {
    return mod.m_eType == PEP_C || mod.m_eType == PRO_C;
}

// The types of the N-terminal and of the C-terminal modification of a combination, or 0.
struct TERMINI {
    std::int8_t n;
    std::int8_t c;

    bool Refuse(const CMod& mod) const {
        return (is_n_terminal(mod) && n >= 1) || (is_c_terminal(mod) && c >= 1);
    }
    TERMINI With(const CMod& mod) const {
        const auto type = static_cast<std::int8_t>(mod.m_eType);
        return {is_n_terminal(mod) ? std::max(n, type) : n,
                is_c_terminal(mod) ? std::max(c, type) : c};
    }
};

// ---- Counting ----

// Counts saturate: beyond 64 bits the only question left is refused all the same.
std::uint64_t sum(std::uint64_t a, std::uint64_t b) {
    return a > kMaxNumber - b ? kMaxNumber : a + b;
}

std::uint64_t product(std::uint64_t a, std::uint64_t b) {
    return b != 0 && a > kMaxNumber / b ? kMaxNumber : a * b;
}

// Multisets of `size` out of n kinds.
std::uint64_t multisets(std::uint64_t n, std::size_t size) {
    std::uint64_t number = 1;
    for (std::uint64_t i = 0; i < size; ++i)
        number = product(number, n + i);
    return size == 3 ? number / 6 : size == 2 ? number / 2 : number;
}

// How many modifications there are for the N terminus, for the C terminus, and without terminus.
struct KINDS {
    std::uint64_t n = 0;
    std::uint64_t c = 0;
    std::uint64_t any = 0;

    void Count(const CMod& mod) {
        std::uint64_t& kind = is_n_terminal(mod) ? n : is_c_terminal(mod) ? c : any;
        ++kind;
    }
    // Multisets of `size` with at most one modification for each terminus that is free.
    std::uint64_t Multisets(std::size_t size, bool nFree, bool cFree) const {
        std::uint64_t number = multisets(any, size);
        if (nFree && size >= 1) number = sum(number, product(n, multisets(any, size - 1)));
        if (cFree && size >= 1) number = sum(number, product(c, multisets(any, size - 1)));
        if (nFree && cFree && size >= 2) {
            number = sum(number, product(product(n, c), multisets(any, size - 2)));
        }
        return number;
    }
};

using GROUP_SIZES = std::array<std::uint64_t, kGroups>;

// What the enumeration will append to each group. The selected modifications of a combination
// decide which termini are left to the extra ones.
GROUP_SIZES group_sizes(const std::vector<const CMod*>& selected, const std::vector<CMod>& table) {
    KINDS bases;
    for (const CMod* mod : selected)
        bases.Count(*mod);
    KINDS extras;
    for (const CMod& mod : table)
        if (mod.m_eType != MOD_PLACEHOLDER) extras.Count(mod);

    GROUP_SIZES sizes{};
    for (const bool nUsed : {false, true}) {
        for (const bool cUsed : {false, true}) {
            const std::size_t used = std::size_t{nUsed} + std::size_t{cUsed};
            std::uint64_t number = 0;
            for (std::size_t others = 0; others + used <= kMaxSelected; ++others)
                number = sum(number, multisets(bases.any, others));
            number = product(number, product(nUsed ? bases.n : 1, cUsed ? bases.c : 1));
            for (std::size_t extra = 0; extra < kGroups; ++extra) {
                const std::uint64_t each = extras.Multisets(extra, !nUsed, !cUsed);
                sizes[extra] = sum(sizes[extra], product(number, each));
            }
        }
    }
    return sizes;
}

// Room for all combinations, and for those that sorting the largest group sets aside. False when
// there is not enough memory; without asking first, it might be promised and then not be there.
bool reserve_groups(std::vector<std::vector<CModCombInfo>>& groups, const GROUP_SIZES& sizes) {
    const std::uint64_t largest = *std::max_element(sizes.begin(), sizes.end());
    std::uint64_t number = largest / 2;
    for (const std::uint64_t size : sizes)
        number = sum(number, size);
    if (product(number, sizeof(CModCombInfo)) > available_memory()) return false;
    try {
        for (std::size_t i = 0; i < kGroups; ++i)
            groups[i].reserve(sizes[i]);
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) {
        return false;
    }
    return true;
}

// ---- Enumeration ----

void append(CModCombInfo& comb, const CMod& mod) {
    comb.m_pMods[comb.m_cModNum++] = &mod;
    comb.m_lfMass += mod.m_lfMass;
}

void remove_last(CModCombInfo& comb, const CMod& mod) {
    --comb.m_cModNum;
    comb.m_lfMass -= mod.m_lfMass;
}

CModCombInfo with_extra(const CModCombInfo& comb, const CMod& mod, unsigned char extraNum) {
    CModCombInfo more = comb;
    append(more, mod);
    more.m_cExtraNum = extraNum;
    return more;
}

template <class Visit>
void visit_extras(const std::vector<CMod>& table, std::size_t start, TERMINI termini, Visit visit) {
    for (std::size_t i = start; i < table.size(); ++i)
        if (table[i].m_eType != MOD_PLACEHOLDER && !termini.Refuse(table[i])) visit(i);
}

}  // namespace

bool CModCombInfo::Mass_Less(const CModCombInfo& a, const CModCombInfo& b) {
    return mass_less(a.m_lfMass, b.m_lfMass);
}

void CCondition::GenerateModComb() {
    m_vModComb = std::vector<std::vector<CModCombInfo>>(kGroups);
    m_vModCombHash = std::vector<std::vector<std::uint32_t>>(kGroups);

    const GROUP_SIZES sizes = group_sizes(m_vSelMods, m_vMods);
    const std::uint64_t number = sum(sum(sizes[0], sizes[1]), sizes[2]);
    const std::uint64_t size = product(number, sizeof(CModCombInfo));
    const std::string figures =
        message_text(number, " modification combinations, ", size, " bytes");
    Message(figures, size > kLargeSize ? LOG_WARNING : LOG_DEBUG);
    if (!reserve_groups(m_vModComb, sizes)) {
        Message("Not enough memory for " + figures, LOG_ALERT);
        end_process(1);
    }
    CModCombInfo comb;
    _generate_mod_comb(comb, 0, 0, 0);
    CreateModCombHash();
}

void CCondition::_generate_mod_comb(CModCombInfo& comb, std::int8_t nTerm, std::int8_t cTerm,
                                    std::size_t start) {
    const TERMINI termini{nTerm, cTerm};
    if (comb.m_cModNum <= kMaxSelected) {
        visit_extras(m_vMods, 0, termini, [&](std::size_t i) {
            const CModCombInfo one = with_extra(comb, m_vMods[i], 1);
            m_vModComb[1].push_back(one);
            visit_extras(m_vMods, i, termini.With(m_vMods[i]), [&](std::size_t j) {
                m_vModComb[2].push_back(with_extra(one, m_vMods[j], 2));
            });
        });
    }
    m_vModComb[0].push_back(comb);
    if (comb.m_cModNum >= kMaxSelected) return;
    for (std::size_t k = start; k < m_vSelMods.size(); ++k) {
        const CMod& mod = *m_vSelMods[k];
        if (termini.Refuse(mod)) continue;
        const TERMINI now = termini.With(mod);
        append(comb, mod);
        _generate_mod_comb(comb, now.n, now.c, k);
        remove_last(comb, mod);
    }
}

void CCondition::CreateModCombHash() {
    m_vModCombHash.resize(m_vModComb.size());
    for (std::size_t i = 0; i < m_vModComb.size(); ++i) {
        std::vector<CModCombInfo>& group = m_vModComb[i];
        std::stable_sort(group.begin(), group.end(), CModCombInfo::Mass_Less);
        m_vModCombHash[i].clear();
        if (group.empty()) return;
        index_masses(*this, m_vModCombHash[i], group,
                     [](const CModCombInfo& comb) { return comb.m_lfMass; });
    }
}

}  // namespace tessel
