#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include "tessel/platform/memory.h"

#include <windows.h>

#include <algorithm>
#include <limits>

namespace tessel {

std::uint64_t available_memory(const std::string&) {
    MEMORYSTATUSEX status;
    status.dwLength = sizeof status;
    if (GlobalMemoryStatusEx(&status) == 0) return std::numeric_limits<std::uint64_t>::max();
    // "Page file" means what may still be committed, in memory and on disk together.
    return std::min<std::uint64_t>(status.ullAvailPageFile, status.ullAvailVirtual);
}

void CFreshPages::MakeReady() {
    m_pReady = m_pEnd;
}

}  // namespace tessel
