#include "tessel/condition/utilities.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <random>

#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using Fields = std::vector<std::string>;

Fields dropped(const std::string& text, char delimiter = ';') {
    Fields fields;
    CCondition().StringSplit(text, delimiter, fields);
    return fields;
}

Fields kept(const std::string& text, char delimiter = ';') {
    Fields fields;
    _str_split(text, fields, delimiter);
    return fields;
}

TEST(splitters, differ_in_empty_fields) {
    struct {
        const char* text;
        Fields dropped;
        Fields kept;
    } rows[] = {
        {"K;", {"K"}, {"K", ""}},
        {"a;;b;", {"a", "b"}, {"a", "", "b", ""}},
        {"", {}, {""}},
        {";", {}, {"", ""}},
        {"abc", {"abc"}, {"abc"}},
        {";a", {"a"}, {"", "a"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(dropped(row.text), row.dropped) << row.text;
        EXPECT_EQ(kept(row.text), row.kept) << row.text;
    }
}

TEST(splitters, append_to_what_is_there) {
    Fields fields{"x"};
    CCondition().StringSplit("a;b", ';', fields);
    _str_split("c;", fields, ';');
    EXPECT_EQ(fields, (Fields{"x", "a", "b", "c", ""}));
}

TEST(splitters, random_texts_are_cut_as_character_by_character) {
    std::mt19937 random(5);
    for (int round = 0; round < 2000; ++round) {
        std::string text(std::uniform_int_distribution<std::size_t>(0, 12)(random), ' ');
        for (char& c : text)
            c = "ab;\0"[std::uniform_int_distribution<int>(0, 3)(random)];
        Fields all{""};
        for (const char c : text) {
            if (c == ';') {
                all.emplace_back();
            } else {
                all.back() += c;
            }
        }
        ASSERT_EQ(kept(text), all);
        std::erase(all, "");
        ASSERT_EQ(dropped(text), all);
    }
}

TEST(add_slash, makes_a_path_end_with_one_backslash) {
    struct {
        const char* path;
        const char* expected;
    } rows[] = {{"C:\\data", "C:\\data\\"},
                {"C:\\data\\", "C:\\data\\"},
                {"a/", "a/\\"},
                {"", ""},
                {"\\", "\\"},
                {"a", "a\\"}};
    for (const auto& row : rows) {
        std::string path = row.path;
        AddSlash(path);
        EXPECT_EQ(path, row.expected);
    }
}

struct LAST_LINE {
    std::string m_strText;
    std::size_t m_tSize;
};

LAST_LINE last_line(const std::string& bytes, std::size_t size) {
    const test::CTempFolder folder;
    const FilePtr file = open_file(folder.Write("lines", bytes), "rb");
    char* buffer = new char[size + 1]();
    EXPECT_EQ(_get_line(file.get(), &buffer, size), 0);
    const LAST_LINE last{buffer, size};
    delete[] buffer;
    return last;
}

TEST(get_line, leaves_the_last_line_in_the_buffer) {
    const LAST_LINE last = last_line("first\nsecond\r\nlast\n", 16);
    EXPECT_EQ(last.m_strText, "last\n");
    EXPECT_EQ(last.m_tSize, 16u);
}

TEST(get_line, keeps_the_carriage_return) {
    EXPECT_EQ(last_line("abc\r\n", 16).m_strText, "abc\r\n");
}

TEST(get_line, grows_the_buffer_by_the_size_on_entry) {
    const LAST_LINE last = last_line("0123456789\nab", 4);
    // The line and its end fill the 3, 7 and 11 characters of sizes 4, 8 and 12.
    EXPECT_EQ(last.m_tSize, 16u);
    EXPECT_EQ(last.m_strText, "0123456789\nab");
}

TEST(get_line, line_that_just_fits_is_followed_by_the_next_one) {
    // "abc" fills 3 of 4 characters: its line end, too, is read into the larger buffer.
    const LAST_LINE last = last_line("abc\nx\n", 4);
    EXPECT_EQ(last.m_tSize, 8u);
    EXPECT_EQ(last.m_strText, "x\n");
}

TEST(get_line, size_of_one_character_and_its_terminator_grows_by_two) {
    const LAST_LINE last = last_line("abc\n", 2);
    EXPECT_EQ(last.m_strText, "abc\n");
    EXPECT_EQ(last.m_tSize, 6u);
}

TEST(get_line, long_line_comes_whole) {
    const std::string line(100'000, 'y');
    const LAST_LINE last = last_line("a\n" + line, 1000);
    EXPECT_EQ(last.m_strText, line);
    EXPECT_EQ(last.m_tSize, 101'000u);
}

TEST(get_line, sizes_0_and_1_are_refused) {
    for (std::size_t size : {std::size_t{0}, std::size_t{1}}) {
        const test::CTempFolder folder;
        const FilePtr file = open_file(folder.Write("lines", "abc\n"), "rb");
        char kept[] = "kept";
        char* buffer = kept;
        EXPECT_EQ(_get_line(file.get(), &buffer, size), 0);
        EXPECT_EQ(buffer, kept);
        EXPECT_STREQ(kept, "kept");
        EXPECT_EQ(std::ftell(file.get()), 0);
    }
}

TEST(get_line, empty_file_leaves_the_buffer) {
    EXPECT_EQ(last_line("", 8).m_strText, "");
}

TEST(get_line, zero_bytes_do_not_stop_it) {
    EXPECT_EQ(last_line(std::string("\0\0\0\nab\n", 7), 4).m_strText, "ab\n");
}

TEST(system, success_returns) {
    const test::CTempFolder folder;
    const test::CWorkingFolder here(folder.Path());
    System("echo done> result", false);
    EXPECT_TRUE(folder.Has("result"));
}

TEST(system, failing_foreground_command_ends_the_process) {
    EXPECT_ENDS_PROCESS(System("exit 3", false), "", "The Program is exited when called exit\n");
}

TEST(system, failing_background_command_is_not_looked_at) {
    System("exit 3", true);
    System("tessel_no_such_program", true);
}

TEST(sleep, lasts_as_long_as_asked) {
    const auto start = std::chrono::steady_clock::now();
    TSleep(30);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
    TSleep(0);
    TSleep(-1000);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(file_time, target_is_valid_unless_it_is_older) {
    const test::CTempFolder folder;
    const std::string source = folder.Write("source", "s");
    const std::string target = folder.Write("target", "t");
    test::set_file_age(source, 100);
    test::set_file_age(target, 50);
    EXPECT_TRUE(_IsValidFileTime(target, source));
    EXPECT_FALSE(_IsValidFileTime(source, target));
}

TEST(file_time, equal_seconds_are_valid) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("file", "s");
    EXPECT_TRUE(_IsValidFileTime(path, path));
}

// Some file systems keep whole seconds only; the answer is the same on all.
TEST(file_time, parts_of_a_second_do_not_count) {
    const test::CTempFolder folder;
    const std::string source = folder.Write("source", "s");
    const std::string target = folder.Write("target", "t");
    const auto second =
        std::chrono::floor<std::chrono::seconds>(std::filesystem::last_write_time(source));
    std::filesystem::last_write_time(source, second + std::chrono::milliseconds(800));
    std::filesystem::last_write_time(target, second + std::chrono::milliseconds(200));
    EXPECT_TRUE(_IsValidFileTime(target, source));
    std::filesystem::last_write_time(target, second - std::chrono::milliseconds(1));
    EXPECT_FALSE(_IsValidFileTime(target, source));
}

TEST(file_time, missing_file_is_never_valid) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("file", "s");
    EXPECT_FALSE(_IsValidFileTime(folder.Path("missing"), path));
    EXPECT_FALSE(_IsValidFileTime(path, folder.Path("missing")));
}

}  // namespace
}  // namespace tessel
