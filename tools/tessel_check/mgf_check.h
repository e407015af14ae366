#pragma once

#include <string>

#include "tools/tessel_check/report.h"

namespace tessel::check {

/// Checks an MGF file as CMGFInput reads it in calls of `batchSize` entries: charge and precursor
/// m/z that a block does not name are those of the block before it in the same call.
void check_mgf(const std::string& path, std::size_t batchSize, bool progress, CReport& report);

}  // namespace tessel::check
