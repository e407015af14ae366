#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "tessel/chem/alphabet.h"
#include "tessel/chem/composition.h"
#include "tessel/chem/mod.h"

namespace tessel {

// What reading the residues and relabelling have in common.

inline const std::string kAnyResidue = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// Reads an amino-acid table and hands out the letter, 'A' to 'Z', and the composition of each
/// record. A missing file has no records.
void read_residues(const std::string& path,
                   const std::function<void(char letter, std::string_view composition)>& take);

/// Whether a modification turns one residue into another: it has a composition, and a name of 11
/// characters such as "Ala->Ser[A]". A table of a label holds these only where the label changes
/// them.
bool is_conversion(const CMod& mod);

/// Makes the weighed composition that of a letter from 'A' to 'Z'.
void define_residue(CAlphaBet& alphabet, char letter, const WEIGHED& weighed);

}  // namespace tessel
