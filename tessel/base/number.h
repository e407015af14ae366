#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "tessel/base/text.h"

namespace tessel {

// Numbers as texts, read and written alike under every locale: "." is the decimal point and there
// is no digit grouping.
//
// Reading takes what atoi, atof and "%lf" take: leading blanks, a sign, the longest numeric prefix;
// what follows is left. It is defined everywhere: integers saturate, doubles overflow to infinity
// and underflow as strtod does, hexadecimal reads as its decimal prefix, "inf" and "nan" are read.

/// Reads a double from the front of [first, last). Returns the end of the number, or null when
/// there is none; `value` is then unchanged.
const char* read_double(const char* first, const char* last, double& value);

/// Reads an integer likewise. A negative number is unreadable for an unsigned type.
template <class Integer>
const char* read_integer(const char* first, const char* last, Integer& value) {
    while (first != last && is_blank(*first))
        ++first;
    const bool negative = first != last && *first == '-';
    if (negative || (first != last && *first == '+')) ++first;
    if (first == last || !is_digit(*first)) return nullptr;

    std::uint64_t magnitude = 0;
    const auto read = std::from_chars(first, last, magnitude);
    if (read.ec == std::errc::result_out_of_range) {
        magnitude = std::numeric_limits<std::uint64_t>::max();
    }
    constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
    if (!negative) {
        value = static_cast<Integer>(magnitude < kMax ? magnitude : kMax);
    } else if constexpr (std::is_signed_v<Integer>) {
        value = magnitude > kMax ? std::numeric_limits<Integer>::min()
                                 : static_cast<Integer>(-static_cast<std::int64_t>(magnitude));
    } else {
        if (magnitude != 0) return nullptr;
        value = 0;
    }
    return read.ptr;
}

/// As atoi: 0 for a text that is no number.
inline int to_int(std::string_view text) {
    int value = 0;
    read_integer(text.data(), text.data() + text.size(), value);
    return value;
}

/// As atof: 0 for a text that is no number.
inline double to_double(std::string_view text) {
    double value = 0.0;
    read_double(text.data(), text.data() + text.size(), value);
    return value;
}

/// Truncated toward zero, saturating; the lowest value stands for NaN alone.
inline std::int64_t truncated(double number) {
    constexpr double kLimit = 9.2e18;
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    if (std::isnan(number)) return kLowest;
    if (number >= kLimit) return std::numeric_limits<std::int64_t>::max();
    if (number <= -kLimit) return kLowest + 1;
    return static_cast<std::int64_t>(number);
}

template <class Integer>
void append_integer(std::string& text, Integer value) {
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

/// Room for any number as the functions below write it: sign, whole part, point, 20 decimals.
inline constexpr std::size_t kMaxNumberText = 1 + std::numeric_limits<double>::max_exponent10 + 22;

/// Writes as "%.Nlf", for at most 20 decimals, into kMaxNumberText characters; returns the end.
char* write_fixed(char* text, double value, int decimals);
/// Likewise as "%.6g".
char* write_general(char* text, double value);

/// As write_fixed() with two decimals, for numbers that mostly have no more: whatever is clearly
/// nearer to an integer of hundredths than to its neighbours rounds to it. Saves 4 % of the
/// instructions of CreateModList() with its default shifts; write_fixed() itself would make writing
/// results 6 % dearer by asking for it.
inline char* write_hundredths(char* text, double value) {
    const double exact = std::fabs(value) * 100.0;
    if (!(exact < 1e9)) return write_fixed(text, value, 2);
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): doubtful ones go the other way
    const auto hundredths = static_cast<std::uint32_t>(exact + 0.5);
    if (std::fabs(exact - hundredths) > 0.4) return write_fixed(text, value, 2);
    constexpr std::ptrdiff_t kWholeDigits = 10;
    if (std::signbit(value)) *text++ = '-';
    text = std::to_chars(text, text + kWholeDigits, hundredths / 100).ptr;
    *text++ = '.';
    *text++ = static_cast<char>('0' + hundredths / 10 % 10);
    *text++ = static_cast<char>('0' + hundredths % 10);
    return text;
}

inline void append_fixed(std::string& text, double value, int decimals) {
    char digits[kMaxNumberText];
    text.append(digits, write_fixed(digits, value, decimals));
}
inline void append_general(std::string& text, double value) {
    char digits[kMaxNumberText];
    text.append(digits, write_general(digits, value));
}

/// A double as a message shows it, "%.Nlf".
inline std::string fixed_text(double value, int decimals) {
    std::string text;
    append_fixed(text, value, decimals);
    return text;
}

/// The shortest text that reads back as the same double.
inline std::string shortest_text(double value) {
    char digits[32];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

}  // namespace tessel
