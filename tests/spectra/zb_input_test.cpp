#include "tessel/spectra/zb_input.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "tests/spectra/open_files.h"
#include "tests/support/system.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zb2_writer.h"

namespace tessel {
namespace {

using test::plain_scans;
using test::zb2_entry;
using test::zb2_file;
using test::zb2_header;
using test::zb2_number;
using test::ZB2_SCAN;
using Texts = std::vector<std::string>;

constexpr double kProton = 1.00727647012;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A file and its reader, opened by Count().
class CZb2 {
public:
    explicit CZb2(const std::string& bytes) : m_strPath(m_cFolder.Write("run.zb2", bytes)) {
        m_tCount = m_cReader.Count(m_strPath);
    }

    std::vector<CSpectrum> Read(std::size_t num = kAllEntries) {
        std::vector<CSpectrum> spectra;
        m_tRead = m_cReader.Browse(spectra, num);
        return spectra;
    }

    std::string EndsAt(std::size_t read) const {
        return std::to_string(read) + " of " + std::to_string(m_tCount) +
               " entries read, no more are in " + m_strPath;
    }

    test::CTempFolder m_cFolder;
    std::string m_strPath;
    CZBInput m_cReader;
    std::size_t m_tCount = 0;
    std::size_t m_tRead = 0;
};

Texts titles_of(const std::vector<CSpectrum>& spectra) {
    Texts titles;
    for (const CSpectrum& spectrum : spectra)
        titles.push_back(spectrum.m_strTitle);
    return titles;
}

// One entry, number 12, of two peaks and two precursors, written down byte by byte:
// 100.5 = 0x40592'0..., 20 = 0x4034'0..., 200.25 = 0x4069'08..., 7 = 0x401C'0...,
// 500.5 = 0x407F'48..., 333.75 = 0x4074'DC...
const std::vector<unsigned char> kTwoPrecursors = {
    1,  0, 0, 0, 3, 0,    0,    0,    'r', 'u', 'n',                       // header
    12, 0, 0, 0, 2, 0,    0,    0,                                         // scan, peaks
    0,  0, 0, 0, 0, 0x20, 0x59, 0x40, 0,   0,   0,   0, 0, 0, 0x34, 0x40,  // 100.5 20
    0,  0, 0, 0, 0, 0x08, 0x69, 0x40, 0,   0,   0,   0, 0, 0, 0x1C, 0x40,  // 200.25 7
    2,  0, 0, 0,                                                           // precursors
    0,  0, 0, 0, 0, 0x48, 0x7F, 0x40, 2,   0,   0,   0,                    // 500.5 2+
    0,  0, 0, 0, 0, 0xDC, 0x74, 0x40, 3,   0,   0,   0,                    // 333.75 3+
};

std::string two_precursors() {
    return std::string(kTwoPrecursors.begin(), kTwoPrecursors.end());
}

TEST(zb_input, scan_with_two_precursors_becomes_two_spectra_of_one_entry) {
    CZb2 zb2(two_precursors());
    EXPECT_EQ(zb2.m_tCount, 1u);
    EXPECT_EQ(zb2.m_cReader.m_strStem, "run");
    const std::vector<CSpectrum> spectra = zb2.Read();
    EXPECT_EQ(zb2.m_tRead, 1u);
    EXPECT_EQ(titles_of(spectra), (Texts{"run.12.12.2.0.dta", "run.12.12.3.1.dta"}));
    for (const CSpectrum& spectrum : spectra) {
        EXPECT_EQ(spectrum.m_nScanNo, 12u);
        ASSERT_EQ(spectrum.m_vPeaks.size(), 2u);
        EXPECT_EQ(spectrum.m_vPeaks[0].m_lfMz, 100.5);
        EXPECT_EQ(spectrum.m_vPeaks[0].m_lfIntensity, 20.0);
        EXPECT_EQ(spectrum.m_vPeaks[1].m_lfMz, 200.25);
        EXPECT_EQ(spectrum.m_vPeaks[1].m_lfIntensity, 7.0);
        EXPECT_EQ(spectrum.m_vPeaks[1].m_cFlag, 0);
        ASSERT_EQ(spectrum.m_vHashTable.size(), 201u);
        EXPECT_EQ(spectrum.m_vHashTable[100], 0);
        EXPECT_EQ(spectrum.m_vHashTable[101], 1);
    }
    EXPECT_EQ(spectra[0].m_nCharge, 2);
    EXPECT_EQ(spectra[0].m_lfMH, 2 * 500.5 - kProton);
    EXPECT_EQ(spectra[1].m_nCharge, 3);
    EXPECT_EQ(spectra[1].m_lfMH, 3 * 333.75 - 2 * kProton);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts());
}

TEST(zb_input, writer_of_the_tests_keeps_to_the_bytes) {
    const ZB2_SCAN scan{12, {{100.5, 20.0}, {200.25, 7.0}}, {{500.5, 2}, {333.75, 3}}};
    EXPECT_EQ(zb2_file("run", {scan}), two_precursors());
}

TEST(zb_input, batches_follow_one_another) {
    CZb2 zb2(zb2_file("run", plain_scans(12)));
    std::vector<CSpectrum> spectra;
    EXPECT_EQ(zb2.m_cReader.Browse(spectra, 5), 5u);
    EXPECT_EQ(zb2.m_cReader.Browse(spectra, 5), 5u);
    EXPECT_EQ(zb2.m_cReader.Browse(spectra, 5), 2u);
    EXPECT_EQ(zb2.m_cReader.Browse(spectra, 5), 0u);
    ASSERT_EQ(spectra.size(), 12u);
    for (std::size_t i = 0; i < spectra.size(); ++i)
        EXPECT_EQ(spectra[i].m_vPeaks[0].m_lfIntensity, static_cast<double>(i));
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts());
}

