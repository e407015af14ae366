#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>

#include "tessel/condition/condition.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zb2_writer.h"

namespace tessel {
namespace {

// Blocks of charge 1, so that the precursor m/z is the MH+.
std::string mgf_of(const std::vector<std::string>& masses) {
    std::string bytes;
    for (const std::string& mass : masses)
        bytes += "BEGIN IONS\nCHARGE=1+\nPEPMASS=" + mass + "\n100 1\nEND IONS\n";
    return bytes;
}

std::string mgf_blocks(std::size_t count) {
    return mgf_of(std::vector<std::string>(count, "1500"));
}

// A search over one spectrum file.
class CSearch {
public:
    explicit CSearch(const std::string& bytes, const std::string& type = "MGF") {
        m_cCondition.m_strMSMSType = type;
        m_cCondition.m_strMSMSPath = m_cFolder.Write("run.mgf", bytes);
    }

    // Loads a batch; m_strOutput is what that wrote.
    bool Load(bool all = false) {
        bool more = false;
        m_strOutput = test::captured_output([&] { more = m_cCondition.LoadSpectra(all); });
        return more;
    }

    std::vector<double> Masses() const {
        std::vector<double> masses;
        for (const CSpectrum& spectrum : m_cCondition.m_vSpectra)
            masses.push_back(spectrum.m_lfMH);
        return masses;
    }

    test::CTempFolder m_cFolder;
    CCondition m_cCondition;
    std::string m_strOutput;
};

std::string alert(const std::string& text) {
    return "[Tessel] ALERT: " + text + '\n';
}

TEST(load_spectra, file_of_25000_spectra_comes_in_three_batches) {
    CSearch search(mgf_blocks(25000));
    CCondition& condition = search.m_cCondition;
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(condition.m_vSpectra.size(), 10000u);
    EXPECT_EQ(condition.m_tTotalSpec, 25000u);
    EXPECT_EQ(condition.m_tLoadedSpec, 10000u);
    EXPECT_EQ(condition.m_tBatchNo, 1u);
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(condition.m_vSpectra.size(), 10000u);
    EXPECT_EQ(condition.m_vSpectra.front().m_strTitle, "25000.10000.10000.1.dta");
    EXPECT_NE(condition.m_pSpecReader, nullptr);
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(condition.m_vSpectra.size(), 5000u);
    EXPECT_EQ(condition.m_tLoadedSpec, 25000u);
    EXPECT_EQ(condition.m_tBatchNo, 3u);
    EXPECT_EQ(condition.m_pSpecReader, nullptr);
    EXPECT_EQ(search.m_strOutput, "");
}

TEST(load_spectra, batch_that_ends_with_the_file_is_the_last) {
    CSearch search(mgf_blocks(4));
    search.m_cCondition.m_nMaxSpec = 2;
    EXPECT_TRUE(search.Load());
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 2u);
}

TEST(load_spectra, everything_comes_in_one_batch_on_demand) {
    CSearch search(mgf_blocks(30));
    search.m_cCondition.m_nMaxSpec = 7;
    EXPECT_FALSE(search.Load(true));
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 30u);
}

TEST(load_spectra, the_rest_comes_in_one_batch_on_demand) {
    CSearch search(mgf_blocks(30));
    search.m_cCondition.m_nMaxSpec = 7;
    EXPECT_TRUE(search.Load());
    EXPECT_FALSE(search.Load(true));
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 23u);
    EXPECT_EQ(search.m_cCondition.m_tBatchNo, 2u);
}

TEST(load_spectra, after_the_last_batch_the_file_is_read_again) {
    CSearch search(mgf_blocks(3));
    EXPECT_FALSE(search.Load());
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 3u);
    EXPECT_EQ(search.m_cCondition.m_tLoadedSpec, 3u);
    EXPECT_EQ(search.m_cCondition.m_tBatchNo, 1u);
}

TEST(load_spectra, batch_before_is_given_back) {
    CSearch search("");
    search.m_cCondition.m_vSpectra.resize(1000);
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.capacity(), 0u);
}

