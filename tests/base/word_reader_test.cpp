#include "tessel/base/word_reader.h"

#include <gtest/gtest.h>

namespace tessel {
namespace {

TEST(word_reader, takes_words_and_numbers_from_left_to_right) {
    CWordReader words("  M\tNORMAL 15.9x 2\n-3 ");
    std::string sites;
    std::string_view position;
    double mass = 0.0;
    std::string rest;
    std::uint64_t count = 0;
    int last = 0;
    EXPECT_TRUE(words.Word(sites) && words.Word(position) && words.Read(mass));
    EXPECT_TRUE(words.Word(rest) && words.Read(count) && words.Read(last));
    EXPECT_EQ(sites, "M");
    EXPECT_EQ(position, "NORMAL");
    EXPECT_EQ(mass, 15.9);
    EXPECT_EQ(rest, "x");
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(last, -3);
    EXPECT_FALSE(words.Word(rest));
    EXPECT_EQ(rest, "x");
}

TEST(word_reader, after_a_field_that_is_no_number_nothing_is_read) {
    CWordReader words("1 x 2");
    int first = 9;
    int second = 9;
    int third = 9;
    EXPECT_TRUE(words.Read(first));
    EXPECT_FALSE(words.Read(second));
    EXPECT_FALSE(words.Read(third));
    EXPECT_FALSE(words.Good());
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(third, 9);
}

}  // namespace
}  // namespace tessel
