#include "tessel/spectra/mgf_input.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

#include "tests/spectra/open_files.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using Texts = std::vector<std::string>;

constexpr double kProton = 1.00727647012;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A file and its reader, opened by Count().
class CMgf {
public:
    explicit CMgf(const std::string& bytes) : m_strPath(m_cFolder.Write("run.mgf", bytes)) {
        m_tCount = m_cReader.Count(m_strPath);
    }

    std::vector<CSpectrum> Read(std::size_t num = kAllEntries) {
        std::vector<CSpectrum> spectra;
        m_tRead = m_cReader.Browse(spectra, num);
        return spectra;
    }

    test::CTempFolder m_cFolder;
    std::string m_strPath;
    CMGFInput m_cReader;
    std::size_t m_tCount = 0;
    std::size_t m_tRead = 0;
};

std::vector<CSpectrum> spectra_of(const std::string& bytes) {
    return CMgf(bytes).Read();
}

// The one spectrum of a block with these lines.
CSpectrum spectrum_of(const std::string& lines) {
    const std::vector<CSpectrum> spectra = spectra_of("BEGIN IONS\n" + lines + "END IONS\n");
    EXPECT_EQ(spectra.size(), 1u);
    return spectra.empty() ? CSpectrum() : spectra.front();
}

std::string blocks(int count) {
    std::string bytes;
    for (int i = 0; i < count; ++i)
        bytes +=
            "BEGIN IONS\nCHARGE=2+\nPEPMASS=500.5\n100.5 " + std::to_string(i) + "\nEND IONS\n";
    return bytes;
}

Texts titles_of(const std::vector<CSpectrum>& spectra) {
    Texts titles;
    for (const CSpectrum& spectrum : spectra)
        titles.push_back(spectrum.m_strTitle);
    return titles;
}

TEST(mgf_input, block_becomes_a_spectrum) {
    CMgf mgf("BEGIN IONS\nTITLE=a.7.7.2.dta\nCHARGE=2+\nPEPMASS=500.5\n100.1 20\nEND IONS\n");
    EXPECT_EQ(mgf.m_tCount, 1u);
    const std::vector<CSpectrum> spectra = mgf.Read();
    EXPECT_EQ(mgf.m_tRead, 1u);
    ASSERT_EQ(spectra.size(), 1u);
    const CSpectrum& spectrum = spectra.front();
    EXPECT_EQ(spectrum.m_strTitle, "a.7.7.2.dta");
    EXPECT_EQ(spectrum.m_nScanNo, 7u);
    EXPECT_EQ(spectrum.m_nCharge, 2);
    EXPECT_DOUBLE_EQ(spectrum.m_lfMH, 999.99272352988);
    ASSERT_EQ(spectrum.m_vPeaks.size(), 1u);
    EXPECT_EQ(spectrum.m_vPeaks[0].m_lfMz, 100.1);
    EXPECT_EQ(spectrum.m_vPeaks[0].m_lfIntensity, 20.0);
    EXPECT_EQ(spectrum.m_vPeaks[0].m_cFlag, 0);
    EXPECT_EQ(spectrum.m_vHashTable, std::vector<int>(101, 0));
    EXPECT_EQ(mgf.m_cReader.TakeFaults(), Texts());
}

TEST(mgf_input, block_without_a_title_is_named_by_its_position) {
    std::string bytes;
    for (int i = 0; i < 10; ++i)
        bytes += "BEGIN IONS\nCHARGE=3+\nPEPMASS=400\nEND IONS\n";
    const std::vector<CSpectrum> spectra = spectra_of(bytes);
    ASSERT_EQ(spectra.size(), 10u);
    EXPECT_EQ(spectra[2].m_strTitle, "10.2.2.3.dta");
    EXPECT_EQ(spectra[2].m_nScanNo, 2u);
    EXPECT_EQ(spectra[9].m_strTitle, "10.9.9.3.dta");
}

TEST(mgf_input, position_in_default_titles_goes_on_over_the_calls) {
    CMgf mgf(blocks(3));
    mgf.Read(2);
    EXPECT_EQ(titles_of(mgf.Read(2)), Texts{"3.2.2.2.dta"});
}

// ---- Keys ----

