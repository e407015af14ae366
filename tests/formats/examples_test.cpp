// Every file of docs/formats/examples stands on a page as it is.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "tests/formats/format_page.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::CFormatPage;

// By the path below the folder of the examples, the page that shows the file.
const std::map<std::string, std::string> kShown = {
    {"aa.ini", "aa_ini"},
    {"element.ini", "element_ini"},
    {"example.fasta", "fasta"},
    {"example.fasta_td.fasta", "fasta"},
    {"example.fasta_td.pac", "index_files"},
    {"example.fasta_td.pde", "index_files"},
    {"example.learn", "learn_file"},
    {"example.mgf", "mgf"},
    {"example.param", "parameter_file"},
    {"example.res", "result_file"},
    {"example.zbs", "zbs"},
    {"modification.ini", "modification_ini"},
    {"quant.ini", "quant_ini"},
    {"temporary/2.aa", "temporary_tables"},
    {"temporary/2.mod", "temporary_tables"},
};

TEST(format_examples, stand_on_their_pages_byte_for_byte) {
    for (const auto& [file, page] : kShown) {
        SCOPED_TRACE(file);
        EXPECT_EQ(CFormatPage(page).BlockBehind("`examples/" + file + '`'),
                  test::read_file(test::example_path(file)));
    }
}

// Binary files stand there as dumps, and the table of the first label differs little from the
// second one's.
TEST(format_examples, none_is_without_a_page) {
    namespace fs = std::filesystem;
    for (const auto& entry : fs::recursive_directory_iterator(test::example_path())) {
        if (!entry.is_regular_file()) continue;
        const std::string file = fs::relative(entry.path(), test::example_path()).generic_string();
        if (file.ends_with(".zb2") || file.starts_with("temporary/1.")) continue;
        EXPECT_EQ(kShown.count(file), 1U) << file;
    }
}

TEST(format_examples, every_page_is_in_the_list_of_pages) {
    namespace fs = std::filesystem;
    const std::string list = test::read_file(test::source_path("docs/formats/README.md"));
    for (const auto& entry : fs::directory_iterator(test::source_path("docs/formats"))) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_regular_file() || name == "README.md") continue;
        EXPECT_NE(list.find('(' + name + ')'), std::string::npos) << name;
    }
}

}  // namespace
}  // namespace tessel
