#include "tessel/param/option_tool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

// Both lookups of one key in the section "param" of a file with these bytes.
class CLookup {
public:
    explicit CLookup(const std::string& bytes)
        : m_strPath(m_cFolder.Write("search.ini", bytes)), m_cTool(m_strPath, "param") {}

    std::string Text(const char* key) const { return m_cTool.GetString(key, "default"); }
    int Number(const char* key) const {
        return m_cTool._GetPrivateProfileInt("param", key, 77, m_strPath);
    }

private:
    test::CTempFolder m_cFolder;
    std::string m_strPath;
    COptionTool m_cTool;
};

TEST(option_tool, value_is_everything_behind_the_equals_sign) {
    const CLookup lookup("[param]\nthread=4\nenzyme=Trypsin KR _ C\nodd= a=b \t\n");
    EXPECT_EQ(lookup.Text("thread"), "4");
    EXPECT_EQ(lookup.Text("enzyme"), "Trypsin KR _ C");
    EXPECT_EQ(lookup.Text("odd"), " a=b \t");
    EXPECT_EQ(lookup.Number("thread"), 4);
}

TEST(option_tool, missing_key_gives_the_default) {
    const CLookup lookup("[param]\nthread=4\n");
    EXPECT_EQ(lookup.Text("multip"), "default");
    EXPECT_EQ(lookup.Number("multip"), 77);
}

TEST(option_tool, empty_value_is_an_empty_text_but_the_default_number) {
    for (const char* file : {"[param]\nthread=\n", "[param]\nthread=", "[param]\r\nthread=\r\n",
                             "[param]\nthread=\r\r\r\n"}) {
        const CLookup lookup(file);
        EXPECT_EQ(lookup.Text("thread"), "") << file;
        EXPECT_EQ(lookup.Number("thread"), 77) << file;
    }
}

TEST(option_tool, file_that_cannot_be_opened_gives_an_empty_text_but_the_default_number) {
    const test::CTempFolder folder;
    for (const std::string& path : {folder.Path("missing.ini"), folder.Path(), std::string()}) {
        const COptionTool tool(path, "param");
        EXPECT_EQ(tool.GetString("thread", "default"), "") << path;
        EXPECT_EQ(tool._GetPrivateProfileInt("param", "thread", 77, path), 77) << path;
    }
}

TEST(option_tool, empty_file_gives_the_default) {
    for (const char* file : {"", "\n", "\xEF\xBB\xBF", "\xEF\xBB"}) {
        const CLookup lookup(file);
        EXPECT_EQ(lookup.Text("thread"), "default") << file;
        EXPECT_EQ(lookup.Number("thread"), 77) << file;
    }
}

TEST(option_tool, blanks_around_the_key_make_it_another_one) {
    for (const char* line : {"thread = 4", "thread =4", " thread=4", "\tthread=4", "thread\t=4"}) {
        const CLookup lookup(std::string("[param]\n") + line + '\n');
        EXPECT_EQ(lookup.Text("thread"), "default") << line;
        EXPECT_EQ(lookup.Number("thread"), 77) << line;
    }
}

TEST(option_tool, key_must_fill_the_text_before_the_equals_sign) {
    const CLookup lookup(
        "[param]\nmsmspath12=no\nmsmspat=no\nxmsmspath1=no\nMSMSPATH1=no\n"
        "##msmspath1=no\nmsmspath1\n=\nmsmspath1=yes\n");
    EXPECT_EQ(lookup.Text("msmspath1"), "yes");
    EXPECT_EQ(lookup.Text("msmspath12"), "no");
    EXPECT_EQ(lookup.Text("msmspath"), "default");
}

TEST(option_tool, first_of_two_lines_with_the_key_counts) {
    EXPECT_EQ(CLookup("[param]\nthread=1\nthread=2\n").Text("thread"), "1");
}

TEST(option_tool, key_before_its_section_is_not_found) {
    EXPECT_EQ(CLookup("thread=1\n[file]\nthread=2\n[param]\nmultip=1\n").Text("thread"), "default");
}

