// Input that is legal and meant badly, through everything that a run does with it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tessel/platform/file.h"
#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"
#include "tests/support/zb2_writer.h"

namespace tessel {
namespace {

using test::captured_output;
using test::CChemistry;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kMostNegative = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMostPositive = std::numeric_limits<std::int32_t>::max();

// Loads a spectrum file whole; returns what was printed.
std::string load(CChemistry& chemistry, const std::string& type, const std::string& bytes) {
    CCondition& condition = chemistry.m_cCondition;
    condition.m_strMSMSType = type;
    condition.m_strMSMSPath = chemistry.m_cFolder.Write("spectra", bytes);
    return captured_output([&] { EXPECT_FALSE(condition.LoadSpectra(true)); });
}

// Loads it and takes the spectra through the results to the final file.
std::string result_of(CChemistry& chemistry) {
    CCondition& condition = chemistry.m_cCondition;
    condition.InitialResMap();
    condition.RemoveRedundancy();
    condition.WriteFinalResult(chemistry.m_cFolder.Path("final"), 0.0);
    return chemistry.m_cFolder.Read("final");
}

TEST(hostile_input, peaks_of_any_number_stay_in_the_list) {
    const std::vector<std::pair<double, double>> peaks = {
        {1e300, 1.0},  {kNaN, kNaN},  {-5.5, -1.0},     {kInfinity, 1e300}, {-kInfinity, 0.0},
        {-1e300, 1.0}, {5e-324, 1.0}, {100'000.0, 1.0}, {150.5, 1.0}};
    CChemistry chemistry;
    EXPECT_EQ(load(chemistry, "ZB2", test::zb2_file("s", {{7, peaks, {{500.0, 2}}}})), "");
    ASSERT_EQ(chemistry.m_cCondition.m_vSpectra.size(), 1U);
    CSpectrum spectrum = chemistry.m_cCondition.m_vSpectra.front();
    ASSERT_EQ(spectrum.m_vPeaks.size(), peaks.size());
    EXPECT_EQ(spectrum.m_vPeaks[0].m_lfMz, 1e300);
    EXPECT_TRUE(std::isnan(spectrum.m_vPeaks[1].m_lfMz));
    EXPECT_EQ(spectrum.m_vPeaks[2].m_lfMz, -5.5);
    // Covered are -5.5, -1e300 and 5e-324 below 1 Da, then 100000; what follows it is lighter.
    ASSERT_EQ(spectrum.m_vHashTable.size(), 100'001U);
    EXPECT_EQ(spectrum.m_vHashTable[0], 2);
    EXPECT_EQ(spectrum.m_vHashTable[1], 7);
    EXPECT_EQ(spectrum.m_vHashTable[100'000], 7);

    const FilePtr file = open_file(chemistry.m_cFolder.Path("a.mgf"), "wb+");
    spectrum.Output(file.get());
    EXPECT_EQ(std::ferror(file.get()), 0);
}

TEST(hostile_input, peaks_of_any_number_are_read_as_text) {
    CChemistry chemistry;
    EXPECT_EQ(
        load(chemistry, "MGF",
             "BEGIN IONS\nTITLE=t\nCHARGE=1+\nPEPMASS=500\n1e300 1\n-5 1\nnan 1\n1e999 1e999\n"
             "1e-999 nan\n0x10 1\n100 -inf\nEND IONS\n"),
        "");
    ASSERT_EQ(chemistry.m_cCondition.m_vSpectra.size(), 1U);
    const std::vector<CPeak>& peaks = chemistry.m_cCondition.m_vSpectra[0].m_vPeaks;
    // Lines that begin with a sign or a letter are no peaks; 0x10 is 0 and text behind it.
    ASSERT_EQ(peaks.size(), 5U);
    EXPECT_EQ(peaks[0].m_lfMz, 1e300);
    EXPECT_EQ(peaks[1].m_lfMz, kInfinity);
    EXPECT_EQ(peaks[1].m_lfIntensity, kInfinity);
    EXPECT_EQ(peaks[2].m_lfMz, 0.0);
    EXPECT_TRUE(std::isnan(peaks[2].m_lfIntensity));
    EXPECT_EQ(peaks[3].m_lfMz, 0.0);
    EXPECT_EQ(peaks[4].m_lfIntensity, -kInfinity);
}

// Charge 0 leaves the proton: 0 * mz - (0 - 1) * 1.00727647012.
TEST(hostile_input, charges_of_any_number_have_a_mass_or_go) {
    const std::string text = "PEPMASS=500\n100 1\nEND IONS\n";
    CChemistry chemistry;
    EXPECT_EQ(load(chemistry, "MGF",
                   "BEGIN IONS\nTITLE=zero\nCHARGE=0\n" + text +
                       "BEGIN IONS\nTITLE=two to the 31\nCHARGE=2147483648+\n" + text +
                       "BEGIN IONS\nTITLE=negative\nCHARGE=-2147483649\n" + text),
              "");
    ASSERT_EQ(chemistry.m_cCondition.m_vSpectra.size(), 1U);
    EXPECT_EQ(chemistry.m_cCondition.m_vSpectra[0].m_strTitle, "zero");
    EXPECT_EQ(chemistry.m_cCondition.m_vSpectra[0].m_lfMH, 1.00727647012);
    EXPECT_EQ(result_of(chemistry), "S\t1.007276\t0\nzero\n");

    // At this m/z 2^31 - 1 charges are 1.00727647012 Da again; 2^31 is a negative charge in ZB2.
    EXPECT_EQ(load(chemistry, "ZB2",
                   test::zb2_file("s", {{1, {}, {{1.00727647012, kMostPositive}}},
                                        {2, {}, {{1.00727647012, kMostNegative}}},
                                        {3, {}, {{1e300, kMostNegative}}},
                                        {4, {}, {{kNaN, 2}}},
                                        {5, {}, {{-kInfinity, 0}}}})),
              "");
    ASSERT_EQ(chemistry.m_cCondition.m_vSpectra.size(), 2U);
    EXPECT_NEAR(chemistry.m_cCondition.m_vSpectra[0].m_lfMH, 1.00727647012, 1e-6);
    EXPECT_EQ(chemistry.m_cCondition.m_vSpectra[0].m_strTitle, "s.1.1.2147483647.0.dta");
    EXPECT_EQ(chemistry.m_cCondition.m_vSpectra[1].m_strTitle, "s.2.2.-2147483648.0.dta");
}

TEST(hostile_input, table_of_3000_modifications_is_read_and_guarded) {
    std::string text;
    for (int i = 1; i <= 3000; ++i) {
        const std::string name = "M" + std::to_string(i) + "[K]";
        text += "name" + std::to_string(i) + '=' + name + "\t0\n" + name + "=K NORMAL " +
                std::to_string(i) + ".5 1 0 H(1)\n";
    }
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=K|C(6)|\n");
    chemistry.Mods(text);
    CCondition& condition = chemistry.m_cCondition;
    for (int i = 1; i <= 200; ++i)
        condition.m_strSelectMod += "M" + std::to_string(i) + "[K];";
    EXPECT_EQ(captured_output([&] { condition.CreateModList(); }), "");
    EXPECT_EQ(condition.m_vMods.size(), 3001U);  // with the placeholder
    EXPECT_EQ(condition.m_vSelMods.size(), 200U);
    // C(203, 3) multisets of the selected ones, each alone, with one and with two of the table.
    EXPECT_ENDS_PROCESS(condition.GenerateModComb(),
                        "[Tessel] WARNING: 6187837528201 modification combinations, "
                        "495027002256080 bytes\n"
                        "[Tessel] ALERT: Not enough memory for 6187837528201 modification "
                        "combinations, 495027002256080 bytes\n",
                        "");
}

TEST(hostile_input, hundred_thousand_spectra_may_share_a_title) {
    constexpr int kSpectra = 100'000;
    std::string mgf;
    std::string results;
    for (int i = 0; i < kSpectra; ++i) {
        mgf += "BEGIN IONS\nTITLE=same\nCHARGE=1+\nPEPMASS=500\nEND IONS\n";
        results += "S\t500\t1\nsame\n1\tPEP" + std::string(i % 2 == 0 ? "" : "K") +
                   "\t500\t10\t0\t0\t0\t0\t1\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\n";
    }
    CChemistry chemistry;
    EXPECT_EQ(load(chemistry, "MGF", mgf), "");
    CCondition& condition = chemistry.m_cCondition;
    ASSERT_EQ(condition.m_vSpectra.size(), std::size_t{kSpectra});
    const std::string warning = captured_output([&] { condition.InitialResMap(); });
    EXPECT_EQ(std::count(warning.begin(), warning.end(), '\n'), 1);
    EXPECT_NE(warning.find("WARNING: "), std::string::npos) << warning;
    EXPECT_EQ(condition.m_mapPSMRes.size(), 1U);

    const std::string path = chemistry.m_cFolder.Write("a.res", results);
    EXPECT_EQ(captured_output([&] { condition.LoadResult({path}, 1000, 1.0); }), "");
    ASSERT_EQ(condition.m_mapPSMRes.size(), 1U);
    EXPECT_EQ(condition.m_mapPSMRes.at("same").m_vPeps.size(), 2U);
}

TEST(hostile_input, title_of_80_kilobytes_stays_whole) {
    const std::string title = "run.17." + std::string(80'000, 't');
    CChemistry chemistry;
    EXPECT_EQ(load(chemistry, "MGF",
                   "BEGIN IONS\nTITLE=" + title + "\nCHARGE=1+\nPEPMASS=500\n100 1\nEND IONS\n"),
              "");
    CCondition& condition = chemistry.m_cCondition;
    ASSERT_EQ(condition.m_vSpectra.size(), 1U);
    EXPECT_EQ(condition.m_vSpectra[0].m_strTitle, title);
    EXPECT_EQ(condition.m_vSpectra[0].m_nScanNo, 17U);
    EXPECT_EQ(result_of(chemistry), "S\t500.000000\t1\n" + title + '\n');

    condition.m_mapPSMRes.clear();
    const std::string path = chemistry.m_cFolder.Path("final");
    EXPECT_EQ(captured_output([&] { condition.LoadResult({path}, 10, 1.0); }), "");
    EXPECT_EQ(condition.m_mapPSMRes.count(title), 1U);

    const std::string mgf = chemistry.m_cFolder.Path("a.mgf");
    close_file([&] {
        FilePtr file = open_file(mgf, "wb");
        condition.m_vSpectra[0].Output(file.get());
        return file;
    }());
    EXPECT_EQ(load(chemistry, "MGF", chemistry.m_cFolder.Read("a.mgf")), "");
    ASSERT_EQ(condition.m_vSpectra.size(), 1U);
    EXPECT_EQ(condition.m_vSpectra[0].m_strTitle, title);

    std::string stem;
    _get_title(title + ".17.1.0.dta", stem);
    EXPECT_EQ(stem, "run17");
}

}  // namespace
}  // namespace tessel
