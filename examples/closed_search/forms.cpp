// In comes a peptide; out come its modified forms, by the selected modifications of the condition.

#include "forms.h"

#include <algorithm>

namespace closed_search {

using tessel::CMod;
using tessel::MOD_SITE;

namespace {

// The water at a peptide's ends, to fit the offsets of the ion types.
constexpr double kWaterMass = 18.0105647;

bool by_position(const MOD_SITE& a, const MOD_SITE& b) {
    return a.m_ucPos < b.m_ucPos;
}

}  // namespace

void CForms::SetPeptide(std::string_view sequence, const PEPTIDE& peptide) {
    const auto length = static_cast<unsigned char>(sequence.size());
    m_vFixed.clear();
    m_vVariable.clear();
    CollectTerminus(0, sequence.front(), peptide.m_bProteinStart, tessel::PRO_N, tessel::PEP_N);
    for (unsigned char i = 0; i < length; ++i) {
        const auto slot = static_cast<unsigned char>(sequence[i]);
        CollectPosition(static_cast<unsigned char>(i + 1), m_cCondition.m_vSelModMap[slot]);
    }
    CollectTerminus(static_cast<unsigned char>(length + 1), sequence.back(), peptide.m_bProteinEnd,
                    tessel::PRO_C, tessel::PEP_C);
    SetMasses(sequence);
}

void CForms::SetMasses(std::string_view sequence) {
    m_lfMass = 0.0;
    for (const char residue : sequence)
        m_lfMass += m_cCondition.m_cAlphaBet.m_lfMass[static_cast<std::size_t>(residue - 'A')];
    m_lfMass += kWaterMass + tessel::kProtonMass;
    for (const MOD_SITE& site : m_vFixed)
        m_lfMass += site.m_pMod->m_lfMass;

    m_tMostMods = std::min(m_cCondition.m_tMaxModNum, m_vVariable.size());
    double loss = 0.0;
    double gain = 0.0;
    for (const MOD_SITE& site : m_vVariable) {
        loss = std::min(loss, site.m_pMod->m_lfMass);
        gain = std::max(gain, site.m_pMod->m_lfMass);
    }
    m_lfLargestLoss = static_cast<double>(m_tMostMods) * loss;
    m_lfLargestGain = static_cast<double>(m_tMostMods) * gain;
}

void CForms::ForEach(const Visit& visit) {
    m_nForms = 0;
    for (std::size_t number = 0; number <= m_tMostMods; ++number)
        Choose(0, number, m_lfMass, visit);
}

// The terminal slots hold the modifications of a terminus whatever residue they ask for there.
void CForms::CollectTerminus(unsigned char position, char residue, bool atProteinEnd,
                             tessel::MOD_TYPE proteinType, tessel::MOD_TYPE peptideType) {
    m_vFitting.clear();
    for (const tessel::MOD_TYPE type : {proteinType, peptideType}) {
        if (type == proteinType && !atProteinEnd) continue;
        for (const CMod* mod : m_cCondition.m_vSelModMap[static_cast<std::size_t>(type)]) {
            if (mod->m_strSites.find(residue) != std::string::npos) m_vFitting.push_back(mod);
        }
    }
    CollectPosition(position, m_vFitting);
}

//! [selection]
void CForms::CollectPosition(unsigned char position, const std::vector<const CMod*>& mods) {
    const auto fixed = std::find_if(mods.begin(), mods.end(), [this](const CMod* mod) {
        return m_cCondition.m_setFixMods.count(mod) != 0;
    });
    if (fixed != mods.end()) {
        m_vFixed.push_back({position, *fixed});
        return;
    }
    for (const CMod* mod : mods)
        m_vVariable.push_back({position, mod});
}
//! [selection]

// Adds `number` more of the choices from `first` on, one for each position.
void CForms::Choose(std::size_t first, std::size_t number, double mass, const Visit& visit) {
    if (number == 0) {
        Emit(mass, visit);
        return;
    }
    for (std::size_t i = first; i < m_vVariable.size() && m_nForms < kMaxForms; ++i) {
        const MOD_SITE& site = m_vVariable[i];
        const auto next =
            std::upper_bound(m_vVariable.begin(), m_vVariable.end(), site, by_position);
        m_vChosen.push_back(site);
        Choose(static_cast<std::size_t>(next - m_vVariable.begin()), number - 1,
               mass + site.m_pMod->m_lfMass, visit);
        m_vChosen.pop_back();
    }
}

void CForms::Emit(double mass, const Visit& visit) {
    ++m_nForms;
    m_vSites.resize(m_vFixed.size() + m_vChosen.size());
    std::merge(m_vFixed.begin(), m_vFixed.end(), m_vChosen.begin(), m_vChosen.end(),
               m_vSites.begin(), by_position);
    visit(mass, m_vSites);
}

}  // namespace closed_search
