#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "tessel/base/little_endian.h"
#include "tessel/base/plain_decimal.h"
#include "tessel/base/text.h"

namespace tessel {

// Words and numbers of a text that lies in a larger buffer: behind its end stand kTextPadding NUL
// characters, so that eight characters at a time can be taken without asking how many are left.
// Nothing is read beyond them, because none of these functions goes on behind a NUL character.
//
// The readers of numbers know the ordinary forms only and return null for every other one. The
// digits they read may be the front of a longer run: a number is read when what follows it is no
// digit and no letter. It is then what read_integer and read_double of base/number.h read. After
// null the value is open.
//
// Where one field of a file ends tells where the next one begins, so a processor that must compute
// lengths reads one field after the other. The lengths that most fields have are therefore asked
// for by a branch, which is predicted, and the fields are read side by side: reading the numbers of
// a result file takes a third less time.

inline constexpr std::size_t kTextPadding = 8;

/// Up to eight digits: how many stand at the front of a text, and their value.
struct SHORT_DIGITS {
    std::uint64_t m_uValue = 0;
    std::size_t m_tCount = 0;
};

inline SHORT_DIGITS read_digits(const char* text) {
    const std::uint64_t eight = little_endian_64(text);
    const int count = first_marked(not_digits(eight));
    if (count == 0) return {};
    return {static_cast<std::uint64_t>(value_of_digits(eight, count)),
            static_cast<std::size_t>(count)};
}

/// An integer of at most eight digits. Returns its end; null when there is none, or a plus sign.
inline const char* read_short(const char* text, unsigned& value) {
    if (is_digit(text[0]) && !is_digit(text[1])) {
        value = static_cast<unsigned>(text[0] - '0');
        return text + 1;
    }
    const SHORT_DIGITS digits = read_digits(text);
    if (digits.m_tCount == 0) return nullptr;
    value = static_cast<unsigned>(digits.m_uValue);
    return text + digits.m_tCount;
}

inline const char* read_short(const char* text, int& value) {
    unsigned magnitude = 0;
    if (*text != '-') {
        const char* const end = read_short(text, magnitude);
        value = static_cast<int>(magnitude);
        return end;
    }
    const char* const end = read_short(text + 1, magnitude);
    value = -static_cast<int>(magnitude);
    return end;
}

inline const char* read_short(const char* text, std::int64_t& value) {
    int number = 0;
    const char* const end = read_short(text, number);
    value = number;
    return end;
}

/// A decimal number of at most 15 digits, without an exponent or with a negative one: digits and
/// power of ten are exact doubles then, so that one division rounds as it should.
inline const char* read_short_magnitude(const char* text, double& value) {
    static constexpr std::array<std::uint64_t, 9> kPowers{
        1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
    static constexpr std::array<double, 23> kExactPowers{
        1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr std::size_t kExactDigits = 15;
    const auto exact = [](std::uint64_t digits) {
        return static_cast<double>(static_cast<std::int64_t>(digits));
    };

    const SHORT_DIGITS whole = read_digits(text);
    if (whole.m_tCount == 0) return nullptr;
    text += whole.m_tCount;
    SHORT_DIGITS decimals;
    if (*text == '.') {
        decimals = read_digits(++text);
        if (decimals.m_tCount == 6 && text[6] == '\t') {  // most numbers have six decimals
            value = exact(whole.m_uValue * 1000000 + decimals.m_uValue) / 1e6;
            return text + 6;
        }
        text += decimals.m_tCount;
    }
    if (whole.m_tCount + decimals.m_tCount > kExactDigits) return nullptr;

    std::size_t power = decimals.m_tCount;
    if (*text == 'e') {
        if (*++text != '-') return nullptr;
        const SHORT_DIGITS exponent = read_digits(++text);
        power += exponent.m_uValue;
        if (exponent.m_tCount == 0 || power >= kExactPowers.size()) return nullptr;
        text += exponent.m_tCount;
    }
    const std::uint64_t digits = whole.m_uValue * kPowers[decimals.m_tCount] + decimals.m_uValue;
    value = exact(digits) / kExactPowers[power];
    return text;
}

inline const char* read_short(const char* text, double& value) {
    if (*text != '-') return read_short_magnitude(text, value);
    const char* const end = read_short_magnitude(text + 1, value);
    if (end != nullptr) value = -value;
    return end;
}

/// The end of a word: where the next blank stands, or a NUL character.
inline const char* end_of_word(const char* text) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    for (;;) {
        const std::uint64_t eight = little_endian_64(text);
        // The lowest high bit belongs to the first character up to ' '.
        const std::uint64_t low = (eight - 0x2121212121212121) & ~eight & kHighBits;
        if (low == 0) {
            text += 8;
            continue;
        }
        text += std::countr_zero(low) / 8;
        if (*text == '\0' || is_blank(*text)) return text;
        ++text;  // another control character
    }
}

}  // namespace tessel