TEST(load_spectra, largest_batch_size_reads_everything) {
    CSearch search(mgf_blocks(3));
    search.m_cCondition.m_nMaxSpec = std::numeric_limits<std::size_t>::max();
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 3u);
}

TEST(load_spectra, batch_size_zero_comes_to_an_end) {
    CSearch search(mgf_blocks(3));
    search.m_cCondition.m_nMaxSpec = 0;
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 3u);
}

// ---- Implausible masses ----

TEST(load_spectra, implausible_masses_are_dropped_but_counted) {
    CSearch search(mgf_of(
        {"20000.0", "20000.001", "0", "-0.001", "nan", "inf", "-inf", "1e300", "1500", "-0.0"}));
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.Masses(), (std::vector<double>{20000.0, 0.0, 1500.0, 0.0}));
    EXPECT_EQ(search.m_cCondition.m_tLoadedSpec, 10u);
    EXPECT_EQ(search.m_strOutput, "");
}

TEST(load_spectra, charge_zero_weighs_one_proton) {
    CSearch search("BEGIN IONS\nPEPMASS=700\nEND IONS\n");
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.Masses(), std::vector<double>{1.00727647012});
}

// ---- Mass range ----

TEST(load_spectra, mass_range_reaches_from_the_spectrum_by_the_largest_shift) {
    CSearch search(mgf_of({"1500"}));
    search.Load();
    EXPECT_EQ(search.m_cCondition.m_lfBatchMassLower, 1000.0);
    EXPECT_EQ(search.m_cCondition.m_lfBatchMassUpper, 2000.0);
}

TEST(load_spectra, mass_range_stays_within_the_peptide_masses) {
    CSearch low(mgf_of({"800"}));
    low.Load();
    EXPECT_EQ(low.m_cCondition.m_lfBatchMassLower, 600.0);
    EXPECT_EQ(low.m_cCondition.m_lfBatchMassUpper, 1300.0);

    CSearch high(mgf_of({"1900"}));
    high.m_cCondition.m_lfMassUpper = 2000.0;
    high.Load();
    EXPECT_EQ(high.m_cCondition.m_lfBatchMassLower, 1400.0);
    EXPECT_EQ(high.m_cCondition.m_lfBatchMassUpper, 2000.0);
}

TEST(load_spectra, mass_range_spans_the_batch_around_the_centre_of_the_shifts) {
    CSearch search(mgf_of({"1500", "3000.5", "20001", "2000"}));
    search.m_cCondition.m_lfCenter = 100.0;
    search.m_cCondition.m_lfMaxDelta = 50.0;
    search.Load();
    EXPECT_EQ(search.m_cCondition.m_lfBatchMassLower, 1350.0);
    EXPECT_EQ(search.m_cCondition.m_lfBatchMassUpper, 2950.5);
}

TEST(load_spectra, mass_range_starts_from_a_billion) {
    CSearch search(mgf_of({"1500"}));
    search.m_cCondition.m_lfCenter = 2e9;
    search.Load();
    EXPECT_EQ(search.m_cCondition.m_lfBatchMassUpper, -1e9);
    search.m_cCondition.m_lfCenter = -2e9;
    search.Load();
    EXPECT_EQ(search.m_cCondition.m_lfBatchMassLower, 1e9);
}

TEST(load_spectra, empty_batch_keeps_the_mass_range) {
    CSearch search(mgf_of({"20001"}));
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_lfBatchMassLower, 600.0);
    EXPECT_EQ(search.m_cCondition.m_lfBatchMassUpper, 10000.0);
}

// ---- Faults ----

TEST(load_spectra, empty_mgf_file_loads_nothing_silently) {
    CSearch search("");
    EXPECT_FALSE(search.Load());
    EXPECT_TRUE(search.m_cCondition.m_vSpectra.empty());
    EXPECT_EQ(search.m_cCondition.m_pSpecReader, nullptr);
    EXPECT_EQ(search.m_cCondition.m_tTotalSpec, 0u);
    EXPECT_EQ(search.m_cCondition.m_tBatchNo, 1u);
    EXPECT_EQ(search.m_strOutput, "");
}

