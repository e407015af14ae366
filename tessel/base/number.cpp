#include "tessel/base/number.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "tessel/base/little_endian.h"
#include "tessel/base/plain_decimal.h"

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

constexpr std::ptrdiff_t kExactDigits = 15;  // a double holds every integer of so many
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// The next eight characters as one number, the first one in its low byte; behind the end, zeros.
std::uint64_t next_eight(const char* c, const char* last) {
    const std::ptrdiff_t left = last - c;
    if (left >= 8) return little_endian_64(c);
    if (left >= 4) {
        return little_endian_32(c) | std::uint64_t{little_endian_32(last - 4)} << (8 * (left - 4));
    }
    std::uint64_t eight = 0;
    for (std::ptrdiff_t i = 0; i < left; ++i)
        eight |= std::uint64_t{static_cast<unsigned char>(c[i])} << (8 * i);
    return eight;
}

// A run of digits, read up to eight at a time.
struct DIGIT_RUN {
    std::uint64_t m_uValue = 0;
    std::ptrdiff_t m_nCount = 0;

    const char* Read(const char* c, const char* last) {
        for (int count = 8; count == 8 && m_nCount <= kExactDigits; m_nCount += count) {
            const std::uint64_t eight = next_eight(c, last);
            count = first_marked(not_digits(eight));
            if (count == 0) break;
            m_uValue = m_uValue * static_cast<std::uint64_t>(kPowersOfTen[count]) +
                       static_cast<std::uint64_t>(value_of_digits(eight, count));
            c += count;
        }
        return c;
    }
};

// Reads plain decimals of at most 15 digits, which are most numbers of any file: digits and power
// of ten are exact doubles then, so one division rounds as the standard asks. Null for anything
// else. Several times as fast as from_chars, which would make a third of the time of reading
// spectra.
const char* read_short_decimal(const char* first, const char* last, double& value) {
    DIGIT_RUN digits;
    const char* c = digits.Read(first, last);
    const std::ptrdiff_t whole = digits.m_nCount;
    if (c != last && *c == '.') c = digits.Read(c + 1, last);
    if (digits.m_nCount == 0 || digits.m_nCount > kExactDigits) return nullptr;
    if (c != last && lower(*c) == 'e') return nullptr;
    value = static_cast<double>(digits.m_uValue) / kPowersOfTen[digits.m_nCount - whole];
    return c;
}

// ---- Writing ----

constexpr int kGeneralDigits = 6;
constexpr int kMaxScaledDecimals = 15;  // with bits to spare for the rounding

// A number from 0 on as rounded to some decimals: whole part, and the decimals as an integer.
struct SCALED {
    std::uint64_t whole;
    std::uint64_t fraction;
};

// Rounds as printf does, to the nearest decimal and to even in between, by integer arithmetic on
// the exact bits of the fraction. False where the 54 bits taken of it leave the rounding open, and
// for numbers that are not ordinary. Makes writing results about twice as fast as to_chars alone.
bool scale(double value, int decimals, SCALED& scaled) {
    constexpr double kMaxValue = 1e15;
    constexpr int kBits = 54;  // times 1000 still fits into 64
    constexpr std::uint64_t kOne = std::uint64_t{1} << kBits;
    if (!(value < kMaxValue) || decimals > kMaxScaledDecimals) return false;
    scaled.whole = static_cast<std::uint64_t>(value);
    const double exact = (value - static_cast<double>(scaled.whole)) * static_cast<double>(kOne);
    auto rest = static_cast<std::uint64_t>(exact);
    const bool cut = static_cast<double>(rest) != exact;

    scaled.fraction = 0;
    std::uint64_t power = 1;
    for (int left = decimals; left > 0; left -= 3) {
        const std::uint64_t step = left >= 3 ? 1000 : left == 2 ? 100 : 10;
        rest *= step;
        scaled.fraction = scaled.fraction * step + (rest >> kBits);
        rest &= kOne - 1;
        power *= step;
    }
    // Bits that were cut off are worth less than `power` here.
    constexpr std::uint64_t kHalf = kOne / 2;
    if (cut && rest < kHalf && rest + power > kHalf) return false;
    const std::uint64_t last = decimals > 0 ? scaled.fraction : scaled.whole;
    const bool up = rest > kHalf || (rest == kHalf && (cut || last % 2 == 1));
    scaled.fraction += up ? 1 : 0;
    if (scaled.fraction == power) {
        scaled.fraction = 0;
        ++scaled.whole;
    }
    return true;
}

