#pragma once

#include <string>

namespace tessel {

/// Marks the names of sub-databases that the engine writes for an open search.
inline const std::string _STR_SUBFASTA = "_tessel_open_";
/// Follows the source database's path in the path of its target-decoy database.
inline const std::string _TD_FASTA = "_td.fasta";
/// Precedes the accession of a decoy protein.
inline const std::string _REV_TAG = "REV_";
/// Begins the name of every generated mass-shift modification.
inline const std::string _BLIND_PREFIX = "TESSEL_DELTA_";
/// Names the block of E-value coefficients in files that the engine itself handles.
inline const std::string strEVCoeffSign = "[EVCoeff]";

/// Mass of a proton, Da: the one constant for converting m/z to MH+
/// (MH+ = charge * m/z - (charge - 1) * proton). CODATA 1986, 1.007276470(12), with the digits of
/// its uncertainty behind it.
inline constexpr double kProtonMass = 1.00727647012;

}  // namespace tessel
