#pragma once

#include <string>
#include <vector>

#include "tessel/export.h"

namespace tessel {

/// Where a modification may sit.
enum MOD_TYPE : int {
    NORMAL = 0,           ///< on its site residues
    PEP_C = 1,            ///< C terminus of a peptide
    PEP_N = 2,            ///< N terminus of a peptide
    PRO_C = 3,            ///< C terminus of a protein
    PRO_N = 4,            ///< N terminus of a protein
    MOD_PLACEHOLDER = 6,  ///< the entry "NULL" that CreateModList() adds to the table
};

/// One modification: a mass shift, the residues or terminus it may sit on, its neutral losses.
/// A plain value. The condition's m_vMods and m_vDeltaMods own every CMod, all other tables point
/// into them; changing either leaves those stale until CreateModList() has run again.
class TESSEL_API CMod {
public:
    std::string m_strName;            ///< unique, with its site: "Oxidation[M]"
    double m_lfMass = 0.0;            ///< monoisotopic shift, Da; may be negative
    std::string m_strSites;           ///< residue letters; of a terminal type: allowed at that end
    MOD_TYPE m_eType = NORMAL;        ///< position
    std::vector<double> m_vLossMass;  ///< neutral losses, monoisotopic, Da, in file order
    double m_lfProb = 1.0;            ///< prior probability, learned; see CCondition::SetSelMod
    /// Elemental composition of the shift, groups of symbol, "(", signed count, ")". The default is
    /// impossible on purpose: it marks what was not read from a table, mass shifts and the entry
    /// "NULL". A label that replaces hydrogen in all modifications changes it like any other.
    std::string m_strComposition = "H(300)";
    int m_nFlag = 0;  ///< from the index line of the file, written back unchanged

    /// The definition as a line of the modification table, without a line end:
    /// name=sites, position, mass, mass, number of losses, each loss twice, composition; separated
    /// by tabs, two of them behind the number of losses; masses with six decimals. The average
    /// masses, which the table's readers skip, repeat the monoisotopic ones. A type that has no
    /// position word is written as NORMAL.
    std::string GetLine() const;

    /// Lighter first, masses that are not finite last. Equal masses compare false both ways.
    static bool Mass_Less(const CMod& a, const CMod& b);
};

}  // namespace tessel
