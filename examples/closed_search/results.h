#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "candidates.h"
#include "tessel/tessel.h"

namespace closed_search {

/// Writes the candidates of the current batch of spectra as its result file.
void write_batch_result(tessel::CCondition& condition, std::vector<CCandidates> candidates);

/// What the final result of a spectrum file holds.
struct FINAL_RESULT {
    std::string m_strPath;        ///< in the form of the host
    std::size_t m_tAccepted = 0;  ///< target matches at or below the accepted FDR
    bool m_bDecoys = false;       ///< a decoy is the best candidate of some spectrum
};

/// Merges the results of all batches, sets the q-values and writes the final result file.
FINAL_RESULT write_final_result(tessel::CCondition& condition);

/// Sets the q-values in the result map. The matches are the first candidates of all spectra; at a
/// score, the FDR is the number of decoys at it or above over the number of targets there. The
/// q-value is the smallest FDR at the match's score or a lower one, at most 1. Candidates with the
/// score of the first share its q-value, all others keep the 1024 of a fresh record.
void set_q_values(tessel::CCondition& condition);

}  // namespace closed_search
