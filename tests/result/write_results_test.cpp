#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tessel/condition/condition.h"
#include "tests/result/result_records.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::captured_output;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

CPepRes pep(const std::string& sequence, double score) {
    CPepRes made;
    made.m_strSeq = sequence;
    made.m_lfScore = score;
    made.m_lfQValue = 0.0;
    made.m_bDecoy = 0;
    return made;
}

class write_results : public testing::Test {
protected:
    CPSMRes& Spectrum(const std::string& title) {
        CPSMRes& psm = m_cCondition.m_mapPSMRes[title];
        psm.m_strTitle = title;
        return psm;
    }

    std::string Written() {
        const std::string path = m_cFolder.Path("final.txt");
        EXPECT_EQ(captured_output([&] { m_cCondition.WriteFinalResult(path, 0.01); }), "");
        return m_cFolder.Read("final.txt");
    }

    // The ranks and sequences written, as "1 AAK, 2 CCK".
    std::string Ranks() {
        std::istringstream lines(Written());
        std::string text;
        std::string line;
        std::getline(lines, line);
        std::getline(lines, line);
        while (std::getline(lines, line)) {
            std::istringstream fields(line);
            std::string rank;
            std::string sequence;
            fields >> rank >> sequence;
            text += (text.empty() ? "" : ", ") + rank + ' ' + sequence;
        }
        return text;
    }

    test::CTempFolder m_cFolder;
    CCondition m_cCondition;
};

TEST_F(write_results, every_field_stands_in_its_place) {
    CMod oxidation;
    oxidation.m_strName = "Oxidation[M]";
    CPepRes full = pep("MPEPTIDEK", 25.5);
    full.m_lfPepMass = 1499.1234567;
    full.m_lfFinalScore = 0.00012345678;
    full.m_lfQValue = 1e-10;
    full.m_lfMassDev = 77.0;
    test::set_sites(full, {{0, &oxidation}, {255, nullptr}});
    full.m_ucAux0 = 99;
    full.m_ucAuxMax = 255;
    full.m_bDecoy = 1;
    full.m_ucAux1 = 8;
    full.m_setProteins = {{12, 34, 'K', ';'}, {-3, -1, '-', 'R'}};
    full.m_vstrExtra = {"extra"};
    full.m_ucAux2 = 200;
    full.m_lfSubScores = {0.5, -1.5, 1e10, 0.0000004, -0.0};
    full.m_nAuxA = {1, -2, 3, std::numeric_limits<int>::min()};
    full.m_nAuxB = {5, -6, 7, std::numeric_limits<int>::max()};
    CPSMRes& psm = Spectrum("run.1.1.3.0.dta");
    psm.m_lfMH = 1500.25;
    psm.m_nCharge = -3;
    psm.m_vPeps = {full};
    EXPECT_EQ(Written(),
              "S\t1500.250000\t-3\nrun.1.1.3.0.dta\n"
              "1\tMPEPTIDEK\t1499.123457\t25.500000\t0.000123457\t1e-10\t2\t0\tOxidation[M]\t255\t"
              "NULL\t255\t1\t8\t2\t-3;-1;-;R\t12;34;K;;\t200\t0.500000\t-1.500000\t"
              "10000000000.000000\t0.000000\t-0.000000\t1\t-2\t3\t-2147483648\t5\t-6\t7\t"
              "2147483647\n");
}

TEST_F(write_results, spectrum_without_candidates_is_its_two_head_lines) {
    Spectrum("t").m_lfMH = 1000.1234567;
    EXPECT_EQ(Written(), "S\t1000.123457\t0\nt\n");
}

TEST_F(write_results, without_sites_and_hits_nothing_stands_between_the_counts) {
    Spectrum("t").m_vPeps = {pep("AAK", 1.0)};
    EXPECT_EQ(Written(),
              "S\t0.000000\t0\nt\n"
              "1\tAAK\t0.000000\t1.000000\t0\t0\t0\t0\t0\t0\t0\t0\t0.000000\t0.000000\t0.000000\t"
              "0.000000\t0.000000\t0\t0\t0\t0\t0\t0\t0\t0\n");
}

TEST_F(write_results, cleaned_record_is_written_without_sites) {
    CPepRes cleaned = pep("AAK", 1.0);
    const CPepRes bare = cleaned;
    test::set_sites(cleaned, {{1, nullptr}});
    cleaned.Clean();
    Spectrum("t").m_vPeps = {cleaned};
    const std::string written = Written();
    Spectrum("t").m_vPeps = {bare};
    EXPECT_EQ(Written(), written);
}