TEST(zb_input, number_zero_reads_one_entry_where_one_is_left) {
    CZb2 zb2(zb2_file("run", plain_scans(2)));
    EXPECT_EQ(zb2.Read(0).size(), 1u);
    EXPECT_EQ(zb2.Read(0).size(), 1u);
    EXPECT_EQ(zb2.Read(0).size(), 0u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts());
}

TEST(zb_input, sum_of_position_and_number_saturates) {
    CZb2 zb2(zb2_file("run", plain_scans(4)));
    zb2.Read(2);
    EXPECT_EQ(zb2.Read(kAllEntries - 1).size(), 2u);
}

TEST(zb_input, entry_without_precursors_yields_nothing_but_counts) {
    std::vector<ZB2_SCAN> scans = plain_scans(3);
    scans[1].m_vPrecursors.clear();
    CZb2 zb2(zb2_file("run", scans));
    EXPECT_EQ(titles_of(zb2.Read()), (Texts{"run.1.1.2.0.dta", "run.3.3.2.0.dta"}));
    EXPECT_EQ(zb2.m_tRead, 3u);
}

TEST(zb_input, entry_without_peaks_has_an_empty_index) {
    CZb2 zb2(zb2_file("run", {{7, {}, {{500.0, 1}}}}));
    const std::vector<CSpectrum> spectra = zb2.Read();
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_TRUE(spectra[0].m_vPeaks.empty());
    EXPECT_TRUE(spectra[0].m_vHashTable.empty());
    EXPECT_EQ(spectra[0].m_lfMH, 500.0);
}

TEST(zb_input, scan_number_and_charge_print_as_signed) {
    CZb2 zb2(zb2_file("run", {{4294967295u, {}, {{500.0, -3}}}}));
    const std::vector<CSpectrum> spectra = zb2.Read();
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_EQ(spectra[0].m_strTitle, "run.-1.-1.-3.0.dta");
    EXPECT_EQ(spectra[0].m_nScanNo, 4294967295u);
    EXPECT_EQ(spectra[0].m_lfMH, -3 * 500.0 + 4 * kProton);
    CSpectrum again = spectra[0];
    again._ExtractScanNo();
    EXPECT_EQ(again.m_nScanNo, 4294967295u);
}

