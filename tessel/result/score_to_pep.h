#pragma once

#include <cstdint>

namespace tessel {

class CPepRes;

/// A peptide under a score key, for the engine's selection of candidates.
class CScore2Pep {
public:
    std::uint32_t m_uScore = 0;  ///< score key
    CPepRes* m_pPep = nullptr;   ///< not owned

    /// Smaller key first.
    static bool ScoreLess(const CScore2Pep& a, const CScore2Pep& b) {
        return a.m_uScore < b.m_uScore;
    }
    /// Larger key first.
    static bool ScoreGreater(const CScore2Pep& a, const CScore2Pep& b) {
        return a.m_uScore > b.m_uScore;
    }
};

}  // namespace tessel