TEST(option_tool, key_that_stands_only_in_a_later_section_is_found) {
    const CLookup lookup("[param]\nthread=4\n[engine]\nopen=0\n[param]\nthread=9\nmultip=3\n");
    EXPECT_EQ(lookup.Text("open"), "0");
    EXPECT_EQ(lookup.Number("open"), 0);
    EXPECT_EQ(lookup.Number("multip"), 3);
    EXPECT_EQ(lookup.Number("thread"), 4);
}

TEST(option_tool, missing_section_gives_the_default_even_if_the_key_exists) {
    const CLookup lookup("[params]\n[PARAM]\n[ param]\nparam]\nthread=4\n");
    EXPECT_EQ(lookup.Text("thread"), "default");
    EXPECT_EQ(lookup.Number("thread"), 77);
}

TEST(option_tool, text_behind_a_header_is_ignored) {
    for (const char* header : {"[param]", "[param] ", "[param] ## settings", "[param]x=1"}) {
        EXPECT_EQ(CLookup(std::string(header) + "\nthread=4\n").Text("thread"), "4") << header;
    }
}

TEST(option_tool, blank_before_a_header_makes_it_no_header) {
    for (const char* header : {" [param]", "\t[param]", "##[param]"}) {
        EXPECT_EQ(CLookup(std::string(header) + "\nthread=4\n").Text("thread"), "default")
            << header;
    }
}

TEST(option_tool, key_on_the_header_line_is_not_looked_at) {
    const CLookup lookup("[param]\n[param]thread=1\n");
    EXPECT_EQ(lookup.Text("[param]thread"), "1");
    EXPECT_EQ(CLookup("[param]=1\n").Text("[param]"), "default");
}

TEST(option_tool, carriage_returns_at_the_line_end_are_dropped) {
    const CLookup lookup("[param]\r\nthread=4\r\nname=a\rb\r\r\nlast=5\r");
    EXPECT_EQ(lookup.Text("thread"), "4");
    EXPECT_EQ(lookup.Text("name"), "a\rb");
    EXPECT_EQ(lookup.Text("last"), "5");
}

TEST(option_tool, last_line_needs_no_line_feed) {
    const CLookup lookup("[param]\nthread=4");
    EXPECT_EQ(lookup.Text("thread"), "4");
    EXPECT_EQ(lookup.Number("thread"), 4);
}

TEST(option_tool, byte_order_mark_before_the_first_header_is_skipped) {
    EXPECT_EQ(CLookup("\xEF\xBB\xBF[param]\nthread=4\n").Text("thread"), "4");
    EXPECT_EQ(CLookup("\n\xEF\xBB\xBF[param]\nthread=4\n").Text("thread"), "default");
}

TEST(option_tool, control_z_is_an_ordinary_byte) {
    const CLookup lookup(
        "[param]\nname=a\x1A"
        "b\n\x1A\nthread=4\n");
    EXPECT_EQ(lookup.Text("name"),
              "a\x1A"
              "b");
    EXPECT_EQ(lookup.Text("thread"), "4");
}

TEST(option_tool, number_is_the_leading_integer_of_the_value) {
    const struct {
        const char* value;
        int number;
    } rows[] = {
        {"12", 12},
        {" \t12", 12},
        {"+12", 12},
        {"-12", -12},
        {"12x", 12},
        {"3.9", 3},
        {"1e3", 1},
        {"0x10", 0},
        {"007", 7},
        {"four", 0},
        {" ", 0},
        {"-", 0},
        {"--1", 0},
        {"2147483647", kMax},
        {"-2147483648", kMin},
        {"2147483648", kMax},
        {"-2147483649", kMin},
        {"4294967297", kMax},
        {"99999999999999999999999999", kMax},
        {"-99999999999999999999999999", kMin},
    };
    for (const auto& row : rows) {
        const CLookup lookup(std::string("[param]\nn=") + row.value + '\n');
        EXPECT_EQ(lookup.Number("n"), row.number) << row.value;
        EXPECT_EQ(lookup.Text("n"), row.value);
    }
}

