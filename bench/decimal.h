#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tessel::bench {

// Decimal numbers as fast as they can be done exactly: what the limits read and write with.

inline constexpr std::array<double, 16> kPowers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

inline char* put_integer(char* out, std::uint64_t value) {
    if (value < 10) {
        *out = static_cast<char>('0' + value);
        return out + 1;
    }
    return std::to_chars(out, out + 20, value).ptr;
}

inline char* put_signed(char* out, std::int64_t value) {
    if (value < 0) *out++ = '-';
    const auto bits = static_cast<std::uint64_t>(value);
    return put_integer(out, value < 0 ? -bits : bits);
}

/// `digits` digits, zeros in front included.
inline char* put_digits(char* out, std::uint64_t value, int digits) {
    static constexpr char kPairs[] =
        "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243"
        "4445464748495051525354555657585960616263646566676869707172737475767778798081828384858687"
        "888990919293949596979899";
    int left = digits;
    for (; left >= 2; value /= 100) {
        left -= 2;
        std::memcpy(out + left, kPairs + 2 * (value % 100), 2);
    }
    if (left == 1) *out = static_cast<char>('0' + value % 10);
    return out + digits;
}

__extension__ using Wide = unsigned __int128;

/// value * 10^power for a finite positive value, rounded to the nearest integer, the even one of
/// two: exact, because it is done in integers. The product must stay below 2^127.
inline std::uint64_t scaled(double value, int power) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const int biased = static_cast<int>(bits >> 52);
    const std::uint64_t mantissa =
        (bits & 0xFFFFFFFFFFFFF) | (biased != 0 ? std::uint64_t{1} << 52 : 0);
    const int shift = 1075 - (biased != 0 ? biased : 1);  // value = mantissa / 2^shift
    Wide product = mantissa;
    for (; power > 15; power -= 15)
        product *= std::uint64_t{1000000000000000};
    product *= static_cast<std::uint64_t>(kPowers[static_cast<std::size_t>(power)]);
    if (shift <= 0) return static_cast<std::uint64_t>(product << -shift);
    if (shift > 127) return 0;
    const Wide whole = product >> shift;
    const Wide rest = product - (whole << shift);
    const Wide half = Wide{1} << (shift - 1);
    const bool up = rest > half || (rest == half && (whole & 1) != 0);
    return static_cast<std::uint64_t>(whole) + (up ? 1 : 0);
}

/// As "%.6f".
inline char* put_fixed(char* out, double value) {
    const double size = std::fabs(value);
    if (!(size < 1e12)) {
        return std::to_chars(out, out + 400, value, std::chars_format::fixed, 6).ptr;
    }
    if (std::signbit(value)) *out++ = '-';
    const std::uint64_t millionths = scaled(size, 6);
    out = put_integer(out, millionths / 1000000);
    *out++ = '.';
    return put_digits(out, millionths % 1000000, 6);
}

/// As "%.6g".
inline char* put_general(char* out, double value) {
    constexpr double kSmall = 1e-14;
    if (!(value >= kSmall && value < 1e5)) {
        return std::to_chars(out, out + 32, value, std::chars_format::general, 6).ptr;
    }
    // The decimal exponent, or one less: then there are seven digits.
    int exponent = static_cast<int>(std::floor((std::ilogb(value)) * 0.30102999566398120));
    std::uint64_t digits = scaled(value, 5 - exponent);
    if (digits >= 1000000) digits = scaled(value, 5 - ++exponent);
    if (digits == 1000000) {
        digits = 100000;
        ++exponent;
    }
    char text[6];
    put_digits(text, digits, 6);
    int kept = 6;
    while (kept > 1 && text[kept - 1] == '0')
        --kept;
    const auto copy = [&](int from, int to) {
        for (int i = from; i < to; ++i)
            *out++ = i < kept ? text[i] : '0';
    };
    if (exponent >= 0) {
        copy(0, exponent + 1);
        if (kept > exponent + 1) *out++ = '.';
        copy(exponent + 1, kept);
    } else if (exponent >= -4) {
        *out++ = '0';
        *out++ = '.';
        for (int i = -1; i > exponent; --i)
            *out++ = '0';
        copy(0, kept);
    } else {
        copy(0, 1);
        if (kept > 1) *out++ = '.';
        copy(1, kept);
        *out++ = 'e';
        *out++ = '-';
        out = put_digits(out, static_cast<std::uint64_t>(-exponent), 2);
    }
    return out;
}

}  // namespace tessel::bench