TEST(load_spectra, mgf_file_without_spectra_is_reported) {
    CSearch search("no spectra here\n");
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_strOutput, alert("Spectrum file of type MGF: no line begins with BEGIN in " +
                                        search.m_cCondition.m_strMSMSPath));
    EXPECT_EQ(search.m_cCondition.m_pSpecReader, nullptr);
}

TEST(load_spectra, unreadable_file_is_reported) {
    CSearch search("");
    for (const std::string& path :
         {search.m_cFolder.Path("missing.mgf"), search.m_cFolder.Path(), std::string()}) {
        search.m_cCondition.m_strMSMSPath = path;
        EXPECT_FALSE(search.Load());
        EXPECT_EQ(search.m_strOutput, alert("Spectrum file of type MGF: cannot open " + path));
    }
}

TEST(load_spectra, faults_are_told_even_when_only_alerts_are_shown) {
    CSearch search("text");
    search.m_cCondition.m_eLogType = LOG_ALERT;
    search.Load();
    EXPECT_NE(search.m_strOutput, "");
}

TEST(load_spectra, file_cut_off_between_two_batches_ends_the_loading) {
    CSearch search(mgf_blocks(10000));  // more than is read ahead
    CCondition& condition = search.m_cCondition;
    condition.m_nMaxSpec = 4;
    EXPECT_TRUE(search.Load());
    test::write_file(condition.m_strMSMSPath, "");
    std::size_t loaded = 4;
    while (search.Load()) {
        loaded += condition.m_vSpectra.size();
        ASSERT_LT(condition.m_tBatchNo, 10000u);
    }
    loaded += condition.m_vSpectra.size();
    EXPECT_LT(loaded, 10000u);
    EXPECT_EQ(condition.m_tLoadedSpec, loaded);
    EXPECT_EQ(condition.m_pSpecReader, nullptr);
    EXPECT_EQ(search.m_strOutput,
              alert("Spectrum file of type MGF: " + std::to_string(loaded) +
                    " of 10000 entries read, no more are in " + condition.m_strMSMSPath));
}

TEST(load_spectra, fewer_blocks_than_begin_lines_end_the_loading) {
    CSearch search(mgf_blocks(2) + "BEGIN IONS\nBEGIN IONS\nBEGIN IONS\nEND IONS\n");
    for (const std::size_t size : {1u, 2u, 3u, 4u, 0u}) {
        search.m_cCondition.m_nMaxSpec = size;
        int calls = 1;
        while (search.Load())
            ASSERT_LT(++calls, 10);
        EXPECT_NE(search.m_strOutput.find("3 of 5 entries read"), std::string::npos) << size;
        EXPECT_EQ(search.m_cCondition.m_tLoadedSpec, 3u);
        EXPECT_EQ(search.m_cCondition.m_pSpecReader, nullptr);
    }
}

TEST(load_spectra, file_cut_off_in_a_batch_of_size_zero_ends_the_loading) {
    CSearch search("BEGIN\nBEGIN\nEND\nBEGIN\nEND\n");
    search.m_cCondition.m_nMaxSpec = 0;
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 2u);
    EXPECT_EQ(search.m_cCondition.m_pSpecReader, nullptr);
}

TEST(load_spectra, every_type_but_mgf_and_zbs_is_zb2) {
    for (const char* type : {"ZB2", "MS2", "mgf", "MGF ", "zbs", ""}) {
        CSearch search(test::zb2_file("run", test::plain_scans(3)), type);
        EXPECT_FALSE(search.Load()) << type;
        EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 3u) << type;
        EXPECT_EQ(search.m_strOutput, "") << type;
    }
    EXPECT_EQ(CCondition().m_strMSMSType, "ZB2");
}

TEST(load_spectra, text_file_of_another_type_is_reported) {
    CSearch search(mgf_blocks(3), "MS2");
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_strOutput, alert("Spectrum file of type MS2: no ZB2 header in " +
                                        search.m_cCondition.m_strMSMSPath));
}

