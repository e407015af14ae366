#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "tessel/chem/alphabet.h"
#include "tessel/chem/mod.h"

namespace tessel {

// What reading the residues and relabelling have in common.

inline const std::string kAnyResidue = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// What the codes of the extended alphabet can tell apart.
inline constexpr std::size_t kExtendedCodes = 256;

using ElementMasses = std::map<std::string, double>;
/// Element symbol to the symbol that is counted in its place.
using Replacements = std::map<std::string, std::string>;

/// A composition with its replacements made.
struct WEIGHED {
    std::string m_strComposition;    ///< the groups, count texts as they were
    double m_lfMass = 0.0;           ///< Da
    bool m_bReplaced = false;        ///< a symbol was replaced, be it by itself
    bool m_bReplacedLeaves = false;  ///< one with a negative count was
};

/// Sums up a composition in the order of its groups. An unknown element is added to `masses` with
/// mass 0. Null replacements are none.
WEIGHED weigh(std::string_view composition, ElementMasses& masses,
              const Replacements* replacements = nullptr);

/// Reads an amino-acid table and hands out the letter, 'A' to 'Z', and the composition of each
/// record. A missing file has no records.
void read_residues(const std::string& path,
                   const std::function<void(char letter, std::string_view composition)>& take);

/// Whether a modification turns one residue into another, such as "Ala->Ser[A]". A table of a label
/// holds these only where the label changes them.
bool is_conversion(const CMod& mod);

/// Makes the weighed composition that of a letter from 'A' to 'Z'.
void define_residue(CAlphaBet& alphabet, char letter, const WEIGHED& weighed);

}  // namespace tessel
