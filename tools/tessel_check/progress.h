#pragma once

#include <cstdint>
#include <string>

namespace tessel::check {

/// Shows on standard error how much of a file has been read, in percent, on a line that is removed
/// at the end. Files under 64 MiB are read too quickly for that.
class CProgress {
public:
    CProgress(const std::string& path, bool shown);
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    void Read(std::uint64_t bytes) {
        m_uRead += bytes;
        if (m_uRead >= m_uNext) Show();
    }

private:
    void Show();

    std::string m_strName;
    std::uint64_t m_uSize = 0;
    std::uint64_t m_uRead = 0;
    std::uint64_t m_uNext;
};

}  // namespace tessel::check
