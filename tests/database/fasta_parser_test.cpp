#include "tessel/database/fasta_parser.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

struct ENTRIES {
    std::size_t counted = 0;
    std::vector<CProtein> proteins;
};

ENTRIES read_stream(std::ifstream& stream) {
    ENTRIES entries;
    CFastaParser parser;
    entries.counted = parser.GetEntryNum(stream);
    CProtein protein;
    while (parser.ReadOnePrteinEntry(protein, stream))
        entries.proteins.push_back(protein);
    return entries;
}

ENTRIES read_text(const std::string& text) {
    const test::CTempFolder folder;
    std::ifstream stream(folder.Write("db.fasta", text), std::ios::binary);
    return read_stream(stream);
}

void expect_protein(const CProtein& protein, const std::string& ac, const std::string& de,
                    const std::string& sq, const std::string& where = "") {
    EXPECT_EQ(protein.m_strAC, ac) << where;
    EXPECT_EQ(protein.m_strDE, de) << where;
    EXPECT_EQ(protein.m_strSQ, sq) << where;
}

TEST(fasta_parser, header_ends_its_accession_at_the_first_blank_or_tab) {
    const struct {
        const char* header;
        const char* ac;
        const char* de;
    } rows[] = {
        {"P1 a protein", "P1", "a protein"},
        {"P1\ta protein", "P1", "a protein"},
        {"P1 \t a \t protein \t ", "P1", "a \t protein"},
        {"P1", "P1", ""},
        {"P1 ", "P1", ""},
        {"P1\t\t", "P1", ""},
        {"", "", ""},
        {" ", "", ""},
        {" P1 a", "", "P1 a"},
        {"sp|P1|X_Y >a >b", "sp|P1|X_Y", ">a >b"},
        {">P1", ">P1", ""},
        {"P1 \v\f", "P1", "\v\f"},
        {"P1 \xC3\xA4\xFF", "P1", "\xC3\xA4\xFF"},
    };
    for (const auto& row : rows) {
        for (const char* lineEnd : {"\n", "\r\n"}) {
            const auto entries = read_text('>' + std::string(row.header) + lineEnd + "AC\n");
            ASSERT_EQ(entries.proteins.size(), 1U) << row.header;
            expect_protein(entries.proteins[0], row.ac, row.de, "AC", row.header);
        }
    }
}

TEST(fasta_parser, one_carriage_return_at_the_end_of_a_header_is_dropped) {
    const auto entries = read_text(">P1 a\r\r\nAC\r\r\n>P2\rb\r");
    ASSERT_EQ(entries.proteins.size(), 2U);
    expect_protein(entries.proteins[0], "P1", "a\r", "AC");
    expect_protein(entries.proteins[1], "P2\rb", "", "");
}

TEST(fasta_parser, wrapped_sequence_is_joined) {
    const auto entries = read_text(">P1 one\nACD\nEFG\nH\n>P2 two\r\nIKL\r\nMN\r\n");
    EXPECT_EQ(entries.counted, 2U);
    ASSERT_EQ(entries.proteins.size(), 2U);
    expect_protein(entries.proteins[0], "P1", "one", "ACDEFGH");
    expect_protein(entries.proteins[1], "P2", "two", "IKLMN");
}

TEST(fasta_parser, only_white_space_is_dropped_from_a_sequence) {
    const std::string kept("acd*-.X>1;\x01\x1A\x7F\x80\xFF\0end", 20);
    const auto entries = read_text(">P1\n A C\tD\vE\fF\rG \n\n \t\n" + kept + "\n");
    ASSERT_EQ(entries.proteins.size(), 1U);
    expect_protein(entries.proteins[0], "P1", "", "ACDEFG" + kept);
}

TEST(fasta_parser, last_line_needs_no_line_end) {
    const auto entries = read_text(">P1\nAC\n>P2 x\nDE");
    EXPECT_EQ(entries.counted, 2U);
    ASSERT_EQ(entries.proteins.size(), 2U);
    expect_protein(entries.proteins[1], "P2", "x", "DE");
}

TEST(fasta_parser, entries_may_be_empty) {
    const auto entries = read_text(">\n>P2\n\n\n>P3 x\n>");
    EXPECT_EQ(entries.counted, 4U);
    ASSERT_EQ(entries.proteins.size(), 4U);
    expect_protein(entries.proteins[0], "", "", "");
    expect_protein(entries.proteins[1], "P2", "", "");
    expect_protein(entries.proteins[2], "P3", "x", "");
    expect_protein(entries.proteins[3], "", "", "");
}

TEST(fasta_parser, sign_that_begins_no_line_begins_no_entry) {
    const ENTRIES entries = read_text("x>P\nAC\n >Q\nDE\n");
    EXPECT_EQ(entries.counted, 0u);
    EXPECT_TRUE(entries.proteins.empty());
}

