// docs/formats/parameter_file.md: its tables of keys, and its example.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "tessel/param/condition_reader.h"
#include "tessel/param/condition_writer.h"
#include "tessel/param/settings.h"
#include "tests/formats/format_page.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::CFormatPage;
using test::CTempFolder;
using test::CWorkingFolder;

const char* const kSections[] = {"param",  "file",  "datalist", "engine",
                                 "filter", "quant", "system"};

using Values = std::map<std::string, std::string>;  // by "section key"

// The key=value lines of a parameter file.
Values values_of(const std::string& text) {
    Values values;
    std::string section;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t sign = line.find('=');
        if (line.starts_with('[')) {
            section = line.substr(1, line.find(']') - 1);
        } else if (!line.starts_with("##") && sign != std::string::npos) {
            values[section + ' ' + line.substr(0, sign)] = line.substr(sign + 1);
        }
    }
    return values;
}

// The defaults that the page's tables give.
Values page_defaults() {
    const CFormatPage page("parameter_file");
    Values values;
    for (const std::string section : kSections) {
        for (const auto& row : page.Table("Section [" + section + ']'))
            values[section + ' ' + row.at(0)] = row.at(2);
    }
    return values;
}

// What reading a file leaves, written back; a second placeholder for a spectrum file is no key.
Values read_and_written(const std::string& path, const CTempFolder& folder) {
    CConditionReader reader(path);
    EXPECT_EQ(test::captured_output([&] { reader.Read(); }), "");
    CConditionWriter(folder.Path("written"), &reader.m_cCondition).Write();
    Values values = values_of(folder.Read("written"));
    values.erase("datalist msmspath2");
    return values;
}

std::set<std::string> keys_of(const Values& values) {
    std::set<std::string> keys;
    for (const auto& [key, value] : values)
        keys.insert(key);
    return keys;
}

TEST(parameter_file_page, has_every_key_that_is_written_and_no_other) {
    const CTempFolder folder;
    const CCondition condition;
    CConditionWriter(folder.Path("written"), &condition).Write();
    Values values = values_of(folder.Read("written"));
    values.erase("datalist msmspath2");
    EXPECT_EQ(keys_of(page_defaults()), keys_of(values));
}

// The first entry of the data list is a key of its own there; its name is made with its number.
TEST(parameter_file_page, has_every_key_that_is_read_and_no_other) {
    std::set<std::string> read = {"datalist msmspath1"};
    for (const SETTING& setting : kSettings)
        read.insert(std::string(setting.m_strSection) + ' ' + setting.m_szKey);
    EXPECT_EQ(keys_of(page_defaults()), read);
}

TEST(parameter_file_page, names_the_alert_of_every_key_with_a_range) {
    std::map<std::string, std::string> meanings;
    for (const std::string section : kSections) {
        for (const auto& row : CFormatPage("parameter_file").Table("Section [" + section + ']'))
            meanings[row.at(0)] = row.at(3);
    }
    for (const SETTING& setting : kSettings) {
        const bool named = setting.m_cRange.m_szName != nullptr;
        const std::string& meaning = meanings.at(setting.m_szKey);
        // The limit of these is found elsewhere: the file's length, the steps of a loop.
        const bool hasOther =
            setting.m_szKey == std::string("msmsnum") || setting.m_szKey == std::string("maxdelta");
        EXPECT_EQ(meaning.find(", as `") != meaning.npos, named || hasOther) << setting.m_szKey;
        if (named) {
            const std::string name = setting.m_cRange.m_szName;
            EXPECT_NE(meaning.find("as `" + name + '`'), meaning.npos) << setting.m_szKey;
        }
    }
}

TEST(parameter_file_page, gives_the_defaults_that_reading_sets) {
    const CTempFolder folder;
    for (const char* const name : {"modification.ini", "aa.ini", "proteins.fasta"})
        folder.Write(name, "");
    const CWorkingFolder working(folder.Path());
    folder.Write("search.param", "[file]\nfastapath=proteins.fasta\noutputpath=.\n");
    Values values = read_and_written("search.param", folder);

    Values expected = page_defaults();
    EXPECT_EQ(expected.at("file fastapath"), "must be given");
    EXPECT_EQ(expected.at("file outputpath"), "must be given");
    expected["file fastapath"] = "proteins.fasta";
    expected["file outputpath"] = ".\\";
    for (const char* const key : {"file modpath", "file aapath"}) {
        std::string& value = expected.at(key);
        const std::string mark = "<working folder>";
        ASSERT_TRUE(value.starts_with(mark));
        value.replace(0, mark.size(), std::filesystem::current_path().string());
    }
    // Looked up for entries only; the next test reads one.
    values.erase("datalist msmspath1");
    expected.erase("datalist msmspath1");
    // As numbers are written.
    expected["param maxdelta"] = "500";
    expected["param center"] = "0";
    EXPECT_EQ(values, expected);
}