// The last `count` digits of a number, zeros in front included, two at a time: with half the
// divisions, writing results takes a twentieth fewer instructions.
void write_digits(char* text, std::uint64_t value, int count) {
    static constexpr auto kPairs = [] {
        std::array<char, 200> pairs{};
        for (std::size_t i = 0; i < pairs.size(); ++i)
            pairs[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
        return pairs;
    }();
    for (; count >= 2; count -= 2, value /= 100)
        std::memcpy(text + count - 2, &kPairs[2 * (value % 100)], 2);
    if (count == 1) *text = static_cast<char>('0' + value % 10);
}

// Writes the number and returns the end.
char* write_scaled(char* text, bool negative, const SCALED& scaled, int decimals) {
    constexpr std::ptrdiff_t kWholeDigits = 20;
    if (negative) *text++ = '-';
    text = std::to_chars(text, text + kWholeDigits, scaled.whole).ptr;
    if (decimals == 0) return text;
    *text = '.';
    write_digits(text + 1, scaled.fraction, decimals);
    return text + 1 + decimals;
}

char* without_zeros(char* end) {
    while (end[-1] == '0')
        --end;
    return end;
}

// A magnitude below 1e-4 as "d.ddddde-XX". Null where the digits are not certain, or too far behind
// the point to be taken as an integer.
char* write_short_exponent(char* text, bool negative, double magnitude) {
    constexpr double kBounds[] = {1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5};  // exponents -10 to -5
    if (!(magnitude >= kBounds[0])) return nullptr;
    int exponent = 5;
    while (magnitude < kBounds[10 - exponent])
        ++exponent;
    SCALED scaled;
    if (!scale(magnitude, exponent + kGeneralDigits - 1, scaled)) return nullptr;
    if (scaled.fraction >= 1000000) return nullptr;  // rounded up to the next exponent

    if (negative) *text++ = '-';
    write_digits(text + 1, scaled.fraction, kGeneralDigits);
    text[0] = text[1];
    text[1] = '.';
    char* end = without_zeros(text + 1 + kGeneralDigits);
    if (end[-1] == '.') --end;
    *end++ = 'e';
    *end++ = '-';
    write_digits(end, static_cast<std::uint64_t>(exponent), 2);
    return end + 2;
}

// Null where six significant digits need another exponent or more than integers; trailing zeros go.
char* write_short_general(char* text, double value) {
    constexpr double kBounds[] = {1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
    constexpr int kSteps = 10;
    constexpr int kMaxDecimals = 9;
    const double magnitude = std::fabs(value);
    if (!(magnitude < kBounds[kSteps])) return nullptr;
    if (value != 0.0 && magnitude < kBounds[0]) {
        return write_short_exponent(text, std::signbit(value), magnitude);
    }
    int decimals = value != 0.0 ? kMaxDecimals : 0;
    while (decimals > 0 && magnitude >= kBounds[kSteps - decimals])
        --decimals;

    SCALED scaled;
    if (!scale(magnitude, decimals, scaled)) return nullptr;
    if (scaled.whole == 1000000) return nullptr;  // rounded up to where an exponent begins
    char* end = write_scaled(text, std::signbit(value), scaled, decimals);
    if (decimals > 0) {
        end = without_zeros(end);
        if (end[-1] == '.') --end;
    }
    return end;
}

}  // namespace

const char* read_double(const char* first, const char* last, double& value) {
    while (first != last && is_blank(*first))
        ++first;
    const bool negative = first != last && *first == '-';
    if (negative || (first != last && *first == '+')) ++first;
    if (first == last || *first == '-') return nullptr;  // from_chars would take a sign of its own

    double number = 0.0;
    if (const char* const end = read_short_decimal(first, last, number)) {
        value = negative ? -number : number;
        return end;
    }
    const auto read = std::from_chars(first, last, number);
    if (read.ec == std::errc::invalid_argument) return nullptr;
    if (read.ec == std::errc::result_out_of_range) {
        number = magnitude_of(first, read.ptr) > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    value = negative ? -number : number;
    return read.ptr;
}

char* write_fixed(char* text, double value, int decimals) {
    SCALED scaled;
    if (scale(std::fabs(value), decimals, scaled)) {
        return write_scaled(text, std::signbit(value), scaled, decimals);
    }
    return std::to_chars(text, text + kMaxNumberText, value, std::chars_format::fixed, decimals)
        .ptr;
}

char* write_general(char* text, double value) {
    if (char* const end = write_short_general(text, value)) return end;
    return std::to_chars(text, text + kMaxNumberText, value, std::chars_format::general,
                         kGeneralDigits)
        .ptr;
}

}  // namespace tessel
