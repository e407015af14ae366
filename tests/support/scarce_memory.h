#pragma once

#include <cstddef>

namespace tessel::test {

/// While it lives, memory in one piece of more bytes than this is not to be had, in any thread. For
/// programs that are built with scarce_memory.cpp.
class CScarceMemory {
public:
    explicit CScarceMemory(std::size_t largest);
    ~CScarceMemory();
    CScarceMemory(const CScarceMemory&) = delete;
    CScarceMemory& operator=(const CScarceMemory&) = delete;
};

}  // namespace tessel::test
