// In comes a protein; out come the stretches of it that the enzyme may have set free.

#include "digest.h"

#include <algorithm>

namespace closed_search {

namespace {

// A site's position has 8 bits in a result, and the two termini take a position each.
constexpr int kLongestPeptide = 253;

// The values of "digest". 2 is a valid setting without a meaning of its own and taken as specific.
constexpr unsigned char kUnspecific = 0;
constexpr unsigned char kSemiSpecific = 1;

}  // namespace

CDigest::CDigest(const tessel::CCondition& condition)
    : m_cCondition(condition),
      m_tShortest(static_cast<std::size_t>(std::max(condition.m_nLenLower, 1))),
      m_tLongest(static_cast<std::size_t>(std::clamp(condition.m_nLenUpper, 0, kLongestPeptide))) {
}

const std::vector<PEPTIDE>& CDigest::Peptides(const std::string& protein) {
    m_vPeptides.clear();
    FindCuts(protein);
    for (std::size_t begin = 0; begin < protein.size(); ++begin) {
        if (m_vCuts[begin] || m_cCondition.m_ucDigest <= kSemiSpecific) {
            PeptidesFrom(protein, begin);
        }
    }
    return m_vPeptides;
}

void CDigest::FindCuts(const std::string& protein) {
    const tessel::CEnzyme& enzyme = m_cCondition.m_cEnzyme;
    m_vCuts.assign(protein.size() + 1, 0);
    m_vSites.assign(protein.size() + 1, 0);
    for (std::size_t position = 0; position <= protein.size(); ++position) {
        m_vCuts[position] = enzyme.IsValidCleavage(protein, position) ? 1 : 0;
        // The cell removes an initial M, not the enzyme: a peptide that keeps it has missed
        // nothing. Only the second question tells the two apart.
        const bool isSite = m_vCuts[position] != 0 && enzyme.IsValidPosition(protein, position, 0);
        m_vSites[position] = isSite ? 1 : 0;
    }
}

void CDigest::PeptidesFrom(const std::string& protein, std::size_t begin) {
    const auto& masses = m_cCondition.m_cAlphaBet.m_lfMass;
    const bool countMissed = m_cCondition.m_ucDigest != kUnspecific;
    const std::size_t lastEnd = std::min(protein.size(), begin + m_tLongest);
    std::size_t missed = 0;
    for (std::size_t end = begin + 1; end <= lastEnd; ++end) {
        const char residue = protein[end - 1];
        if (residue < 'A' || residue > 'Z') return;
        if (masses[static_cast<std::size_t>(residue - 'A')] <= 0.0) return;
        if (end - begin >= m_tShortest && MayEndAt(m_vCuts[begin] != 0, end)) {
            const bool atStart = begin == 0 || (begin == 1 && protein[0] == 'M');
            m_vPeptides.push_back({begin, end - begin, atStart, end == protein.size()});
        }
        if (m_vSites[end] && countMissed && ++missed > m_cCondition.m_tMaxClvSites) return;
    }
}

bool CDigest::MayEndAt(bool beginIsCut, std::size_t end) const {
    switch (m_cCondition.m_ucDigest) {
        case kUnspecific:
            return true;
        case kSemiSpecific:
            return beginIsCut || m_vCuts[end];
        default:
            return m_vCuts[end] != 0;
    }
}

}  // namespace closed_search
