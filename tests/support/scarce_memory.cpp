// Takes the place of the standard library's allocation in the program.

#include "tests/support/scarce_memory.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace tessel::test {
namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> largestPiece = kAll;

}  // namespace

CScarceMemory::CScarceMemory(std::size_t largest) {
    largestPiece = largest;
}

CScarceMemory::~CScarceMemory() {
    largestPiece = kAll;
}

}  // namespace tessel::test

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return size <= tessel::test::largestPiece ? std::malloc(size > 0 ? size : 1) : nullptr;
}

void* operator new(std::size_t size) {
    if (void* const memory = operator new(size, std::nothrow)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
