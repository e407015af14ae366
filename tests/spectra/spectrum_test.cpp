#include "tessel/spectra/spectrum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <limits>
#include <random>

#include "tessel/platform/file.h"
#include "tests/support/classic.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

CSpectrum with_peaks(const std::vector<double>& mzs) {
    CSpectrum spectrum;
    for (const double mz : mzs) {
        spectrum.m_vPeaks.emplace_back();
        spectrum.m_vPeaks.back().m_lfMz = mz;
    }
    return spectrum;
}

std::vector<int> index_of(const std::vector<double>& mzs) {
    CSpectrum spectrum = with_peaks(mzs);
    spectrum.Create_Hash_Table();
    return spectrum.m_vHashTable;
}

std::uint32_t scan_of(const std::string& title) {
    CSpectrum spectrum;
    spectrum.m_nScanNo = 99;
    spectrum.m_strTitle = title;
    spectrum._ExtractScanNo();
    return spectrum.m_nScanNo;
}

std::string block_of(const CSpectrum& spectrum) {
    const test::CTempFolder folder;
    const FilePtr file = open_file(folder.Path("block.mgf"), "wb");
    spectrum.Output(file.get());
    std::fflush(file.get());
    return folder.Read("block.mgf");
}

// The rule of the index, entry by entry: which covered peak is the first at or above it?
std::vector<int> scanned_index(const std::vector<double>& mzs) {
    const auto covered = [](double mz) { return std::isfinite(mz) && mz <= 100000.0; };
    double largest = -kInfinity;
    for (const double mz : mzs)
        if (covered(mz)) largest = std::max(largest, std::trunc(mz));
    std::vector<int> index;
    if (largest == -kInfinity) return index;
    for (double key = 0; key <= std::max(largest, 0.0); ++key) {
        const auto found = std::find_if(mzs.begin(), mzs.end(), [&](double mz) {
            return covered(mz) && std::max(std::trunc(mz), 0.0) >= key;
        });
        index.push_back(static_cast<int>(found - mzs.begin()));
    }
    return index;
}

TEST(spectrum, fresh_records_are_zero_and_empty) {
    const CSpectrum spectrum;
    EXPECT_EQ(spectrum.m_lfMH, 0.0);
    EXPECT_EQ(spectrum.m_nScanNo, 0u);
    EXPECT_EQ(spectrum.m_nCharge, 0);
    EXPECT_TRUE(spectrum.m_vPeaks.empty());
    EXPECT_TRUE(spectrum.m_vHashTable.empty());
    EXPECT_EQ(spectrum.m_strTitle, "");
    EXPECT_EQ(spectrum.m_lfAux, 0.0);
    EXPECT_EQ(spectrum.m_tAux, 0u);
    EXPECT_EQ(CPeak().m_cFlag, 0);
}

TEST(spectrum, copies_share_nothing) {
    CSpectrum original = with_peaks({1.0, 2.0});
    original.m_tAux = 7;
    original.m_lfAux = 0.5;
    original.Create_Hash_Table();
    CSpectrum copy = original;
    original.m_vPeaks.clear();
    original.m_vHashTable.clear();
    EXPECT_EQ(copy.m_vPeaks.size(), 2u);
    EXPECT_EQ(copy.m_vHashTable, (std::vector<int>{0, 0, 1}));
    EXPECT_EQ(copy.m_tAux, 7u);
    EXPECT_EQ(copy.m_lfAux, 0.5);
}

// ---- Scan number ----

TEST(spectrum, scan_number_stands_between_the_first_two_dots) {
    EXPECT_EQ(scan_of("run.1234.1234.2.0.dta"), 1234u);
    EXPECT_EQ(scan_of("a.7.8.2.dta"), 7u);
    EXPECT_EQ(scan_of("a.5.6"), 5u);
}

TEST(spectrum, title_without_two_dots_gives_scan_zero) {
    for (const char* title : {"", "run", "1234", "run.1234", ".", "1234."})
        EXPECT_EQ(scan_of(title), 0u) << title;
}

TEST(spectrum, text_that_is_no_number_gives_scan_zero) {
    for (const char* title : {"a..b", "..", "a.x12.b", "a. .b"})
        EXPECT_EQ(scan_of(title), 0u) << title;
}

TEST(spectrum, scan_number_is_the_numeric_prefix) {
    EXPECT_EQ(scan_of("a.12x34.b"), 12u);
    EXPECT_EQ(scan_of("a. 12.b"), 12u);
    EXPECT_EQ(scan_of("a.+12.b"), 12u);
    EXPECT_EQ(scan_of("a.0x12.b"), 0u);
}

TEST(spectrum, scan_number_saturates_as_a_signed_one) {
    EXPECT_EQ(scan_of("a.2147483647.b"), 2147483647u);
    EXPECT_EQ(scan_of("a.2147483648.b"), 2147483647u);
    EXPECT_EQ(scan_of("a.99999999999999999999999999.b"), 2147483647u);
    EXPECT_EQ(scan_of("a.-1.b"), 4294967295u);
    EXPECT_EQ(scan_of("a.-99999999999999999999999999.b"), 2147483648u);
}