TEST(fasta_parser, text_before_the_first_entry_is_ignored) {
    const auto entries = read_text("; comment >P0\n\n >P0\nACD\n>P1\nEF\n");
    EXPECT_EQ(entries.counted, 1U);
    ASSERT_EQ(entries.proteins.size(), 1U);
    expect_protein(entries.proteins[0], "P1", "", "EF");
}

TEST(fasta_parser, byte_order_mark_is_skipped_at_the_start_alone) {
    const std::string mark = "\xEF\xBB\xBF";
    const auto entries = read_text(mark + ">P1\nAC\n" + mark + ">P2\n>P3\nDE\n");
    EXPECT_EQ(entries.counted, 2U);
    ASSERT_EQ(entries.proteins.size(), 2U);
    expect_protein(entries.proteins[0], "P1", "", "AC" + mark + ">P2");
    expect_protein(entries.proteins[1], "P3", "", "DE");

    EXPECT_EQ(read_text(mark).counted, 0U);
    EXPECT_EQ(read_text(mark + "\n>P1\n").counted, 1U);
    EXPECT_EQ(read_text(mark + mark + ">P1\n").counted, 0U);
    EXPECT_EQ(read_text("\xEF\xBB>P1\n").counted, 0U);
}

TEST(fasta_parser, text_without_entries_gives_none) {
    for (const char* text : {"", "\n", "ACD", "ACD\nEF >P1\n", "\xEF", "\xEF\xBB\xBF"}) {
        const auto entries = read_text(text);
        EXPECT_EQ(entries.counted, 0U) << text;
        EXPECT_TRUE(entries.proteins.empty()) << text;
    }
}

TEST(fasta_parser, counting_leaves_the_stream_at_the_first_entry) {
    const test::CTempFolder folder;
    std::ifstream stream(folder.Write("db.fasta", "text\n>P1\nAC\n>P2\n"), std::ios::binary);
    CFastaParser parser;
    std::string all;
    while (std::getline(stream, all)) {
    }
    ASSERT_TRUE(stream.eof());
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(parser.GetEntryNum(stream), 2U);
        EXPECT_TRUE(stream.good());
        EXPECT_EQ(stream.tellg(), std::ifstream::pos_type(5));
        CProtein protein;
        EXPECT_TRUE(parser.ReadOnePrteinEntry(protein, stream));
        expect_protein(protein, "P1", "", "AC");
    }
}

TEST(fasta_parser, reading_without_counting_begins_at_the_first_entry) {
    const test::CTempFolder folder;
    for (const char* before : {"", "\xEF\xBB\xBF", "text\n", "text\n\xEF\xBB\xBF>P0\n"}) {
        const std::string path = folder.Write("db.fasta", before + std::string(">P1 x\nAC\n"));
        std::ifstream stream(path, std::ios::binary);
        CFastaParser parser;
        CProtein protein;
        EXPECT_TRUE(parser.ReadOnePrteinEntry(protein, stream)) << before;
        expect_protein(protein, "P1", "x", "AC", before);
    }
}

TEST(fasta_parser, reading_from_the_middle_of_a_file_takes_no_byte_order_mark) {
    const test::CTempFolder folder;
    std::ifstream stream(folder.Write("db.fasta", "text\n\xEF\xBB\xBF>P1\nAC\n>P2\nDE\n"),
                         std::ios::binary);
    stream.seekg(5);
    CProtein protein;
    EXPECT_TRUE(CFastaParser().ReadOnePrteinEntry(protein, stream));
    expect_protein(protein, "P2", "", "DE");
}

TEST(fasta_parser, last_entry_leaves_the_stream_at_its_end) {
    const test::CTempFolder folder;
    std::ifstream stream(folder.Write("db.fasta", ">P1\nAC\n>P2\nDE\n"), std::ios::binary);
    CFastaParser parser;
    CProtein protein;
    EXPECT_TRUE(parser.ReadOnePrteinEntry(protein, stream));
    EXPECT_TRUE(stream.good());
    EXPECT_TRUE(parser.ReadOnePrteinEntry(protein, stream));
    EXPECT_TRUE(stream.eof());
    EXPECT_FALSE(stream.bad());
}

TEST(fasta_parser, behind_the_last_entry_the_protein_is_emptied) {
    const test::CTempFolder folder;
    std::ifstream stream(folder.Write("db.fasta", ">P1 x\nAC\n"), std::ios::binary);
    CFastaParser parser;
    CProtein protein;
    EXPECT_TRUE(parser.ReadOnePrteinEntry(protein, stream));
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(parser.ReadOnePrteinEntry(protein, stream));
        expect_protein(protein, "", "", "");
    }
}