TEST(mgf_input, first_character_of_a_line_decides) {
    const CSpectrum spectrum = spectrum_of(
        "CHANGE=3 and more\nPRECURS=400.25 99\nTITEL=a.9.b\nRTINSECONDS=5\n#200 1\n 300 1\n"
        "\n-400 1\n.5 1\nBEGIN IONS\nb\n");
    EXPECT_EQ(spectrum.m_nCharge, 3);
    EXPECT_EQ(spectrum.m_lfMH, 3 * 400.25 - 2 * kProton);
    EXPECT_EQ(spectrum.m_strTitle, "a.9.b");
    EXPECT_EQ(spectrum.m_nScanNo, 9u);
    EXPECT_TRUE(spectrum.m_vPeaks.empty());
}

TEST(mgf_input, any_line_with_e_ends_the_block) {
    const std::vector<CSpectrum> spectra =
        spectra_of("BEGIN IONS\n1 1\nENERGY=30\n2 2\nEND IONS\nBEGIN\n3 3\nE\n");
    ASSERT_EQ(spectra.size(), 2u);
    EXPECT_EQ(spectra[0].m_vPeaks.size(), 1u);
    EXPECT_EQ(spectra[1].m_vPeaks.size(), 1u);
}

TEST(mgf_input, charge_is_read_as_a_leading_integer) {
    const struct {
        const char* line;
        int charge;
    } rows[] = {
        {"CHARGE=2+", 2},
        {"CHARGE=+3", 3},
        {"CHARGE=-2", -2},
        {"CHARGE= 4", 4},
        {"CHARGE=2+ and 3+", 2},
        {"CHARGE=", 0},
        {"CHARGE", 0},
        {"C", 0},
        {"CHARGE=x", 0},
        {"CHARGE=2147483647", 2147483647},
        {"CHARGE=2147483648", 2147483647},
        {"CHARGE=-2147483649", std::numeric_limits<int>::min()},
        {"CHARGE=99999999999999999999999", 2147483647},
    };
    for (const auto& row : rows)
        EXPECT_EQ(spectrum_of(row.line + std::string("\n")).m_nCharge, row.charge) << row.line;
}

TEST(mgf_input, extreme_charges_do_not_overflow_the_mass) {
    EXPECT_EQ(spectrum_of("CHARGE=2147483648\nPEPMASS=500\n").m_lfMH,
              2147483647.0 * 500 - 2147483646.0 * kProton);
    EXPECT_EQ(spectrum_of("CHARGE=-2147483648\nPEPMASS=500\n").m_lfMH,
              -2147483648.0 * 500 + 2147483649.0 * kProton);
}

TEST(mgf_input, precursor_mz_is_the_first_number) {
    const struct {
        const char* line;
        double mass;
    } rows[] = {
        {"PEPMASS=500.5", 500.5},
        {"PEPMASS=500.5 1234.5", 500.5},
        {"PEPMASS=\t5e2", 500.0},
        {"PEPMASS=-1.5", -1.5},
        {"PEPMASS=1e300", 1e300},
        {"PEPMASS=inf", kInfinity},
        {"PEPMASS=1e999", kInfinity},
        {"PEPMASS=0x10", 0.0},
        {"PEPMASS=", 0.0},
        {"PEPMASS", 0.0},
        {"P", 0.0},
        {"PEPMASS=abc", 0.0},
    };
    for (const auto& row : rows) {
        const CSpectrum spectrum = spectrum_of("CHARGE=1+\n" + std::string(row.line) + '\n');
        EXPECT_EQ(spectrum.m_lfMH, row.mass) << row.line;
    }
    EXPECT_TRUE(std::isnan(spectrum_of("CHARGE=1\nPEPMASS=nan\n").m_lfMH));
}

TEST(mgf_input, last_of_several_equal_keys_counts) {
    const CSpectrum spectrum =
        spectrum_of("CHARGE=2\nCHARGE=1\nPEPMASS=5\nPEPMASS=6\nTITLE=a.1.b\nTITLE=a.2.b\n");
    EXPECT_EQ(spectrum.m_lfMH, 6.0);
    EXPECT_EQ(spectrum.m_strTitle, "a.2.b");
    EXPECT_EQ(spectrum.m_nScanNo, 2u);
}