TEST(zb_input, extreme_numbers_do_not_overflow) {
    const std::int32_t least = std::numeric_limits<std::int32_t>::min();
    CZb2 zb2(zb2_file("run", {{1,
                               {{kNaN, kNaN}, {-5.0, kInfinity}, {1e300, 1.0}, {kInfinity, 2.0}},
                               {{500.0, least}, {kNaN, 0}, {1e308, 2147483647}}}}));
    const std::vector<CSpectrum> spectra = zb2.Read();
    ASSERT_EQ(spectra.size(), 3u);
    EXPECT_EQ(spectra[0].m_lfMH, -2147483648.0 * 500.0 + 2147483649.0 * kProton);
    EXPECT_TRUE(std::isnan(spectra[1].m_lfMH));
    EXPECT_EQ(spectra[2].m_lfMH, kInfinity);
    EXPECT_EQ(spectra[2].m_vHashTable, std::vector<int>{1});
}

// ---- Stem ----

TEST(zb_input, stem_ends_at_its_first_zero_byte) {
    using namespace std::string_literals;
    CZb2 zb2(zb2_file("run\0rest\0"s, plain_scans(1)));
    EXPECT_EQ(zb2.m_cReader.m_strStem, "run");
    EXPECT_EQ(titles_of(zb2.Read()), Texts{"run.1.1.2.0.dta"});
}

TEST(zb_input, stem_may_be_empty_or_81919_bytes_long) {
    CZb2 empty(zb2_file("", plain_scans(1)));
    EXPECT_EQ(titles_of(empty.Read()), Texts{".1.1.2.0.dta"});
    const std::string stem(81919, 's');
    CZb2 longest(zb2_file(stem, plain_scans(1)));
    EXPECT_EQ(titles_of(longest.Read()), Texts{stem + ".1.1.2.0.dta"});
}

TEST(zb_input, impossible_stem_length_is_no_header) {
    const std::string entries = zb2_entry(plain_scans(1)[0]);
    for (const std::uint32_t length : {81920u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        CZb2 zb2(zb2_number(1u) + zb2_number(length) + std::string(100000, 's') + entries);
        EXPECT_EQ(zb2.m_tCount, 0u) << length;
        EXPECT_EQ(zb2.m_cReader.m_fp, nullptr);
        EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts{"no ZB2 header in " + zb2.m_strPath});
        EXPECT_EQ(zb2.Read().size(), 0u);
    }
}

TEST(zb_input, text_file_is_no_zb2_file) {
    CZb2 zb2("BEGIN IONS\nTITLE=a.1.1.2.0.dta\nEND IONS\n");
    EXPECT_EQ(zb2.m_tCount, 0u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts{"no ZB2 header in " + zb2.m_strPath});
}

// ---- Counting ----

TEST(zb_input, counting_again_closes_the_file_of_before) {
    CZb2 zb2(zb2_file("run", plain_scans(3)));
    zb2.m_cReader.Close();
    test::expect_counting_again_closes(zb2.m_cReader, zb2.m_strPath);
}

TEST(zb_input, reader_that_goes_closes_its_file) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("run.zb2", zb2_file("run", plain_scans(3)));
    const int free = test::free_descriptor(path);
    EXPECT_EQ(CZBInput().Count(path), 3u);
    EXPECT_EQ(test::free_descriptor(path), free);
}

TEST(zb_input, count_starts_over) {
    CZb2 zb2(zb2_file("run", plain_scans(3)));
    zb2.Read(2);
    EXPECT_EQ(zb2.m_cReader.m_tCurIdx, 2u);
    EXPECT_EQ(zb2.m_cReader.m_strPath, zb2.m_strPath);
    EXPECT_EQ(zb2.m_cReader.Count(zb2.m_strPath), 3u);
    EXPECT_EQ(zb2.m_cReader.m_tCurIdx, 0u);
    EXPECT_EQ(zb2.m_cReader.m_tSpecNum, 3u);
    EXPECT_EQ(zb2.Read().size(), 3u);
}

TEST(zb_input, file_that_cannot_be_read_closes_the_one_before) {
    for (const std::string name : {"missing.zb2", ""}) {  // "" is the folder itself
        CZb2 zb2(zb2_file("run", plain_scans(3)));
        zb2.Read(1);
        const std::string path = zb2.m_cFolder.Path(name);
        EXPECT_EQ(zb2.m_cReader.Count(path), 0u);
        EXPECT_EQ(zb2.m_cReader.m_fp, nullptr);
        EXPECT_EQ(zb2.m_cReader.m_tSpecNum + zb2.m_cReader.m_tCurIdx, 0u);
        EXPECT_EQ(zb2.m_cReader.m_strStem, "");
        EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts{"cannot open " + path});
        EXPECT_EQ(zb2.Read().size(), 0u);
    }
}

