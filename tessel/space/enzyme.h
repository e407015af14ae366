#pragma once

#include <cstddef>
#include <sstream>
#include <string>

#include "tessel/export.h"

namespace tessel {

/// The protease of the search: where it cuts a protein.
/// Defined by one line of words: a name, then rules of three words each, namely the sites, the
/// residues that restrict them and the side, "C" (cuts after a site) or "N" (cuts before one).
/// "Trypsin KR _ C" cuts after K and R; "_" stands for no residue. A later rule of the same side
/// replaces the earlier one.
class TESSEL_API CEnzyme {
public:
    std::string m_strName;       ///< first word of the definition
    std::string m_strInfo;       ///< the whole definition as given
    std::string m_strCSites;     ///< cuts after these residues
    std::string m_strCRestrict;  ///< no cut after a C-side site when one of these follows
    std::string m_strNSites;     ///< cuts before these residues
    std::string m_strNRestrict;  ///< kept, but never consulted, on purpose
    bool m_bNTerm = false;       ///< an N-side rule was given
    bool m_bCTerm = false;       ///< a C-side rule was given

    /// Replaces the enzyme by the one defined; true. A definition without a full rule cuts at the
    /// protein termini and after an initial M only. A side word other than "C" and "N" ends the
    /// process with status 1, after "Invalid enzyme format: " and the definition on standard error.
    bool Init(const std::string& definition);
    /// Reads one rule from a stream that stands behind the name and stores it; false when there are
    /// no three words left. The stream has the classic locale from then on. Fatal as Init().
    bool _Init(std::istringstream& rules);
    /// The whole definition as given; the parameter file holds it.
    std::string InfoString() const { return m_strInfo; }

    /// Whether the protein may be cut between `position` - 1 and `position`. Both termini and
    /// the place behind an initial M always count. False beyond the end of the protein.
    bool IsValidCleavage(const std::string& protein, const std::size_t& position) const;
    /// Whether `position` is a peptide boundary behind `begin`: as above, but without the rule for
    /// an initial M and without restriction residues, on purpose. True when it is not behind
    /// `begin`.
    bool IsValidPosition(const std::string& protein, const std::size_t& position,
                         const std::size_t& begin) const;
};

}  // namespace tessel
