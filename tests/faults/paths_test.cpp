// Paths as users have them: every file of a search in folders with strange and long names.

#include <gtest/gtest.h>

#include "tests/faults/search_in_folder.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

using test::captured_output;
using test::search_in;

TEST(paths, may_hold_blanks_and_signs_of_the_shell) {
    for (const std::string folder :
         {"a b/", " leading and trailing. x/", "$HOME/", "`id`/", "it's/", "a;b&c/", "%PATH%/",
          "(x)[y]{z}/", "~/", "-n/", "#1/", "!/", "^caret/", "a=b/", "##/", "[section]/"}) {
        SCOPED_TRACE(folder);
        EXPECT_EQ(captured_output([&] { search_in(folder); }), "");
    }
}

TEST(paths, may_hold_letters_of_any_language) {
    for (const std::string folder :
         {"M\xC3\xBCnchen/", "\xE8\x9B\x8B\xE7\x99\xBD/",
          "\xD0\x91\xD0\xB5\xD0\xBB\xD0\xBA\xD0\xB8/", "\xF0\x9F\xA7\xAA/"}) {
        SCOPED_TRACE(folder);
        EXPECT_EQ(captured_output([&] { search_in(folder); }), "");
    }
}

TEST(paths, may_hold_both_separators) {
    for (const std::string text :
         {"a/b/", "a\\b\\", "a\\b/", "a//b/", "a\\\\b\\\\", "a/.\\b\\", "a\\..\\a/b/"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(captured_output([&] { search_in("a/b", text); }), "");
    }
}

TEST(paths, may_be_longer_than_260_characters) {
    for (const std::size_t depth : {std::size_t{3}, std::size_t{12}}) {
        std::string folder;
        for (std::size_t i = 0; i < depth; ++i)
            folder += std::string(100, 'x') + '/';
        EXPECT_EQ(captured_output([&] { search_in(folder); }), "");
    }
}

}  // namespace
}  // namespace tessel
