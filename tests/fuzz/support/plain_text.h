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

/// Digit by digit, saturating at the limits; a negative number is none for limits from 0 on.
PLAIN_NUMBER<__int128> plain_integer(std::string_view text, __int128 lowest, __int128 highest);

template <class Integer>
PLAIN_NUMBER<Integer> plain_integer(std::string_view text) {
    const auto read = plain_integer(text, std::numeric_limits<Integer>::min(),
                                    std::numeric_limits<Integer>::max());
    return {static_cast<Integer>(read.value), read.length};
}

}  // namespace tessel::fuzz
