#include "bench/digest.h"

#include <cstring>
#include <stdexcept>
#include <vector>

#include "bench/records.h"

namespace tessel::bench {

void CDigest::Add(std::string_view bytes) {
    std::size_t left = bytes.size();
    m_uValue += left;
    for (const char* next = bytes.data(); left > 0;) {
        std::uint64_t word = 0;
        const std::size_t taken = left < sizeof word ? left : sizeof word;
        std::memcpy(&word, next, taken);
        m_uValue = (m_uValue ^ word) * 0xD6E8FEB86659FD93;
        m_uValue ^= m_uValue >> 32;
        next += taken;
        left -= taken;
    }
}

std::uint64_t digest_of_file(const std::string& path) {
    const OpenFile file = open_or_throw(path, "rb");
    std::vector<char> block(kBlockSize);
    CDigest digest;
    for (;;) {
        const std::size_t count = std::fread(block.data(), 1, block.size(), file.get());
        digest.Add(std::string_view(block.data(), count));
        if (count < block.size()) return digest.Value();
    }
}

}  // namespace tessel::bench
