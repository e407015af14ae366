// Takes the place of the system's std::fopen() and readdir() in the program that it is linked into.

#include "tests/support/failing_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>

namespace {

using tessel::test::FILE_FAULT;

const FILE_FAULT* g_fault = nullptr;
struct WATCH {
    std::string m_strPath;
    std::function<void()> m_cOpened;
};
std::optional<WATCH> g_watch;
std::optional<std::size_t> g_entries;  // how many more there are before listing fails

struct OPEN_FILE {
    FILE_FAULT m_cFault;
    int m_nDescriptor = -1;
    std::uint64_t m_uDone = 0;  // bytes written or read
};

// A short count makes the C library set the stream's error indicator.
ssize_t write_some(void* cookie, const char* bytes, std::size_t size) {
    OPEN_FILE& file = *static_cast<OPEN_FILE*>(cookie);
    const std::uint64_t room =
        file.m_cFault.m_uFailAt - std::min(file.m_uDone, file.m_cFault.m_uFailAt);
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(size, room));
    if (write(file.m_nDescriptor, bytes, count) != static_cast<ssize_t>(count)) return 0;
    file.m_uDone += count;
    if (count < size) {
        if (file.m_cFault.m_bOnce) file.m_cFault.m_uFailAt = FILE_FAULT().m_uFailAt;
        errno = file.m_cFault.m_nError;
    }
    return static_cast<ssize_t>(count);
}

ssize_t read_some(void* cookie, char* bytes, std::size_t size) {
    OPEN_FILE& file = *static_cast<OPEN_FILE*>(cookie);
    if (file.m_uDone >= file.m_cFault.m_uFailAt) {
        errno = file.m_cFault.m_nError;
        return -1;
    }
    const std::uint64_t room = file.m_cFault.m_uFailAt - file.m_uDone;
    const ssize_t count = read(file.m_nDescriptor, bytes,
                               static_cast<std::size_t>(std::min<std::uint64_t>(size, room)));
    if (count > 0) file.m_uDone += static_cast<std::uint64_t>(count);
    return count;
}

int close_file(void* cookie) {
    const std::unique_ptr<OPEN_FILE> file(static_cast<OPEN_FILE*>(cookie));
    close(file->m_nDescriptor);
    if (!file->m_cFault.m_bCloseFails) return 0;
    errno = file->m_cFault.m_nError;
    return -1;
}

}  // namespace

extern "C" std::FILE* fopen(const char* path, const char* mode) {
    if (g_watch && *mode == 'w' && std::string(path).starts_with(g_watch->m_strPath)) {
        g_watch->m_cOpened();
    }
    if (g_fault == nullptr || *mode != (g_fault->m_bReading ? 'r' : 'w') ||
        !std::string(path).starts_with(g_fault->m_strPath)) {
        return fopen64(path, mode);
    }
    auto file = std::make_unique<OPEN_FILE>();
    file->m_cFault = *g_fault;
    file->m_nDescriptor =
        g_fault->m_bReading ? open(path, O_RDONLY) : open(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (file->m_nDescriptor < 0) return nullptr;
    return fopencookie(file.release(), mode, {read_some, write_some, nullptr, close_file});
}

// The streams above have no descriptor of their own.
extern "C" int fstat(int descriptor, struct stat* status) noexcept {
    if (descriptor >= 0) return fstatat(descriptor, "", status, AT_EMPTY_PATH);
    *status = {};
    status->st_mode = S_IFREG;
    return 0;
}

extern "C" dirent* readdir(DIR* folder) {
    static_assert(sizeof(dirent) == sizeof(dirent64));
    if (!g_entries) return reinterpret_cast<dirent*>(readdir64(folder));
    if (*g_entries == 0) {
        errno = EIO;
        return nullptr;
    }
    --*g_entries;
    return reinterpret_cast<dirent*>(readdir64(folder));
}

namespace tessel::test {

CFailingFiles::CFailingFiles(const FILE_FAULT& fault) {
    g_fault = new FILE_FAULT(fault);
}

CFailingFiles::~CFailingFiles() {
    delete g_fault;
    g_fault = nullptr;
}

CWatchedFiles::CWatchedFiles(std::string path, std::function<void()> opened) {
    g_watch = {std::move(path), std::move(opened)};
}

CWatchedFiles::~CWatchedFiles() {
    g_watch.reset();
}

CFailingFolders::CFailingFolders(std::size_t entries) {
    g_entries = entries;
}

CFailingFolders::~CFailingFolders() {
    g_entries.reset();
}

}  // namespace tessel::test
