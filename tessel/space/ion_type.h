#pragma once

#include <string>

#include "tessel/export.h"

namespace tessel {

/// One series of fragment ions at one charge.
class TESSEL_API CIonType {
public:
    double m_lfOffset = 0.0;      ///< added to the sum of the fragment's residue masses, Da
    std::string m_strName;        ///< series: "b", "y", "c", "cm1", "z", "zp1"
    int m_nCharge = 0;            ///< charge state
    bool m_bNTerm = false;        ///< fragments with the peptide's N terminus
    bool m_bFlag = false;         ///< for the engine; set in every built-in type
    std::string m_strDefinition;  ///< the whole line as given

    /// Reads a line of five columns: name, charge, N-terminal flag, further flag, offset, such as
    /// "y 2 0 1 18.0105647"; true whatever it holds. Missing columns leave their fields as they
    /// were, except that the two flags become false. A column that is no number becomes 0, and
    /// those behind it count as missing; integers out of range take the nearest limit.
    bool Init(const std::string& definition);
};

}  // namespace tessel