TEST(mgf_input, block_without_charge_and_mz_takes_those_of_the_block_before) {
    const std::vector<CSpectrum> spectra = spectra_of(
        "BEGIN IONS\nCHARGE=2+\nPEPMASS=500.5\nEND IONS\n"
        "BEGIN IONS\nEND IONS\n"
        "BEGIN IONS\nCHARGE=1+\nEND IONS\n");
    ASSERT_EQ(spectra.size(), 3u);
    EXPECT_EQ(spectra[1].m_nCharge, 2);
    EXPECT_EQ(spectra[1].m_lfMH, 2 * 500.5 - kProton);
    EXPECT_EQ(spectra[1].m_strTitle, "3.1.1.2.dta");
    EXPECT_EQ(spectra[2].m_lfMH, 500.5);
}

TEST(mgf_input, every_call_starts_with_charge_and_mz_zero) {
    CMgf mgf(
        "BEGIN IONS\nCHARGE=2+\nPEPMASS=500.5\nEND IONS\n"
        "BEGIN IONS\nPEPMASS=700\nEND IONS\n"
        "BEGIN IONS\nCHARGE=1+\nEND IONS\n");
    mgf.Read(1);
    const std::vector<CSpectrum> second = mgf.Read(1);
    ASSERT_EQ(second.size(), 1u);
    EXPECT_EQ(second[0].m_nCharge, 0);
    EXPECT_EQ(second[0].m_lfMH, kProton);
    const std::vector<CSpectrum> third = mgf.Read(1);
    ASSERT_EQ(third.size(), 1u);
    EXPECT_EQ(third[0].m_lfMH, 0.0);
}

TEST(mgf_input, title_loses_its_unprintable_tail) {
    using namespace std::string_literals;
    EXPECT_EQ(spectrum_of("TITLE=a.5.b\t\x7f\xc3\xa9\n").m_strTitle, "a.5.b");
    EXPECT_EQ(spectrum_of("TITLE=a.5.b \n").m_strTitle, "a.5.b ");
    EXPECT_EQ(spectrum_of("TITLE=a.5.b~\n").m_strTitle, "a.5.b~");  // the last that is printable
    EXPECT_EQ(spectrum_of("TITLE=\xc3\xa9.5.b\n").m_strTitle, "\xc3\xa9.5.b");
    EXPECT_EQ(spectrum_of("TITLE=a\0b\0\0\n"s).m_strTitle, "a\0b"s);
}

TEST(mgf_input, empty_title_gives_the_default_one) {
    const std::vector<std::string> lines{"TITLE=\n", "TITLE=\t\xff\n", "TITLE\n",
                                         "T\n",      "T\t\t\n",        "TITLE=a.5.b\nTITLE=\n"};
    for (const std::string& line : lines) {
        const CSpectrum spectrum = spectrum_of(line);
        EXPECT_EQ(spectrum.m_strTitle, "1.0.0.0.dta") << line;
        EXPECT_EQ(spectrum.m_nScanNo, 0u) << line;
    }
}

TEST(mgf_input, title_without_two_dots_gives_scan_zero) {
    const std::vector<CSpectrum> spectra =
        spectra_of("BEGIN\nTITLE=a.5.b\nEND\nBEGIN\nTITLE=plain\nEND\n");
    ASSERT_EQ(spectra.size(), 2u);
    EXPECT_EQ(spectra[1].m_nScanNo, 0u);
    EXPECT_EQ(spectra[1].m_strTitle, "plain");
}

TEST(mgf_input, title_does_not_outlive_its_block) {
    EXPECT_EQ(titles_of(spectra_of("BEGIN\nTITLE=a.5.b\nEND\nBEGIN\nEND\n")),
              (Texts{"a.5.b", "2.1.1.0.dta"}));
}

// ---- Peaks ----

