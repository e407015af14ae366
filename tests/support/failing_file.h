#pragma once

#include <cstdint>
#include <limits>
#include <string>

namespace tessel::test {

/// What goes wrong with the files that this program opens for writing.
struct FILE_FAULT {
    std::string m_strPath;  ///< start of their host paths
    std::uint64_t m_uFailAt = std::numeric_limits<std::uint64_t>::max();  ///< the byte that fails
    bool m_bOnce = false;                                                 ///< later writes succeed
    bool m_bCloseFails = false;  ///< a file system that tells of a full disk at the end only
    int m_nError = 0;            ///< an errno value
};

/// While one exists, std::fopen() gives files with this fault. They are C streams like any other,
/// with the C library's own buffers, above a descriptor that fails.
class CFailingFiles {
public:
    explicit CFailingFiles(const FILE_FAULT& fault);
    ~CFailingFiles();
    CFailingFiles(const CFailingFiles&) = delete;
    CFailingFiles& operator=(const CFailingFiles&) = delete;
};

}  // namespace tessel::test