// ---- Peak index ----

TEST(spectrum, single_peak_at_150_7_gives_151_zeros) {
    EXPECT_EQ(index_of({150.7}), std::vector<int>(151, 0));
}

TEST(spectrum, peaks_of_one_dalton_share_an_entry) {
    std::vector<int> expected(101, 0);
    expected.insert(expected.end(), {2, 2});
    EXPECT_EQ(index_of({100.2, 100.9, 102.5}), expected);
}

TEST(spectrum, without_peaks_the_index_becomes_empty) {
    CSpectrum spectrum = with_peaks({3.0});
    spectrum.Create_Hash_Table();
    spectrum.m_vPeaks.clear();
    spectrum.Create_Hash_Table();
    EXPECT_TRUE(spectrum.m_vHashTable.empty());
}

TEST(spectrum, index_is_rebuilt_not_extended) {
    CSpectrum spectrum = with_peaks({3.0});
    spectrum.Create_Hash_Table();
    spectrum.m_vPeaks.front().m_lfMz = 1.0;
    spectrum.Create_Hash_Table();
    EXPECT_EQ(spectrum.m_vHashTable, (std::vector<int>{0, 0}));
}

TEST(spectrum, peaks_at_or_below_zero_stand_in_the_first_entry) {
    EXPECT_EQ(index_of({0.0}), std::vector<int>{0});
    EXPECT_EQ(index_of({-5.0}), std::vector<int>{0});
    EXPECT_EQ(index_of({-1e300, -5.0, -0.5, 0.5, 1.5}), (std::vector<int>{0, 4}));
}

