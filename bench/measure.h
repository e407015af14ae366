#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace tessel::bench {

/// What one round took. Plain bytes: they come back from the child process through a pipe.
struct FIGURES {
    double m_lfSeconds = 0.0;          ///< CPU time of the measured work, user and system
    std::uint64_t m_uPeak = 0;         ///< peak resident memory while it ran, bytes
    std::uint64_t m_uOverStart = 0;    ///< the same above what was resident when it began
    std::uint64_t m_uDigest = 0;       ///< of the result; 0 where there is nothing to compare
    std::uint64_t m_uRecordBytes = 0;  ///< of the result's records, where a memory limit needs them
};

/// One round of one contender, alone in its process.
class CRound {
public:
    /// With `isOnce` the process ends right behind the measured work, with exit status 0: for
    /// programs that watch it from outside.
    explicit CRound(bool isOnce = false) : m_bOnce(isOnce) {}

    /// Runs and measures the work; what stands before and behind the call is not measured. Memory
    /// that was freed before goes back to the system first, so that the pages that the work touches
    /// are new to every contender.
    void Run(const std::function<void()>& work);

    FIGURES m_cFigures;

private:
    bool m_bOnce;
};

/// Prepares its input, measures its work with CRound::Run(), and leaves the digest of its result.
using Contender = std::function<void(CRound&)>;

/// Runs a contender in a fresh child process; nothing when the child fails.
std::optional<FIGURES> run_in_child(const Contender& contender);

}  // namespace tessel::bench