TEST(fasta_parser, one_parser_serves_several_streams) {
    const test::CTempFolder folder;
    std::ifstream a(folder.Write("a.fasta", ">A1\nAA\nAA\n>A2\nCC\n"), std::ios::binary);
    std::ifstream b(folder.Write("b.fasta", ">B1\nDD\n>B2\nEE\n"), std::ios::binary);
    CFastaParser parser;
    CProtein protein;
    parser.ReadOnePrteinEntry(protein, a);
    expect_protein(protein, "A1", "", "AAAA");
    parser.ReadOnePrteinEntry(protein, b);
    expect_protein(protein, "B1", "", "DD");
    parser.ReadOnePrteinEntry(protein, a);
    expect_protein(protein, "A2", "", "CC");
    parser.ReadOnePrteinEntry(protein, b);
    expect_protein(protein, "B2", "", "EE");
}

// Counting works in blocks of 64 KiB; "\n>" is moved across the seams of the first two.
TEST(fasta_parser, entries_are_counted_across_block_seams) {
    for (const std::size_t seam : {65536U, 131072U}) {
        for (std::size_t length = seam - 8; length < seam; ++length) {
            const std::string residues(length, 'A');
            const auto entries = read_text(">P\n" + residues + "\n>Q>\n>\nC>\n");
            EXPECT_EQ(entries.counted, 3U) << length;
            ASSERT_EQ(entries.proteins.size(), 3U) << length;
            EXPECT_EQ(entries.proteins[0].m_strSQ, residues) << length;
        }
    }
}

TEST(fasta_parser, stream_that_cannot_be_read_is_left_bad) {
    std::ifstream stream("/proc/self/mem", std::ios::binary);
    if (!stream.is_open()) GTEST_SKIP() << "no file here that opens and cannot be read";
    CFastaParser parser;
    EXPECT_EQ(parser.GetEntryNum(stream), 0U);
    EXPECT_TRUE(stream.bad());
    CProtein protein;
    EXPECT_FALSE(parser.ReadOnePrteinEntry(protein, stream));
}

TEST(fasta_parser, stream_that_cannot_be_read_twice_counts_nothing_and_is_left_bad) {
    std::ifstream stream;  // no file: it cannot be wound back, like a pipe
    EXPECT_EQ(CFastaParser().GetEntryNum(stream), 0U);
    EXPECT_TRUE(stream.bad());
}

// The same format, character by character.
ENTRIES read_naively(const std::string& text) {
    ENTRIES entries;
    std::string line;
    const auto take = [&] {
        if (!line.empty() && line[0] == '>') {
            if (line.back() == '\r') line.pop_back();
            CProtein protein;
            std::size_t i = 1;
            for (; i < line.size() && line[i] != ' ' && line[i] != '\t'; ++i)
                protein.m_strAC += line[i];
            for (; i < line.size(); ++i) {
                const bool blank = line[i] == ' ' || line[i] == '\t';
                if (!blank || !protein.m_strDE.empty()) protein.m_strDE += line[i];
            }
            while (!protein.m_strDE.empty() &&
                   std::string(" \t").find(protein.m_strDE.back()) != std::string::npos) {
                protein.m_strDE.pop_back();
            }
            entries.proteins.push_back(protein);
        } else if (!entries.proteins.empty()) {
            for (const char c : line) {
                if (c != ' ' && (c < '\t' || c > '\r')) entries.proteins.back().m_strSQ += c;
            }
        }
        line.clear();
    };
    for (const char c : text) {
        if (c == '\n') {
            take();
        } else {
            line += c;
        }
    }
    take();
    entries.counted = entries.proteins.size();
    return entries;
}

TEST(fasta_parser, agrees_with_a_naive_reader_on_random_text) {
    std::mt19937 random(1);
    const std::string letters(">>>\n\n\n\r \tAC\vd*\0\xFF", 17);
    const test::CTempFolder folder;
    for (int round = 0; round < 500; ++round) {
        std::string text;
        for (std::size_t length = random() % 60; length > 0; --length)
            text += letters[random() % letters.size()];
        std::ifstream stream(folder.Write("db.fasta", text), std::ios::binary);
        const ENTRIES entries = read_stream(stream);
        const ENTRIES expected = read_naively(text);
        EXPECT_EQ(entries.counted, expected.counted);
        ASSERT_EQ(entries.proteins.size(), expected.proteins.size())
            << testing::PrintToString(text);
        for (std::size_t i = 0; i < expected.proteins.size(); ++i) {
            const CProtein& protein = expected.proteins[i];
            expect_protein(entries.proteins[i], protein.m_strAC, protein.m_strDE, protein.m_strSQ,
                           testing::PrintToString(text));
        }
    }
}

}  // namespace
}  // namespace tessel
