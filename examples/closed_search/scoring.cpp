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

// A fragment takes a second proton only when it is large: so many m/z at least. Looking for small
// ones would find noise.
constexpr double kLowestMultipleMz = 400.0;

constexpr double kIntensitySum = 100.0;

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

// Square roots keep a few strong peaks from outweighing everything else; one sum for all spectra
// makes the scores of strong and weak ones comparable.
void even_intensities(CSpectrum& spectrum) {
    double sum = 0.0;
    for (CPeak& peak : spectrum.m_vPeaks) {
        peak.m_lfIntensity = std::sqrt(peak.m_lfIntensity);
        sum += peak.m_lfIntensity;
    }
    for (CPeak& peak : spectrum.m_vPeaks)
        peak.m_lfIntensity *= kIntensitySum / sum;
}

// Of the most intense peak within the tolerance; 0 when there is none.
double peak_intensity(const CSpectrum& spectrum, double mz, double tolerance) {
    const std::vector<CPeak>& peaks = spectrum.m_vPeaks;
    const double low = mz - tolerance;
    const double high = mz + tolerance;
    const auto bucket = static_cast<std::size_t>(std::max(low, 0.0));
    if (bucket >= spectrum.m_vHashTable.size()) return 0.0;
    double strongest = 0.0;
    for (auto i = static_cast<std::size_t>(spectrum.m_vHashTable[bucket]);
         i < peaks.size() && peaks[i].m_lfMz <= high; ++i) {
        if (peaks[i].m_lfMz >= low) strongest = std::max(strongest, peaks[i].m_lfIntensity);
    }
    return strongest;
}

double rounded(double score) {
    return std::round(score * 10000.0) / 10000.0;
}

}  // namespace

CScorer::CScorer(const tessel::CCondition& condition)
    : m_cCondition(condition), m_vLogFactorials(kFactorials) {
    for (const tessel::CIonType& type : condition.m_vIonTypes) {
        const auto known = std::find_if(
            m_vSeries.begin(), m_vSeries.end(),
            [&type](const SERIES& series) { return series.m_strName == type.m_strName; });
        if (known != m_vSeries.end()) {
            known->m_vTypes.push_back(&type);
        } else {
            m_vSeries.push_back({type.m_strName, {&type}});
        }
    }
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
    FOUND nTerm;
    FOUND cTerm;
    for (const SERIES& series : m_vSeries)
        MatchSeries(spectrum, series, residues, series.m_vTypes[0]->m_bNTerm ? nTerm : cTerm);
    MATCH match;
    match.m_nNTermIons = nTerm.m_nIons;
    match.m_nCTermIons = cTerm.m_nIons;
    match.m_lfExplained = (nTerm.m_lfIntensity + cTerm.m_lfIntensity) / kIntensitySum;
    match.m_lfScore =
        rounded(LogFactorial(nTerm.m_nIons) + LogFactorial(cTerm.m_nIons) +
                std::log(1.0 + nTerm.m_lfIntensity) + std::log(1.0 + cTerm.m_lfIntensity));
    return match;
}

// A fragment counts once, with its most intense peak, however many charge states are seen:
// otherwise highly charged spectra would have the highest scores by chance alone.
void CScorer::MatchSeries(const CSpectrum& spectrum, const SERIES& series,
                          const std::vector<double>& residues, FOUND& found) const {
    const bool fromStart = series.m_vTypes[0]->m_bNTerm;
    double sum = 0.0;
    for (std::size_t i = 0; i + 1 < residues.size(); ++i) {
        sum += fromStart ? residues[i] : residues[residues.size() - 1 - i];
        double strongest = 0.0;
        for (const tessel::CIonType* type : series.m_vTypes)
            strongest = std::max(strongest, FragmentIntensity(spectrum, *type, sum));
        if (strongest > 0.0) {
            ++found.m_nIons;
            found.m_lfIntensity += strongest;
        }
    }
}

// The intensity of a fragment's peak, 0 when there is none.
double CScorer::FragmentIntensity(const CSpectrum& spectrum, const tessel::CIonType& type,
                                  double residueSum) const {
    // At least one charge is left to the rest of the peptide.
    if (type.m_nCharge > std::max(spectrum.m_nCharge - 1, 1)) return 0.0;
    const double charge = type.m_nCharge;
    const double mz = (residueSum + type.m_lfOffset + charge * tessel::kProtonMass) / charge;
    if (type.m_nCharge > 1 && mz < kLowestMultipleMz) return 0.0;
    return peak_intensity(spectrum, mz, m_cCondition._CalcMaxDeviation(mz, false));
}

double CScorer::LogFactorial(int number) const {
    return m_vLogFactorials[std::min(static_cast<std::size_t>(number), kFactorials - 1)];
}

}  // namespace closed_search