TEST(mgf_input, peak_is_one_or_two_numbers) {
    const struct {
        const char* line;
        double mz;
        double intensity;
    } rows[] = {
        {"100.25 20.5", 100.25, 20.5},
        {"100.25\t20.5 1+", 100.25, 20.5},
        {"100", 100, 0},
        {"100 ", 100, 0},
        {"100 x", 100, 0},
        {"100,5 20", 100, 0},
        {"1e2 -3", 100, -3},
        {"1-2", 1, -2},
        {"0x10 5", 0, 0},
        {"1e300 1", 1e300, 1},
        {"1e999 inf", kInfinity, kInfinity},
        {"1e-999 .5", 0, 0.5},
    };
    for (const auto& row : rows) {
        const CSpectrum spectrum = spectrum_of(row.line + std::string("\n"));
        ASSERT_EQ(spectrum.m_vPeaks.size(), 1u) << row.line;
        EXPECT_EQ(spectrum.m_vPeaks[0].m_lfMz, row.mz) << row.line;
        EXPECT_EQ(spectrum.m_vPeaks[0].m_lfIntensity, row.intensity) << row.line;
    }
    const CSpectrum unknown = spectrum_of("5 nan\n");
    ASSERT_EQ(unknown.m_vPeaks.size(), 1u);
    EXPECT_TRUE(std::isnan(unknown.m_vPeaks[0].m_lfIntensity));
}

// Usual lines and others mixed, wherever what has been read of the file ends.
TEST(mgf_input, peaks_are_the_same_wherever_the_buffer_ends) {
    constexpr std::size_t kBuffer = 131072;
    const std::string lines =
        "100.25 20.5\n100.50000\t7\r\n101 1e3\n102.5  3 1+\n103.1234567 1234567.5\r\n"
        "104\n105.5 12345678901.25\n106.125 -8\n1234567.12345678 7654321.87654321\n";
    const std::vector<std::pair<double, double>> expected{{100.25, 20.5},
                                                          {100.5, 7},
                                                          {101, 1000},
                                                          {102.5, 3},
                                                          {103.1234567, 1234567.5},
                                                          {104, 0},
                                                          {105.5, 12345678901.25},
                                                          {106.125, -8},
                                                          {1234567.12345678, 7654321.87654321}};
    for (std::size_t cut = 0; cut <= lines.size() + 12; ++cut) {
        std::string bytes;
        while (bytes.size() + 1000 < kBuffer - cut)
            bytes += std::string(499, '#') + '\n';
        bytes += std::string(kBuffer - cut - bytes.size() - 1, '#') + "\nBEGIN IONS\n";
        const std::vector<CSpectrum> spectra = spectra_of(bytes + lines + "END IONS\n");
        ASSERT_EQ(spectra.size(), 1u);
        std::vector<std::pair<double, double>> peaks;
        for (const CPeak& peak : spectra[0].m_vPeaks)
            peaks.emplace_back(peak.m_lfMz, peak.m_lfIntensity);
        ASSERT_EQ(peaks, expected) << cut;
    }
}

TEST(mgf_input, peaks_keep_their_order_and_the_index_covers_what_it_can) {
    const CSpectrum spectrum = spectrum_of("3 1\n1 2\n1e300 3\n4 4\n100001 5\n");
    std::vector<double> mzs;
    for (const CPeak& peak : spectrum.m_vPeaks)
        mzs.push_back(peak.m_lfMz);
    EXPECT_EQ(mzs, (std::vector<double>{3, 1, 1e300, 4, 100001}));
    EXPECT_EQ(spectrum.m_vHashTable, (std::vector<int>{0, 0, 0, 0, 3}));
}

TEST(mgf_input, peaks_do_not_outlive_their_block_and_take_only_their_memory) {
    const std::vector<CSpectrum> spectra =
        spectra_of("BEGIN\n1 1\n2 1\n3 1\n4 1\n5 1\nEND\nBEGIN\n7 1\nEND\nBEGIN\nEND\n");
    ASSERT_EQ(spectra.size(), 3u);
    EXPECT_EQ(spectra[0].m_vPeaks.capacity(), 5u);
    EXPECT_EQ(spectra[1].m_vPeaks.capacity(), 1u);
    EXPECT_EQ(spectra[1].m_vHashTable, std::vector<int>(8, 0));
    EXPECT_TRUE(spectra[2].m_vPeaks.empty());
    EXPECT_TRUE(spectra[2].m_vHashTable.empty());
}

