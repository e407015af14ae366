#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "tessel/export.h"

namespace tessel {

class CMod;

/// Number of letters that can name a residue.
inline constexpr std::size_t kResidueLetters = 26;

/// Masses and compositions of the residues, by letter: index = letter - 'A'.
class TESSEL_API CAlphaBet {
public:
    std::array<double, kResidueLetters> m_lfMass{};  ///< Da; 0 for a letter that was never defined
    std::array<std::string, kResidueLetters> m_strComposition;  ///< groups "C(2)H(3)N(1)O(1)"
};

/// What the 8 bits of a code in the extended alphabet can tell apart.
inline constexpr std::size_t kExtendedCodes = 256;

/// One letter of the extended alphabet: a residue, alone or with one modification.
class TESSEL_API ExtendedAA {
public:
    /// Not owned; null for the plain residue, and for letters that CreateModList() of an earlier
    /// table has left behind.
    const CMod* m_pMod = nullptr;
    char m_cAA = 0;  ///< residue letter
    /// Position in the alphabet by ascending mass, in 8 bits: in an alphabet of more than
    /// kExtendedCodes letters they repeat. 0xFF until ranked.
    unsigned char m_ucCode = 0xFF;
    double m_lfMass = 0.0;  ///< residue plus modification, Da

    /// Lighter first, masses that are not finite last. Equal masses compare false both ways.
    static bool EAA_Mass_Less(const ExtendedAA& a, const ExtendedAA& b);
};

}  // namespace tessel
