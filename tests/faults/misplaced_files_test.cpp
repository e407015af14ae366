// Folders where files are expected, files that are not there, and empty files.

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "tessel/param/condition_reader.h"
#include "tessel/param/condition_writer.h"
#include "tessel/platform/file.h"
#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

namespace fs = std::filesystem;

using test::captured_output;
using test::CChemistry;

class misplaced_files : public testing::Test {
protected:
    misplaced_files() {
        fs::create_directory(m_strFolder);
        m_cFolder.Write("folder/kept", "kept");
        m_cCondition.m_strOutputPath = m_cFolder.Path() + '\\';
        m_cCondition.m_strOutputName = "run";
        m_cCondition.m_vLabels = {"None"};
    }
    ~misplaced_files() override { EXPECT_EQ(m_cFolder.Read("folder/kept"), "kept"); }

    // Makes a folder where a file is expected.
    std::string FolderAt(const std::string& name) {
        const std::string path = m_cFolder.Path(name);
        fs::create_directory(path);
        return path;
    }

    CChemistry m_cChemistry;
    const test::CTempFolder& m_cFolder = m_cChemistry.m_cFolder;
    CCondition& m_cCondition = m_cChemistry.m_cCondition;
    const std::string m_strFolder = m_cFolder.Path("folder");
};

// ---- A folder where a file is to be read ----

TEST_F(misplaced_files, folders_hold_no_tables) {
    for (const char* name : {"element.ini", "quant.ini", "aa.ini", "run.learn"})
        FolderAt(name);
    m_cCondition.m_strAAPath = m_cFolder.Path("aa.ini");
    EXPECT_EQ(captured_output([&] {
                  m_cCondition.ReadElementInfo();
                  m_cCondition.ReadAA();
                  EXPECT_FALSE(m_cCondition.SetSelMod(5));
              }),
              "");
    EXPECT_TRUE(m_cCondition.m_mapElementMass.empty());
    EXPECT_ENDS_PROCESS(m_cCondition.ReadLabelInfo("None"),
                        "[Tessel] ALERT: Cannot find the label: None\n", "");
}

// Of a file that cannot be opened all texts are empty and all numbers the defaults.
TEST_F(misplaced_files, folder_holds_no_settings) {
    EXPECT_EQ(captured_output([&] {
                  CConditionReader reader(m_strFolder);  // it exists
                  reader._LoadParam();
                  EXPECT_EQ(reader.m_cCondition.m_tThreadNum, 2U);
                  EXPECT_EQ(reader.m_cCondition.m_strSelectMod, "");
              }),
              "[Tessel] WARNING: Abnormal Precursor: 0.000000\n"
              "[Tessel] WARNING: Abnormal Fragment: 0.000000\n");
}

TEST_F(misplaced_files, folder_holds_no_spectra) {
    m_cCondition.m_strMSMSPath = m_strFolder;
    for (const std::string type : {"MGF", "ZB2", "ZBS"}) {
        m_cCondition.m_strMSMSType = type;
        bool more = true;
        EXPECT_EQ(captured_output([&] { more = m_cCondition.LoadSpectra(false); }),
                  "[Tessel] ALERT: Spectrum file of type " + type + ": cannot open " + m_strFolder +
                      '\n');
        EXPECT_FALSE(more);
        EXPECT_TRUE(m_cCondition.m_vSpectra.empty());
    }
}

TEST_F(misplaced_files, folder_in_a_list_of_spectrum_files_is_told) {
    m_cCondition.m_strMSMSPath = m_cFolder.Write("list.zbs", m_strFolder + '\n');
    m_cCondition.m_strMSMSType = "ZBS";
    EXPECT_EQ(captured_output([&] { EXPECT_FALSE(m_cCondition.LoadSpectra(false)); }),
              "[Tessel] ALERT: Spectrum file of type ZBS: cannot open " + m_strFolder + '\n');
}

