// CreateModList: the definitions are read, the tables of the selection are made.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/digest.h"
#include "bench/generate.h"
#include "bench/paths.h"
#include "tessel/tessel.h"

namespace tessel::bench {
namespace {

constexpr std::size_t kFixed = 3;
constexpr std::size_t kSelected = 30;

// What Initialize() does before the selection.
void prepare(CCondition& condition, std::size_t definitions) {
    std::filesystem::current_path(TESSEL_DATA_FOLDER);
    condition.m_strAAPath = "aa.ini";
    condition.m_strModPath = mod_file(definitions);
    const std::vector<std::string> names = mod_names(definitions, kSelected);
    for (std::size_t i = 0; i < names.size(); ++i)
        (i < kFixed ? condition.m_strFixMod : condition.m_strSelectMod) += names[i] + ';';
    condition.ParseQuantMethod();
    condition.ReadElementInfo();
    condition.ReadAA();
    condition.ReadMod();
}

// Modifications of equal masses may stand in any order: the records go in as a sum.
std::uint64_t digest_of_mods(const std::vector<CMod>& mods) {
    CDigest masses;
    std::uint64_t sum = 0;
    for (const CMod& mod : mods) {
        masses.Add(mod.m_lfMass);
        CDigest record;
        record.Add(mod.m_strName);
        record.Add(mod.m_lfMass);
        record.Add(mod.m_strSites);
        record.Add(static_cast<int>(mod.m_eType));
        record.Add(mod.m_lfProb);
        record.Add(mod.m_strComposition);
        record.Add(mod.m_nFlag);
        sum += record.Value();
    }
    return masses.Value() + sum;
}

std::uint64_t digest_of_tables(const CCondition& condition) {
    CDigest digest;
    digest.Add(digest_of_mods(condition.m_vMods));
    digest.Add(digest_of_mods(condition.m_vDeltaMods));
    for (const std::uint32_t position : condition.m_vModMassIndex)
        digest.Add(position);
    for (const std::uint32_t position : condition.m_vEAAMassIndex)
        digest.Add(position);
    for (const auto& [name, mod] : condition.m_mapMods) {
        digest.Add(name);
        digest.Add(mod->m_strName);
        digest.Add(mod->m_lfMass);
    }
    for (const CMod* mod : condition.m_vSelMods)
        digest.Add(mod->m_strName);
    for (const auto& slot : condition.m_vSelModMap) {
        digest.Add(slot.size());
        for (const CMod* mod : slot)
            digest.Add(mod->m_strName);
    }
    digest.Add(condition.m_setFixMods.size());
    std::uint64_t letters = 0;
    for (const ExtendedAA& letter : condition.m_vExtendedAA) {
        digest.Add(letter.m_lfMass);
        digest.Add(letter.m_ucCode);
        CDigest record;
        record.Add(letter.m_cAA);
        record.Add(letter.m_pMod == nullptr ? "" : letter.m_pMod->m_strName);
        letters += record.Value();
    }
    return digest.Value() + letters;
}

void library(CRound& round, std::size_t definitions) {
    CCondition condition;
    prepare(condition, definitions);
    round.Run([&] { condition.CreateModList(); });
    round.m_cFigures.m_uDigest = digest_of_tables(condition);
}

// ---- The plain way ----

template <class Entry>
void plain_mass_index(std::vector<std::uint32_t>& index, const std::vector<Entry>& entries) {
    index.clear();
    const auto keyOf = [](const Entry& entry) { return static_cast<int>(entry.m_lfMass * 1000.0); };
    const int first = keyOf(entries.front());
    const int offset = first <= 0 ? first : 0;
    index.reserve(static_cast<std::size_t>(keyOf(entries.back()) - offset + 1));
    int last = first - offset;
    for (int key = 0; key <= last; ++key)
        index.push_back(0);
    for (std::size_t i = 1; i < entries.size(); ++i) {
        for (const int key = keyOf(entries[i]) - offset; last < key; ++last)
            index.push_back(static_cast<std::uint32_t>(i));
    }
}

void plain_shifts(CCondition& condition) {
    condition.m_vDeltaMods.clear();
    for (double shift = -condition.m_lfMaxDelta; shift <= condition.m_lfMaxDelta; shift += 0.01) {
        CMod mod;
        mod.m_lfMass = condition.m_lfCenter + shift;
        char number[16];
        std::snprintf(number, sizeof number, "%.2f", mod.m_lfMass);
        mod.m_strName = std::string(_BLIND_PREFIX) + number;
        mod.m_strSites = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
        condition.m_vDeltaMods.push_back(mod);
    }
}

void plain_selection(CCondition& condition, const std::string& names, bool isFixed) {
    for (std::size_t begin = 0; begin < names.size();) {
        const std::size_t end = std::min(names.find(';', begin + 1), names.size());
        const std::string name = names.substr(begin, end - begin);
        begin = end + 1;
        std::vector<std::string> forms{name};
        for (std::size_t i = 0; i <= condition.m_vLabels.size(); ++i)
            forms.push_back(name + '#' + static_cast<char>('0' + i));
        for (const std::string& form : forms) {
            if (condition.m_mapMods.find(form) == condition.m_mapMods.end()) continue;
            condition.m_vSelMods.push_back(condition.m_mapMods[form]);
            if (isFixed) condition.m_setFixMods.insert(condition.m_mapMods[form]);
        }
    }
}

void plain_slots(CCondition& condition) {
    for (auto& slot : condition.m_vSelModMap)
        slot.clear();
    for (const CMod* mod : condition.m_vSelMods) {
        if (mod->m_eType != NORMAL) {
            condition.m_vSelModMap[static_cast<std::size_t>(mod->m_eType)].push_back(mod);
            continue;
        }
        for (const char site : mod->m_strSites)
            condition.m_vSelModMap[static_cast<std::size_t>(site)].push_back(mod);
    }
}

void plain_letters(CCondition& condition) {
    const auto add = [&condition](char site, const CMod* mod) {
        const double residue = condition.m_cAlphaBet.m_lfMass[static_cast<std::size_t>(site - 'A')];
        if (residue < 0.01) return;
        ExtendedAA letter;
        letter.m_cAA = site;
        letter.m_pMod = mod;
        letter.m_lfMass = residue + (mod == nullptr ? 0.0 : mod->m_lfMass);
        condition.m_vExtendedAA.push_back(letter);
    };
    for (char site = 'A'; site <= 'Z'; ++site)
        add(site, nullptr);
    for (const CMod* mod : condition.m_vSelMods) {
        for (const char site : mod->m_strSites)
            add(site, mod);
    }
    std::sort(condition.m_vExtendedAA.begin(), condition.m_vExtendedAA.end(),
              ExtendedAA::EAA_Mass_Less);
    for (std::size_t i = 0; i < condition.m_vExtendedAA.size(); ++i)
        condition.m_vExtendedAA[i].m_ucCode = static_cast<unsigned char>(i);
    plain_mass_index(condition.m_vEAAMassIndex, condition.m_vExtendedAA);
}

void plain_list(CCondition& condition) {
    CMod placeholder;
    placeholder.m_strName = "NULL";
    placeholder.m_strSites = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    placeholder.m_eType = MOD_PLACEHOLDER;
    condition.m_vMods.push_back(placeholder);
    std::sort(condition.m_vMods.begin(), condition.m_vMods.end(), CMod::Mass_Less);
    plain_mass_index(condition.m_vModMassIndex, condition.m_vMods);
    plain_shifts(condition);
    condition.m_mapMods.clear();
    for (CMod& mod : condition.m_vMods)
        condition.m_mapMods[mod.m_strName] = &mod;
    for (CMod& mod : condition.m_vDeltaMods)
        condition.m_mapMods[mod.m_strName] = &mod;
    condition.m_vSelMods.clear();
    plain_selection(condition, condition.m_strFixMod, true);
    plain_selection(condition, condition.m_strSelectMod, false);
    plain_slots(condition);
    plain_letters(condition);
}

void plain(CRound& round, std::size_t definitions) {
    CCondition condition;
    prepare(condition, definitions);
    round.Run([&] { plain_list(condition); });
    round.m_cFigures.m_uDigest = digest_of_tables(condition);
}

// ---- The least: the records of the table and of the mass shifts, in reserved memory ----

// The number of a shift behind its prefix, as "%.2f" of the mass, from an integer of hundredths.
void set_number(std::string& name, double mass) {
    char number[16];
    char* end = number;
    const auto hundredths = static_cast<unsigned>(std::fabs(mass) * 100.0 + 0.5);
    if (std::signbit(mass)) *end++ = '-';
    end = std::to_chars(end, number + sizeof number, hundredths / 100).ptr;
    *end++ = '.';
    *end++ = static_cast<char>('0' + hundredths / 10 % 10);
    *end++ = static_cast<char>('0' + hundredths % 10);
    name.resize(_BLIND_PREFIX.size());
    name.append(number, end);
}

void construct_records(const CCondition& made, std::vector<CMod>& mods, std::vector<CMod>& shifts) {
    mods.reserve(made.m_vMods.size());
    for (const CMod& mod : made.m_vMods)
        mods.push_back(mod);
    CMod record;
    record.m_strName = _BLIND_PREFIX;
    record.m_strSites = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    shifts.reserve(made.m_vDeltaMods.size());
    for (double shift = -made.m_lfMaxDelta; shift <= made.m_lfMaxDelta; shift += 0.01) {
        record.m_lfMass = made.m_lfCenter + shift;
        set_number(record.m_strName, record.m_lfMass);
        shifts.push_back(record);
    }
}

void limit(CRound& round, std::size_t definitions) {
    CCondition made;
    prepare(made, definitions);
    made.CreateModList();
    const std::uint64_t wanted = digest_of_mods(made.m_vMods) + digest_of_mods(made.m_vDeltaMods);
    std::vector<CMod> mods;
    std::vector<CMod> shifts;
    round.Run([&] { construct_records(made, mods, shifts); });
    if (digest_of_mods(mods) + digest_of_mods(shifts) != wanted) {
        throw std::runtime_error("The limit of mod_list makes other records");
    }
}

}  // namespace

HOT_PATH mod_list_path(std::size_t definitions) {
    HOT_PATH path;
    path.m_strName = "mod_list";
    path.m_strInput = std::to_string(definitions) + " definitions";
    path.m_tTurns = 3;
    path.m_cMusts.m_lfLimit = 2.2;
    path.m_cMusts.m_lfLimitAim = 1.6;
    path.m_cMusts.m_lfPlain = 0.5;
    path.m_fnLibrary = [definitions](CRound& round) { library(round, definitions); };
    path.m_fnPlain = [definitions](CRound& round) { plain(round, definitions); };
    path.m_fnLimit = [definitions](CRound& round) { limit(round, definitions); };
    return path;
}

}  // namespace tessel::bench
