// Spectra come in one by one; findings about each, and the figures of all of them go out.

#include "tools/tessel_check/spectrum_summary.h"

#include <algorithm>
#include <functional>

#include "tessel/base/message_text.h"
#include "tessel/spectra/entries.h"
#include "tools/tessel_check/names.h"

namespace tessel::check {
namespace {

constexpr std::size_t kMostCharges = 12;

}  // namespace

void CSpectrumSummary::Add(const CSpectrum& spectrum, const PLACE& place, bool precursorIsWrong) {
    const std::string title = in_quotes(spectrum.m_strTitle);
    ++m_tSpectra;
    ++m_mapCharges[spectrum.m_nCharge];
    if (!m_setTitles.insert(std::hash<std::string>()(spectrum.m_strTitle)).second) {
        m_cReport.Warning(
            "duplicate-title", place,
            "an earlier spectrum has the title " + title + ", too; results go to the last of them",
            "Give every spectrum a title of its own.");
    }
    const double mass = spectrum.m_lfMH;
    if (!is_plausible(mass)) {
        ++m_tDropped;
        if (precursorIsWrong) return;
        m_cReport.Warning("dropped-spectrum", place,
                          title + " has a protonated mass of " + fixed_text(mass, 4) +
                              " Da; spectra outside 0 to 20000 Da are not searched",
                          "Correct its charge or precursor m/z.");
        return;
    }
    if (!precursorIsWrong && spectrum.m_nCharge <= 0) {
        m_cReport.Warning("odd-charge", place,
                          joined_text(title, " has charge ", spectrum.m_nCharge,
                                      "; its mass is made from that all the same"),
                          "Give its charge as a number from 1.");
    }
    const bool first = m_tSpectra - m_tDropped == 1;
    m_lfLowest = first ? mass : std::min(m_lfLowest, mass);
    m_lfHighest = first ? mass : std::max(m_lfHighest, mass);
}

void CSpectrumSummary::AddWithoutPeaks(const CSpectrum& spectrum, const PLACE& place) {
    m_cReport.Warning("no-peaks", place,
                      in_quotes(spectrum.m_strTitle) + " has no peaks; nothing matches it",
                      "Remove it, or check how it was exported.");
}

void CSpectrumSummary::AddUnsortedPeaks(const CSpectrum& spectrum, const PLACE& place) {
    m_cReport.Warning(
        "unsorted-peaks", place,
        in_quotes(spectrum.m_strTitle) +
            " has peaks that do not rise in m/z; they stay in that order, and looking "
            "peaks up by m/z misses some",
        "Sort the peaks by m/z.");
}

void CSpectrumSummary::Finish() {
    std::string figures = joined_text(m_tSpectra, " spectra, ", m_tDropped, " of them dropped");
    if (m_tSpectra > m_tDropped) {
        figures +=
            ", masses " + fixed_text(m_lfLowest, 2) + " to " + fixed_text(m_lfHighest, 2) + " Da";
    }
    std::size_t shown = 0;
    for (const auto& [charge, number] : m_mapCharges) {
        if (++shown > kMostCharges) break;
        figures += joined_text(", ", number, " of charge ", charge);
    }
    m_cReport.Note("spectra", {m_strPath, 0}, figures);
}

}  // namespace tessel::check
