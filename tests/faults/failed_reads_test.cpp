// Inputs that fail while they are read: what was read before is kept, and the fault is told.

#include <gtest/gtest.h>

#include <cerrno>

#include "tessel/param/condition_reader.h"
#include "tessel/param/option_tool.h"
#include "tessel/platform/file.h"
#include "tests/support/captured.h"
#include "tests/support/failing_file.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::captured_output;
using test::CFailingFiles;
using test::CFailingFolders;

test::FILE_FAULT error_at(const std::string& path, std::size_t byte) {
    test::FILE_FAULT fault;
    fault.m_strPath = path;
    fault.m_uFailAt = byte;
    fault.m_nError = EIO;
    fault.m_bReading = true;
    return fault;
}

std::string alert(const std::string& text) {
    return "[Tessel] ALERT: " + text + '\n';
}

TEST(failed_reads, modifications_before_the_error_are_kept_with_an_alert) {
    const test::CTempFolder folder;
    CCondition condition;
    const std::string first = "A[K]=K NORMAL 1.0 1.0 0 H(1)\n";
    condition.m_strModPath =
        folder.Write("modification.ini", first + "B[K]=K NORMAL 2.0 2.0 0 H(2)\n");
    const CFailingFiles failing(error_at(condition.m_strModPath, first.size()));
    EXPECT_EQ(captured_output([&] { condition.ReadMod(); }),
              alert("Cannot read the modification file: " + condition.m_strModPath));
    ASSERT_EQ(condition.m_vMods.size(), 1U);
    EXPECT_EQ(condition.m_vMods[0].m_strName, "A[K]");
}

TEST(failed_reads, learned_probabilities_before_the_error_are_kept_with_an_alert) {
    const test::CTempFolder folder;
    CCondition condition;
    CMod mod;
    condition.m_mapMods = {{"A[K]", &mod}};
    condition.m_strOutputPath = folder.Path("");
    condition.m_strOutputName = "run";
    const std::string first = "heading\nA[K] 3 0.25\n";
    const std::string path =
        folder.Write("run.learn", first + "[----mod prob end----]\n[----cleave prob----]\n1 0.5\n");
    const CFailingFiles failing(error_at(path, first.size()));
    bool found = false;
    const std::string output = captured_output([&] { found = condition.SetSelMod(1); });
    EXPECT_TRUE(found);
    EXPECT_EQ(output.substr(0, output.find('\n') + 1),
              alert("Cannot read the learn file: " + path));
    EXPECT_EQ(mod.m_lfProb, 0.25);
    EXPECT_EQ(condition.m_lfCleaveProb[1], 1.0);
}

TEST(failed_reads, keys_behind_the_error_are_missing) {
    const test::CTempFolder folder;
    const std::string front = "[param]\nthread=4\n";
    const std::string path = folder.Write("run.param", front + "maxmod=5\n");
    const COptionTool tool(path, "param");
    const CFailingFiles failing(error_at(path, front.size()));
    EXPECT_EQ(tool.GetString("thread", "none"), "4");
    EXPECT_EQ(tool.GetString("maxmod", "none"), "none");
    EXPECT_EQ(tool._GetPrivateProfileInt("param", "maxmod", 3, path), 3);
}

// A parameter file whose paths stand in front of "thread=4".
struct PARAMETERS {
    explicit PARAMETERS(const std::string& dataList = "")
        : m_strFront("[file]\nfastapath=" + m_cFolder.Write("db.fasta", "") + "\noutputpath=" +
                     m_cFolder.Path() + "\nmodpath=" + m_cFolder.Write("modification.ini", "") +
                     "\naapath=" + m_cFolder.Write("aa.ini", "") + "\n[datalist]\n" + dataList +
                     "[param]\n"),
          m_strPath(m_cFolder.Write("run.param", m_strFront + "thread=4\n")) {}

    test::CTempFolder m_cFolder;
    std::string m_strFront;
    std::string m_strPath;
};

TEST(failed_reads, parameter_file_that_fails_in_the_middle_is_an_alert) {
    const PARAMETERS file;
    CConditionReader reader(file.m_strPath);
    const CFailingFiles failing(error_at(file.m_strPath, file.m_strFront.size()));
    EXPECT_EQ(captured_output([&] { reader.Read(); }),
              alert("Cannot read the parameter file: " + file.m_strPath));
    EXPECT_EQ(reader.m_cCondition.m_strFastaPath, file.m_cFolder.Path("db.fasta"));
    EXPECT_EQ(reader.m_cCondition.m_tThreadNum, 2U);
}

// The tests above would say nothing if the fault hit another file.
TEST(failed_reads, error_behind_the_end_is_none) {
    const PARAMETERS file;
    CConditionReader reader(file.m_strPath);
    const CFailingFiles failing(error_at(file.m_strPath, file.m_strFront.size() + 100));
    EXPECT_EQ(captured_output([&] { reader.Read(); }), "");
    EXPECT_EQ(reader.m_cCondition.m_tThreadNum, 4U);
}

TEST(failed_reads, folder_that_fails_in_the_middle_is_not_listed) {
    const test::CTempFolder folder;
    for (const char* name : {"a", "b", "c"})
        folder.Write(name, "");
    for (std::size_t entries = 0; entries < 5; ++entries) {
        const CFailingFolders failing(entries);
        EXPECT_EQ(folder_entries(folder.Path()), std::nullopt) << entries;
    }
    const CFailingFolders failing(6);
    EXPECT_EQ(folder_entries(folder.Path()), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(failed_reads, folder_of_spectra_that_fails_in_the_middle_is_an_alert) {
    const test::CTempFolder spectra;
    spectra.Write("a.mgf", "");
    const PARAMETERS file("msmsfolder=1\nmsmsnum=1\nmsmspath1=" + spectra.Path() + '\n');
    CConditionReader reader(file.m_strPath);
    const CFailingFolders failing(2);
    EXPECT_EQ(captured_output([&] { reader.Read(); }),
              alert("Unreadable_Folder: [" + spectra.Path() + "]"));
    EXPECT_TRUE(reader.m_cCondition.m_vMSMSFiles.empty());
}

}  // namespace
}  // namespace tessel