TEST(zb_input, without_an_open_file_nothing_is_read) {
    CZBInput reader;
    std::vector<CSpectrum> spectra;
    EXPECT_EQ(reader.Browse(spectra, kAllEntries), 0u);
    EXPECT_TRUE(reader.Close());
    CZb2 zb2(zb2_file("run", plain_scans(2)));
    EXPECT_TRUE(zb2.m_cReader.Close());
    EXPECT_EQ(zb2.m_cReader.m_fp, nullptr);
    EXPECT_EQ(zb2.Read().size(), 0u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts());
}

TEST(zb_input, file_of_no_entries_is_no_fault) {
    CZb2 zb2(zb2_file("run", {}));
    EXPECT_EQ(zb2.m_tCount, 0u);
    EXPECT_EQ(zb2.Read().size(), 0u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts());
}

TEST(zb_input, bytes_behind_the_last_entry_are_ignored) {
    CZb2 zb2(zb2_file("run", plain_scans(2)) + "rest");
    EXPECT_EQ(zb2.Read().size(), 2u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts());
}

// ---- Broken files ----

TEST(zb_input, more_entries_than_fit_are_told_and_those_there_are_read) {
    const std::string entries = zb2_entry({1, {}, {}}) + zb2_entry({2, {}, {}});
    CZb2 exact(zb2_header(2, "run") + entries);
    EXPECT_EQ(exact.m_cReader.TakeFaults(), Texts());

    CZb2 zb2(zb2_header(4294967295u, "run") + entries + zb2_entry(plain_scans(1)[0]));
    EXPECT_EQ(zb2.m_tCount, 4294967295u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(),  // 24 + 40 bytes at 12 each
              Texts{"4294967295 entries announced, at most 5 fit into " + zb2.m_strPath});
    EXPECT_EQ(zb2.Read().size(), 1u);
    EXPECT_EQ(zb2.m_tRead, 3u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts{zb2.EndsAt(3)});
    EXPECT_EQ(zb2.m_cReader.m_fp, nullptr);
    EXPECT_EQ(zb2.Read().size(), 0u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts());  // told once
}

TEST(zb_input, file_cut_off_anywhere_keeps_its_complete_entries) {
    const std::vector<ZB2_SCAN> scans{{1, {{100.0, 1.0}}, {{500.0, 1}}},
                                      {2, {}, {{500.0, 1}, {600.0, 2}}},
                                      {3, {{1.0, 1.0}, {2.0, 2.0}}, {}},
                                      {4, {{100.0, 1.0}}, {{500.0, 1}}}};
    const std::string whole = zb2_file("run", scans);
    std::vector<std::size_t> ends{zb2_header(4, "run").size()};
    for (const ZB2_SCAN& scan : scans)
        ends.push_back(ends.back() + zb2_entry(scan).size());
    ASSERT_EQ(ends.back(), whole.size());
    const std::size_t spectraOf[] = {0, 1, 3, 3, 4};

    for (std::size_t size = 0; size <= whole.size(); ++size) {
        CZb2 zb2(whole.substr(0, size));
        std::size_t complete = 0;
        while (complete < 4 && ends[complete + 1] <= size)
            ++complete;
        const bool header = size >= ends[0];
        EXPECT_EQ(zb2.m_tCount, header ? 4u : 0u) << size;
        const std::vector<CSpectrum> spectra = zb2.Read();
        EXPECT_EQ(zb2.m_tRead, complete) << size;
        EXPECT_EQ(spectra.size(), spectraOf[complete]) << size;

        Texts faults;
        if (!header) faults.push_back("no ZB2 header in " + zb2.m_strPath);
        if (header && size - ends[0] < 4 * 12) {
            faults.push_back("4 entries announced, at most " +
                             std::to_string((size - ends[0]) / 12) + " fit into " + zb2.m_strPath);
        }
        if (header && complete < 4) faults.push_back(zb2.EndsAt(complete));
        EXPECT_EQ(zb2.m_cReader.TakeFaults(), faults) << size;
    }
}

