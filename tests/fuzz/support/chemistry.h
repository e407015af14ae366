#pragma once

#include <string>

namespace tessel {
class CCondition;
}

namespace tessel::fuzz {

/// Writes small tables of elements, residues and modifications into the scratch folder, once.
void write_chemistry();
/// Points a condition at them and leaves mass shifts in a small range.
void use_chemistry(CCondition& condition);

/// Breaks the program unless what CreateModList() promises holds: sorted tables, lookups as by a
/// linear scan, selections and slots within the tables.
void check_mod_tables(const CCondition& condition);

}  // namespace tessel::fuzz