TEST(mgf_input, numbers_have_a_decimal_point_under_every_locale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");  // without effect where it is not installed
    const CSpectrum spectrum = spectrum_of("CHARGE=1\nPEPMASS=500.5\n100.25 1.5\n");
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(spectrum.m_lfMH, 500.5);
    ASSERT_EQ(spectrum.m_vPeaks.size(), 1u);
    EXPECT_EQ(spectrum.m_vPeaks[0].m_lfIntensity, 1.5);
}

// ---- Lines ----

TEST(mgf_input, windows_line_ends_and_a_byte_order_mark_do_no_harm) {
    const std::vector<CSpectrum> spectra = spectra_of(
        "\xEF\xBB\xBF"
        "BEGIN IONS\r\nTITLE=a.5.b\r\nCHARGE=1+\r\nPEPMASS=500.5\r\n100 5\r\nEND IONS\r\n");
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_EQ(spectra[0].m_strTitle, "a.5.b");
    EXPECT_EQ(spectra[0].m_lfMH, 500.5);
    EXPECT_EQ(spectra[0].m_vPeaks.size(), 1u);
}

TEST(mgf_input, carriage_returns_alone_end_no_line) {
    CMgf mgf("BEGIN IONS\rTITLE=a.5.b\r100 5\rEND IONS\rBEGIN IONS\r");
    EXPECT_EQ(mgf.m_tCount, 1u);
    EXPECT_EQ(titles_of(mgf.Read()), Texts{"1.0.0.0.dta"});
}

TEST(mgf_input, zero_bytes_are_ordinary) {
    using namespace std::string_literals;
    const std::vector<CSpectrum> spectra =
        spectra_of("\0BEGIN\nBEGIN\0\n\0\n1\0 2\n3 4\0\nCHARGE=2\0\n\0END\nEND\n"s);
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_EQ(spectra[0].m_nCharge, 2);
    ASSERT_EQ(spectra[0].m_vPeaks.size(), 2u);
    EXPECT_EQ(spectra[0].m_vPeaks[0].m_lfIntensity, 0.0);
    EXPECT_EQ(spectra[0].m_vPeaks[1].m_lfIntensity, 4.0);
}

TEST(mgf_input, longer_line_comes_in_pieces_of_81919_characters) {
    const CSpectrum titled = spectrum_of("TITLE=" + std::string(100000, 'a') + '\n');
    EXPECT_EQ(titled.m_strTitle, std::string(81919 - 6, 'a'));
    EXPECT_TRUE(titled.m_vPeaks.empty());

    const CSpectrum cut = spectrum_of('X' + std::string(81918, ' ') + "100 7\n");
    ASSERT_EQ(cut.m_vPeaks.size(), 1u);
    EXPECT_EQ(cut.m_vPeaks[0].m_lfIntensity, 7.0);

    CMgf mgf(std::string(81919, 'x') + "BEGIN IONS\n");
    EXPECT_EQ(mgf.m_tCount, 1u);
    EXPECT_EQ(CMgf(std::string(81918, 'x') + "BEGIN IONS\n").m_tCount, 0u);
}

TEST(mgf_input, numbers_of_any_length_are_read) {
    const CSpectrum spectrum = spectrum_of(std::string(81000, '0') + "5 " + "7\n");
    ASSERT_EQ(spectrum.m_vPeaks.size(), 1u);
    EXPECT_EQ(spectrum.m_vPeaks[0].m_lfMz, 5.0);
    EXPECT_EQ(spectrum.m_vPeaks[0].m_lfIntensity, 7.0);
    EXPECT_EQ(spectrum_of(std::string(100000, '9') + '\n').m_vPeaks.size(), 2u);
}

TEST(mgf_input, text_outside_the_blocks_is_ignored) {
    const std::vector<CSpectrum> spectra = spectra_of(
        "COM=run\nCHARGE=5+\n100 1\n begin\nbegin ions\n BEGIN IONS\nEND IONS\n"
        "BEGINNING\nEND IONS\nTITLE=no\n200 2\n");
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_EQ(spectra[0].m_strTitle, "1.0.0.0.dta");
    EXPECT_TRUE(spectra[0].m_vPeaks.empty());
}

