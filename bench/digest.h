#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace tessel::bench {

/// A number that tells results apart: equal values added in the same order give equal digests.
class CDigest {
public:
    void Add(std::string_view bytes);
    template <class Number>
    std::enable_if_t<std::is_arithmetic_v<Number>> Add(Number number) {
        Add(std::string_view(reinterpret_cast<const char*>(&number), sizeof number));
    }

    std::uint64_t Value() const { return m_uValue; }

private:
    std::uint64_t m_uValue = 0x9E3779B97F4A7C15;
};

/// Throws std::runtime_error when the file cannot be read.
std::uint64_t digest_of_file(const std::string& path);

}  // namespace tessel::bench
