#include "tessel/base/message_text.h"

#include <gtest/gtest.h>

namespace tessel {
namespace {

TEST(message_text, is_cut_at_255_characters) {
    EXPECT_EQ(message_text("Invalid: ", -5, ", ", std::size_t{7}), "Invalid: -5, 7");
    EXPECT_EQ(message_text(std::string(300, 'a'), 1), std::string(255, 'a'));
}

TEST(message_text, characters_come_as_they_are) {
    EXPECT_EQ(message_text('K', " ", 'K' + 0), "K 75");
    EXPECT_EQ(joined_text('\0'), std::string(1, '\0'));
}

}  // namespace
}  // namespace tessel
