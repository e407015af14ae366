#include "tessel/chem/composition.h"

#include <gtest/gtest.h>

namespace tessel {
namespace {

std::string groups(std::string_view composition) {
    std::string text;
    visit_composition(composition, [&text](std::string_view symbol, std::string_view count) {
        text.append(symbol).append("=").append(count).append(" ");
    });
    return text;
}

TEST(composition, groups_come_in_order_with_their_count_texts) {
    EXPECT_EQ(groups("C(2)H(-3)15N(+1)"), "C=2 H=-3 15N=+1 ");
    EXPECT_EQ(groups(""), "");
}

TEST(composition, incomplete_pieces_are_skipped) {
    struct {
        const char* text;
        const char* groups;
    } rows[] = {
        {"(5)C(2)", "C=2 "}, {"C()H(1)", "H=1 "}, {"C)H(1)", "H=1 "}, {"C2H3", ""},
        {"))C(1)", "C=1 "},  {"C(1", "C=1 "},     {"C((4)", "C=4 "},  {"C(1(2)", "C=1 "},
        {"C(x)", "C=x "},    {"(", ""},           {"C(", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(groups(row.text), row.groups) << row.text;
}

}  // namespace
}  // namespace tessel
