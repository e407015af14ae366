#pragma once

#include <string>
#include <vector>

#include "tessel/tessel.h"

namespace closed_search {

/// How well a peptide explains a spectrum.
struct MATCH {
    double m_lfScore = 0.0;    ///< hyperscore, rounded to 4 decimals; 0 when nothing matches
    int m_nNTermIons = 0;      ///< fragments with the N terminus that have a peak
    int m_nCTermIons = 0;      ///< the same with the C terminus
    double m_lfExplained = 0;  ///< share of the prepared intensity that fragments explain
};

/// Scores peptides against spectra by the fragments of the condition's ion types.
class CScorer {
public:
    explicit CScorer(const tessel::CCondition& condition);

    /// Makes a spectrum ready for Score(): keeps the peaks that tell of the peptide, evens out
    /// their intensities, sorts them and indexes them by m/z.
    void PreparePeaks(tessel::CSpectrum& spectrum) const;

    /// The hyperscore, ln(N! * C! * (1 + sum of N intensities) * (1 + sum of C intensities)) over
    /// the fragments found with the N and with the C terminus, of a peptide given by the masses of
    /// its residues, modifications included.
    MATCH Score(const tessel::CSpectrum& spectrum, const std::vector<double>& residues) const;

private:
    // The ion types of one name: one kind of fragment at all its charges.
    struct SERIES {
        std::string m_strName;
        std::vector<const tessel::CIonType*> m_vTypes;  // never empty
    };
    struct FOUND {
        int m_nIons = 0;
        double m_lfIntensity = 0.0;
    };

    void MatchSeries(const tessel::CSpectrum& spectrum, const SERIES& series,
                     const std::vector<double>& residues, FOUND& found) const;
    double FragmentIntensity(const tessel::CSpectrum& spectrum, const tessel::CIonType& type,
                             double residueSum) const;
    double LogFactorial(int number) const;

    const tessel::CCondition& m_cCondition;
    std::vector<SERIES> m_vSeries;
    std::vector<double> m_vLogFactorials;
};

}  // namespace closed_search