TEST_F(misplaced_files, folders_hold_no_index_and_no_results) {
    FolderAt("db.pac");
    FolderAt("db.pde");
    m_cCondition.m_strInputFastaPath = m_cFolder.Path("db.fasta");
    std::vector<std::string> lines = {"before"};
    m_cCondition.ReadProteinAC(lines);
    EXPECT_TRUE(lines.empty());
    lines = {"before"};
    m_cCondition.ReadProteinDE(lines);
    EXPECT_TRUE(lines.empty());
    const std::string output =
        captured_output([&] { m_cCondition.LoadResult({m_strFolder}, 10, 1.0); });
    EXPECT_NE(output.find("ALERT: "), std::string::npos);
    EXPECT_NE(output.find(m_strFolder), std::string::npos);
    EXPECT_TRUE(m_cCondition.m_mapPSMRes.empty());
}

// ---- A folder where a file is to be written ----

TEST_F(misplaced_files, no_folder_is_replaced) {
    const std::string aa = FolderAt("1.aa");
    const std::string mod = FolderAt("1.mod");
    EXPECT_EQ(captured_output([&] {
                  m_cCondition.WriteAA(0);
                  m_cCondition.WriteMod(0);
                  CConditionWriter(m_strFolder, &m_cCondition).Write();
              }),
              "[Tessel] ALERT: Cannot write the file: " + m_cFolder.Path() + "\\1.aa\n" +
                  "[Tessel] ALERT: Cannot write the file: " + m_cFolder.Path() + "\\1.mod\n");
    const std::string one = m_cFolder.Write("one", "1");
    EXPECT_ENDS_PROCESS(m_cCondition.MergeFiles({one}, m_strFolder, true),
                        "[Tessel] ALERT: Failed to write the result file: " + m_strFolder + '\n',
                        "");
    EXPECT_ENDS_PROCESS(m_cCondition.WriteFinalResult(m_strFolder, 0.0),
                        "[Tessel] ALERT: Cannot open the file: " + m_strFolder + "!\n\n", "");
    EXPECT_EQ(m_cFolder.Read("one"), "1");
    EXPECT_TRUE(fs::is_directory(aa) && fs::is_directory(mod));
}

TEST_F(misplaced_files, empty_folder_in_the_place_of_the_target_decoy_database_stays) {
    m_cCondition.m_strFastaPath = m_cFolder.Write("db.fasta", ">P\nA\n");
    const std::string target = FolderAt("db.fasta_td.fasta");
    const auto before = folder_entries(m_cFolder.Path());
    ASSERT_TRUE(before);
    EXPECT_ENDS_PROCESS(m_cCondition.SetFastaPath(),
                        "[Tessel] ALERT: Cannot write the target-decoy database " + target + '\n',
                        "");
    EXPECT_TRUE(fs::is_directory(target));
    // No unfinished file, whatever its name.
    EXPECT_EQ(folder_entries(m_cFolder.Path()), before);
}

// ---- Missing inputs of a merge ----

TEST_F(misplaced_files, merge_takes_what_there_is_and_names_what_is_missing) {
    const std::string one = m_cFolder.Write("one", "1");
    const std::string none = m_cFolder.Path("none");
    const std::string merged = m_cFolder.Path("merged");
    const std::string warning =
        "[Tessel] WARNING: The result file to merge does not exist: " + none + '\n';
    EXPECT_EQ(captured_output([&] {
                  EXPECT_FALSE(m_cCondition.MergeFiles({none, none}, merged, true));
              }),
              warning + warning);
    EXPECT_EQ(m_cFolder.Read("merged"), "");
    EXPECT_EQ(captured_output([&] {
                  EXPECT_FALSE(m_cCondition.MergeFiles({none, one, none}, merged, true));
              }),
              warning + warning);
    EXPECT_EQ(m_cFolder.Read("merged"), "1");
    EXPECT_FALSE(m_cFolder.Has("one"));
    EXPECT_FALSE(m_cFolder.Has("none"));
}

