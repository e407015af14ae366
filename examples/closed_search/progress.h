#pragma once

#include <cstddef>

namespace closed_search {

/// Whether standard error is a terminal, the only place where progress is of use.
bool errors_on_terminal();

/// One line on standard error that tells how far a batch has come.
class CProgress {
public:
    /// Begins a batch of spectra.
    void Begin(std::size_t spectraDone, std::size_t spectraTotal);
    void Show(std::size_t proteinsDone, std::size_t proteinsTotal);
    /// Clears the line, so that other output is not mixed with it.
    void End();

private:
    bool m_bShown = errors_on_terminal();
    std::size_t m_tSpectraDone = 0;
    std::size_t m_tSpectraTotal = 0;
    int m_nPercent = -1;
};

}  // namespace closed_search
