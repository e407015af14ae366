#pragma once

namespace tessel {

/// Level of a message. A message is shown when its level is not above the configured one.
enum LOG_TYPE : int {
    LOG_ALERT = 0,   ///< what the user must know; always shown
    LOG_SILENT = 1,  ///< as a configured level: alerts only; a message of this level prints nothing
    LOG_WARNING = 2,  ///< corrected or skipped input
    LOG_INFO = 3,     ///< progress
    LOG_DEBUG = 4     ///< details
};

}  // namespace tessel
