#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>

namespace tessel::test {

/// What goes wrong with the files that this program opens for writing, or for reading.
struct FILE_FAULT {
    std::string m_strPath;  ///< start of their host paths
    std::uint64_t m_uFailAt = std::numeric_limits<std::uint64_t>::max();  ///< the byte that fails
    bool m_bOnce = false;                                                 ///< later writes succeed
    bool m_bCloseFails = false;  ///< a file system that tells of a full disk at the end only
    int m_nError = 0;            ///< an errno value
    bool m_bReading = false;     ///< of files opened for reading, every read from that byte on
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

/// While one exists, it is told of every file that std::fopen() is about to write anew, by the
/// start of its host path.
class CWatchedFiles {
public:
    CWatchedFiles(std::string path, std::function<void()> opened);
    ~CWatchedFiles();
    CWatchedFiles(const CWatchedFiles&) = delete;
    CWatchedFiles& operator=(const CWatchedFiles&) = delete;
};

/// While one exists, listing any folder fails behind so many entries, "." and ".." among them.
class CFailingFolders {
public:
    explicit CFailingFolders(std::size_t entries);
    ~CFailingFolders();
    CFailingFolders(const CFailingFolders&) = delete;
    CFailingFolders& operator=(const CFailingFolders&) = delete;
};

}  // namespace tessel::test
