// The modification selection: the names that the user, and later the learn file, selects come in,
// together with the tables of modifications and residues. Filled are the list and the slots of the
// selected modifications, the index by name, the mass shifts of the open search, the extended
// alphabet, and the lookups by mass over the table and over the alphabet.

#include <algorithm>
#include <cmath>

#include "tessel/base/line_reader.h"
#include "tessel/base/message_text.h"
#include "tessel/base/text.h"
#include "tessel/base/word_reader.h"
#include "tessel/chem/mass_shifts.h"
#include "tessel/chem/residues.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/constants.h"
#include "tessel/condition/mass_index.h"

namespace tessel {
namespace {

// A lighter residue is an undefined one.
constexpr double kLightestResidue = 0.01;
// Common enough to be considered by every open search.
constexpr const char* kCommonMods =
    "Oxidation[M];Deamidated[N];Acetyl[ProteinN-term];Gln->pyro-Glu[AnyN-termQ];"
    "Carbamidomethyl[C];";

CMod placeholder() {
    CMod mod;
    mod.m_strName = "NULL";
    mod.m_strSites = kAnyResidue;
    mod.m_eType = MOD_PLACEHOLDER;
    return mod;
}

void index_names(std::map<std::string, CMod*>& names, std::vector<CMod>& mods) {
    for (CMod& mod : mods)
        names.insert_or_assign(mod.m_strName, &mod);
}

CMod* mod_of_name(const std::map<std::string, CMod*>& names, const std::string& name) {
    const auto found = names.find(name);
    return found == names.end() ? nullptr : found->second;
}

// Cuts at ";", but looks for the end of a name only behind its first character.
template <class Take>
void visit_names(const std::string& names, Take take) {
    std::size_t begin = 0;
    while (begin < names.size()) {
        const std::size_t end = std::min(names.find(';', begin + 1), names.size());
        take(names.substr(begin, end - begin));
        begin = end + 1;
    }
}

void drop_repeated(std::vector<const CMod*>& mods) {
    std::set<const CMod*> seen;
    const auto repeated = [&seen](const CMod* mod) { return !seen.insert(mod).second; };
    mods.erase(std::remove_if(mods.begin(), mods.end(), repeated), mods.end());
}

bool is_residue(char site, const CAlphaBet& alphabet) {
    if (!is_upper(site)) return false;
    return std::fabs(alphabet.m_lfMass[static_cast<std::size_t>(site - 'A')]) >= kLightestResidue;
}

ExtendedAA extended(char site, const CAlphaBet& alphabet, const CMod* mod, double shift) {
    ExtendedAA letter;
    letter.m_pMod = mod;
    letter.m_cAA = site;
    letter.m_lfMass = alphabet.m_lfMass[static_cast<std::size_t>(site - 'A')] + shift;
    return letter;
}

void rank_letters(const CCondition& condition, std::vector<ExtendedAA>& letters) {
    std::stable_sort(letters.begin(), letters.end(), ExtendedAA::EAA_Mass_Less);
    for (std::size_t i = 0; i < letters.size(); ++i)
        letters[i].m_ucCode = static_cast<unsigned char>(i);
    if (letters.size() <= kExtendedCodes) return;
    condition.Message(message_text("Extended alphabet of ", letters.size(),
                                   " letters: its codes repeat after ", kExtendedCodes),
                      LOG_WARNING);
}

// The first line is a heading. Behind the last line read, the cleavage coefficients are looked for.
void read_learned_mods(CCondition& condition, CLineReader& reader, std::size_t maxMods) {
    std::string_view line;
    reader.ReadLine(line);
    while (reader.ReadLine(line) && line != "[----mod prob end----]") {
        CWordReader fields(line);
        std::string name;
        if (!fields.Word(name) || name.find(_BLIND_PREFIX) != std::string::npos) continue;
        CMod* const mod = mod_of_name(condition.m_mapMods, name);
        if (mod == nullptr) {
            condition.Message("ignore the modification: " + name, LOG_WARNING);
            continue;
        }
        int ignored = 0;
        double probability = 0.0;
        if (fields.Read(ignored) && fields.Read(probability)) mod->m_lfProb = probability;
        condition.m_vSelMods.push_back(mod);
        if (condition.m_vSelMods.size() >= maxMods) return;
    }
}

// Reads lines until one equals `mark` or the file ends.
bool skip_behind(CLineReader& reader, std::string_view mark) {
    std::string_view line;
    while (reader.ReadLine(line)) {
        if (line == mark) return true;
    }
    return false;
}

// The next words, on as few lines as hold them, with blanks between.
std::string next_words(CLineReader& reader, std::size_t count) {
    std::string words;
    std::string_view line;
    while (count > 0 && reader.ReadLine(line)) {
        CWordReader fields(line);
        for (std::string_view word; count > 0 && fields.Word(word); --count)
            words.append(word) += ' ';
    }
    return words;
}

void read_cleave_prob(CLineReader& reader, std::array<double, 4>& coefficients) {
    std::string text;
    if (skip_behind(reader, "[----cleave prob----]")) {
        text = next_words(reader, 2 * coefficients.size());
    }
    CWordReader pairs(text);
    int index = 0;
    double value = 1.0;
    for (std::size_t i = 0; i < coefficients.size(); ++i) {
        int nextIndex = 0;
        double nextValue = 0.0;
        if (pairs.Read(nextIndex) && pairs.Read(nextValue)) {
            index = nextIndex;
            value = nextValue;
        }
        // An unreadable pair repeats the one before, the first of all 0 and 1.0.
        if (index >= 0 && static_cast<std::size_t>(index) < coefficients.size()) {
            coefficients[static_cast<std::size_t>(index)] = value;
        }
    }
}

}  // namespace

void CCondition::CreateModList() {
    DropModAddresses();

    m_vMods.push_back(placeholder());
    std::stable_sort(m_vMods.begin(), m_vMods.end(), CMod::Mass_Less);
    index_masses(*this, m_vModMassIndex, m_vMods, [](const CMod& mod) { return mod.m_lfMass; });

    m_mapMods.clear();
    index_names(m_mapMods, m_vMods);
    create_shifts(*this, m_vDeltaMods, m_mapMods);

    m_vSelMods.clear();
    _parse_mod(m_strFixMod, true);
    _parse_mod(m_strSelectMod, false);
    HandleSelectMod();
}

void CCondition::_parse_mod(const std::string& names, bool isFixed) {
    const auto select = [this, isFixed](const std::string& name) {
        const CMod* const mod = mod_of_name(m_mapMods, name);
        if (mod == nullptr) return false;
        m_vSelMods.push_back(mod);
        if (isFixed) m_setFixMods.insert(mod);
        return true;
    };
    visit_names(names, [&](const std::string& name) {
        bool found = select(name);
        for (std::size_t i = 0; i <= m_vLabels.size(); ++i) {
            found = select(_get_labeled_mod_name(name, static_cast<int>(i))) || found;
        }
        if (!found) Message("ignore the modification: " + name, LOG_WARNING);
    });
}

void CCondition::HandleSelectMod() {
    drop_repeated(m_vSelMods);
    CreateSelModMap();

    m_vExtendedAA.reserve(kExtendedCodes);
    for (const char site : kAnyResidue) {
        if (is_residue(site, m_cAlphaBet)) {
            m_vExtendedAA.push_back(extended(site, m_cAlphaBet, nullptr, 0.0));
        }
    }
    for (const CMod* mod : m_vSelMods) {
        for (const char site : mod->m_strSites) {
            if (!is_residue(site, m_cAlphaBet)) continue;
            m_vExtendedAA.push_back(
                extended(site, m_cAlphaBet, mod_of_name(m_mapMods, mod->m_strName), mod->m_lfMass));
        }
    }
    rank_letters(*this, m_vExtendedAA);
    index_masses(*this, m_vEAAMassIndex, m_vExtendedAA,
                 [](const ExtendedAA& letter) { return letter.m_lfMass; });
}

void CCondition::CreateSelModMap() {
    for (auto& slot : m_vSelModMap)
        slot.clear();
    for (const CMod* mod : m_vSelMods) {
        if (mod->m_eType != NORMAL) {
            const auto slot = static_cast<std::size_t>(mod->m_eType);
            if (slot < m_vSelModMap.size()) m_vSelModMap[slot].push_back(mod);
            continue;
        }
        for (const char site : mod->m_strSites) {
            if (is_upper(site)) m_vSelModMap[static_cast<unsigned char>(site)].push_back(mod);
        }
    }
}

std::string CCondition::_get_labeled_mod_name(const std::string& name,
                                              const int& labelNumber) const {
    return name + '#' + static_cast<char>('0' + static_cast<unsigned>(labelNumber));
}

bool CCondition::SetSelMod(const std::size_t& maxMods) {
    const std::string path = m_strOutputPath + m_strOutputName + ".learn";
    CLineReader reader(path);
    if (!reader.IsOpen()) return false;

    read_learned_mods(*this, reader, maxMods);
    read_cleave_prob(reader, m_lfCleaveProb);
    if (reader.Failed()) Message("Cannot read the learn file: " + path, LOG_ALERT);

    _parse_mod(kCommonMods, false);
    HandleSelectMod();
    std::string selected = "Modifications: ";
    for (const CMod* mod : m_vSelMods)
        selected += mod->m_strName + '/';
    Message(selected, LOG_DEBUG);
    return true;
}

}  // namespace tessel