TEST(mgf_input, block_ends_at_the_end_of_the_file) {
    for (const char* bytes :
         {"BEGIN IONS\nTITLE=a.5.b\n100 5", "BEGIN IONS\nTITLE=a.5.b\n100 5\n"}) {
        CMgf mgf(bytes);
        const std::vector<CSpectrum> spectra = mgf.Read();
        ASSERT_EQ(spectra.size(), 1u);
        EXPECT_EQ(spectra[0].m_nScanNo, 5u);
        EXPECT_EQ(spectra[0].m_vPeaks.size(), 1u);
        EXPECT_EQ(mgf.m_cReader.TakeFaults(), Texts());
    }
    EXPECT_EQ(titles_of(spectra_of("BEGIN")), Texts{"1.0.0.0.dta"});
}

// ---- Counting and batches ----

TEST(mgf_input, batches_follow_one_another) {
    CMgf mgf(blocks(12));
    std::vector<CSpectrum> spectra;
    EXPECT_EQ(mgf.m_cReader.Browse(spectra, 5), 5u);
    EXPECT_EQ(mgf.m_cReader.Browse(spectra, 5), 5u);
    EXPECT_EQ(mgf.m_cReader.Browse(spectra, 5), 2u);
    EXPECT_EQ(mgf.m_cReader.Browse(spectra, 5), 0u);
    ASSERT_EQ(spectra.size(), 12u);  // appended, never cleared
    for (std::size_t i = 0; i < spectra.size(); ++i) {
        ASSERT_EQ(spectra[i].m_vPeaks.size(), 1u);
        EXPECT_EQ(spectra[i].m_vPeaks[0].m_lfIntensity, static_cast<double>(i));
    }
    EXPECT_EQ(mgf.m_cReader.TakeFaults(), Texts());
}

TEST(mgf_input, small_batches_do_not_move_all_before_each_time) {
    CMgf mgf(blocks(1000));
    std::vector<CSpectrum> spectra;
    int moves = 0;
    for (const CSpectrum* place = nullptr; mgf.m_cReader.Browse(spectra, 1) != 0;) {
        if (spectra.data() != place) ++moves;
        place = spectra.data();
    }
    EXPECT_EQ(spectra.size(), 1000u);
    EXPECT_LE(moves, 11);
    EXPECT_EQ(CMgf(blocks(1000)).Read().capacity(), 1000u);
}

TEST(mgf_input, sum_of_position_and_number_saturates) {
    CMgf mgf(blocks(4));
    mgf.Read(2);
    EXPECT_EQ(mgf.Read(kAllEntries - 1).size(), 2u);
    CMgf whole(blocks(4));
    whole.Read(1);
    EXPECT_EQ(whole.Read(kAllEntries).size(), 3u);
}

TEST(mgf_input, number_zero_is_never_reached_and_reads_on_to_the_end) {
    CMgf mgf(blocks(4));
    mgf.Read(1);
    EXPECT_EQ(mgf.Read(0).size(), 3u);
    EXPECT_EQ(mgf.Read(0).size(), 0u);
    EXPECT_EQ(mgf.m_cReader.TakeFaults(), Texts());
}

TEST(mgf_input, without_an_open_file_nothing_is_read) {
    CMGFInput reader;
    std::vector<CSpectrum> spectra;
    EXPECT_EQ(reader.Browse(spectra, kAllEntries), 0u);
    EXPECT_TRUE(reader.Close());
    CMgf mgf(blocks(2));
    EXPECT_TRUE(mgf.m_cReader.Close());
    EXPECT_EQ(mgf.m_cReader.m_fp, nullptr);
    EXPECT_EQ(mgf.Read().size(), 0u);
    EXPECT_EQ(mgf.m_tRead, 0u);
    EXPECT_TRUE(mgf.m_cReader.Close());
    EXPECT_EQ(mgf.m_cReader.TakeFaults(), Texts());
}

TEST(mgf_input, counting_again_closes_the_file_of_before) {
    CMgf mgf("BEGIN IONS\nEND IONS\n");
    mgf.m_cReader.Close();
    test::expect_counting_again_closes(mgf.m_cReader, mgf.m_strPath);
}

TEST(mgf_input, count_starts_over) {
    CMgf mgf(blocks(3));
    EXPECT_EQ(mgf.m_cReader.m_strPath, mgf.m_strPath);
    EXPECT_EQ(mgf.m_cReader.m_tSpecNum, 3u);
    mgf.Read(2);
    EXPECT_EQ(mgf.m_cReader.m_tCurIdx, 2u);
    EXPECT_EQ(mgf.m_cReader.Count(mgf.m_strPath), 3u);
    EXPECT_EQ(mgf.m_cReader.m_tCurIdx, 0u);
    EXPECT_EQ(mgf.Read().size(), 3u);
}

