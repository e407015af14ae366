#pragma once

namespace tessel {

/// One protein hit of a peptide. Hits compare by the protein's key alone, so a set of them holds
/// one hit per protein: the first one put in.
struct PRO_INFO {
    int m_nProID = 0;    ///< the protein's key
    int m_nSite = 0;     ///< where the peptide begins in the protein; the engine's convention
    char m_cPrev = '-';  ///< residue before the peptide; "-" when unknown
    char m_cNext = '-';  ///< residue behind the peptide; "-" when unknown

    /// By m_nProID alone, like the two below.
    bool operator<(const PRO_INFO& other) const { return m_nProID < other.m_nProID; }
    /// Larger key.
    bool operator>(const PRO_INFO& other) const { return m_nProID > other.m_nProID; }
    /// Equal keys, whatever the rest.
    bool operator==(const PRO_INFO& other) const { return m_nProID == other.m_nProID; }
};

}  // namespace tessel
