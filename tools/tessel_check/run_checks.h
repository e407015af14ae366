#pragma once

#include <string>

#include "tools/tessel_check/report.h"

namespace tessel::check {

/// Checks a parameter file and everything it names, as a search started in the working folder would
/// read them. With `progress`, large files show theirs on standard error.
void run_checks(const std::string& path, bool progress, CReport& report);

/// 0 for nothing worse than notes, 1 for warnings, 2 for errors.
int exit_status(const CReport& report);

}  // namespace tessel::check
