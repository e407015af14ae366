#include "tessel/base/number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "tessel/base/plain_decimal.h"
#include "tests/support/classic.h"

namespace tessel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(number, integers_read_as_atoi_does) {
    struct {
        const char* text;
        int value;
    } rows[] = {
        {"", 0},
        {"7", 7},
        {" \t\n\v\f\r12", 12},
        {"+3", 3},
        {"-3", -3},
        {"2+", 2},
        {"12abc", 12},
        {"abc", 0},
        {"- 3", 0},
        {"+-3", 0},
        {"0x10", 0},
        {"007", 7},
        {"1e3", 1},
        {"3.9", 3},
        {"--3", 0},
        {"2147483647", 2147483647},
        {"-2147483648", -2147483647 - 1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(to_int(row.text), row.value) << row.text;
}

TEST(number, integers_saturate) {
    EXPECT_EQ(to_int("2147483648"), 2147483647);
    EXPECT_EQ(to_int("-2147483649"), -2147483647 - 1);
    EXPECT_EQ(to_int("99999999999999999999999999"), 2147483647);
    EXPECT_EQ(to_int("-99999999999999999999999999x"), -2147483647 - 1);
    std::int64_t wide = 0;
    const std::string_view text = "-99999999999999999999999999";
    EXPECT_NE(read_integer(text.data(), text.data() + text.size(), wide), nullptr);
    EXPECT_EQ(wide, std::numeric_limits<std::int64_t>::min());
}

TEST(number, negative_count_is_unreadable_for_an_unsigned_field) {
    std::uint64_t count = 5;
    const auto read = [&count](std::string_view text) {
        return read_integer(text.data(), text.data() + text.size(), count) != nullptr;
    };
    EXPECT_FALSE(read("-1"));
    EXPECT_EQ(count, 5u);
    EXPECT_TRUE(read("-0"));
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(read("99999999999999999999999"));
    EXPECT_EQ(count, std::numeric_limits<std::uint64_t>::max());
}

TEST(number, doubles_read_as_atof_does) {
    struct {
        const char* text;
        double value;
    } rows[] = {
        {"", 0.0},
        {"20", 20.0},
        {"  -1.5e2xyz", -150.0},
        {"+.5", 0.5},
        {"5.", 5.0},
        {".", 0.0},
        {"e5", 0.0},
        {"1e", 1.0},
        {"1e+", 1.0},
        {"1e5", 1e5},
        {"0x1p4", 0.0},
        {"-0x1p4", -0.0},
        {"inf", kInfinity},
        {"-INF", -kInfinity},
        {"Infinity9", kInfinity},
        {"+-1", 0.0},
        {"--1", 0.0},
        {"1,5", 1.0},
        {"1.2.3", 1.2},
        {"15.9x", 15.9},
        {"0.1", 0.1},
        {"123456789012345678", 123456789012345678.0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(to_double(row.text), row.value) << row.text;
        EXPECT_EQ(std::signbit(to_double(row.text)), std::signbit(row.value)) << row.text;
    }
    EXPECT_TRUE(std::isnan(to_double("nan")));
    EXPECT_TRUE(std::isnan(to_double("-NaN(12)")));
}

TEST(number, doubles_overflow_to_infinity_and_underflow_to_0) {
    EXPECT_EQ(to_double("1e400"), kInfinity);
    EXPECT_EQ(to_double("-1e99999999999999999999"), -kInfinity);
    EXPECT_EQ(to_double(std::string(400, '9')), kInfinity);
    EXPECT_EQ(to_double("0." + std::string(800, '1') + "e400"), kInfinity);
    EXPECT_EQ(to_double("1e-400"), 0.0);
    EXPECT_EQ(to_double("1e-99999999999999999999"), 0.0);
    EXPECT_EQ(to_double("0e99999999999999999999"), 0.0);
    EXPECT_EQ(to_double("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_EQ(to_double("4.9406564584124654e-324"), 4.9406564584124654e-324);
    EXPECT_EQ(to_double("0." + std::string(400, '0') + "1e400"), 0.1);
}

TEST(number, random_texts_read_as_strtod_and_strtoll_read_them) {
    std::mt19937 random(20140307);
    const std::string_view letters = "0123456789012345678901234567890123456789..ee+- ";
    for (int round = 0; round < 200000; ++round) {
        std::string text(std::uniform_int_distribution<std::size_t>(0, 14)(random), ' ');
        for (char& c : text) {
            c = letters[std::uniform_int_distribution<std::size_t>(0, letters.size() - 1)(random)];
        }
        char* end = nullptr;
        const double expected = test::parsed_double(text.c_str(), &end);
        double value = -77.0;
        const char* read = read_double(text.data(), text.data() + text.size(), value);
        if (end == text.c_str()) {
            ASSERT_EQ(read, nullptr) << text;
        } else {
            ASSERT_EQ(value, expected) << text;
            ASSERT_EQ(read - text.data(), end - text.c_str()) << text;
        }
        const long long integer = std::strtoll(text.c_str(), &end, 10);
        std::int64_t wide = 0;
        const char* readInteger = read_integer(text.data(), text.data() + text.size(), wide);
        ASSERT_EQ(readInteger == nullptr, end == text.c_str()) << text;
        ASSERT_EQ(wide, integer) << text;
    }
}

std::string hundredths_text(double value) {
    char text[kMaxNumberText];
    return std::string(text, write_hundredths(text, value));
}

TEST(number, doubles_are_written_as_printf_writes_them) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-12, 12);
    for (int round = 0; round < 100000; ++round) {
        const double value = mantissa(random) * std::pow(10.0, exponent(random));
        const std::string expected =
            test::printed("%.6lf %.2lf %.2lf %.6g", value, value, value, value);
        std::string text =
            fixed_text(value, 6) + ' ' + fixed_text(value, 2) + ' ' + hundredths_text(value) + ' ';
        append_general(text, value);
        ASSERT_EQ(text, expected);
    }
    EXPECT_EQ(fixed_text(1e300, 6).size(), 301u + 7u);
    for (const auto write :
         {+[](double value) { return fixed_text(value, 2); }, &hundredths_text}) {
        EXPECT_EQ(write(-0.0), "-0.00");
        EXPECT_EQ(write(-0.004), "-0.00");
        EXPECT_EQ(write(9999999.995), "9999999.99");  // a little less, as a double
        EXPECT_EQ(write(kInfinity), "inf");
    }
    std::string text;
    append_general(text, 100000.0);
    append_general(text, 1e6);
    EXPECT_EQ(text, "1000001e+06");
}

// Numbers near a decision: halves of the last decimal and their neighbours, powers of ten and
// theirs.
TEST(number, rounding_is_that_of_printf_at_every_border) {
    std::mt19937_64 random(8);
    std::vector<double> values{0.0,  1e-4,   9.9999995e-5, 999999.5,  999999.4999, 1e6,   1e15,
                               1e16, 0.5,    1.5,          2.5,       0.125,       0.375, 1e-9,
                               5e-7, 4.9e-7, 1e300,        kInfinity, 5e-10,       1e-320};
    for (int round = 0; round < 20000; ++round) {
        const double steps =
            static_cast<double>(std::uniform_int_distribution<std::int64_t>(0, 40'000'000)(random));
        const double unit = std::pow(10.0, std::uniform_int_distribution<int>(-10, 6)(random));
        values.push_back(steps / 64.0);
        values.push_back(steps * unit);
        values.push_back((steps + 0.5) * unit);
        values.push_back((steps + 0.5) / 1e6);
    }
    for (const double middle : values) {
        for (const double size :
             {middle, std::nextafter(middle, 0.0), std::nextafter(middle, 1e308)}) {
            for (const double value : {size, -size}) {
                const std::string expected =
                    test::printed("%.6lf %.2lf %.2lf %.0lf %.9lf %.15lf %.6g", value, value, value,
                                  value, value, value, value);
                std::string text = fixed_text(value, 6) + ' ' + fixed_text(value, 2) + ' ' +
                                   hundredths_text(value) + ' ' + fixed_text(value, 0) + ' ' +
                                   fixed_text(value, 9) + ' ' + fixed_text(value, 15) + ' ';
                append_general(text, value);
                ASSERT_EQ(text, expected);
            }
        }
    }
}

// Short decimals are read another way than the rest: every length around the border.
TEST(number, decimals_of_every_length_read_as_strtod_reads_them) {
    std::mt19937_64 random(9);
    for (int round = 0; round < 200000; ++round) {
        const auto digits = std::uniform_int_distribution<std::size_t>(1, 20)(random);
        const auto point = std::uniform_int_distribution<std::size_t>(0, 22)(random);
        std::string text;
        for (std::size_t i = 0; i < digits; ++i) {
            if (i == point) text += '.';
            text += static_cast<char>('0' + std::uniform_int_distribution<int>(0, 9)(random));
        }
        if (round % 7 == 0) text += "e-3";
        ASSERT_EQ(to_double(text), test::parsed_double(text.c_str())) << text;
    }
}

// The text of the number that is read from the front of 16 characters, "-" for none.
std::string plain_part(std::string text) {
    text.resize(kPlainDecimalReach, ' ');
    double value = 0.0;
    const char* const end = read_plain_decimal(text.data(), value);
    if (end == nullptr) return "-";
    return text.substr(0, static_cast<std::size_t>(end - text.data()));
}

TEST(number, plain_decimals_have_seven_digits_and_eight_decimals) {
    struct {
        const char* text;
        const char* read;
    } rows[] = {
        {"1 ", "1"},
        {"1234567 ", "1234567"},
        {"12345678 ", "-"},
        {"1234567.12345678", "1234567.12345678"},
        {"123456.123456789", "-"},
        {"0.12345678", "0.12345678"},
        {"0.123456789", "-"},
        {"100.25\n", "100.25"},
        {"100.25e3", "100.25"},
        {"100.25.5", "100.25"},
        {"12,5", "12"},
        {"12\xB0.5", "12"},
        {"12.5\x8A", "12.5"},
        {"1.", "-"},
        {".5", "-"},
        {"-1", "-"},
        {" 1", "-"},
        {"", "-"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(plain_part(row.text), row.read) << row.text;
}

TEST(number, plain_decimals_read_as_strtod_reads_them) {
    std::mt19937 random(9);
    const auto append_digits = [&random](std::string& text, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            text += static_cast<char>('0' + random() % 10);
    };
    for (int round = 0; round < 200000; ++round) {
        std::string text;
        append_digits(text, 1 + random() % 7);
        if (random() % 8 != 0) append_digits(text += '.', 1 + random() % 8);
        const double expected = test::parsed_double(text.c_str());
        const std::size_t length = text.size();
        text.resize(kPlainDecimalReach, " \t\r\n"[random() % 4]);
        double value = 0.0;
        ASSERT_EQ(read_plain_decimal(text.data(), value), text.data() + length) << text;
        ASSERT_EQ(value, expected) << text;
    }
}

TEST(number, truncation_saturates) {
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(truncated(1.999), 1);
    EXPECT_EQ(truncated(-1.999), -1);
    EXPECT_EQ(truncated(1e300), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(truncated(-1e300), kLowest + 1);
    EXPECT_EQ(truncated(kInfinity), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(truncated(std::numeric_limits<double>::quiet_NaN()), kLowest);
}

}  // namespace
}  // namespace tessel
