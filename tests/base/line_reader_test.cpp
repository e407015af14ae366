#include "tessel/base/line_reader.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using Lines = std::vector<std::string>;

Lines lines_of(const std::string& bytes, std::size_t piece = kAnyLength) {
    const test::CTempFolder folder;
    CLineReader reader(folder.Write("text", bytes), piece);
    EXPECT_TRUE(reader.IsOpen());
    Lines lines;
    for (std::string_view line; reader.ReadLine(line);)
        lines.emplace_back(line);
    EXPECT_FALSE(reader.Failed());
    return lines;
}

TEST(line_reader, line_ends_at_a_line_feed_or_at_the_end_of_the_file) {
    EXPECT_EQ(lines_of(""), Lines{});
    EXPECT_EQ(lines_of("\n"), Lines{""});
    EXPECT_EQ(lines_of("a\nb"), (Lines{"a", "b"}));
    EXPECT_EQ(lines_of("a\n\nb\n"), (Lines{"a", "", "b"}));
}

TEST(line_reader, one_carriage_return_is_dropped) {
    EXPECT_EQ(lines_of("a\r\nb\r\r\nc\r"), (Lines{"a", "b\r", "c"}));
    EXPECT_EQ(lines_of("a\rb\n\r\n"), (Lines{"a\rb", ""}));
}

TEST(line_reader, byte_order_mark_is_skipped_at_the_start_only) {
    EXPECT_EQ(lines_of("\xEF\xBB\xBF"
                       "a\n\xEF\xBB\xBF"
                       "b"),
              (Lines{"a",
                     "\xEF\xBB\xBF"
                     "b"}));
    EXPECT_EQ(lines_of("\xEF\xBB\xBF"), Lines{});
    EXPECT_EQ(lines_of("\xEF\xBB"), Lines{"\xEF\xBB"});
}

TEST(line_reader, last_line_without_a_line_feed_keeps_its_bytes) {
    EXPECT_EQ(lines_of("a\nbcdef"), (Lines{"a", "bcdef"}));
    EXPECT_EQ(lines_of("\xEF\xBB\xBFK=Value"), Lines{"K=Value"});
    EXPECT_EQ(lines_of("a\nbcdef", kLinePiece), (Lines{"a", "bcdef"}));
}

// The size of the buffer, where the last line just fills it, and its neighbours.
TEST(line_reader, last_line_that_fills_the_buffer_comes_whole) {
    for (const std::size_t length : {131071u, 131072u, 131073u, 262144u}) {
        std::string line(length, 'x');
        for (std::size_t i = 0; i < length; ++i)
            line[i] = static_cast<char>('a' + i % 23);
        EXPECT_EQ(lines_of(line), Lines{line});
        EXPECT_EQ(lines_of("first\n" + line), (Lines{"first", line}));
    }
}

TEST(line_reader, zero_bytes_and_end_of_file_characters_are_ordinary) {
    const std::string bytes(
        "a\0b\n\x1A"
        "c\n",
        7);
    EXPECT_EQ(lines_of(bytes), (Lines{std::string("a\0b", 3),
                                      "\x1A"
                                      "c"}));
}

TEST(line_reader, missing_file_and_folder_are_not_open) {
    const test::CTempFolder folder;
    for (const std::string& path : {folder.Path("missing"), folder.Path(), std::string()}) {
        CLineReader reader(path);
        EXPECT_FALSE(reader.IsOpen());
        std::string_view line;
        EXPECT_FALSE(reader.ReadLine(line));
    }
}

TEST(line_reader, line_of_any_length_comes_whole) {
    const std::string longLine(1'000'000, 'x');
    EXPECT_EQ(lines_of("a\n" + longLine + "\nb"), (Lines{"a", longLine, "b"}));
}

TEST(line_reader, longer_lines_come_in_pieces) {
    const std::string piece(kLinePiece, 'x');
    EXPECT_EQ(lines_of(piece + "yz\nb", kLinePiece), (Lines{piece, "yz", "b"}));
    EXPECT_EQ(lines_of(piece + piece + "y", kLinePiece), (Lines{piece, piece, "y"}));
    EXPECT_EQ(lines_of(piece.substr(1) + "\nb", kLinePiece), (Lines{piece.substr(1), "b"}));
}

