#pragma once

#include <cstdint>
#include <string>

namespace tessel {

/// Bytes that the process may still allocate and use: the least of what the machine has free, the
/// process's limit of address space and the limits of its container. The largest number where
/// nothing is known. The system's own files are read below `root`, where it has any.
std::uint64_t available_memory(const std::string& root = "");

}  // namespace tessel