TEST(zb_input, impossible_counts_end_the_file_before_their_entry) {
    const std::string behind(100, '\0');
    Texts entries;
    for (const std::uint32_t count : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 0x10000000u}) {
        entries.push_back(zb2_number(9u) + zb2_number(count) + behind);
        entries.push_back(zb2_number(9u) + zb2_number(0u) + zb2_number(count) + behind);
    }
    entries.push_back(zb2_number(9u) + zb2_number(7u) + behind);  // 7 peaks have 112 bytes
    entries.push_back(zb2_number(9u) + zb2_number(0u) + zb2_number(9u) + behind);  // 108 bytes
    for (const std::string& entry : entries) {
        CZb2 zb2(zb2_header(3, "run") + zb2_entry(plain_scans(1)[0]) + entry);
        EXPECT_EQ(zb2.Read().size(), 1u);
        EXPECT_EQ(zb2.m_tRead, 1u);
        EXPECT_EQ(zb2.m_cReader.m_tCurIdx, 1u);
        EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts{zb2.EndsAt(1)});
    }
}

TEST(zb_input, impossible_counts_take_no_memory) {
    const std::uint64_t before = test::peak_memory();
    const std::string behind(1000, '\0');
    for (const std::uint32_t count : {0x04000000u, 0x02000000u}) {  // 1 GiB of peaks, and half
        CZb2 peaks(zb2_header(1, "run") + zb2_number(9u) + zb2_number(count) + behind);
        EXPECT_EQ(peaks.Read().size(), 0u);
        CZb2 precursors(zb2_header(1, "run") + zb2_number(9u) + zb2_number(0u) + zb2_number(count) +
                        behind);
        EXPECT_EQ(precursors.Read().size(), 0u);
    }
    EXPECT_LT(test::peak_memory() - before, 100u << 20);
}

TEST(zb_input, peaks_that_leave_no_room_for_the_precursor_count_are_impossible) {
    std::string entry = zb2_entry({1, {{1.0, 1.0}, {2.0, 2.0}}, {}});
    for (int cut = 1; cut <= 4; ++cut) {
        entry.pop_back();
        CZb2 zb2(zb2_header(1, "run") + entry);
        EXPECT_EQ(zb2.Read().size(), 0u);
        EXPECT_EQ(zb2.m_tRead, 0u);
    }
}

TEST(zb_input, file_cut_off_after_counting_ends_early) {
    const std::string whole = zb2_file("run", plain_scans(1000));  // more than is read ahead
    CZb2 zb2(whole);
    test::write_file(zb2.m_strPath, whole.substr(0, whole.size() - 10));
    zb2.Read();
    EXPECT_EQ(zb2.m_tRead, 999u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts{zb2.EndsAt(999)});
}

