// Folders and files that the process has no right to write or read. Root has every right, so each
// test runs in a child that has given root's rights up.

#include <gtest/gtest.h>

#include <filesystem>

#include "tessel/param/condition_reader.h"
#include "tests/faults/written_files.h"
#include "tests/support/child_process.h"

namespace tessel {
namespace {

namespace fs = std::filesystem;

using test::CHILD_END;
using test::CWrittenFiles;
using test::WRITTEN_FILE;

constexpr fs::perms kReadOnlyFolder = fs::perms(0555);
constexpr fs::perms kReadOnlyFile = fs::perms(0444);

CHILD_END run_unprivileged(const std::function<int()>& action) {
    return test::run_in_child([&] {
        test::become_unprivileged();
        return action();
    });
}

// A folder that nobody may write, from its content's point of view, until the end of the scope.
class CReadOnly {
public:
    explicit CReadOnly(const std::string& folder) : m_strFolder(folder) {
        for (const auto& entry : fs::directory_iterator(folder))
            fs::permissions(entry.path(), kReadOnlyFile);
        fs::permissions(folder, kReadOnlyFolder);
    }
    ~CReadOnly() { fs::permissions(m_strFolder, fs::perms::owner_all); }
    CReadOnly(const CReadOnly&) = delete;
    CReadOnly& operator=(const CReadOnly&) = delete;

private:
    std::string m_strFolder;
};

// What the writers tell when their file cannot even be opened.
struct REFUSAL {
    int m_nExit;
    std::string m_strOutput;
};

std::map<std::string, REFUSAL> refusals(const CWrittenFiles& files) {
    std::map<std::string, REFUSAL> all;
    for (const WRITTEN_FILE& file : files.All())
        all[file.m_strName] = {file.m_nExit, file.m_strAlert};
    all["parameters"].m_strOutput = "";  // silently
    all["merged"].m_nExit = 1;
    all["result"] = {
        1, "[Tessel] ALERT: Cannot open the file: " + files.m_cFolder.Path() + "/final.res!\n\n"};
    all.erase("spectrum");  // the caller opens it
    return all;
}

// Every writer fails with its message in the folder once it is read-only, and changes nothing.
void expect_refusals(const CWrittenFiles& files) {
    const auto before = files.Contents();
    const auto expected = refusals(files);
    const CReadOnly readOnly(files.m_cFolder.Path());
    for (const WRITTEN_FILE& file : files.All()) {
        if (!expected.contains(file.m_strName)) continue;
        SCOPED_TRACE(file.m_strName);
        const CHILD_END end = run_unprivileged([&] { return test::run_writer(file); });
        EXPECT_EQ(end.m_nExit, expected.at(file.m_strName).m_nExit);
        EXPECT_EQ(end.m_strOutput, expected.at(file.m_strName).m_strOutput);
        EXPECT_TRUE(files.Contents() == before);
    }
}

TEST(read_only_folders, nothing_is_written_and_every_writer_says_so) {
    const CWrittenFiles files(false);
    expect_refusals(files);
}

TEST(read_only_folders, files_that_stand_there_stay) {
    const CWrittenFiles files(false);
    for (const WRITTEN_FILE& file : files.All()) {
        test::write_file(file.m_strPath, "before");
        test::set_file_age(file.m_strPath, 100);
    }
    expect_refusals(files);
}

TEST(read_only_folders, fresh_database_in_one_is_used_as_it_is) {
    const test::CTempFolder folder;
    CCondition condition;
    condition.m_strFastaPath = folder.Write("db.fasta", ">P\nA\n");
    folder.Write("db.fasta_td.fasta", "whole");
    const CReadOnly readOnly(folder.Path());
    const CHILD_END end = run_unprivileged([&] {
        condition.SetFastaPath();
        return 0;
    });
    EXPECT_EQ(end.m_nExit, 0);
    EXPECT_EQ(end.m_strOutput, "");
}

TEST(read_only_folders, merged_inputs_that_cannot_be_removed_stay_with_a_warning) {
    const test::CTempFolder inputs;
    const test::CTempFolder output;
    const std::string one = inputs.Write("one", "1");
    fs::permissions(output.Path(), fs::perms(0777));
    const CReadOnly readOnly(inputs.Path());
    const CHILD_END end = run_unprivileged(
        [&] { return CCondition().MergeFiles({one}, output.Path("merged"), true) ? 1 : 0; });
    EXPECT_EQ(end.m_nExit, 0);
    EXPECT_EQ(end.m_strOutput, "[Tessel] WARNING: Cannot remove the merged file: " + one + '\n');
    EXPECT_EQ(inputs.Read("one") + output.Read("merged"), "11");
}

TEST(read_only_folders, input_that_may_not_be_read_stops_merging) {
    const test::CTempFolder folder;
    fs::permissions(folder.Path(), fs::perms(0777));
    const std::string one = folder.Write("one", "1");
    const std::string two = folder.Write("two", "2");
    fs::permissions(two, fs::perms::none);
    const CHILD_END end = run_unprivileged([&] {
        return CCondition().MergeFiles({one, two}, folder.Path("merged"), true) ? 1 : 0;
    });
    EXPECT_EQ(end.m_nExit, 1);
    EXPECT_EQ(end.m_strOutput, "[Tessel] ALERT: Cannot read the result file: " + two + '\n');
    fs::permissions(two, fs::perms::owner_all);
    EXPECT_EQ(folder.Read("one") + folder.Read("two"), "12");
    EXPECT_FALSE(folder.Has("merged"));
}

TEST(read_only_folders, parameter_file_that_may_not_be_read_is_an_alert) {
    const test::CTempFolder folder;
    fs::permissions(folder.Path(), fs::perms(0777));
    const std::string path = folder.Write("run.param", "[file]\n");
    fs::permissions(path, fs::perms::none);
    const CHILD_END end = run_unprivileged([&] {
        CConditionReader(path).Read();
        return 0;
    });
    EXPECT_EQ(end.m_nExit, 1);
    EXPECT_EQ(end.m_strOutput, "[Tessel] ALERT: Cannot read the parameter file: " + path +
                                   "\n[Tessel] WARNING: Abnormal Precursor: 0.000000\n"
                                   "[Tessel] WARNING: Abnormal Fragment: 0.000000\n"
                                   "[Tessel] ALERT: Invalid_fastapath_Path: []\n");
}

TEST(read_only_folders, database_that_may_not_be_read_counts_as_missing) {
    const test::CTempFolder folder;
    fs::permissions(folder.Path(), fs::perms(0777));
    CCondition condition;
    condition.m_strFastaPath = folder.Write("db.fasta", ">P\nA\n");
    fs::permissions(condition.m_strFastaPath, fs::perms::none);
    const CHILD_END end = run_unprivileged([&] {
        condition.SetFastaPath();
        return 0;
    });
    EXPECT_EQ(end.m_strOutput, "thrown: Database " + condition.m_strFastaPath + " not exists.\n");
    EXPECT_EQ(folder.Read("db.fasta_td.fasta"), "");
}

TEST(read_only_folders, index_files_that_may_not_be_read_are_alerts) {
    const test::CTempFolder folder;
    fs::permissions(folder.Path(), fs::perms(0777));
    CCondition condition;
    condition.m_strInputFastaPath = folder.Path("db.fasta");
    const std::string ac = folder.Write("db.pac", "P1\n");
    const std::string de = folder.Write("db.pde", "first\n");
    for (const std::string& path : {ac, de})
        fs::permissions(path, fs::perms::none);
    const CHILD_END end = run_unprivileged([&] {
        std::vector<std::string> lines;
        condition.ReadProteinAC(lines);
        condition.ReadProteinDE(lines);
        return static_cast<int>(lines.size());
    });
    EXPECT_EQ(end.m_nExit, 0);
    EXPECT_EQ(end.m_strOutput, "[Tessel] ALERT: Cannot read the index file: " + ac +
                                   "\n[Tessel] ALERT: Cannot read the index file: " + de + '\n');
}

TEST(read_only_folders, spectra_and_results_that_may_not_be_read_are_alerts) {
    const test::CTempFolder folder;
    CCondition condition;
    condition.m_strMSMSPath = folder.Write("a.mgf", "BEGIN IONS\nEND IONS\n");
    fs::permissions(condition.m_strMSMSPath, fs::perms::none);
    const CHILD_END end = run_unprivileged([&] {
        for (const std::string type : {"MGF", "ZB2", "ZBS"}) {
            condition.m_strMSMSType = type;
            if (condition.LoadSpectra(false)) return 1;
        }
        condition.LoadResult({condition.m_strMSMSPath}, 10, 1.0);
        return 0;
    });
    EXPECT_EQ(end.m_nExit, 0);
    std::size_t alerts = 0;
    for (std::size_t at = 0; (at = end.m_strOutput.find("ALERT: ", at)) != std::string::npos; ++at)
        alerts += end.m_strOutput.find(condition.m_strMSMSPath, at) != std::string::npos ? 1 : 0;
    EXPECT_EQ(alerts, 4U) << end.m_strOutput;
}

}  // namespace
}  // namespace tessel