TEST(spectrum, peaks_that_no_index_covers_are_left_out) {
    EXPECT_TRUE(index_of({kNaN, kInfinity, -kInfinity, 1e300, 100000.5}).empty());
    EXPECT_EQ(index_of({kNaN, 2.0, 1e300}), (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(index_of({1.0, kInfinity, kNaN, 3.0}), (std::vector<int>{0, 0, 3, 3}));
}

TEST(spectrum, index_reaches_mz_100000) {
    EXPECT_EQ(index_of({100000.0}).size(), 100001u);
    EXPECT_TRUE(index_of({std::nextafter(100000.0, 1e6)}).empty());
}

TEST(spectrum, index_takes_no_more_memory_than_its_entries) {
    CSpectrum spectrum = with_peaks({10.0, 1e300});
    spectrum.Create_Hash_Table();
    EXPECT_EQ(spectrum.m_vHashTable.capacity(), 11u);
}

TEST(spectrum, peak_behind_a_larger_one_is_left_to_it) {
    EXPECT_EQ(index_of({5.0, 2.0, 6.0}), (std::vector<int>{0, 0, 0, 0, 0, 0, 2}));
}

TEST(spectrum, index_agrees_with_a_linear_scan) {
    std::mt19937 random(20240501);
    for (int round = 0; round < 300; ++round) {
        std::uniform_real_distribution<double> mz(round % 3 == 0 ? -50.0 : 0.5, 300.0);
        std::vector<double> mzs(random() % 60);
        for (double& value : mzs)
            value = mz(random);
        if (round % 2 == 0) std::sort(mzs.begin(), mzs.end());
        if (round % 5 == 0) {
            for (const double odd : {kNaN, kInfinity, -kInfinity, 2e5, 0.0}) {
                const auto place = static_cast<std::ptrdiff_t>(random() % (mzs.size() + 1));
                mzs.insert(mzs.begin() + place, odd);
            }
        }
        ASSERT_EQ(index_of(mzs), scanned_index(mzs)) << "round " << round;
    }
}

// ---- Sort orders ----

TEST(spectrum, peaks_sort_by_intensity_and_by_mz) {
    CPeak a;
    CPeak b;
    a.m_lfMz = 1.0;
    a.m_lfIntensity = 20.0;
    b.m_lfMz = 2.0;
    b.m_lfIntensity = 10.0;
    EXPECT_TRUE(CPeak::Inten_Greater(a, b));
    EXPECT_FALSE(CPeak::Inten_Greater(b, a));
    EXPECT_TRUE(CPeak::Inten_Less(b, a));
    EXPECT_FALSE(CPeak::Inten_Less(a, b));
    EXPECT_TRUE(CPeak::Mz_Less(a, b));
    EXPECT_FALSE(CPeak::Mz_Less(b, a));
    EXPECT_FALSE(CPeak::Inten_Greater(a, a));
    EXPECT_FALSE(CPeak::Inten_Less(a, a));
    EXPECT_FALSE(CPeak::Mz_Less(a, a));
}

template <class Less>
std::vector<double> sorted_peaks(double CPeak::*key, Less less) {
    std::vector<CPeak> peaks;
    for (const double value : {kNaN, 3.0, kInfinity, kNaN, 1.0, -kInfinity, 2.0}) {
        peaks.emplace_back();
        peaks.back().*key = value;
    }
    std::sort(peaks.begin(), peaks.end(), less);
    std::vector<double> values;
    for (const CPeak& peak : peaks)
        values.push_back(peak.*key);
    return values;
}

TEST(spectrum, peak_without_a_number_goes_last_in_each_order) {
    const std::vector<double> rising{-kInfinity, 1.0, 2.0, 3.0, kInfinity};
    const std::vector<double> falling(rising.rbegin(), rising.rend());
    const std::vector<std::pair<std::vector<double>, std::vector<double>>> rows{
        {sorted_peaks(&CPeak::m_lfIntensity, CPeak::Inten_Less), rising},
        {sorted_peaks(&CPeak::m_lfMz, CPeak::Mz_Less), rising},
        {sorted_peaks(&CPeak::m_lfIntensity, CPeak::Inten_Greater), falling},
    };
    for (const auto& [sorted, numbers] : rows) {
        EXPECT_TRUE(std::equal(numbers.begin(), numbers.end(), sorted.begin()));
        EXPECT_TRUE(std::isnan(sorted[5]));
        EXPECT_TRUE(std::isnan(sorted[6]));
    }
}

TEST(spectrum, lighter_spectrum_comes_first_and_no_number_last) {
    std::vector<CSpectrum> spectra;
    for (const double mass : {kNaN, 1500.0, kInfinity, 600.0, -1.0}) {
        spectra.emplace_back();
        spectra.back().m_lfMH = mass;
    }
    std::vector<const CSpectrum*> pointers;
    for (const CSpectrum& spectrum : spectra)
        pointers.push_back(&spectrum);
    std::sort(pointers.begin(), pointers.end(), CSpectrum::Pr_Mass_Less);
    EXPECT_EQ(pointers[0]->m_lfMH, -1.0);
    EXPECT_EQ(pointers[2]->m_lfMH, 1500.0);
    EXPECT_TRUE(std::isnan(pointers[4]->m_lfMH));
    std::sort(spectra.begin(), spectra.end(), CSpectrum::Mass_Less);
    EXPECT_EQ(spectra[1].m_lfMH, 600.0);
    EXPECT_EQ(spectra[3].m_lfMH, kInfinity);
    EXPECT_TRUE(std::isnan(spectra[4].m_lfMH));
    EXPECT_FALSE(CSpectrum::Mass_Less(spectra[0], spectra[0]));
}

// ---- Output ----

TEST(spectrum, block_is_written_with_its_precursor_mz_and_peaks) {
    CSpectrum spectrum = with_peaks({100.1, 200.25});
    spectrum.m_strTitle = "run.12.12.2.0.dta";
    spectrum.m_nCharge = 2;
    spectrum.m_lfMH = 1001.0;
    spectrum.m_vPeaks[0].m_lfIntensity = 20.0;
    spectrum.m_vPeaks[1].m_lfIntensity = 12345.678;
    EXPECT_EQ(block_of(spectrum),
              "BEGIN IONS\n"
              "TITLE=run.12.12.2.0.dta\n"
              "CHARGE=2\n"
              "PEPMASS=501.003638\n"
              "100.100000 20.00\n"
              "200.250000 12345.68\n"
              "END IONS\n");
}

TEST(spectrum, charge_zero_is_written_without_a_crash) {
    CSpectrum spectrum;
    EXPECT_EQ(block_of(spectrum), "BEGIN IONS\nTITLE=\nCHARGE=0\nPEPMASS=-inf\nEND IONS\n");
    spectrum.m_lfMH = 1000.0;
    EXPECT_EQ(block_of(spectrum), "BEGIN IONS\nTITLE=\nCHARGE=0\nPEPMASS=inf\nEND IONS\n");
}

TEST(spectrum, extreme_numbers_are_written_at_full_length) {
    CSpectrum spectrum = with_peaks({1e300, kInfinity, -0.0});
    spectrum.m_nCharge = std::numeric_limits<int>::min();
    spectrum.m_vPeaks[0].m_lfIntensity = -1e300;
    spectrum.m_vPeaks[1].m_lfIntensity = kNaN;
    const std::string block = block_of(spectrum);
    EXPECT_NE(block.find(test::printed("\n%.6f %.2f\n", 1e300, -1e300)), std::string::npos);
    EXPECT_NE(block.find("\ninf nan\n-0.000000 0.00\nEND IONS\n"), std::string::npos);
    // (0 + (-2^31 - 1) * proton) / -2^31
    EXPECT_NE(block.find("\nCHARGE=-2147483648\nPEPMASS=1.007276\n"), std::string::npos);
}

TEST(spectrum, block_has_a_decimal_point_under_every_locale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");  // without effect where it is not installed
    CSpectrum spectrum = with_peaks({1234.5});
    spectrum.m_nCharge = 1;
    EXPECT_NE(block_of(spectrum).find("\n1234.500000 0.00\n"), std::string::npos);
    std::setlocale(LC_ALL, before.c_str());
}

TEST(spectrum, failed_write_sets_the_error_indicator) {
    const FilePtr full = open_file("/dev/full", "wb");
    if (!full) GTEST_SKIP() << "no device that is always full";
    with_peaks(std::vector<double>(10000, 1.0)).Output(full.get());
    std::fflush(full.get());
    EXPECT_NE(std::ferror(full.get()), 0);
}

}  // namespace
}  // namespace tessel