TEST(mgf_input, file_that_cannot_be_read_closes_the_one_before) {
    for (const std::string name : {"missing.mgf", ""}) {  // "" is the folder itself
        CMgf mgf(blocks(3));
        mgf.Read(1);
        const std::string path = mgf.m_cFolder.Path(name);
        EXPECT_EQ(mgf.m_cReader.Count(path), 0u);
        EXPECT_EQ(mgf.m_cReader.m_fp, nullptr);
        EXPECT_EQ(mgf.m_cReader.m_tSpecNum, 0u);
        EXPECT_EQ(mgf.m_cReader.m_tCurIdx, 0u);
        EXPECT_EQ(mgf.m_cReader.TakeFaults(), Texts{"cannot open " + path});
        EXPECT_EQ(mgf.m_cReader.TakeFaults(), Texts());
        EXPECT_EQ(mgf.Read().size(), 0u);
    }
}

TEST(mgf_input, failing_device_is_a_file_that_cannot_be_read) {
    const std::string device = "/proc/self/mem";  // opens, but nothing is mapped at its start
    CMGFInput reader;
    EXPECT_EQ(reader.Count(device), 0u);
    EXPECT_EQ(reader.TakeFaults().size(), 1u);
    EXPECT_EQ(reader.m_fp, nullptr);
}

TEST(mgf_input, file_without_a_block_is_a_fault_unless_it_is_empty) {
    CMgf text("COM=nothing here\n");
    EXPECT_EQ(text.m_tCount, 0u);
    EXPECT_EQ(text.m_cReader.TakeFaults(), Texts{"no line begins with BEGIN in " + text.m_strPath});
    EXPECT_EQ(text.Read().size(), 0u);
    CMgf empty("");
    EXPECT_EQ(empty.m_tCount, 0u);
    EXPECT_EQ(empty.m_cReader.TakeFaults(), Texts());
}

TEST(mgf_input, backslashes_in_a_path_separate_folders) {
    const CMgf mgf(blocks(3));
    std::string path = mgf.m_strPath;
    path.replace(path.rfind('/'), 1, "\\");
    CMGFInput reader;
    EXPECT_EQ(reader.Count(path), 3u);
    EXPECT_EQ(reader.m_strPath, path);
}

TEST(mgf_input, begin_inside_a_block_is_counted_but_begins_nothing) {
    CMgf mgf("BEGIN IONS\n1 1\nBEGIN IONS\n2 2\nEND IONS\n");
    EXPECT_EQ(mgf.m_tCount, 2u);
    const std::vector<CSpectrum> spectra = mgf.Read();
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_EQ(spectra[0].m_vPeaks.size(), 2u);
    EXPECT_EQ(mgf.m_tRead, 1u);
    EXPECT_EQ(mgf.m_cReader.TakeFaults(),
              Texts{"1 of 2 entries read, no more are in " + mgf.m_strPath});
    EXPECT_EQ(mgf.Read().size(), 0u);
    EXPECT_EQ(mgf.m_cReader.TakeFaults(), Texts());  // told once
}

TEST(mgf_input, file_cut_off_after_counting_ends_early) {
    CMgf mgf(blocks(10));
    test::write_file(mgf.m_strPath, blocks(3));
    EXPECT_EQ(mgf.Read(5).size(), 3u);
    EXPECT_EQ(mgf.m_cReader.TakeFaults(),
              Texts{"3 of 10 entries read, no more are in " + mgf.m_strPath});
    EXPECT_EQ(mgf.Read(5).size(), 0u);
}

TEST(mgf_input, file_grown_after_counting_ends_at_its_count) {
    for (const std::size_t num : {kAllEntries, std::size_t{0}, std::size_t{3}}) {
        CMgf mgf(blocks(3));
        test::write_file(mgf.m_strPath, blocks(10));
        EXPECT_EQ(mgf.Read(num).size(), 3u);
        EXPECT_EQ(mgf.Read(num).size(), 0u);
    }
}

