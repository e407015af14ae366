#pragma once

#include <string>

namespace tessel {

class CCondition;

/// A target-decoy database is used again unless it is older than its source, or empty where the
/// source is not.
bool is_fresh_target_decoy(const std::string& target, const std::string& source);

/// Removes what killed runs have left of a target-decoy database, after a day.
void remove_leftovers(const std::string& target);

/// Writes the target-decoy database with the condition's loader, which is left at the end of the
/// source. One that cannot be written ends the process with status 1, after an alert. Throws what
/// the loader throws; no unfinished file is left in any case.
void write_target_decoy(CCondition& condition, const std::string& source,
                        const std::string& target);

}  // namespace tessel
