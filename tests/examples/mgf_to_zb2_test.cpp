#include <gtest/gtest.h>

#include "tessel/condition/condition.h"
#include "tessel/spectra/mgf_input.h"
#include "tessel/spectra/zb_input.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zb2_writer.h"

namespace tessel {
namespace {

const std::string kSample = test::source_path("examples/ecoli/ecoli.mgf");

// The exit status of the program.
int run_tool(const std::string& arguments) {
    const test::CTempFolder folder;
    return test::run_program(MGF_TO_ZB2, arguments, folder.Path());
}

std::vector<CSpectrum> spectra_of(CInput& reader, const std::string& path) {
    std::vector<CSpectrum> spectra;
    reader.Count(path);
    reader.Browse(spectra, kAllEntries);
    EXPECT_TRUE(reader.TakeFaults().empty());
    return spectra;
}

TEST(mgf_to_zb2, real_file_survives_the_change_of_format) {
    const test::CTempFolder folder;
    const std::string zb2 = folder.Path("ecoli.zb2");
    ASSERT_EQ(run_tool(kSample + ' ' + zb2 + " Ecoli_MS2_small"), 0);
    CMGFInput mgfReader;
    CZBInput zb2Reader;
    const std::vector<CSpectrum> before = spectra_of(mgfReader, kSample);
    const std::vector<CSpectrum> after = spectra_of(zb2Reader, zb2);
    ASSERT_EQ(before.size(), 139u);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(after[i].m_strTitle, before[i].m_strTitle);
        EXPECT_EQ(after[i].m_nScanNo, before[i].m_nScanNo);
        EXPECT_EQ(after[i].m_nCharge, before[i].m_nCharge);
        EXPECT_NEAR(after[i].m_lfMH, before[i].m_lfMH, 1e-9);
        EXPECT_EQ(after[i].m_vHashTable, before[i].m_vHashTable);
        ASSERT_EQ(after[i].m_vPeaks.size(), before[i].m_vPeaks.size());
        for (std::size_t j = 0; j < before[i].m_vPeaks.size(); ++j) {
            EXPECT_EQ(after[i].m_vPeaks[j].m_lfMz, before[i].m_vPeaks[j].m_lfMz);
            EXPECT_EQ(after[i].m_vPeaks[j].m_lfIntensity, before[i].m_vPeaks[j].m_lfIntensity);
        }
    }
}

TEST(mgf_to_zb2, files_are_those_of_the_format) {
    const test::CTempFolder folder;
    const std::string mgf = folder.Write(
        "my.run.mgf",
        "BEGIN IONS\nTITLE=x.7.7.1.dta\nCHARGE=1+\nPEPMASS=500.5\n100.25 20\nEND IONS\n"
        "BEGIN IONS\nTITLE=x.8.8.0.dta\nCHARGE=0\nPEPMASS=500.5\nEND IONS\n");
    ASSERT_EQ(run_tool(mgf + ' ' + folder.Path("out.zb2")), 0);
    EXPECT_EQ(folder.Read("out.zb2"),
              test::zb2_file("my.run", {{7, {{100.25, 20.0}}, {{500.5, 1}}}, {8, {}, {{0.0, 0}}}}));
}

TEST(mgf_to_zb2, search_reads_the_written_file) {
    const test::CTempFolder folder;
    CCondition condition;
    condition.m_strMSMSPath = folder.Path("ecoli.zb2");
    ASSERT_EQ(run_tool(kSample + ' ' + condition.m_strMSMSPath), 0);
    EXPECT_EQ(test::captured_output([&] { EXPECT_FALSE(condition.LoadSpectra(true)); }), "");
    EXPECT_EQ(condition.m_tLoadedSpec, 139u);
    EXPECT_EQ(condition.m_vSpectra.front().m_strTitle, "ecoli.11461.11461.2.0.dta");
}

TEST(mgf_to_zb2, wrong_arguments_end_with_status_2) {
    EXPECT_EQ(run_tool(""), 2);
    EXPECT_EQ(run_tool("one"), 2);
    EXPECT_EQ(run_tool("a b c d"), 2);
}

TEST(mgf_to_zb2, file_that_cannot_be_read_or_written_ends_with_status_1) {
    const test::CTempFolder folder;
    EXPECT_EQ(run_tool(folder.Path("missing.mgf") + ' ' + folder.Path("out.zb2")), 1);
    EXPECT_FALSE(folder.Has("out.zb2"));
    EXPECT_EQ(run_tool(kSample + ' ' + folder.Path("missing/out.zb2")), 1);
    EXPECT_EQ(run_tool(folder.Write("text.mgf", "text\n") + ' ' + folder.Path("out.zb2")), 1);
}

}  // namespace
}  // namespace tessel