// A piece holds 81919 characters; the 2 of "a=" are part of the first.
TEST(option_tool, long_line_comes_in_pieces) {
    const std::string first(81917, 'x');
    const CLookup whole("[param]\na=" + first + "\nb=1\n");
    EXPECT_EQ(whole.Text("a"), first);
    EXPECT_EQ(whole.Text("b"), "1");

    const CLookup cut("[param]\na=" + first + "b=1\n");
    EXPECT_EQ(cut.Text("a"), first);
    EXPECT_EQ(cut.Text("b"), "1");
}

TEST(option_tool, piece_of_a_long_line_can_be_a_header) {
    EXPECT_EQ(CLookup(std::string(81919, '#') + "[param]\nthread=4\n").Text("thread"), "4");
    EXPECT_EQ(CLookup(std::string(81918, '#') + "[param]\nthread=4\n").Text("thread"), "default");
}

TEST(option_tool, carriage_return_at_the_end_of_a_piece_is_dropped) {
    const std::string first(81916, 'x');
    EXPECT_EQ(CLookup("[param]\na=" + first + "\rrest\n").Text("a"), first);
    EXPECT_EQ(CLookup("[param]\na=" + first + "\r\nb=1\n").Text("b"), "1");
}

TEST(option_tool, section_and_path_of_the_number_are_the_ones_given) {
    const test::CTempFolder folder;
    const std::string other = folder.Write("other.ini", "[file]\nn=1\n[engine]\nn=2\n");
    const COptionTool tool(folder.Path("missing.ini"), "file");
    EXPECT_EQ(tool._GetPrivateProfileInt("engine", "n", 0, other), 2);
    EXPECT_EQ(tool._GetPrivateProfileInt("file", "n", 0, other), 1);
}

TEST(option_tool, every_lookup_reads_the_file_as_it_is_then) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("search.ini", "[param]\nthread=4\n");
    const COptionTool tool(path, "param");
    EXPECT_EQ(tool.GetString("thread", ""), "4");
    test::write_file(path, "[param]\nthread=5\n");
    EXPECT_EQ(tool.GetString("thread", ""), "5");
    std::filesystem::remove(path);
    EXPECT_EQ(tool.GetString("thread", "default"), "");
}

TEST(option_tool, numbered_keys_are_looked_up_all_at_once) {
    const test::CTempFolder folder;
    const std::string path = folder.Write(
        "search.ini",
        "p1=before\n[param]\np2=two\np1=one=1\r\r\np2=again\np03=zero\np=\npx=\np5=five\n"
        "p18446744073709551617=far\n[file]\np4=\nP3=case\np3 =blank\n");
    const COptionTool tool(path, "param");
    const std::vector<std::string> expected{"one=1", "two", "none", ""};
    EXPECT_EQ(tool.GetStrings("p", 4, "none"), expected);
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(tool.GetString(("p" + std::to_string(i + 1)).c_str(), "none"), expected[i]);
    EXPECT_TRUE(tool.GetStrings("p", 0, "none").empty());
}

TEST(option_tool, numbered_keys_of_a_missing_section_or_file_are_missing) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("search.ini", "[param]\np1=one\n");
    EXPECT_EQ(COptionTool(path, "file").GetStrings("p", 2, "none"),
              (std::vector<std::string>{"none", "none"}));
    EXPECT_EQ(COptionTool(folder.Path("missing.ini"), "param").GetStrings("p", 2, "none"),
              (std::vector<std::string>{"", ""}));
}

TEST(option_tool, keeps_the_path_and_the_section_as_given) {
    const COptionTool tool("a\\b.param", "param");
    EXPECT_EQ(tool.m_strPath, "a\\b.param");
    EXPECT_EQ(tool.m_strSection, "param");
}

}  // namespace
}  // namespace tessel
