// In come counts; out comes a line that is written over and over.

#include "progress.h"

#include <iostream>

namespace closed_search {

void CProgress::Begin(std::size_t spectraDone, std::size_t spectraTotal) {
    m_tSpectraDone = spectraDone;
    m_tSpectraTotal = spectraTotal;
    m_nPercent = -1;
}

void CProgress::Show(std::size_t proteinsDone, std::size_t proteinsTotal) {
    const auto percent = static_cast<int>(proteinsDone * 100 / proteinsTotal);
    if (!m_bShown || percent == m_nPercent) return;
    m_nPercent = percent;
    std::cerr << "\rspectra " << m_tSpectraDone << " of " << m_tSpectraTotal << ", database "
              << percent << " % " << std::flush;
}

void CProgress::End() {
    if (m_bShown) std::cerr << "\r                                                       \r";
}

}  // namespace closed_search
