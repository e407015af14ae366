// Takes the place of the system's std::fopen() in the program that it is linked into.

#include "tests/support/failing_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

namespace {

using tessel::test::FILE_FAULT;

const FILE_FAULT* g_fault = nullptr;

struct OPEN_FILE {
    FILE_FAULT m_cFault;
    int m_nDescriptor = -1;
    std::uint64_t m_uWritten = 0;
};

// A short count makes the C library set the stream's error indicator.
ssize_t write_some(void* cookie, const char* bytes, std::size_t size) {
    OPEN_FILE& file = *static_cast<OPEN_FILE*>(cookie);
    const std::uint64_t room =
        file.m_cFault.m_uFailAt - std::min(file.m_uWritten, file.m_cFault.m_uFailAt);
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(size, room));
    if (write(file.m_nDescriptor, bytes, count) != static_cast<ssize_t>(count)) return 0;
    file.m_uWritten += count;
    if (count < size) {
        if (file.m_cFault.m_bOnce) file.m_cFault.m_uFailAt = FILE_FAULT().m_uFailAt;
        errno = file.m_cFault.m_nError;
    }
    return static_cast<ssize_t>(count);
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
    if (g_fault == nullptr || *mode != 'w' || !std::string(path).starts_with(g_fault->m_strPath)) {
        return fopen64(path, mode);
    }
    auto file = std::make_unique<OPEN_FILE>();
    file->m_cFault = *g_fault;
    file->m_nDescriptor = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (file->m_nDescriptor < 0) return nullptr;
    return fopencookie(file.release(), mode, {nullptr, write_some, nullptr, close_file});
}

// The streams above have no descriptor of their own.
extern "C" int fstat(int descriptor, struct stat* status) noexcept {
    if (descriptor >= 0) return fstatat(descriptor, "", status, AT_EMPTY_PATH);
    *status = {};
    status->st_mode = S_IFREG;
    return 0;
}

namespace tessel::test {

CFailingFiles::CFailingFiles(const FILE_FAULT& fault) {
    g_fault = new FILE_FAULT(fault);
}

CFailingFiles::~CFailingFiles() {
    delete g_fault;
    g_fault = nullptr;
}

}  // namespace tessel::test