TEST(mgf_input, any_bytes_are_read_to_an_end) {
    std::uint32_t state = 1;
    const std::string pieces[] = {
        "BEGIN", "END", "\n", "TITLE=", "CHARGE=", "PEPMASS=",          "1e", "nan", "9",
        ".",     " ",   "\r", "-",      "inf",     std::string(1, '\0')};
    for (int round = 0; round < 200; ++round) {
        std::string bytes;
        for (int i = 0; i < 400; ++i) {
            state = state * 1664525u + 1013904223u;
            const std::uint32_t choice = state >> 24;
            if (choice < 15 * 14) {
                bytes += pieces[choice % std::size(pieces)];
            } else {
                bytes += static_cast<char>(state >> 16);
            }
        }
        CMgf mgf(bytes);
        std::size_t read = 0;
        while (mgf.Read(3), mgf.m_tRead > 0)
            read += mgf.m_tRead;
        EXPECT_LE(read, mgf.m_tCount);
    }
}

// ---- A real run ----

// The figures are those of: python3 tests/support/mgf_figures.py examples/ecoli/ecoli.mgf
TEST(mgf_input, real_file_is_read_whole) {
    CMGFInput reader;
    EXPECT_EQ(reader.Count(test::source_path("examples/ecoli/ecoli.mgf")), 139u);
    std::vector<CSpectrum> spectra;
    EXPECT_EQ(reader.Browse(spectra, kAllEntries), 139u);
    EXPECT_EQ(reader.TakeFaults(), Texts());
    ASSERT_EQ(spectra.size(), 139u);

    std::size_t peaks = 0;
    std::size_t indexed = 0;
    std::size_t scans = 0;
    int charges = 0;
    double masses = 0.0;
    double mzs = 0.0;
    double intensities = 0.0;
    for (const CSpectrum& spectrum : spectra) {
        peaks += spectrum.m_vPeaks.size();
        indexed += spectrum.m_vHashTable.size();
        scans += spectrum.m_nScanNo;
        charges += spectrum.m_nCharge;
        masses += spectrum.m_lfMH;
        for (const CPeak& peak : spectrum.m_vPeaks) {
            mzs += peak.m_lfMz;
            intensities += peak.m_lfIntensity;
        }
    }
    EXPECT_EQ(peaks, 36050u);
    EXPECT_EQ(indexed, 143321u);
    EXPECT_EQ(scans, 1603701u);
    EXPECT_EQ(charges, 329);
    EXPECT_EQ(masses, 169696.40931867715);
    EXPECT_EQ(mzs, 20144566.83190987);
    EXPECT_EQ(intensities, 8278652.613999982);
    EXPECT_EQ(spectra.front().m_nScanNo, 11461u);
    EXPECT_EQ(spectra.back().m_nScanNo, 11614u);
    EXPECT_EQ(spectra.back().m_strTitle, "Ecoli_MS2_small.11614.11614.2.0.dta");
}

TEST(mgf_input, written_blocks_are_read_back) {
    CSpectrum written;
    written.m_strTitle = "a.b.12.12.2.0.dta";
    written.m_nCharge = 2;
    written.m_lfMH = 1001.0;
    written.m_vPeaks.resize(2);
    written.m_vPeaks[0].m_lfMz = 100.125;
    written.m_vPeaks[1].m_lfMz = 1500.5;
    written.m_vPeaks[1].m_lfIntensity = 8.25;
    const test::CTempFolder folder;
    std::FILE* const file = std::fopen(folder.Path("out.mgf").c_str(), "wb");
    ASSERT_NE(file, nullptr);
    written.Output(file);
    std::fclose(file);

    const std::vector<CSpectrum> spectra = spectra_of(folder.Read("out.mgf"));
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_EQ(spectra[0].m_strTitle, written.m_strTitle);
    EXPECT_NEAR(spectra[0].m_lfMH, 1001.0, 2e-6);
    ASSERT_EQ(spectra[0].m_vPeaks.size(), 2u);
    EXPECT_EQ(spectra[0].m_vPeaks[0].m_lfMz, 100.125);
    EXPECT_EQ(spectra[0].m_vPeaks[1].m_lfIntensity, 8.25);
}

}  // namespace
}  // namespace tessel
