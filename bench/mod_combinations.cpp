// GenerateModComb: three selected modifications and a table of further ones.

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/digest.h"
#include "bench/generate.h"
#include "bench/paths.h"
#include "bench/records.h"
#include "tessel/tessel.h"

namespace tessel::bench {
namespace {

constexpr std::size_t kSelected = 3;

void prepare(CCondition& condition, std::size_t extra) {
    std::filesystem::current_path(TESSEL_DATA_FOLDER);
    condition.m_strAAPath = "aa.ini";
    condition.m_strModPath = mod_file(extra);
    condition.m_lfMaxDelta = 0.0;  // the mass shifts take no part
    for (const std::string& name : mod_names(extra, kSelected))
        condition.m_strSelectMod += name + ';';
    condition.ReadElementInfo();
    condition.ReadAA();
    condition.ReadMod();
    condition.CreateModList();
}

std::uint64_t record_bytes(const CCondition& condition) {
    std::uint64_t bytes = 0;
    for (const auto& group : condition.m_vModComb)
        bytes += group.size() * sizeof(CModCombInfo);
    return bytes;
}

// Combinations of equal masses may stand in any order: the records go in as a sum.
std::uint64_t digest_of_combinations(const CCondition& condition) {
    CDigest digest;
    std::uint64_t sum = 0;
    for (const auto& group : condition.m_vModComb) {
        for (const CModCombInfo& comb : group) {
            digest.Add(comb.m_lfMass);
            CDigest record;
            for (std::size_t i = 0; i < comb.m_cModNum; ++i)
                record.Add(comb.m_pMods[i] - condition.m_vMods.data());
            record.Add(comb.m_lfMass);
            record.Add(comb.m_lfWeight);
            record.Add(comb.m_cExtraNum);
            sum += record.Value();
        }
    }
    for (const auto& table : condition.m_vModCombHash) {
        for (const std::uint32_t position : table)
            digest.Add(position);
    }
    return digest.Value() + sum;
}

void leave_figures(CRound& round, const CCondition& condition) {
    round.m_cFigures.m_uRecordBytes = record_bytes(condition);
    round.m_cFigures.m_uDigest = digest_of_combinations(condition);
}

void library(CRound& round, std::size_t extra) {
    CCondition condition;
    prepare(condition, extra);
    round.Run([&] { condition.GenerateModComb(); });
    leave_figures(round, condition);
}

// ---- The plain way ----

struct TERMINI {
    int m_nN = 0;  // type of the terminal modification that is there, or 0
    int m_nC = 0;
};

bool is_n_terminal(const CMod& mod) {
    return mod.m_eType == PEP_N || mod.m_eType == PRO_N;
}

bool is_c_terminal(const CMod& mod) {
    return mod.m_eType == PEP_C || mod.m_eType == PRO_C;
}

bool is_refused(const CMod& mod, TERMINI termini) {
    return (is_n_terminal(mod) && termini.m_nN > 0) || (is_c_terminal(mod) && termini.m_nC > 0);
}

TERMINI termini_with(const CMod& mod, TERMINI termini) {
    if (is_n_terminal(mod)) termini.m_nN = std::max<int>(termini.m_nN, mod.m_eType);
    if (is_c_terminal(mod)) termini.m_nC = std::max<int>(termini.m_nC, mod.m_eType);
    return termini;
}

void add_mod(CModCombInfo& comb, const CMod& mod) {
    comb.m_pMods[comb.m_cModNum++] = &mod;
    comb.m_lfMass += mod.m_lfMass;
}

void plain_extra(CCondition& condition, const CModCombInfo& comb, TERMINI termini) {
    const std::vector<CMod>& mods = condition.m_vMods;
    for (std::size_t i = 0; i < mods.size(); ++i) {
        if (mods[i].m_eType == MOD_PLACEHOLDER || is_refused(mods[i], termini)) continue;
        CModCombInfo one = comb;
        add_mod(one, mods[i]);
        one.m_cExtraNum = 1;
        condition.m_vModComb[1].push_back(one);
        const TERMINI then = termini_with(mods[i], termini);
        for (std::size_t j = i; j < mods.size(); ++j) {
            if (mods[j].m_eType == MOD_PLACEHOLDER || is_refused(mods[j], then)) continue;
            CModCombInfo two = one;
            add_mod(two, mods[j]);
            two.m_cExtraNum = 2;
            condition.m_vModComb[2].push_back(two);
        }
    }
}

void plain_step(CCondition& condition, CModCombInfo& comb, TERMINI termini, std::size_t start) {
    if (comb.m_cModNum <= 3) plain_extra(condition, comb, termini);
    condition.m_vModComb[0].push_back(comb);
    if (comb.m_cModNum == 3) return;
    for (std::size_t k = start; k < condition.m_vSelMods.size(); ++k) {
        const CMod& mod = *condition.m_vSelMods[k];
        if (is_refused(mod, termini)) continue;
        add_mod(comb, mod);
        plain_step(condition, comb, termini_with(mod, termini), k);
        --comb.m_cModNum;
        comb.m_lfMass -= mod.m_lfMass;
    }
}

void plain_table(std::vector<CModCombInfo>& group, std::vector<std::uint32_t>& table) {
    std::sort(group.begin(), group.end(), CModCombInfo::Mass_Less);
    const auto keyOf = [](const CModCombInfo& comb) {
        return static_cast<std::int64_t>(comb.m_lfMass * 1000.0);
    };
    const std::int64_t first = keyOf(group.front());
    const std::int64_t offset = first <= 0 ? first : 0;
    table.clear();
    table.reserve(static_cast<std::size_t>(keyOf(group.back()) - offset + 1));
    std::int64_t last = first - offset;
    for (std::int64_t key = 0; key <= last; ++key)
        table.push_back(0);
    for (std::size_t i = 1; i < group.size(); ++i) {
        for (const std::int64_t key = keyOf(group[i]) - offset; last < key; ++last)
            table.push_back(static_cast<std::uint32_t>(i));
    }
}

void plain(CRound& round, std::size_t extra) {
    CCondition condition;
    prepare(condition, extra);
    round.Run([&] {
        condition.m_vModComb.assign(3, {});
        condition.m_vModCombHash.assign(3, {});
        CModCombInfo comb;
        plain_step(condition, comb, TERMINI(), 0);
        for (std::size_t i = 0; i < 3 && !condition.m_vModComb[i].empty(); ++i)
            plain_table(condition.m_vModComb[i], condition.m_vModCombHash[i]);
    });
    leave_figures(round, condition);
}

// ---- The least: every record byte written ----

void limit(CRound& round, std::size_t extra) {
    CCondition condition;
    prepare(condition, extra);
    std::size_t records = 0;
    condition.m_vModComb.assign(3, {});
    {
        CModCombInfo comb;
        plain_step(condition, comb, TERMINI(), 0);
        records = record_bytes(condition) / sizeof(CModCombInfo);
        condition.m_vModComb.clear();
    }
    CFreshMemory memory;
    const CModCombInfo comb;
    round.Run([&] {
        for (std::size_t i = 0; i < records; ++i)
            std::memcpy(memory.Take(sizeof comb), &comb, sizeof comb);
    });
}

}  // namespace

HOT_PATH mod_combinations_path(std::size_t extra) {
    HOT_PATH path;
    path.m_strName = "mod_combinations";
    path.m_strInput = std::to_string(kSelected) + " selected, " + std::to_string(extra) + " extra";
    path.m_cMusts.m_lfLimit = 2.4;
    path.m_cMusts.m_lfLimitAim = 1.6;
    path.m_cMusts.m_lfPlain = 0.36;
    path.m_cMusts.m_lfPeakPerRecord = 1.3;
    path.m_fnLibrary = [extra](CRound& round) { library(round, extra); };
    path.m_fnPlain = [extra](CRound& round) { plain(round, extra); };
    path.m_fnLimit = [extra](CRound& round) { limit(round, extra); };
    return path;
}

}  // namespace tessel::bench
