// Names that only some systems allow.

#include <gtest/gtest.h>

#include "tests/faults/search_in_folder.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

TEST(posix_paths, may_hold_quotes_and_every_other_sign) {
    for (const std::string folder :
         {"say \"yes\"/", "\"/", "a|b<c>d?e*f:g/", "tab\tx/", "trailing /", "dot./"}) {
        SCOPED_TRACE(folder);
        EXPECT_EQ(test::captured_output([&] { test::search_in(folder); }), "");
    }
}

TEST(posix_paths, need_not_be_utf_8) {
    EXPECT_EQ(test::captured_output([] { test::search_in("M\xFCnchen \xFF\x80/"); }), "");
}

}  // namespace
}  // namespace tessel
