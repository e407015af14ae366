#pragma once

#include <algorithm>
#include <ios>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tessel/chem/mod.h"
#include "tessel/result/psm_res.h"
#include "tests/support/classic.h"

namespace tessel::test {

inline void set_sites(CPepRes& pep, const std::vector<MOD_SITE>& sites) {
    pep.Clean();
    pep.m_ucModNum = static_cast<unsigned char>(sites.size());
    if (!sites.empty()) pep.m_pMods = new MOD_SITE[sites.size()];
    std::copy(sites.begin(), sites.end(), pep.m_pMods);
}

/// Every field of a candidate as text, doubles exactly.
inline std::string described(const CPepRes& pep) {
    CClassicOut text;
    text << std::hexfloat << pep.m_strSeq << " scores " << pep.m_lfScore << ' '
         << pep.m_lfFinalScore << ' ' << pep.m_lfQValue;
    for (const double score : pep.m_lfSubScores)
        text << ' ' << score;
    text << " mass " << pep.m_lfPepMass << " deviation " << pep.m_lfMassDev << " sites";
    for (int i = 0; pep.m_pMods != nullptr && i < pep.m_ucModNum; ++i) {
        const CMod* const mod = pep.m_pMods[i].m_pMod;
        text << ' ' << int{pep.m_pMods[i].m_ucPos} << ':' << (mod ? mod->m_strName : "null");
    }
    text << " bytes";
    for (const int byte :
         {pep.m_ucModNum, pep.m_ucAux0, pep.m_ucAuxMax, pep.m_bDecoy, pep.m_ucAux1, pep.m_ucAux2})
        text << ' ' << byte;
    text << " hits";
    for (const PRO_INFO& hit : pep.m_setProteins)
        text << ' ' << hit.m_nProID << ',' << hit.m_nSite << hit.m_cPrev << hit.m_cNext;
    text << " numbers";
    for (const auto& numbers : {pep.m_nAuxA, pep.m_nAuxB}) {
        for (const int number : numbers)
            text << ' ' << number;
    }
    for (const std::string& extra : pep.m_vstrExtra)
        text << " extra " << extra;
    return text.str();
}

/// A whole result map as text, one line for each spectrum and each candidate.
inline std::string described(const std::map<std::string, CPSMRes>& results) {
    CClassicOut text;
    for (const auto& [key, psm] : results) {
        text << std::hexfloat << "[" << key << "] " << psm.m_strTitle << ' ' << psm.m_nCharge << ' '
             << psm.m_lfMH << '\n';
        for (const CPepRes& pep : psm.m_vPeps)
            text << "  " << described(pep) << '\n';
    }
    return text.str();
}

inline std::string sequences(const std::vector<CPepRes>& peps) {
    std::string text;
    for (const CPepRes& pep : peps)
        text += (text.empty() ? "" : " ") + pep.m_strSeq;
    return text;
}

}  // namespace tessel::test
