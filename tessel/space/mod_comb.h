#pragma once

#include <array>
#include <cstddef>

#include "tessel/export.h"

namespace tessel {

class CMod;

/// One multiset of modifications that a peptide may carry. A plain value that owns nothing: the
/// pointers go into the condition's modification tables and are as long-lived as those.
class TESSEL_API CModCombInfo {
public:
    /// At most three selected modifications and two further ones of the table.
    static constexpr std::size_t kMaxMods = 5;

    std::array<const CMod*, kMaxMods> m_pMods{};  ///< in the order added; the first m_cModNum count
    unsigned char m_cModNum = 0;                  ///< number of modifications, 0 to 5
    double m_lfWeight = 1.0;                      ///< for the engine; carried unchanged
    double m_lfMass = 0.0;                        ///< sum of the shifts, Da
    unsigned int m_nTag1 = 0;                     ///< for the engine; carried unchanged
    unsigned int m_nTag2 = 0;                     ///< for the engine; carried unchanged
    /// How many were taken from the whole table, 0 to 2: the group that holds the combination.
    unsigned char m_cExtraNum = 0;

    /// Lighter first, masses that are not finite last. Equal masses compare false both ways.
    static bool Mass_Less(const CModCombInfo& a, const CModCombInfo& b);
};

}  // namespace tessel
