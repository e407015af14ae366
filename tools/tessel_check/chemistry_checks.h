#pragma once

#include "tessel/condition/condition.h"
#include "tools/tessel_check/chemistry_table.h"
#include "tools/tessel_check/parameter_file.h"
#include "tools/tessel_check/report.h"

namespace tessel::check {

// The parts of check_chemistry() that have files of their own, in the order in which they run.

/// Compares the number in front of the labels of the parameter file with theirs.
void check_label_number(const CParameterFile& file, const CCondition& condition, CReport& report);
/// Fills the modification table, whose lines `table` then knows.
void check_modifications(CCondition& condition, CTable& table);
/// Checks the definitions of labels and those that the parameter file asks for.
void check_labels(const CParameterFile& file, const CCondition& condition,
                  const CTable& modifications, CReport& report);
/// Fills the tables of the selected modifications and checks the selection.
void check_selected(const CParameterFile& file, CCondition& condition, CReport& report);

/// Whether any label but "None" is asked for.
bool asks_for_labels(const CCondition& condition);

}  // namespace tessel::check
