#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::fuzz {

// Texts and numbers taken apart in the slowest and plainest way, to compare the library with.
// Nothing here uses the library.

/// Space, tab, line feed, vertical tab, form feed, carriage return.
bool plain_blank(char c);

/// The lines of a file: cut at line feeds, one carriage return at an end dropped, a UTF-8
/// byte-order mark at the start skipped; longer lines in pieces.
std::vector<std::string> plain_lines(std::string_view text,
                                     std::size_t piece = std::numeric_limits<std::size_t>::max());

/// Cut at every delimiter, empty fields kept.
std::vector<std::string> plain_fields(std::string_view text, char delimiter);

/// Runs of characters that are not blank.
std::vector<std::string> plain_words(std::string_view text);

/// A number at the front of a text, and how many characters it takes with its blanks; 0: no number.
template <class Number>
struct PLAIN_NUMBER {
    Number value{};
    std::size_t length = 0;
};

/// As strtod reads in the "C" locale, but hexadecimal by its decimal prefix.
PLAIN_NUMBER<double> plain_double(std::string_view text);

/// The sign and the digits at the front of a text, leading zeros left out, with the length of all.
struct PLAIN_DIGITS {
    bool negative = false;
    std::string digits;
    std::size_t length = 0;
};
PLAIN_DIGITS plain_digits(std::string_view text);

/// Digit by digit, saturating at the limits of the type; a negative number is none for an unsigned
/// one.
template <class Integer>
PLAIN_NUMBER<Integer> plain_integer(std::string_view text) {
    using Limits = std::numeric_limits<Integer>;
    const PLAIN_DIGITS read = plain_digits(text);
    if (read.length == 0 || (Limits::min() == 0 && read.negative && !read.digits.empty()))
        return {};
    const Integer limit = read.negative ? Limits::min() : Limits::max();
    const std::string far = std::to_string(limit).substr(limit < 0 ? 1 : 0);
    const std::size_t size = read.digits.size();
    if (size > far.size() || (size == far.size() && read.digits > far)) return {limit, read.length};
    Integer value = 0;
    for (const char c : read.digits) {
        const int digit = read.negative ? '0' - c : c - '0';
        value = static_cast<Integer>(value * Integer{10} + static_cast<Integer>(digit));
    }
    return {value, read.length};
}

}  // namespace tessel::fuzz
