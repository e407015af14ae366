#pragma once

#include <string>

namespace tessel {

/// A target-decoy database is used again unless it is older than its source, or empty where the
/// source is not.
bool is_fresh_target_decoy(const std::string& target, const std::string& source);

}  // namespace tessel