TEST_F(write_results, numbers_that_are_not_finite_are_written_as_words) {
    CPepRes odd = pep("AAK", -kInfinity);
    odd.m_lfFinalScore = kInfinity;
    odd.m_lfQValue = kNaN;
    odd.m_lfPepMass = 1e300;
    Spectrum("t").m_vPeps = {odd};
    EXPECT_EQ(Written().substr(0, 24), "S\t0.000000\t0\nt\n1\tAAK\t100");
    EXPECT_NE(Written().find(".000000\t-inf\tinf\tnan\t0\t"), std::string::npos);
}

TEST_F(write_results, spectra_stand_in_byte_order_of_their_titles) {
    for (const char* title : {"b", "a", "B", "\xC3", "", "ab"})
        Spectrum(title);
    EXPECT_EQ(Written(),
              "S\t0.000000\t0\n\nS\t0.000000\t0\nB\nS\t0.000000\t0\na\nS\t0.000000\t0\nab\n"
              "S\t0.000000\t0\nb\nS\t0.000000\t0\n\xC3\n");
}

TEST_F(write_results, equal_scores_share_the_one_rank_to_report) {
    m_cCondition.m_tPepNum = 1;
    Spectrum("t").m_vPeps = {pep("AAK", 30), pep("CCK", 30), pep("DDK", 25)};
    EXPECT_EQ(Ranks(), "1 AAK, 1 CCK");
}

TEST_F(write_results, ranks_have_no_gaps) {
    Spectrum("t").m_vPeps = {pep("A", 9), pep("B", 9), pep("C", 8), pep("D", 7), pep("E", 7)};
    EXPECT_EQ(Ranks(), "1 A, 1 B, 2 C, 3 D, 3 E");
    m_cCondition.m_tPepNum = 2;
    EXPECT_EQ(Ranks(), "1 A, 1 B, 2 C");
    m_cCondition.m_tPepNum = 0;
    EXPECT_EQ(Ranks(), "");
}

TEST_F(write_results, scores_are_rounded_to_four_decimals_for_ranking) {
    Spectrum("t").m_vPeps = {pep("A", 10.00006), pep("B", 10.00004), pep("C", 9.99996)};
    EXPECT_EQ(Ranks(), "1 A, 2 B, 2 C");
}

TEST_F(write_results, candidate_is_compared_with_the_one_before_in_list_order) {
    Spectrum("t").m_vPeps = {pep("A", 5), pep("B", 9), pep("C", 5)};
    EXPECT_EQ(Ranks(), "1 A, 2 B, 3 C");
}

TEST_F(write_results, first_score_of_a_million_has_rank_0) {
    // The rule starts from that score.
    Spectrum("t").m_vPeps = {pep("A", 1000000.0), pep("B", 5)};
    EXPECT_EQ(Ranks(), "0 A, 1 B");
}

TEST_F(write_results, scores_out_of_range_share_the_key_0) {
    Spectrum("t").m_vPeps = {pep("A", 1e300), pep("B", kInfinity), pep("C", kNaN), pep("D", 0.0),
                             pep("E", 0.0001)};
    EXPECT_EQ(Ranks(), "1 A, 1 B, 1 C, 1 D, 2 E");
}

TEST_F(write_results, ranks_are_those_of_a_plain_ranking) {
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        std::vector<CPepRes>& peps = Spectrum("t").m_vPeps;
        peps.clear();
        for (unsigned count = static_cast<unsigned>(random() % 30); count > 0; --count) {
            peps.push_back(
                pep(std::to_string(count), static_cast<double>(random() % 40) * 0.00003));
        }
        std::sort(peps.begin(), peps.end(), CPepRes::ScoreGreater);
        m_cCondition.m_tPepNum = random() % 8;

        // A rank is the number of different rounded scores up to the candidate.
        std::string expected;
        std::set<long long> different;
        for (const CPepRes& candidate : peps) {
            different.insert(static_cast<long long>(candidate.m_lfScore * 10000.0 + 0.5));
            if (different.size() > m_cCondition.m_tPepNum) break;
            expected += (expected.empty() ? "" : ", ") + std::to_string(different.size()) + ' ' +
                        candidate.m_strSeq;
        }
        ASSERT_EQ(Ranks(), expected) << round;
    }
}

TEST_F(write_results, open_file_is_written_and_stays_open) {
    Spectrum("t");
    const std::string path = m_cFolder.Path("open.txt");
    std::FILE* file = std::fopen(path.c_str(), "wb");
    std::fputs("before\n", file);
    m_cCondition.OutputRes(file);
    std::fputs("behind\n", file);
    std::fclose(file);
    EXPECT_EQ(m_cFolder.Read("open.txt"), "before\nS\t0.000000\t0\nt\nbehind\n");
}

