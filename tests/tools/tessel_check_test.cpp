// Folders with one fault each, and what the check has to say of it and of nothing else.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "tests/support/classic.h"
#include "tests/support/temp_folder.h"
#include "tools/tessel_check/names.h"
#include "tools/tessel_check/run_checks.h"

namespace tessel::check {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFaultless = "none";

std::string inputs() {
    return test::source_path("tests/tools/faulty_inputs");
}

std::vector<std::string> folders() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(inputs()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string as_expected(const FINDING& finding) {
    test::CClassicOut text;
    text << (finding.m_eLevel == LEVEL::ERROR ? "error " : "warning ") << finding.m_strCode << ' '
         << fs::path(finding.m_cPlace.m_strFile).filename().string() << ' ';
    if (finding.m_cPlace.m_tLine == 0) {
        text << '-';
    } else {
        text << finding.m_cPlace.m_tLine;
    }
    return text.str();
}

// A folder without a fault, with the working folder in it, over which others are laid.
class CFaultyRun {
public:
    explicit CFaultyRun(const std::string& name = kFaultless) {
        fs::create_directory(m_cFolder.Path("results"));
        Lay(kFaultless);
        Lay(name);
        std::istringstream expected(m_cFolder.Read("expected"));
        std::getline(expected, m_strExpected);
        for (std::string word, file; expected >> word >> file;)
            fs::remove(m_cFolder.Path(file));
        fs::remove(m_cFolder.Path("expected"));
    }

    CReport Check() const {
        const test::CWorkingFolder here(m_cFolder.Path());
        CReport report;
        run_checks("run.param", false, report);
        return report;
    }

    test::CTempFolder m_cFolder;
    std::string m_strExpected;

private:
    void Lay(const std::string& name) const {
        fs::copy(inputs() + "/" + name, m_cFolder.Path(),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    }
};

std::vector<std::string> above_notes(const CReport& report) {
    std::vector<std::string> found;
    for (const FINDING& finding : report.Findings()) {
        if (finding.m_eLevel != LEVEL::NOTE) found.push_back(as_expected(finding));
    }
    return found;
}

struct STATE {
    std::string m_strBytes;  // none of a folder
    fs::file_time_type m_cTime;

    bool operator==(const STATE&) const = default;
};

// Everything in a folder, by name.
std::map<std::string, STATE> state_of(const std::string& folder) {
    std::map<std::string, STATE> states;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = entry.path().lexically_relative(folder).generic_string();
        states[name] = {entry.is_directory() ? "" : test::read_file(folder + '/' + name),
                        entry.last_write_time()};
    }
    return states;
}

class tessel_check_fault : public testing::TestWithParam<std::string> {};

TEST_P(tessel_check_fault, is_found_at_its_place_and_nothing_else) {
    const CFaultyRun run(GetParam());
    const CReport report = run.Check();
    const std::vector<std::string> expected = run.m_strExpected == "nothing"
                                                  ? std::vector<std::string>()
                                                  : std::vector<std::string>{run.m_strExpected};
    EXPECT_EQ(above_notes(report), expected) << findings_as_text(report);
    for (const FINDING& finding : report.Findings()) {
        EXPECT_FALSE(finding.m_strMessage.empty());
        EXPECT_EQ(finding.m_strAdvice.empty(), finding.m_eLevel == LEVEL::NOTE);
    }
}

INSTANTIATE_TEST_SUITE_P(folders, tessel_check_fault, testing::ValuesIn(folders()),
                         [](const auto& parameter) { return parameter.param; });

TEST(tessel_check, there_are_enough_faults) {
    EXPECT_GE(folders().size(), 100u);
}

TEST(tessel_check, nothing_is_written_to_disk) {
    const CFaultyRun run;
    // A search would make these anew.
    const std::string stale = run.m_cFolder.Write("db.fasta_td.fasta", ">old\nAAA\n");
    test::set_file_age(stale, 100000);
    run.m_cFolder.Write("1.mod", "old");
    const std::map<std::string, STATE> before = state_of(run.m_cFolder.Path());
    ASSERT_TRUE(before.contains("db.fasta_td.fasta"));
    run.Check();
    EXPECT_TRUE(state_of(run.m_cFolder.Path()) == before);
}

TEST(tessel_check, all_faults_of_a_run_are_reported) {
    const CFaultyRun run("param_no_such_database");
    run.m_cFolder.Write("spectra.mgf", "");
    std::string parameters = run.m_cFolder.Read("run.param");
    for (const auto& [from, to] : {std::pair("aapath=aa.ini", "aapath=amino.ini"),
                                   std::pair("enzyme=Trypsin KR _ C", "enzyme=Trypsin KR _ X"),
                                   std::pair("outputpath=results", "outputpath=nowhere"),
                                   std::pair("maxmod=3", "maxmod=25")}) {
        parameters.replace(parameters.find(from), std::string(from).size(), to);
    }
    run.m_cFolder.Write("run.param", parameters);
    const CReport report = run.Check();
    std::set<std::string> codes;
    for (const FINDING& finding : report.Findings()) {
        if (finding.m_eLevel == LEVEL::ERROR) codes.insert(finding.m_strCode);
    }
    EXPECT_EQ(codes,
              (std::set<std::string>{"invalid-enzyme", "missing-path", "type-does-not-fit"}));
    EXPECT_EQ(report.Number(LEVEL::ERROR), 5u) << findings_as_text(report);
}

TEST(tessel_check, missing_parameter_file_is_an_error) {
    const test::CTempFolder folder;
    const std::string path = folder.Path("none.param");
    CReport report;
    run_checks(path, false, report);
    EXPECT_EQ(findings_as_text(report),
              "error: " + path +
                  ": the parameter file does not exist; the run ends -> Correct the path. "
                  "[missing-path]\n");
    EXPECT_EQ(exit_status(report), 2);
}

TEST(tessel_check, folder_as_parameter_file_is_an_error) {
    const test::CTempFolder folder;
    CReport report;
    run_checks(folder.Path(), false, report);
    EXPECT_EQ(exit_status(report), 2);
    EXPECT_EQ(report.Findings().front().m_strCode, "unreadable-file");
}

// A file that opens and cannot be read, for nothing is mapped at its start; empty where there is
// none.
std::string unreadable_file() {
    const std::string device = "/proc/self/mem";
    return fs::path(device).is_absolute() && fs::exists(device) ? device : "";
}

// What a run without faults has above notes when texts of its parameter file are replaced.
std::vector<std::string> found_with(
    const std::vector<std::pair<std::string, std::string>>& replacements) {
    const CFaultyRun run;
    std::string parameters = run.m_cFolder.Read("run.param");
    for (const auto& [from, to] : replacements)
        parameters.replace(parameters.find(from), from.size(), to);
    run.m_cFolder.Write("run.param", parameters);
    return above_notes(run.Check());
}

TEST(tessel_check, list_that_cannot_be_read_is_not_called_empty) {
    if (unreadable_file().empty()) GTEST_SKIP() << "no such file on this system";
    EXPECT_EQ(found_with({{"spectra.mgf", unreadable_file()}, {"msmstype=MGF", "msmstype=ZBS"}}),
              std::vector<std::string>{"error unreadable-file mem -"});
}

TEST(tessel_check, table_that_cannot_be_read_is_an_error) {
    if (unreadable_file().empty()) GTEST_SKIP() << "no such file on this system";
    const std::vector<std::string> found =
        found_with({{"aapath=aa.ini", "aapath=" + unreadable_file()}});
    EXPECT_EQ(std::count(found.begin(), found.end(), "error unreadable-file mem -"), 1);
}

TEST(tessel_check, spectra_of_a_folder_are_those_of_the_type) {
    const CFaultyRun run;
    fs::create_directory(run.m_cFolder.Path("spectra"));
    fs::rename(run.m_cFolder.Path("spectra.mgf"), run.m_cFolder.Path("spectra/a.mgf"));
    std::string parameters = run.m_cFolder.Read("run.param");
    parameters.replace(parameters.find("msmsfolder=0"), 12, "msmsfolder=1");
    parameters.replace(parameters.find("spectra.mgf"), 11, "spectra");
    run.m_cFolder.Write("run.param", parameters);
    EXPECT_EQ(above_notes(run.Check()), std::vector<std::string>());
    fs::rename(run.m_cFolder.Path("spectra/a.mgf"), run.m_cFolder.Path("spectra/b.MGF"));
    EXPECT_EQ(above_notes(run.Check()),
              std::vector<std::string>{"warning no-spectra run.param 34"});
}

TEST(tessel_check, charge_is_inherited_only_within_a_batch) {
    const CFaultyRun run("mgf_without_charge");
    const auto inherited = [&run] {
        for (const FINDING& finding : run.Check().Findings()) {
            if (finding.m_strCode == "inherited-charge") return finding.m_strMessage;
        }
        return std::string();
    };
    EXPECT_NE(inherited().find("takes 2,"), std::string::npos);
    std::string parameters = run.m_cFolder.Read("run.param");
    parameters.replace(parameters.find("maxspec=10000"), 13, "maxspec=1");
    run.m_cFolder.Write("run.param", parameters);
    EXPECT_NE(inherited().find("takes 0,"), std::string::npos);
}

TEST(tessel_check, a_thousand_faults_of_one_kind_are_counted_and_twenty_shown) {
    const CFaultyRun run;
    std::string spectra;
    for (int i = 0; i < 1000; ++i)
        spectra += "BEGIN IONS\nTITLE=same\nCHARGE=2+\nPEPMASS=500\n200 1\nEND IONS\n";
    run.m_cFolder.Write("spectra.mgf", spectra);
    const CReport report = run.Check();
    EXPECT_EQ(report.Number(LEVEL::WARNING), 999u);
    const std::vector<FINDING> findings = report.Findings();
    EXPECT_EQ(std::count_if(
                  findings.begin(), findings.end(),
                  [](const FINDING& finding) { return finding.m_strCode == "duplicate-title"; }),
              21);
    EXPECT_EQ(findings.back().m_strMessage, "and 979 more like the duplicate-title above");
}

TEST(tessel_check, exit_status_is_that_of_the_worst_finding) {
    CReport report;
    EXPECT_EQ(exit_status(report), 0);
    report.Note("a", {"f", 1}, "m");
    EXPECT_EQ(exit_status(report), 0);
    report.Warning("b", {"f", 1}, "m", "a");
    EXPECT_EQ(exit_status(report), 1);
    report.Error("c", {"f", 1}, "m", "a");
    report.Warning("b", {"f", 2}, "m", "a");
    EXPECT_EQ(exit_status(report), 2);
}

TEST(tessel_check, line_shows_level_place_message_advice_and_code) {
    CReport report;
    report.Warning("unknown-key", {"run.param", 7}, "no setting\thas it", "Remove it.");
    report.Note("spectra", {"a.mgf", 0}, "caf\xc3\xa9 \xff");
    EXPECT_EQ(findings_as_text(report),
              "warning: run.param:7: no setting\\x09has it -> Remove it. [unknown-key]\n"
              "note: a.mgf: caf\xc3\xa9 \\xff [spectra]\n");
}

TEST(tessel_check, json_is_escaped) {
    CReport report;
    report.Error("c", {"C:\\a\"b", 3}, "tab\t, \xff and \xc3\xa9", "");
    EXPECT_EQ(findings_as_json(report, "p"),
              "{\"parameter_file\": \"p\",\n"
              " \"counts\": {\"note\": 0, \"warning\": 0, \"error\": 1},\n"
              " \"findings\": [\n"
              "  {\"level\": \"error\", \"code\": \"c\", \"file\": \"C:\\\\a\\\"b\", \"line\": 3, "
              "\"message\": \"tab\\u0009, \\u00ff and \xc3\xa9\", \"advice\": \"\"}\n"
              " ]}\n");
}

TEST(tessel_check_names, nearest_names_are_a_slip_away) {
    const std::vector<std::string> keys{"mstol", "msmstol", "maxmod", "maxspec"};
    EXPECT_EQ(nearest("mstoll", keys), std::vector<std::string>{"mstol"});
    EXPECT_EQ(nearest("MaxMod", keys), std::vector<std::string>{"maxmod"});
    EXPECT_EQ(nearest("msmtol", keys), (std::vector<std::string>{"mstol", "msmstol"}));
    EXPECT_EQ(nearest("enzyme", keys), std::vector<std::string>());
    EXPECT_EQ(did_you_mean("msmtol", keys, "No."), "Did you mean \"mstol\" or \"msmstol\"?");
    EXPECT_EQ(did_you_mean("enzyme", keys, "No."), "No.");
}

}  // namespace
}  // namespace tessel::check
