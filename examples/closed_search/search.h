#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "candidates.h"
#include "digest.h"
#include "forms.h"
#include "progress.h"
#include "scoring.h"
#include "tessel/tessel.h"

namespace closed_search {

/// The spectra of a batch by the mass of their precursors.
class CPrecursorIndex {
public:
    explicit CPrecursorIndex(const std::vector<tessel::CSpectrum>& spectra);

    struct ENTRY {
        double m_lfMH = 0.0;
        std::size_t m_tSpectrum = 0;  ///< position in the batch
    };
    /// The entries with a mass from `low` to `high`.
    std::pair<const ENTRY*, const ENTRY*> Between(double low, double high) const;

private:
    std::vector<ENTRY> m_vEntries;      // by mass
    std::vector<std::size_t> m_vFirst;  // by dalton: the first entry that is not lighter
};

/// Searches batches of spectra against the whole database.
class CSearch {
public:
    CSearch(tessel::CCondition& condition, CProgress& progress);

    /// The candidates of each loaded spectrum, by its position in the batch. Changes the peaks of
    /// the spectra. Throws std::runtime_error when the database has gone.
    std::vector<CCandidates> SearchBatch();

    /// Peptides compared with a spectrum in all batches so far: each form of each peptide of each
    /// protein counts once for every spectrum of its mass.
    std::uint64_t m_uScored = 0;

private:
    struct ORIGIN;

    void SearchProtein(const ORIGIN& protein, const CPrecursorIndex& index,
                       std::vector<CCandidates>& candidates);
    void SetResidues(std::string_view sequence, const std::vector<tessel::MOD_SITE>& sites);
    tessel::CPepRes MakeCandidate(const ORIGIN& protein, const PEPTIDE& peptide, double mass,
                                  const std::vector<tessel::MOD_SITE>& sites,
                                  const MATCH& match) const;

    tessel::CCondition& m_cCondition;
    CProgress& m_cProgress;
    CDigest m_cDigest;
    CForms m_cForms;
    CScorer m_cScorer;
    std::vector<double> m_vResidues;  // masses of the form at hand
};

}  // namespace closed_search
