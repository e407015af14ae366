#pragma once

#include <cstddef>
#include <vector>

#include "tessel/tessel.h"

namespace closed_search {

/// The best candidates of one spectrum, each once.
///
/// Which candidates stay must not depend on the order in which they arrive, because that changes
/// with the size of the batches. They are therefore ranked by what a later copy cannot change:
/// score, sequence (with I read as L if the two count as one) and sites. Whether a candidate is a
/// target, its proteins and, of sequences that differ in I and L, the one to write are found by
/// merging the copies.
class CCandidates {
public:
    /// False when a candidate with this score is certain not to stay.
    bool Admits(double score, const tessel::CCondition& condition) const;
    /// Takes a candidate with one protein hit. Its sites are ordered by position.
    void Offer(tessel::CPepRes&& pep, const tessel::CCondition& condition);

    std::vector<tessel::CPepRes> m_vPeps;  ///< the best first
};

}  // namespace closed_search