TEST(load_spectra, zb2_batches_count_entries) {
    std::vector<test::ZB2_SCAN> scans = test::plain_scans(12);
    scans[0].m_vPrecursors.emplace_back(20000.5, 1);
    scans[1].m_vPrecursors.emplace_back(600.0, 1);
    CSearch search(test::zb2_file("run", scans), "ZB2");
    CCondition& condition = search.m_cCondition;
    condition.m_nMaxSpec = 5;
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(condition.m_vSpectra.size(), 6u);  // one of seven is too heavy
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(condition.m_tLoadedSpec, 10u);
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(condition.m_vSpectra.size(), 2u);
    EXPECT_EQ(condition.m_tTotalSpec, 12u);
}

TEST(load_spectra, zb2_batch_size_zero_comes_to_an_end) {
    CSearch search(test::zb2_file("run", test::plain_scans(3)), "ZB2");
    search.m_cCondition.m_nMaxSpec = 0;
    EXPECT_TRUE(search.Load());
    EXPECT_TRUE(search.Load());
    EXPECT_FALSE(search.Load());
}

TEST(load_spectra, zb2_file_cut_off_anywhere_ends_the_loading) {
    const std::string whole = test::zb2_file("run", test::plain_scans(3));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        CSearch search(whole.substr(0, size), "ZB2");
        search.m_cCondition.m_nMaxSpec = 1;
        std::string output;
        int calls = 0;
        bool more = true;
        while (more && ++calls < 10) {
            more = search.Load();
            output += search.m_strOutput;
        }
        ASSERT_LE(calls, 4) << size;
        EXPECT_EQ(search.m_cCondition.m_pSpecReader, nullptr) << size;
        if (size < 11) {
            EXPECT_EQ(output, alert("Spectrum file of type ZB2: no ZB2 header in " +
                                    search.m_cCondition.m_strMSMSPath));
        } else {
            const std::string end =
                "Spectrum file of type ZB2: " + std::to_string(search.m_cCondition.m_tLoadedSpec) +
                " of 3 entries read, no more are in " + search.m_cCondition.m_strMSMSPath;
            EXPECT_NE(output.find(alert(end)), std::string::npos) << output;
        }
    }
}

// ---- Lists ----

// A search over a list of two files, of 4 and 6 entries.
class CListSearch : public CSearch {
public:
    CListSearch() : CSearch("", "ZBS") {
        const std::string a = m_cFolder.Write("a", test::zb2_file("a", test::plain_scans(4)));
        m_strSecond = m_cFolder.Write("b", test::zb2_file("b", test::plain_scans(6)));
        test::write_file(m_cCondition.m_strMSMSPath, a + '\n' + m_strSecond + '\n');
    }

    std::string Stall() const {
        return alert("Spectrum file of type ZBS: maxspec 5 is less than the 6 entries of " +
                     m_strSecond);
    }

    std::string m_strSecond;
};

TEST(load_spectra, listed_files_come_one_after_another) {
    CListSearch search;
    search.m_cCondition.m_nMaxSpec = 6;
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 4u);
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 6u);
    EXPECT_EQ(search.m_cCondition.m_tLoadedSpec, 10u);
    EXPECT_EQ(search.m_strOutput, "");
    EXPECT_FALSE(search.Load(true));
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 10u);
}

TEST(load_spectra, list_without_progress_is_told_once_and_given_up_the_second_time) {
    CListSearch search;
    search.m_cCondition.m_nMaxSpec = 5;
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(search.m_strOutput, "");
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(search.m_strOutput, search.Stall());
    EXPECT_NE(search.m_cCondition.m_pSpecReader, nullptr);
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_strOutput, "");
    EXPECT_EQ(search.m_cCondition.m_pSpecReader, nullptr);
    EXPECT_EQ(search.m_cCondition.m_tLoadedSpec, 4u);
    EXPECT_EQ(search.m_cCondition.m_tBatchNo, 3u);
}

TEST(load_spectra, list_goes_on_with_a_larger_batch_size) {
    CListSearch search;
    search.m_cCondition.m_nMaxSpec = 5;
    EXPECT_TRUE(search.Load());
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(search.m_strOutput, search.Stall());
    search.m_cCondition.m_nMaxSpec = 6;
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 6u);
    search.m_cCondition.m_nMaxSpec = 0;  // a new run stalls anew
    EXPECT_TRUE(search.Load());
    EXPECT_FALSE(search.Load());
}