TEST_F(write_results, writing_is_a_debug_message) {
    m_cCondition.m_eLogType = LOG_DEBUG;
    EXPECT_EQ(captured_output([&] { m_cCondition.WriteFinalResult(m_cFolder.Path("f"), 0.0); }),
              "[Tessel] DEBUG: Write result files...\n\n");
    EXPECT_EQ(m_cFolder.Read("f"), "");
}

TEST_F(write_results, file_that_cannot_be_opened_ends_the_process) {
    m_cCondition.m_eLogType = LOG_DEBUG;
    const std::string path = m_cFolder.Path("no folder/final.txt");
    EXPECT_ENDS_PROCESS(m_cCondition.WriteFinalResult(path, 0.0),
                        "[Tessel] ALERT: Cannot open the file: " + path + "!\n\n", "");
}

TEST_F(write_results, incomplete_file_is_an_alert) {
    const std::string full = "/dev/full";
    if (!std::filesystem::exists(full)) GTEST_SKIP() << "no full device on this system";
    // A short text fails when the file is closed, a long one while it is written.
    for (const int spectra : {1, 50000}) {
        for (int i = 0; i < spectra; ++i)
            Spectrum(std::string(40, 't') + std::to_string(i));
        EXPECT_EQ(captured_output([&] { m_cCondition.WriteFinalResult(full, 0.0); }),
                  "[Tessel] ALERT: Failed to write the result file: /dev/full\n");
    }
}

TEST_F(write_results, large_results_are_written_completely) {
    std::string expected;
    for (int i = 10000; i < 60000; ++i) {
        const std::string title = std::to_string(i) + std::string(60, 't');
        Spectrum(title);
        expected += "S\t0.000000\t0\n" + title + '\n';
    }
    EXPECT_TRUE(Written() == expected);
}

TEST_F(write_results, written_file_reads_back_and_is_written_alike) {
    std::mt19937 random(9);
    const auto below = [&random](unsigned limit) {
        return static_cast<unsigned>(random() % limit);
    };
    const auto decimal = [&below] { return below(2000000000) / 1e6; };
    CMod mods[3];
    for (int i = 0; i < 3; ++i) {
        mods[i].m_strName = "Mod " + std::to_string(i);
        mods[i].m_strName[3] = '_';
        m_cCondition.m_mapMods[mods[i].m_strName] = &mods[i];
    }
    for (int i = 0; i < 300; ++i) {
        CPSMRes& psm = Spectrum(i == 0 ? "" : "title of " + std::to_string(i));
        psm.m_lfMH = decimal();
        psm.m_nCharge = static_cast<int>(below(8));
        for (unsigned count = below(12); count > 0; --count) {
            CPepRes made = pep(std::string(1 + below(30), 'K'), decimal());
            made.m_lfPepMass = decimal();
            made.m_lfFinalScore = decimal() / 1e8;
            made.m_lfQValue = decimal();
            std::vector<MOD_SITE> sites;
            for (unsigned site = below(4); site > 0; --site)
                sites.push_back({static_cast<unsigned char>(below(256)), &mods[below(3)]});
            test::set_sites(made, sites);
            for (unsigned hit = below(4); hit > 0; --hit) {
                made.m_setProteins.insert({static_cast<int>(below(99)), static_cast<int>(below(99)),
                                           static_cast<char>('!' + below(90)), '-'});
            }
            made.m_ucAuxMax = static_cast<unsigned char>(below(256));
            made.m_bDecoy = static_cast<unsigned char>(below(2));
            made.m_ucAux1 = static_cast<unsigned char>(below(256));
            made.m_ucAux2 = static_cast<unsigned char>(below(256));
            for (double& score : made.m_lfSubScores)
                score = -decimal();
            for (int& number : made.m_nAuxA)
                number = static_cast<int>(random());
            for (int& number : made.m_nAuxB)
                number = static_cast<int>(random());
            psm.m_vPeps.push_back(made);
        }
        std::sort(psm.m_vPeps.begin(), psm.m_vPeps.end(), CPepRes::ScoreGreater);
    }
    const std::string written = Written();
    ASSERT_GT(written.size(), 100000U);

    const std::string copy = m_cFolder.Write("copy.txt", written);
    m_cCondition.m_mapPSMRes.clear();
    EXPECT_EQ(captured_output([&] { m_cCondition.LoadResult({copy}, 100, kInfinity); }), "");
    EXPECT_EQ(m_cCondition.m_mapPSMRes.size(), 300U);
    EXPECT_TRUE(Written() == written);
}

}  // namespace
}  // namespace tessel
