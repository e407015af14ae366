#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tessel/tessel.h"

namespace closed_search {

/// A stretch of a protein.
struct PEPTIDE {
    std::size_t m_tBegin = 0;
    std::size_t m_tLength = 0;
    bool m_bProteinStart = false;  ///< at the protein's N terminus, with or without an initial M
    bool m_bProteinEnd = false;    ///< at the protein's C terminus
};

/// Cuts proteins into the peptides that the search considers: by the enzyme, "digest", the number
/// of missed cleavages and the limits of length. A peptide holds residues with a mass only, so a
/// letter that stands for several residues (B, X, Z), "*" or a small letter is in no peptide.
class CDigest {
public:
    explicit CDigest(const tessel::CCondition& condition);

    /// The peptides of a protein, by begin and then by length; valid until the next call.
    const std::vector<PEPTIDE>& Peptides(const std::string& protein);

private:
    void FindCuts(const std::string& protein);
    void PeptidesFrom(const std::string& protein, std::size_t begin);
    bool MayEndAt(bool beginIsCut, std::size_t end) const;

    const tessel::CCondition& m_cCondition;
    std::size_t m_tShortest;
    std::size_t m_tLongest;
    std::vector<char> m_vCuts;   // by position: the protein may be cut before it
    std::vector<char> m_vSites;  // by position: a cut that counts as missed inside a peptide
    std::vector<PEPTIDE> m_vPeptides;
};

}  // namespace closed_search
