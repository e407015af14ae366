#include <gtest/gtest.h>

#include "tessel/spectra/spectrum.h"

namespace tessel {
namespace {

std::string title_of(const std::string& title) {
    std::string out = "old";
    _get_title(title, out);
    return out;
}

std::string scan_of(const std::string& title) {
    std::string out = "old";
    _get_scanno(title, out);
    return out;
}

std::string title_and_scan_of(const std::string& title) {
    std::string out = "old";
    _get_title_scanno(title, out);
    return out;
}

TEST(titles, full_title_is_taken_apart_and_joined_without_dots) {
    EXPECT_EQ(title_of("a.b.12.12.2.0.dta"), "ab");
    EXPECT_EQ(scan_of("a.b.12.12.2.0.dta"), "12");
    EXPECT_EQ(title_and_scan_of("a.b.12.12.2.0.dta"), "ab12");
}

TEST(titles, every_number_of_pieces_follows_its_rule) {
    const struct {
        const char* title;
        const char* stem;
        const char* scan;
        const char* both;
    } rows[] = {
        {"", "", "", ""},
        {"x", "x", "x", "x"},
        {"x.dta", "xdta", "dta", "xdta"},
        {"a.1.2", "a1", "1", "a1"},
        {"a.1.2.3", "a1", "1", "a1"},
        {"a.7.8.2.dta", "a7", "7", "a7"},
        {"a.7.8.2.0.dta", "a", "8", "a7"},
        {"a.b.7.8.2.0.dta", "ab", "8", "ab7"},
        {"a.b.c.7.8.2.0.dta", "abc", "8", "abc7"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(title_of(row.title), row.stem) << row.title;
        EXPECT_EQ(scan_of(row.title), row.scan) << row.title;
        EXPECT_EQ(title_and_scan_of(row.title), row.both) << row.title;
    }
}

TEST(titles, empty_pieces_count) {
    EXPECT_EQ(title_of("....."), "");
    EXPECT_EQ(scan_of("a..b..c.d"), "b");
    EXPECT_EQ(title_of("a..b..c.d"), "a");
    EXPECT_EQ(title_and_scan_of("a..b..c.d"), "a");
    EXPECT_EQ(title_of("."), "");
    EXPECT_EQ(scan_of("a."), "");
    EXPECT_EQ(title_of(".a"), "a");
}

TEST(titles, result_may_replace_the_title_itself) {
    std::string title = "a.b.12.12.2.0.dta";
    _get_title_scanno(title, title);
    EXPECT_EQ(title, "ab12");
    title = "a.b.12.12.2.0.dta";
    _get_scanno(title, title);
    EXPECT_EQ(title, "12");
    _get_title(title, title);
    EXPECT_EQ(title, "12");
}

TEST(titles, zero_bytes_and_long_pieces_are_ordinary) {
    using namespace std::string_literals;
    EXPECT_EQ(title_of("a\0b.1.1.1.0.dta"s), "a\0b"s);
    EXPECT_EQ(title_of(std::string(100000, 'x') + ".1.1.1.0.dta"), std::string(100000, 'x'));
    EXPECT_EQ(scan_of(std::string(100000, '.')), "");
}

}  // namespace
}  // namespace tessel