#if !defined(__SANITIZE_ADDRESS__)  // which needs the whole address space
TEST(zb_input, entry_whose_spectra_do_not_fit_into_memory_is_impossible) {
    if (!test::kMemoryCanBeLimited) GTEST_SKIP() << "no limit of address space on this system";
    ZB2_SCAN scan{2, {{100000.0, 1.0}}, {}};  // an index of 400 kB for each precursor
    for (int i = 0; i < 80'000; ++i)
        scan.m_vPrecursors.emplace_back(500.0, 2);
    CZb2 zb2(zb2_header(3, "run") + zb2_entry(plain_scans(1)[0]) + zb2_entry(scan) +
             zb2_entry(plain_scans(1)[0]));
    EXPECT_EXIT(
        {
            test::limit_memory(1'000'000'000);
            const bool isDropped = zb2.Read().size() == 1 && zb2.m_tRead == 1 &&
                                   zb2.m_cReader.TakeFaults() == Texts{zb2.EndsAt(1)};
            std::exit(isDropped ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

TEST(zb_input, spectra_of_an_entry_that_fit_into_memory_are_read) {
    // Three hundred megabytes: more than is taken without asking.
    ZB2_SCAN scan{2, {{100000.0, 1.0}}, {}};
    for (int i = 0; i < 750; ++i)
        scan.m_vPrecursors.emplace_back(500.0, 2);
    CZb2 zb2(zb2_header(1, "run") + zb2_entry(scan));
    EXPECT_EQ(zb2.Read().size(), 750u);
    EXPECT_EQ(zb2.m_cReader.TakeFaults(), Texts());
}

TEST(zb_input, claim_of_entries_makes_no_more_room_than_the_file_could_fill) {
    CZb2 zb2(zb2_header(4000000000u, "run") + std::string(1200, '\0'));
    std::vector<CSpectrum> spectra;
    zb2.m_cReader.Browse(spectra, kAllEntries);
    EXPECT_LE(spectra.capacity(), 100u);
}

TEST(zb_input, entry_longer_than_the_buffer_is_read_between_others) {
    std::vector<ZB2_SCAN> scans = plain_scans(2000);
    for (int i = 0; i < 20000; ++i)
        scans[999].m_vPeaks.emplace_back(100.0 + i / 64.0, i);
    const std::vector<CSpectrum> spectra = CZb2(zb2_file("run", scans)).Read();
    ASSERT_EQ(spectra.size(), scans.size());
    for (std::size_t i = 0; i < scans.size(); ++i) {
        EXPECT_EQ(spectra[i].m_nScanNo, scans[i].m_uScan);
        ASSERT_EQ(spectra[i].m_vPeaks.size(), scans[i].m_vPeaks.size());
        for (std::size_t k = 0; k < scans[i].m_vPeaks.size(); ++k) {
            ASSERT_EQ(spectra[i].m_vPeaks[k].m_lfMz, scans[i].m_vPeaks[k].first);
            ASSERT_EQ(spectra[i].m_vPeaks[k].m_lfIntensity, scans[i].m_vPeaks[k].second);
        }
    }
}

// Entries of 40 bytes behind stems of 0 to 39: the end of what is read at once falls on every byte
// of an entry.
TEST(zb_input, entry_may_be_cut_at_any_byte_by_the_buffer) {
    const std::vector<ZB2_SCAN> scans = plain_scans(4000);
    ASSERT_EQ(zb2_entry(scans[0]).size(), 40u);
    for (std::size_t length = 0; length < 40; ++length) {
        const std::vector<CSpectrum> spectra =
            CZb2(zb2_file(std::string(length, 's'), scans)).Read();
        ASSERT_EQ(spectra.size(), scans.size()) << length;
        for (std::size_t i = 0; i < scans.size(); ++i) {
            ASSERT_EQ(spectra[i].m_nScanNo, scans[i].m_uScan) << length;
            ASSERT_EQ(spectra[i].m_nCharge, 2) << length;
            ASSERT_EQ(spectra[i].m_vPeaks.size(), 1u) << length;
            ASSERT_EQ(spectra[i].m_vPeaks[0].m_lfMz, scans[i].m_vPeaks[0].first) << length;
            ASSERT_EQ(spectra[i].m_vPeaks[0].m_lfIntensity, scans[i].m_vPeaks[0].second) << length;
        }
    }
}

TEST(zb_input, any_bytes_are_read_to_an_end) {
    std::mt19937 random(20240502);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = zb2_file("run", plain_scans(5));
        const std::size_t changes = 1 + random() % 6;
        for (std::size_t i = 0; i < changes; ++i)
            bytes[random() % bytes.size()] =
                static_cast<char>(random() % 4 == 0 ? random() : random() % 8);
        if (round % 4 == 0) {
            for (char& byte : bytes)
                byte = static_cast<char>(random() % 3 == 0 ? random() : 0);
        }
        CZb2 zb2(bytes);
        std::size_t read = 0;
        while (zb2.Read(2), zb2.m_tRead > 0)
            read += zb2.m_tRead;
        EXPECT_LE(read, zb2.m_tCount);
        EXPECT_LE(read * 12, bytes.size());
        EXPECT_EQ(zb2.m_cReader.TakeFaults().empty(), read == zb2.m_tCount && zb2.m_cReader.m_fp)
            << round;
    }
}

}  // namespace
}  // namespace tessel