TEST(parameter_file_page, gives_the_default_of_a_spectrum_file) {
    EXPECT_EQ(page_defaults().at("datalist msmspath1"), "NULL");
    const CTempFolder folder;
    folder.Write("any", "");
    const CWorkingFolder working(folder.Path());
    folder.Write("search.param",
                 "[file]\nfastapath=any\noutputpath=.\nmodpath=any\naapath=any\n"
                 "[datalist]\nmsmsnum=1\n");
    EXPECT_ENDS_PROCESS(CConditionReader("search.param").Read(),
                        "[Tessel] ALERT: Invalid_msmspath1_Path: [NULL]\n", "");
}

// By the table of kinds, what an empty value and a word are taken for.
std::string taken_for(const std::string& kind, const std::string& value,
                      const std::string& missing) {
    const bool empty = value.empty();
    if (kind == "integer" || kind == "flag") return empty ? missing : "0";
    if (kind == "number" || kind == "count") return "0";
    if (kind == "switch") return "1";
    EXPECT_EQ(kind, "text");
    return value;
}

TEST(parameter_file_page, gives_every_key_the_kind_that_it_is_read_as) {
    // Paths that must exist, and texts of which only some are known.
    const std::set<std::string> withOwnRules = {"fastapath", "outputpath", "modpath",      "aapath",
                                                "msmspath1", "log",        "del_tmp_files"};
    const CTempFolder folder;
    folder.Write("any", "");
    const CWorkingFolder working(folder.Path());
    for (const std::string section : kSections) {
        for (const auto& row : CFormatPage("parameter_file").Table("Section [" + section + ']')) {
            const std::string& key = row.at(0);
            if (withOwnRules.count(key) != 0) continue;
            for (const std::string value : {"", "x"}) {
                SCOPED_TRACE(key + '=' + value);
                folder.Write("search.param", '[' + section + "]\n" + key + '=' + value + '\n' +
                                                 "[file]\nfastapath=any\noutputpath=.\n"
                                                 "modpath=any\naapath=any\n");
                CConditionReader reader("search.param");
                test::captured_output([&] { reader.Read(); });
                CConditionWriter("written", &reader.m_cCondition).Write();
                EXPECT_EQ(values_of(folder.Read("written")).at(section + ' ' + key),
                          taken_for(row.at(1), value, row.at(2)));
            }
        }
    }
}

TEST(parameter_file_page, tells_what_single_lines_become) {
    std::map<std::string, std::string> sections;  // by key
    for (const auto& [key, value] : page_defaults())
        sections[key.substr(key.find(' ') + 1)] = key.substr(0, key.find(' '));

    const CTempFolder folder;
    folder.Write("any", "");
    const CWorkingFolder working(folder.Path());
    for (const auto& row : CFormatPage("parameter_file").Table("Corrections by example")) {
        const std::string& line = row.at(0);
        SCOPED_TRACE(line);
        const std::string key = line.substr(0, line.find('='));
        ASSERT_EQ(sections.count(key), 1U);
        // The line stands alone in its section, before the paths, which every file needs.
        folder.Write("search.param",
                     '[' + sections[key] + "]\n" + line +
                         "\n[file]\nfastapath=any\noutputpath=.\nmodpath=any\naapath=any\n");
        CConditionReader reader("search.param");
        const std::string& text = row.at(2);
        EXPECT_EQ(test::captured_output([&] { reader.Read(); }),
                  text.empty() ? "" : "[Tessel] " + text + '\n');
        CConditionWriter("written", &reader.m_cCondition).Write();
        EXPECT_EQ(values_of(folder.Read("written")).at(sections[key] + ' ' + key), row.at(1));
    }
}

TEST(parameter_file_example, sets_every_key_to_something_else_than_its_default) {
    const CTempFolder folder;
    const Values given = values_of(test::read_file(test::example_path("example.param")));
    Values expected = given;
    expected["file outputpath"] = ".\\";
    const CWorkingFolder working(test::example_path());
    EXPECT_EQ(read_and_written("example.param", folder), expected);

    const Values defaults = page_defaults();
    EXPECT_EQ(keys_of(given), keys_of(defaults));
    for (const auto& [key, value] : given)
        EXPECT_EQ(value == defaults.at(key), key == "datalist msmsfolder") << key;
}

}  // namespace
}  // namespace tessel
