#pragma once

#include <bit>
#include <cstdint>

namespace tessel {

// Numbers of binary files, least significant byte first, whatever the host's order is. Spelt out
// byte by byte because compilers then make one load of it.

inline std::uint32_t little_endian_32(const char* bytes) {
    const auto byte = [bytes](int i) -> std::uint32_t {
        return static_cast<unsigned char>(bytes[i]);
    };
    return byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
}

inline std::uint64_t little_endian_64(const char* bytes) {
    return std::uint64_t{little_endian_32(bytes + 4)} << 32 | little_endian_32(bytes);
}

inline double little_endian_double(const char* bytes) {
    return std::bit_cast<double>(little_endian_64(bytes));
}

}  // namespace tessel
