#include "tessel/base/padded_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <random>
#include <string>

#include "tessel/base/number.h"

namespace tessel {
namespace {

// A text as it lies in a buffer: nothing but the padding may be read behind it.
class CPadded {
public:
    explicit CPadded(const std::string& text) : m_strText(text + std::string(kTextPadding, '\0')) {}
    const char* Text() const { return m_strText.data(); }

private:
    std::string m_strText;
};

// The length of the number at the front, 0 when the text is refused.
template <class Value>
std::size_t length_of(const std::string& text, Value& value) {
    const CPadded padded(text);
    const char* const end = read_short(padded.Text(), value);
    return end == nullptr ? 0 : static_cast<std::size_t>(end - padded.Text());
}

TEST(padded_text, ordinary_numbers_are_read_up_to_what_follows) {
    int integer = 0;
    EXPECT_EQ(length_of("7\t", integer), 1U);
    EXPECT_EQ(integer, 7);
    EXPECT_EQ(length_of("-12345678", integer), 9U);
    EXPECT_EQ(integer, -12345678);
    unsigned count = 0;
    EXPECT_EQ(length_of("255;", count), 3U);
    EXPECT_EQ(count, 255U);
    double real = 0.0;
    EXPECT_EQ(length_of("1075.367277\t", real), 11U);
    EXPECT_EQ(real, 1075.367277);
    EXPECT_EQ(length_of("-2.07114e-05\n", real), 12U);
    EXPECT_EQ(real, -2.07114e-05);
    EXPECT_EQ(length_of("5. ", real), 2U);
    EXPECT_EQ(real, 5.0);
}

TEST(padded_text, other_forms_are_refused) {
    double real = 0.0;
    for (const char* text : {"", "-", "+1", ".5", "x", "nan", "1e5", "1e-", "1e-99", "1.5e-22",
                             "12345678.12345678", "\t1"}) {
        EXPECT_EQ(length_of(text, real), 0U) << text;
    }
    int integer = 0;
    for (const char* text : {"", "-", "+1", "x", "--1", " 1"})
        EXPECT_EQ(length_of(text, integer), 0U) << text;
    unsigned count = 0;
    EXPECT_EQ(length_of("-1", count), 0U);
}

TEST(padded_text, sign_of_a_refused_text_is_not_taken) {
    double real = 7.0;
    EXPECT_EQ(length_of("-x", real), 0U);
    EXPECT_EQ(real, 7.0);
}

// Random texts of the characters of numbers: what is read up to a blank is what the general readers
// read, to the bit.
TEST(padded_text, numbers_before_a_blank_are_those_of_the_general_readers) {
    std::mt19937 random(20);
    const std::string alphabet = "00112233445566778899..--e+";
    int readShort = 0;
    for (int round = 0; round < 300000; ++round) {
        std::string text;
        for (auto left = 1 + random() % 14; left > 0; --left)
            text += alphabet[random() % alphabet.size()];
        text += round % 2 == 0 ? '\t' : '\n';
        const CPadded padded(text);
        const char* const last = padded.Text() + text.size();
        double real = 1.0;
        double generalReal = 2.0;
        const char* end = read_short(padded.Text(), real);
        if (end != nullptr && is_blank(*end)) {
            ++readShort;
            ASSERT_EQ(end, read_double(padded.Text(), last, generalReal)) << text;
            ASSERT_EQ(std::bit_cast<std::uint64_t>(real), std::bit_cast<std::uint64_t>(generalReal))
                << text;
        }
        int integer = 1;
        int generalInteger = 2;
        end = read_short(padded.Text(), integer);
        if (end != nullptr && is_blank(*end)) {
            ASSERT_EQ(end, read_integer(padded.Text(), last, generalInteger)) << text;
            ASSERT_EQ(integer, generalInteger) << text;
        }
    }
    EXPECT_GT(readShort, 10000);
}

TEST(padded_text, words_end_at_blanks_and_nul_characters_only) {
    for (std::size_t length = 0; length < 40; ++length) {
        for (const char* end : {" ", "\t", "\n", "\v", "\f", "\r", ""}) {
            const std::string word = std::string(length, '\x80') + '\x01' + '\x1F' + '!';
            const CPadded padded(word + end);
            EXPECT_EQ(end_of_word(padded.Text()) - padded.Text(),
                      static_cast<std::ptrdiff_t>(word.size()));
        }
    }
}

}  // namespace
}  // namespace tessel
