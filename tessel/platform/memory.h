#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tessel {

/// Bytes that the process may still allocate and use: the least of what the machine has free, the
/// process's limit of address space and the limits of its container. The largest number where
/// nothing is known. The system's own files are read below `root`, where it has any.
std::uint64_t available_memory(const std::string& root = "");

/// Fresh memory that is written from front to back. Its pages are made present shortly before they
/// are written, many by one call: that takes a quarter less time than the system's answer to the
/// first write to each. The contents stay; where the system cannot do it, nothing happens.
class CFreshPages {
public:
    CFreshPages(void* memory, std::size_t bytes)
        : m_pReady(static_cast<char*>(memory)), m_pEnd(m_pReady + bytes) {}

    /// Before writing at `next`.
    void Reach(const void* next) {
        if (next >= m_pReady && m_pReady != m_pEnd) MakeReady();
    }

private:
    void MakeReady();

    char* m_pReady;  // where the pages that are not yet present begin
    char* m_pEnd;
};

}  // namespace tessel
