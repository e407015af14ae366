// Large blocks are used again and again. Readers and writers hold buffers of up to a megabyte for
// each file; the sanitizer's allocator would fetch each from the system and give it back, which
// takes most of the time of a run. A block at rest is poisoned, so that a use of it is found, and
// what is never given back is a leak like any other. The linker puts these functions before the
// sanitizer's (-Wl,--wrap), which all other blocks still go to.

#include <sanitizer/allocator_interface.h>
#include <sanitizer/asan_interface.h>

#include <array>
#include <cstddef>
#include <utility>

// operator new and operator delete, with and without the size.
extern "C" {
void* __real__Znwm(std::size_t size);
void __real__ZdlPv(void* bytes);
void __real__ZdlPvm(void* bytes, std::size_t size);
void* __wrap__Znwm(std::size_t size);
void __wrap__ZdlPv(void* bytes);
void __wrap__ZdlPvm(void* bytes, std::size_t size);
}

namespace {

constexpr std::size_t kLarge = std::size_t{1} << 16;

struct BLOCK {
    void* m_pBytes;
    std::size_t m_tSize;
};
std::array<BLOCK, 64> s_vAtRest;
std::size_t s_tAtRest = 0;

std::size_t allocated_size(void* bytes) {
    return __sanitizer_get_ownership(bytes) != 0 ? __sanitizer_get_allocated_size(bytes) : 0;
}

// Null when there is none of this size.
void* wake(std::size_t size) {
    for (std::size_t i = 0; i < s_tAtRest; ++i) {
        if (s_vAtRest[i].m_tSize != size) continue;
        std::swap(s_vAtRest[i], s_vAtRest[--s_tAtRest]);
        __asan_unpoison_memory_region(s_vAtRest[s_tAtRest].m_pBytes, size);
        return std::exchange(s_vAtRest[s_tAtRest].m_pBytes, nullptr);
    }
    return nullptr;
}

bool put_to_rest(void* bytes, std::size_t size) {
    if (size < kLarge || s_tAtRest == s_vAtRest.size()) return false;
    __asan_poison_memory_region(bytes, size);
    s_vAtRest[s_tAtRest++] = {bytes, size};
    return true;
}

}  // namespace

void* __wrap__Znwm(std::size_t size) {
    void* const bytes = size < kLarge ? nullptr : wake(size);
    return bytes != nullptr ? bytes : __real__Znwm(size);
}

void __wrap__ZdlPv(void* bytes) {
    if (!put_to_rest(bytes, allocated_size(bytes))) __real__ZdlPv(bytes);
}

void __wrap__ZdlPvm(void* bytes, std::size_t size) {
    if (!put_to_rest(bytes, size)) __real__ZdlPvm(bytes, size);
}