TEST(line_reader, full_piece_leaves_its_line_end_as_an_empty_line) {
    const std::string piece(kLinePiece, 'x');
    EXPECT_EQ(lines_of(piece + "\nb", kLinePiece), (Lines{piece, "", "b"}));
    EXPECT_EQ(lines_of(piece + "\r\nb", kLinePiece), (Lines{piece, "", "b"}));
    EXPECT_EQ(lines_of(piece, kLinePiece), Lines{piece});
}

// What fgets would give with a buffer of piece + 1, line feeds removed.
Lines naive_pieces(const std::string& bytes, std::size_t piece) {
    Lines lines;
    std::size_t position = 0;
    while (position < bytes.size()) {
        std::string line;
        bool ended = false;
        while (!ended && position < bytes.size() && line.size() < piece) {
            ended = bytes[position] == '\n';
            if (!ended) line += bytes[position];
            ++position;
        }
        lines.push_back(line);
    }
    return lines;
}

TEST(line_reader, random_texts_are_cut_as_by_a_plain_buffer) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        const std::size_t piece = std::uniform_int_distribution<std::size_t>(1, 9)(random);
        std::string bytes(std::uniform_int_distribution<std::size_t>(0, 60)(random), 'a');
        for (char& c : bytes) {
            const bool ends = std::uniform_int_distribution<int>(0, 5)(random) == 0;
            c = ends ? '\n' : static_cast<char>('a' + random() % 26);
        }
        ASSERT_EQ(lines_of(bytes, piece), naive_pieces(bytes, piece)) << bytes;
    }
}

// Which lines are left behind each one that begins so.
template <class Skip>
Lines lines_behind(const std::string& path, std::size_t piece, Skip skip) {
    CLineReader reader(path, piece);
    Lines lines;
    while (skip(reader)) {
        std::string_view line;
        lines.emplace_back(reader.ReadLine(line) ? line : "no more");
    }
    return lines;
}

bool skip_line_by_line(CLineReader& reader) {
    for (std::string_view line; reader.ReadLine(line);) {
        if (line.starts_with("BE")) return true;
    }
    return false;
}

TEST(line_reader, lines_are_skipped_as_if_each_were_read) {
    const test::CTempFolder folder;
    std::mt19937 random(4);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = round % 5 == 0 ? "\xEF\xBB\xBF" : "";
        if (round % 100 == 0) bytes += std::string(131072 - random() % 40, "x\nB"[random() % 3]);
        for (std::size_t left = random() % 80; left > 0; --left)
            bytes += "BBEEx\n\n\r"[random() % 8];
        const std::string path = folder.Write("text", bytes);
        const std::size_t piece = round % 2 == 0 ? kLinePiece : 2 + random() % 9;
        const auto skip = [](CLineReader& reader) { return reader.SkipThrough("BE"); };
        ASSERT_EQ(lines_behind(path, piece, skip), lines_behind(path, piece, skip_line_by_line))
            << bytes;
    }
}

TEST(line_reader, lines_may_be_taken_off_the_buffer) {
    const test::CTempFolder folder;
    CLineReader reader(folder.Write("text",
                                    "\xEF\xBB\xBF"
                                    "a\nbc\nd\ne"));
    EXPECT_EQ(reader.Held(), "");
    std::string_view line;
    ASSERT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(reader.Held(), "bc\nd\ne");
    reader.Take(3);
    ASSERT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, "d");
}

TEST(line_reader, lines_across_the_end_of_the_buffer_stay_whole) {
    std::mt19937 random(2);
    Lines expected;
    std::string bytes;
    while (bytes.size() < 1'500'000) {
        const std::size_t length = std::uniform_int_distribution<std::size_t>(0, 3000)(random);
        expected.emplace_back(length, static_cast<char>('a' + length % 26));
        bytes += expected.back() + (length % 2 == 0 ? "\n" : "\r\n");
    }
    EXPECT_EQ(lines_of(bytes), expected);
    EXPECT_EQ(lines_of(bytes, kLinePiece), expected);
}

}  // namespace
}  // namespace tessel
