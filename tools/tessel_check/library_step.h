#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tessel::check {

/// What a step of the library did.
struct STEP {
    bool m_bEnded = false;                 ///< it ended the process, or threw a runtime_error
    std::vector<std::string> m_vMessages;  ///< warnings and alerts, without their marks

    /// The rest of each message that begins so.
    std::vector<std::string> MessagesBehind(const std::string& beginning) const;
};

/// Runs a step of the library to its end, be it the end of the process, and keeps what it writes to
/// standard output and standard error off the screen. Other exceptions pass, first of all those of
/// memory that is not to be had.
STEP run_step(const std::function<void()>& step);

}  // namespace tessel::check
