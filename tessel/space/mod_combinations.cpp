// Combinations of modifications. The selected modifications and the whole table come in; three
// groups of combinations, by the number of extra modifications from the table, are enumerated,
// sorted by mass and tabled.

#include <algorithm>
#include <new>
#include <stdexcept>

#include "tessel/base/end_process.h"
#include "tessel/base/mass_order.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/mass_index.h"
#include "tessel/platform/memory.h"
#include "tessel/space/combination_count.h"
#include "tessel/space/ordered_combinations.h"
#include "tessel/space/termini.h"

namespace tessel {
namespace {

// Room for all combinations. False when there is not enough memory; without asking first, it might
// be promised and then not be there. What no lookup reaches is refused likewise.
bool reserve_groups(std::vector<std::vector<CModCombInfo>>& groups,
                    const COMBINATION_COUNT& count) {
    if (!fit_lookups(count) || count.m_uBytes > available_memory()) return false;
    try {
        for (std::size_t i = 0; i < kCombinationGroups; ++i)
            groups[i].reserve(count.m_uGroupSizes[i]);
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
        if (table[i].m_eType != MOD_PLACEHOLDER && !termini.Refuses(table[i])) visit(i);
}

// One and two modifications of the table on top of a base.
void append_extras(const CModCombInfo& base, const std::vector<CMod>& table, TERMINI termini,
                   std::vector<std::vector<CModCombInfo>>& groups) {
    if (base.m_cModNum > kMaxSelectedMods) return;
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
    if (comb.m_cModNum >= kMaxSelectedMods) return;
    for (std::size_t k = start; k < selected.size(); ++k) {
        const CMod& mod = *selected[k];
        if (termini.Refuses(mod)) continue;
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
bool fill_groups_in_order(CCondition& condition, const COMBINATION_COUNT& count) {
    auto& groups = condition.m_vModComb;
    auto& lookups = condition.m_vModCombHash;
    CModCombInfo comb;
    walk_selected(comb, condition.m_vSelMods, TERMINI(), 0,
                  [&](const CModCombInfo& base, TERMINI) { groups[0].push_back(base); });
    for (unsigned char extraNum = 1; extraNum < kCombinationGroups; ++extraNum) {
        if (fill_in_order(groups[extraNum], count.m_uGroupSizes[extraNum], lookups[extraNum],
                          groups[0], condition.m_vMods, extraNum)) {
            continue;
        }
        for (auto& group : groups)
            group.clear();
        lookups.assign(kCombinationGroups, {});
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
    m_vModComb = std::vector<std::vector<CModCombInfo>>(kCombinationGroups);
    m_vModCombHash = std::vector<std::vector<std::uint32_t>>(kCombinationGroups);

    const COMBINATION_COUNT count = count_combinations(m_vSelMods, m_vMods);
    const std::string figures =
        message_text(count.m_uNumber, " modification combinations, ", count.m_uBytes, " bytes");
    Message(figures, count.m_uBytes > kLargeSize ? LOG_WARNING : LOG_DEBUG);
    bool enough = reserve_groups(m_vModComb, count);
    try {
        if (enough && !fill_groups_in_order(*this, count)) {
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