TEST(load_spectra, list_goes_on_with_everything_on_demand) {
    CListSearch search;
    search.m_cCondition.m_nMaxSpec = 5;
    EXPECT_TRUE(search.Load());
    EXPECT_TRUE(search.Load());
    EXPECT_FALSE(search.Load(true));
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 6u);
}

TEST(load_spectra, listed_file_that_ends_early_is_reported_and_passed_over) {
    CListSearch search;
    const std::string whole = test::read_file(search.m_cFolder.Path("a"));
    const std::string cut = search.m_cFolder.Write("a", whole.substr(0, whole.size() - 50));
    search.m_cCondition.m_nMaxSpec = 6;
    EXPECT_TRUE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 2u);
    EXPECT_EQ(search.m_strOutput,
              alert("Spectrum file of type ZBS: 2 of 4 entries read, no more are in " + cut));
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_vSpectra.size(), 6u);
    EXPECT_EQ(search.m_strOutput, "");
}

TEST(load_spectra, list_without_lines_loads_nothing_silently) {
    CSearch search("", "ZBS");
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_cCondition.m_pSpecReader, nullptr);
    EXPECT_EQ(search.m_strOutput, "");
}

TEST(load_spectra, list_of_unreadable_files_is_reported_file_by_file) {
    CSearch search("", "ZBS");
    const std::string a = search.m_cFolder.Path("a");
    const std::string b = search.m_cFolder.Path("b");
    test::write_file(search.m_cCondition.m_strMSMSPath, a + '\n' + b + '\n');
    EXPECT_FALSE(search.Load());
    EXPECT_EQ(search.m_strOutput, alert("Spectrum file of type ZBS: cannot open " + a) +
                                      alert("Spectrum file of type ZBS: cannot open " + b));
}

TEST(load_spectra, long_path_in_a_message_is_whole) {
    CSearch search("");
    CCondition& condition = search.m_cCondition;
    condition.m_strMSMSPath = search.m_cFolder.Path() + "/./././" + std::string(240, 'x');
    test::write_file(condition.m_strMSMSPath, "BEGIN\nBEGIN\n");
    EXPECT_FALSE(search.Load());
    EXPECT_NE(search.m_strOutput.find("1 of 2 entries read, no more are in " +
                                      condition.m_strMSMSPath + '\n'),
              std::string::npos);
}

TEST(load_spectra, condition_with_an_open_reader_ends_cleanly) {
    CSearch search(mgf_blocks(3));
    search.m_cCondition.m_nMaxSpec = 1;
    EXPECT_TRUE(search.Load());
}

// A reader of an engine's own: so many spectra.
class CMadeInput : public CInput {
public:
    explicit CMadeInput(std::size_t number) : m_tLeft(number) {}

    std::size_t Browse(std::vector<CSpectrum>& out, std::size_t num) override {
        const std::size_t taken = std::min(num, m_tLeft);
        out.resize(out.size() + taken);
        m_tLeft -= taken;
        return taken;
    }
    std::size_t Count(const std::string&) override { return m_tLeft; }
    bool Close() override { return true; }

private:
    std::size_t m_tLeft;
};

TEST(load_spectra, reader_of_an_engine_needs_no_more_than_to_read) {
    CCondition condition;
    condition.m_pSpecReader = std::make_unique<CMadeInput>(5);
    condition.m_tTotalSpec = 5;
    condition.m_nMaxSpec = 2;
    std::vector<std::size_t> batches;
    const std::string output = test::captured_output([&] {
        for (bool more = true; more;) {
            more = condition.LoadSpectra(false);
            batches.push_back(condition.m_vSpectra.size());
        }
    });
    EXPECT_EQ(batches, (std::vector<std::size_t>{2, 2, 1}));
    EXPECT_EQ(output, "");
    EXPECT_EQ(condition.m_pSpecReader, nullptr);
}

}  // namespace
}  // namespace tessel
