#pragma once

#include "tessel/condition/condition.h"
#include "tessel/param/condition_reader.h"
#include "tools/tessel_check/parameter_file.h"
#include "tools/tessel_check/report.h"

namespace tessel::check {

// The groups of checks, in the order in which they run. Each continues what those before it have
// filled in the condition, adds what it finds, and writes nothing to disk.

/// Fills the settings of the reader's condition, as far as the file allows. Files to be read that
/// do not exist are reported and left out.
void check_parameters(const CParameterFile& file, CConditionReader& reader, CReport& report);
/// Fills the tables of residues and modifications and the selection.
void check_chemistry(const CParameterFile& file, CCondition& condition, CReport& report);
void check_search_space(const CParameterFile& file, const CCondition& condition, CReport& report);
/// With `progress`, the share of a large file that has been read is shown on standard error.
void check_spectra(const CParameterFile& file, const CCondition& condition, bool progress,
                   CReport& report);
void check_database(const CCondition& condition, bool progress, CReport& report);

}  // namespace tessel::check
