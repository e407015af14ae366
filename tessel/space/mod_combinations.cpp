// Combinations of modifications. The selected modifications and the whole table come in; three
// groups of combinations, by the number of extra modifications from the table, are enumerated,
// sorted by mass and tabled.

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "tessel/base/end_process.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/mass_index.h"
#include "tessel/platform/memory.h"
#include "tessel/space/ordered_combinations.h"
#include "tessel/space/termini.h"

namespace tessel {
namespace {

constexpr std::size_t kGroups = 3;
constexpr unsigned char kMaxSelected = 3;
constexpr std::uint64_t kLargeSize = std::uint64_t{1} << 30;  // bytes
constexpr std::uint64_t kMaxNumber = std::numeric_limits<std::uint64_t>::max();

// ---- Counting ----

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

// Room for all combinations. False when there is not enough memory; without asking first, it might
// be promised and then not be there.
bool reserve_groups(std::vector<std::vector<CModCombInfo>>& groups, const GROUP_SIZES& sizes,
                    std::uint64_t bytes) {
    if (bytes > available_memory()) return false;
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

// One and two modifications of the table on top of a base.
void append_extras(const CModCombInfo& base, const std::vector<CMod>& table, TERMINI termini,
                   std::vector<std::vector<CModCombInfo>>& groups) {
    if (base.m_cModNum > kMaxSelected) return;
    visit_extras(table, 0, termini, [&](std::size_t i) {
        const CModCombInfo one = with_extra(base, table[i], 1);
        groups[1].push_back(one);
        visit_extras(table, i, termini.With(table[i]),
                     [&](std::size_t j) { groups[2].push_back(with_extra(one, table[j], 2)); });
    });
}

// Depth first: visits `comb`, then what adding selected modifications from `start` on makes of it.
template <class Visit>
void walk_selected(CModCombInfo& comb, const std::vector<const CMod*>& selected, TERMINI termini,
                   std::size_t start, const Visit& visit) {
    visit(comb, termini);
    if (comb.m_cModNum >= kMaxSelected) return;
    for (std::size_t k = start; k < selected.size(); ++k) {
        const CMod& mod = *selected[k];
        if (termini.Refuse(mod)) continue;
        append(comb, mod);
        walk_selected(comb, selected, termini.With(mod), k, visit);
        remove_last(comb, mod);
    }
}

void sort_group(const CCondition& condition, std::vector<CModCombInfo>& group,
                std::vector<std::uint32_t>& lookup) {
    std::stable_sort(group.begin(), group.end(), CModCombInfo::Mass_Less);
    index_masses(condition, lookup, group, [](const CModCombInfo& comb) { return comb.m_lfMass; });
}

// The whole of GenerateModComb() for tables as CreateModList() leaves them. False, and the groups
// empty, where that cannot be done.
bool fill_groups_in_order(CCondition& condition) {
    auto& groups = condition.m_vModComb;
    auto& lookups = condition.m_vModCombHash;
    CModCombInfo comb;
    walk_selected(comb, condition.m_vSelMods, TERMINI(), 0,
                  [&](const CModCombInfo& base, TERMINI) { groups[0].push_back(base); });
    for (unsigned char extraNum = 1; extraNum < kGroups; ++extraNum) {
        if (fill_in_order(groups[extraNum], lookups[extraNum], groups[0], condition.m_vMods,
                          extraNum)) {
            continue;
        }
        for (auto& group : groups)
            group.clear();
        lookups.assign(kGroups, {});
        return false;
    }
    sort_group(condition, groups[0], lookups[0]);
    return true;
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
    bool enough = reserve_groups(m_vModComb, sizes, size);
    try {
        if (enough && !fill_groups_in_order(*this)) {
            CModCombInfo comb;
            _generate_mod_comb(comb, 0, 0, 0);
            CreateModCombHash();
        }
    } catch (const std::bad_alloc&) {
        enough = false;  // for the lookups, or what putting in order takes beside the combinations
    }
    if (enough) return;
    Message("Not enough memory for " + figures, LOG_ALERT);
    end_process(1);
}

void CCondition::_generate_mod_comb(CModCombInfo& comb, std::int8_t nTerm, std::int8_t cTerm,
                                    std::size_t start) {
    walk_selected(comb, m_vSelMods, TERMINI{nTerm, cTerm}, start,
                  [this](const CModCombInfo& base, TERMINI termini) {
                      append_extras(base, m_vMods, termini, m_vModComb);
                      m_vModComb[0].push_back(base);
                  });
}

void CCondition::CreateModCombHash() {
    m_vModCombHash.resize(m_vModComb.size());
    for (std::size_t i = 0; i < m_vModComb.size(); ++i) {
        m_vModCombHash[i].clear();
        if (m_vModComb[i].empty()) return;
        sort_group(*this, m_vModComb[i], m_vModCombHash[i]);
    }
}

}  // namespace tessel
