#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace tessel::test {

/// How a child ended, and its standard output.
struct CHILD_END {
    int m_nExit = -1;   ///< exit status; -1 after a signal
    int m_nSignal = 0;  ///< 0 without one
    std::string m_strOutput;
};

/// A copy of this process that runs one action and ends with the status that it returns, unless the
/// action ends the process itself. Its standard output should stay below 64 KiB.
class CChild {
public:
    explicit CChild(const std::function<int()>& action);
    ~CChild();
    CChild(const CChild&) = delete;
    CChild& operator=(const CChild&) = delete;

    /// Ends the child at once, in the middle of whatever it does.
    void Kill() const;
    CHILD_END Wait();

private:
    pid_t m_nProcess;
    int m_nOutput;  // the end of a pipe
};

CHILD_END run_in_child(const std::function<int()>& action);

// For a child only; none of these can be taken back.

/// Writing beyond so many bytes of any file fails.
void limit_file_size(std::size_t bytes);
/// Sends the process a signal every half millisecond, after which system calls are started anew.
void signal_often();
/// Gives up the rights of root, for whom file permissions do not count.
void become_unprivileged();

}  // namespace tessel::test
