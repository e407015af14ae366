// In come spectra and peptides; out come hyperscores.

#include "scoring.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>

namespace closed_search {

using tessel::CPeak;
using tessel::CSpectrum;

namespace {

// Chance matches grow with the number of peaks, so that noise must not fill the quiet parts of a
// spectrum: of each stretch of 100 m/z only the most intense peaks stay.
constexpr double kWindow = 100.0;
constexpr int kPeaksPerWindow = 10;
// What is left of the precursor says nothing of the sequence.
constexpr double kPrecursorWindow = 1.5;

constexpr std::size_t kFactorials = 4096;

double precursor_mz(const CSpectrum& spectrum) {
    const double charge = std::max(spectrum.m_nCharge, 1);
    return (spectrum.m_lfMH + (charge - 1.0) * tessel::kProtonMass) / charge;
}

void drop_useless_peaks(CSpectrum& spectrum) {
    const double precursor = precursor_mz(spectrum);
    std::erase_if(spectrum.m_vPeaks, [&](const CPeak& peak) {
        const bool isPeak =
            peak.m_lfMz > 0.0 && peak.m_lfIntensity > 0.0 && std::isfinite(peak.m_lfIntensity);
        // A fragment is never heavier than the peptide.
        return !isPeak || peak.m_lfMz > spectrum.m_lfMH ||
               std::fabs(peak.m_lfMz - precursor) < kPrecursorWindow;
    });
}

// Expects the most intense peak first.
void thin_windows(CSpectrum& spectrum) {
    std::map<int, int> kept;
    std::erase_if(spectrum.m_vPeaks, [&kept](const CPeak& peak) {
        return ++kept[static_cast<int>(peak.m_lfMz / kWindow)] > kPeaksPerWindow;
    });
}

// Square roots keep a few strong peaks from outweighing everything else; the sum is 100 then,
// which makes scores of strong and weak spectra comparable.
void even_intensities(CSpectrum& spectrum) {
    double sum = 0.0;
    for (CPeak& peak : spectrum.m_vPeaks) {
        peak.m_lfIntensity = std::sqrt(peak.m_lfIntensity);
        sum += peak.m_lfIntensity;
    }
    for (CPeak& peak : spectrum.m_vPeaks)
        peak.m_lfIntensity *= 100.0 / sum;
}

// The most intense peak within the tolerance, or null.
const CPeak* find_peak(const CSpectrum& spectrum, double mz, double tolerance) {
    const std::vector<CPeak>& peaks = spectrum.m_vPeaks;
    const double low = mz - tolerance;
    const double high = mz + tolerance;
    const auto bucket = static_cast<std::size_t>(std::max(low, 0.0));
    if (bucket >= spectrum.m_vHashTable.size()) return nullptr;
    const CPeak* best = nullptr;
    for (auto i = static_cast<std::size_t>(spectrum.m_vHashTable[bucket]);
         i < peaks.size() && peaks[i].m_lfMz <= high; ++i) {
        const bool isStronger = best == nullptr || peaks[i].m_lfIntensity > best->m_lfIntensity;
        if (peaks[i].m_lfMz >= low && isStronger) best = &peaks[i];
    }
    return best;
}

double rounded(double score) {
    return std::round(score * 10000.0) / 10000.0;
}

}  // namespace

CScorer::CScorer(const tessel::CCondition& condition)
    : m_cCondition(condition), m_vLogFactorials(kFactorials) {
    for (std::size_t n = 1; n < kFactorials; ++n)
        m_vLogFactorials[n] = m_vLogFactorials[n - 1] + std::log(static_cast<double>(n));
}

void CScorer::PreparePeaks(CSpectrum& spectrum) const {
    std::vector<CPeak>& peaks = spectrum.m_vPeaks;
    drop_useless_peaks(spectrum);
    std::stable_sort(peaks.begin(), peaks.end(), CPeak::Inten_Greater);
    if (peaks.size() > m_cCondition.m_tSelectPeak) peaks.resize(m_cCondition.m_tSelectPeak);
    thin_windows(spectrum);
    even_intensities(spectrum);
    std::stable_sort(peaks.begin(), peaks.end(), CPeak::Mz_Less);
    spectrum.Create_Hash_Table();
}

MATCH CScorer::Score(const CSpectrum& spectrum, const std::vector<double>& residues) const {
    // A fragment leaves at least one charge to the rest of the peptide.
    const int highestCharge = std::max(spectrum.m_nCharge - 1, 1);
    SERIES nTerm;
    SERIES cTerm;
    for (const tessel::CIonType& type : m_cCondition.m_vIonTypes) {
        if (type.m_nCharge > highestCharge) continue;
        MatchSeries(spectrum, type, residues, type.m_bNTerm ? nTerm : cTerm);
    }
    MATCH match;
    match.m_nNTermIons = nTerm.m_nIons;
    match.m_nCTermIons = cTerm.m_nIons;
    match.m_lfExplained = (nTerm.m_lfIntensity + cTerm.m_lfIntensity) / 100.0;
    match.m_lfScore =
        rounded(LogFactorial(nTerm.m_nIons) + LogFactorial(cTerm.m_nIons) +
                std::log(1.0 + nTerm.m_lfIntensity) + std::log(1.0 + cTerm.m_lfIntensity));
    return match;
}

void CScorer::MatchSeries(const CSpectrum& spectrum, const tessel::CIonType& type,
                          const std::vector<double>& residues, SERIES& series) const {
    const double charge = type.m_nCharge;
    double sum = 0.0;
    for (std::size_t i = 0; i + 1 < residues.size(); ++i) {
        sum += type.m_bNTerm ? residues[i] : residues[residues.size() - 1 - i];
        const double mz = (sum + type.m_lfOffset + charge * tessel::kProtonMass) / charge;
        const double tolerance = m_cCondition._CalcMaxDeviation(mz, false);
        if (const CPeak* peak = find_peak(spectrum, mz, tolerance)) {
            ++series.m_nIons;
            series.m_lfIntensity += peak->m_lfIntensity;
        }
    }
}

double CScorer::LogFactorial(int number) const {
    return m_vLogFactorials[std::min(static_cast<std::size_t>(number), kFactorials - 1)];
}

}  // namespace closed_search
