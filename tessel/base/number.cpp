#include "tessel/base/number.h"

#include <cfloat>

namespace tessel {
namespace {

// Where the first digit that is not 0 stands relative to the decimal point, the exponent included:
// above 0 for numbers from 1 on. Enough to tell overflow from underflow.
std::int64_t magnitude_of(const char* first, const char* last) {
    const char* c = first;
    std::int64_t beforePoint = 0;
    std::int64_t zerosBehindPoint = 0;
    bool significant = false;
    for (; c != last && is_digit(*c); ++c) {
        significant = significant || *c != '0';
        if (significant) ++beforePoint;
    }
    if (c != last && *c == '.') {
        for (++c; c != last && is_digit(*c); ++c) {
            significant = significant || *c != '0';
            if (!significant) ++zerosBehindPoint;
        }
    }
    std::int64_t exponent = 0;
    if (c != last && lower(*c) == 'e') read_integer(c + 1, last, exponent);
    constexpr std::int64_t kFar = std::int64_t{1} << 60;
    exponent = exponent > kFar ? kFar : exponent < -kFar ? -kFar : exponent;
    return beforePoint - zerosBehindPoint + exponent;
}

}  // namespace

const char* read_double(const char* first, const char* last, double& value) {
    while (first != last && is_blank(*first))
        ++first;
    const bool negative = first != last && *first == '-';
    if (negative || (first != last && *first == '+')) ++first;
    if (first == last || *first == '-') return nullptr;  // from_chars would take a sign of its own

    double number = 0.0;
    const auto read = std::from_chars(first, last, number);
    if (read.ec == std::errc::invalid_argument) return nullptr;
    if (read.ec == std::errc::result_out_of_range) {
        number = magnitude_of(first, read.ptr) > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    value = negative ? -number : number;
    return read.ptr;
}

void append_fixed(std::string& text, double value, int decimals) {
    char digits[1 + DBL_MAX_10_EXP + 1 + 1 + 20];  // sign, integer part, point, decimals
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals);
    text.append(digits, end.ptr);
}

void append_general(std::string& text, double value) {
    constexpr int kDigits = 6;
    char digits[32];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, kDigits);
    text.append(digits, end.ptr);
}

}  // namespace tessel
