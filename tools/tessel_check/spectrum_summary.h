#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_set>

#include "tessel/spectra/spectrum.h"
#include "tools/tessel_check/report.h"

namespace tessel::check {

/// What the spectra of one file have in common, whatever its type.
class CSpectrumSummary {
public:
    CSpectrumSummary(std::string path, CReport& report)
        : m_strPath(std::move(path)), m_cReport(report) {}

    /// Counts a spectrum and checks its title, and unless it is known already that they are wrong,
    /// charge and mass. Its
    /// peaks are not looked at.
    void Add(const CSpectrum& spectrum, const PLACE& place, bool precursorIsWrong = false);
    /// Reports a spectrum without peaks; where, tells `place`.
    void AddWithoutPeaks(const CSpectrum& spectrum, const PLACE& place);
    void AddUnsortedPeaks(const CSpectrum& spectrum, const PLACE& place);
    /// One note with the figures.
    void Finish();

private:
    std::string m_strPath;
    CReport& m_cReport;
    std::size_t m_tSpectra = 0;
    std::size_t m_tDropped = 0;
    double m_lfLowest = 0.0;  // MH+ of what is kept, Da
    double m_lfHighest = 0.0;
    std::map<int, std::size_t> m_mapCharges;
    std::unordered_set<std::size_t> m_setTitles;  // their hashes: 64 bits tell them apart
};

}  // namespace tessel::check