TEST_F(misplaced_files, input_without_a_name_is_a_missing_one) {
    const std::string one = m_cFolder.Write("one", "1");
    EXPECT_EQ(captured_output([&] {
                  EXPECT_FALSE(m_cCondition.MergeFiles({"", one}, m_cFolder.Path("merged"), true));
              }),
              "[Tessel] WARNING: The result file to merge does not exist: \n");
    EXPECT_EQ(m_cFolder.Read("merged"), "1");
}

// ---- Empty files ----

TEST_F(misplaced_files, empty_inputs_merge_to_an_empty_output_and_go) {
    const std::vector<std::string> inputs = {m_cFolder.Write("one", ""),
                                             m_cFolder.Write("two", "")};
    EXPECT_EQ(captured_output([&] {
                  EXPECT_FALSE(m_cCondition.MergeFiles(inputs, m_cFolder.Path("merged"), true));
              }),
              "");
    EXPECT_EQ(m_cFolder.Read("merged"), "");
    EXPECT_FALSE(m_cFolder.Has("one") || m_cFolder.Has("two"));
}

TEST_F(misplaced_files, empty_spectrum_files_hold_no_spectra) {
    m_cCondition.m_strMSMSPath = m_cFolder.Write("empty", "");
    const struct {
        const char* type;
        std::string output;
    } rows[] = {
        {"MGF", ""},
        {"ZB2", "[Tessel] ALERT: Spectrum file of type ZB2: no ZB2 header in " +
                    m_cCondition.m_strMSMSPath + '\n'},
        {"ZBS", ""},
    };
    for (const auto& row : rows) {
        m_cCondition.m_strMSMSType = row.type;
        EXPECT_EQ(captured_output([&] { EXPECT_FALSE(m_cCondition.LoadSpectra(false)); }),
                  row.output);
        EXPECT_EQ(m_cCondition.m_tTotalSpec, 0U);
        EXPECT_TRUE(m_cCondition.m_vSpectra.empty());
    }
}

// An empty database is a database; its empty target-decoy database is fresh.
TEST_F(misplaced_files, empty_database_has_an_empty_target_decoy_database) {
    m_cCondition.m_strFastaPath = m_cFolder.Write("db.fasta", "");
    EXPECT_EQ(captured_output([&] { m_cCondition.SetFastaPath(); }), "");
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), "");
    m_cCondition.m_cFastaLoader.Reset();
    EXPECT_FALSE(m_cCondition.m_cFastaLoader.ReadNextBatch());
    EXPECT_TRUE(m_cCondition.m_cFastaLoader.m_vProteins.empty());
}

// A search over nothing, from its start to its final result.
TEST_F(misplaced_files, search_over_empty_files_has_an_empty_result) {
    for (const char* name : {"element.ini", "aa.ini", "modification.ini", "db.fasta", "a.mgf"})
        m_cFolder.Write(name, "");
    m_cFolder.Write("quant.ini", "\nNone=none");
    m_cCondition.m_vLabels.clear();
    m_cCondition.m_strAAPath = "aa.ini";
    m_cCondition.m_strModPath = "modification.ini";
    m_cCondition.m_strFastaPath = "db.fasta";
    m_cCondition.m_strMSMSPath = "a.mgf";
    m_cCondition.m_strMSMSType = "MGF";
    EXPECT_EQ(captured_output([&] {
                  EXPECT_EQ(m_cCondition.Initialize(), 1);
                  EXPECT_EQ(m_cCondition.WriteConfFiles(), 1U);
                  m_cCondition.ReLoadAllMods();
                  m_cCondition.GenerateModComb();
                  EXPECT_FALSE(m_cCondition.LoadSpectra(false));
                  m_cCondition.InitialResMap();
                  m_cCondition.MergeSubRes("res");
                  m_cCondition.LoadResult({m_cFolder.Path("run.res")}, 10, 1.0);
                  m_cCondition.RemoveRedundancy();
                  m_cCondition.WriteFinalResult("final.res", 0.0);
              }),
              "[Tessel] WARNING: The result file to merge does not exist: " + m_cFolder.Path() +
                  "\\run.1.res\n");
    EXPECT_EQ(m_cFolder.Read("final.res"), "");
}

}  // namespace
}  // namespace tessel
