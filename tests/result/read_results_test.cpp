#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tessel/result/failed_lists.h"
#include "tessel/result/load_results.h"
#include "tessel/result/result_text.h"
#include "tests/result/result_records.h"
#include "tests/support/captured.h"
#include "tests/support/classic.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::captured_output;
using test::described;
using test::sequences;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kPiece = 81919;

// The fields behind the q-value of a candidate without sites and hits.
const std::string kPlainRest = "0 0 0 0 0 0 1 2 3 4 5 1 2 3 4 5 6 7 8";

// A line of field texts: rank, sequence, mass, score, final score, q-value, the rest.
std::string pep_line(const std::string& sequence, const std::string& score = "10",
                     const std::string& finalScore = "0.5", const std::string& qValue = "0.01",
                     const std::string& rest = kPlainRest) {
    return "1\t" + sequence + "\t1000.5\t" + score + '\t' + finalScore + '\t' + qValue + '\t' +
           rest + '\n';
}

std::string head(const std::string& title, const std::string& mass = "1001.5") {
    return "S\t" + mass + "\t2\n" + title + '\n';
}

class read_results : public testing::Test {
protected:
    // Loads a file with this text and returns what was reported, the path shown as "FILE".
    std::string Load(const std::string& text, unsigned long long maxPeps = 100,
                     double maxFinalScore = kInfinity) {
        const std::string path = m_cFolder.Write("result.txt", text);
        std::string output = captured_output(
            [&] { EXPECT_EQ(m_cCondition._LoadResult(path, maxPeps, maxFinalScore), 1); });
        const std::size_t found = output.find(path);
        return found == std::string::npos ? output : output.replace(found, path.size(), "FILE");
    }

    std::vector<CPepRes>& Peps(const std::string& title) { return Results().at(title).m_vPeps; }
    std::map<std::string, CPSMRes>& Results() { return m_cCondition.m_mapPSMRes; }

    test::CTempFolder m_cFolder;
    CCondition m_cCondition;
};

std::string malformed(int count, int line) {
    return "[Tessel] ALERT: Malformed records dropped: " + std::to_string(count) +
           ", the first on line " + std::to_string(line) + " of the result file: FILE\n";
}

TEST_F(read_results, every_field_is_stored) {
    CMod oxidation;
    oxidation.m_strName = "Oxidation[M]";
    CMod acetyl;
    acetyl.m_strName = "Acetyl[ProteinN-term]";
    m_cCondition.m_mapMods = {{"Oxidation[M]", &oxidation}, {"Acetyl[ProteinN-term]", &acetyl}};
    EXPECT_EQ(
        Load("S\t1500.250000\t3\trest\nrun.1.1.3.0.dta\n"
             "1\tMPEPTIDEK\t1499.125000\t25.5\t0.001\t1e-05\t2\t0\tAcetyl[ProteinN-term]\t1\t"
             "Oxidation[M]\t7\t0\t8\t2\t12;34;K;A\t3;-1;-;R\t9\t.5\t1.5\t2.5\t3.5\t4.5\t1\t-2\t3"
             "\t-4\t5\t-6\t7\t-8\n"),
        "");
    ASSERT_EQ(Results().size(), 1U);
    const CPSMRes& psm = Results().at("run.1.1.3.0.dta");
    EXPECT_EQ(psm.m_strTitle, "run.1.1.3.0.dta");
    EXPECT_EQ(psm.m_lfMH, 1500.25);
    EXPECT_EQ(psm.m_nCharge, 3);
    ASSERT_EQ(psm.m_vPeps.size(), 1U);

    CPepRes pep;
    pep.m_strSeq = "MPEPTIDEK";
    pep.m_lfPepMass = 1499.125;
    pep.m_lfScore = 25.5;
    pep.m_lfFinalScore = 0.001;
    pep.m_lfQValue = 0.00001;
    test::set_sites(pep, {{0, &acetyl}, {1, &oxidation}});
    pep.m_ucAuxMax = 7;
    pep.m_bDecoy = 0;
    pep.m_ucAux1 = 8;
    pep.m_setProteins = {{3, -1, '-', 'R'}, {12, 34, 'K', 'A'}};
    pep.m_ucAux2 = 9;
    pep.m_lfSubScores = {0.5, 1.5, 2.5, 3.5, 4.5};
    pep.m_nAuxA = {1, -2, 3, -4};
    pep.m_nAuxB = {5, -6, 7, -8};
    pep.m_lfMassDev = 1.125;
    EXPECT_EQ(described(psm.m_vPeps[0]), described(pep));
    EXPECT_EQ(psm.m_vPeps[0].m_pMods[0].m_pMod, &acetyl);
}

TEST_F(read_results, peptide_before_any_head_is_stored_under_the_empty_title) {
    EXPECT_EQ(Load(pep_line("AAK") + head("t") + pep_line("CCK")), "");
    ASSERT_EQ(Results().size(), 2U);
    EXPECT_EQ(sequences(Peps("")), "AAK");
    EXPECT_EQ(Results().at("").m_nCharge, 0);
    EXPECT_EQ(Results().at("").m_lfMH, 0.0);
    EXPECT_EQ(Peps("")[0].m_lfMassDev, -1000.5);
    EXPECT_EQ(sequences(Peps("t")), "CCK");
}

TEST_F(read_results, entry_of_the_empty_title_is_created_even_if_the_peptide_is_dropped) {
    EXPECT_EQ(Load(pep_line("AAK"), 0), "");
    ASSERT_EQ(Results().size(), 1U);
    EXPECT_TRUE(Peps("").empty());
    Results().clear();
    EXPECT_EQ(Load(pep_line("AAK", "10", "0.5"), 9, 0.4), "");
    EXPECT_EQ(Results().count(""), 1U);
}

TEST_F(read_results, malformed_record_before_any_head_creates_no_entry) {
    EXPECT_EQ(Load("garbage\n"), malformed(1, 1));
    EXPECT_TRUE(Results().empty());
}

TEST_F(read_results, known_title_keeps_its_mass_and_charge_but_deviations_follow_the_head) {
    CPSMRes& known = Results()["t"];
    known.m_strTitle = "t";
    known.m_lfMH = 900.0;
    known.m_nCharge = 4;
    known.m_vPeps.emplace_back().m_strSeq = "OLD";
    EXPECT_EQ(Load(head("t", "1001.5") + pep_line("AAK")), "");
    EXPECT_EQ(Results().size(), 1U);
    EXPECT_EQ(known.m_lfMH, 900.0);
    EXPECT_EQ(known.m_nCharge, 4);
    EXPECT_EQ(sequences(known.m_vPeps), "OLD AAK");
    EXPECT_EQ(known.m_vPeps[1].m_lfMassDev, 1.0);
}

TEST_F(read_results, first_three_of_five_are_kept_whatever_their_scores) {
    const std::string five = pep_line("A", "1") + pep_line("B", "2") + pep_line("C", "3") +
                             pep_line("D", "4") + pep_line("E", "5");
    EXPECT_EQ(Load(head("t") + five, 3), "");
    EXPECT_EQ(sequences(Peps("t")), "A B C");
    // The limit holds over all files and repeated heads.
    EXPECT_EQ(Load(head("t") + pep_line("F", "99") + head("u") + five, 4), "");
    EXPECT_EQ(sequences(Peps("t")), "A B C F");
    EXPECT_EQ(sequences(Peps("u")), "A B C D");
}

TEST_F(read_results, final_score_above_the_threshold_is_dropped_and_takes_no_place) {
    EXPECT_EQ(Load(head("t") + pep_line("A", "1", "0.500001") + pep_line("B", "1", "0.5") +
                       pep_line("C", "1", "inf") + pep_line("D", "1", "-inf"),
                   2, 0.5),
              "");
    EXPECT_EQ(sequences(Peps("t")), "B D");
}

TEST_F(read_results, rest_of_the_line_is_skipped_whether_kept_or_dropped) {
    const std::string rest = kPlainRest + "\tS 12 more";
    const std::string kept = pep_line("A", "1", "0.5", "0", rest);
    const std::string dropped = pep_line("B", "1", "0.6", "0", rest);
    EXPECT_EQ(Load(head("t") + dropped + kept + dropped + pep_line("C"), 2, 0.5), "");
    EXPECT_EQ(sequences(Peps("t")), "A C");
    EXPECT_EQ(Load(head("u") + kept + kept + pep_line("C"), 1, 0.5), "");
    EXPECT_EQ(sequences(Peps("u")), "A");
}

TEST_F(read_results, repeated_protein_keeps_the_first_hit_and_is_reported) {
    EXPECT_EQ(Load(head("some title") + pep_line("AAK", "1", "1", "1",
                                                 "0 0 0 0 3 7;1;K;A 7;2;R;C 5;3;-;- 0 "
                                                 "1 2 3 4 5 1 2 3 4 5 6 7 8")),
              "[Tessel] ALERT: Invalid format: some title\n\n");
    const std::set<PRO_INFO>& hits = Peps("some title").at(0).m_setProteins;
    ASSERT_EQ(hits.size(), 2U);
    EXPECT_EQ(hits.begin()->m_nProID, 5);
    EXPECT_EQ(hits.rbegin()->m_nSite, 1);
    EXPECT_EQ(hits.rbegin()->m_cPrev, 'K');
}

TEST_F(read_results, carriage_returns_and_unprintable_tails_of_titles_are_cut) {
    EXPECT_EQ(Load("S\t1001.5\t2\r\none title\r\n1 AAK 1 1 1 1 " + kPlainRest + "\r\n" +
                   head("two\t\x01\xE9") + head("three \x80 .") + head(" four ") + head("")),
              "");
    ASSERT_EQ(Results().size(), 5U);
    EXPECT_EQ(sequences(Peps("one title")), "AAK");
    EXPECT_EQ(Results().count("two"), 1U);
    EXPECT_EQ(Results().count("three \x80 ."), 1U);
    EXPECT_EQ(Results().count(" four "), 1U);
    EXPECT_EQ(Results().count(""), 1U);
}

TEST_F(read_results, title_is_the_next_line_whatever_it_holds) {
    EXPECT_EQ(Load("S\t1001.5\t2\nS 5 5\n" + pep_line("AAK") + "S 1 1\n1 2 3\n"), "");
    ASSERT_EQ(Results().size(), 2U);
    EXPECT_EQ(sequences(Peps("S 5 5")), "AAK");
    EXPECT_EQ(Results().count("1 2 3"), 1U);
}

TEST_F(read_results, numbers_of_a_head_come_from_its_line_only_and_are_0_when_missing) {
    EXPECT_EQ(Load("S\n10 20\n"
                   "S 5.5\n30\n"
                   "S x 3\nunreadable mass\n"
                   "S 7.5Da 2+\ntrailing text\n"
                   "S 1e999 99999999999\nbeyond the limits\n"
                   "S 8.5 -2 5 5\nmore fields\n"
                   "\n\n  S\t9.5\t1\nlate\n"
                   "S\nboth missing\n"
                   "S 5 7\nwhole\n"
                   "S 6\ncharge missing\n"),
              "");
    const auto numbers = [this](const std::string& title) {
        return std::make_pair(Results().at(title).m_lfMH, Results().at(title).m_nCharge);
    };
    EXPECT_EQ(Results().size(), 10U);
    EXPECT_EQ(numbers("both missing"), std::make_pair(0.0, 0));
    EXPECT_EQ(numbers("charge missing"), std::make_pair(6.0, 0));
    EXPECT_EQ(numbers("10 20"), std::make_pair(0.0, 0));
    EXPECT_EQ(numbers("30"), std::make_pair(5.5, 0));
    EXPECT_EQ(numbers("unreadable mass"), std::make_pair(0.0, 3));
    EXPECT_EQ(numbers("trailing text"), std::make_pair(7.5, 2));
    EXPECT_EQ(numbers("beyond the limits"),
              std::make_pair(kInfinity, std::numeric_limits<int>::max()));
    EXPECT_EQ(numbers("more fields"), std::make_pair(8.5, -2));
    EXPECT_EQ(numbers("late"), std::make_pair(9.5, 1));
}

TEST_F(read_results, only_the_token_s_itself_is_a_head) {
    for (const std::string rank : {"s", "SS", "S1", "-", "1.5"}) {
        Results().clear();
        EXPECT_EQ(Load(head("t") + rank + " AAK 1 1 1 1 " + kPlainRest + '\n'), "") << rank;
        EXPECT_EQ(sequences(Peps("t")), "AAK") << rank;
    }
}

TEST_F(read_results, head_without_a_title_line_is_dropped_and_counted) {
    EXPECT_EQ(Load(head("t") + "S\t5.5\t2\n"), malformed(1, 3));
    EXPECT_EQ(Results().size(), 1U);
    EXPECT_EQ(Load(head("u") + "\nS"), malformed(1, 4));
    EXPECT_EQ(Results().size(), 2U);
    EXPECT_EQ(Load("S 1 1\n\n"), "");
    EXPECT_EQ(Results().count(""), 1U);
}

TEST_F(read_results, unknown_modification_becomes_a_null_entry_without_a_message) {
    EXPECT_EQ(Load(head("t") + pep_line("AAK", "1", "1", "1",
                                        "1 2 What[A] 0 0 0 0 0 "
                                        "1 2 3 4 5 1 2 3 4 5 6 7 8")),
              "");
    ASSERT_EQ(m_cCondition.m_mapMods.count("What[A]"), 1U);
    EXPECT_EQ(m_cCondition.m_mapMods.at("What[A]"), nullptr);
    const CPepRes& pep = Peps("t").at(0);
    ASSERT_EQ(pep.m_ucModNum, 1);
    EXPECT_EQ(pep.m_pMods[0].m_ucPos, 2);
    EXPECT_EQ(pep.m_pMods[0].m_pMod, nullptr);
}

TEST_F(read_results, byte_fields_take_the_low_8_bits_and_any_nonzero_flag_is_1) {
    EXPECT_EQ(
        Load(head("t") +
             pep_line("AAK", "1", "1", "1", "1 258 X 257 256 -1 0 300 1 2 3 4 5 1 2 3 4 5 6 7 8") +
             pep_line("CCK", "1", "1", "1", "0 0 -256 0 0 -1 1 2 3 4 5 1 2 3 4 5 6 7 8") +
             pep_line("DDK", "1", "1", "1", "0 0 00 0 0 0 1 2 3 4 5 1 2 3 4 5 6 7 8")),
        "");
    const CPepRes& pep = Peps("t").at(0);
    EXPECT_EQ(pep.m_pMods[0].m_ucPos, 2);
    EXPECT_EQ(pep.m_ucAuxMax, 1);
    EXPECT_EQ(pep.m_bDecoy, 1);
    EXPECT_EQ(pep.m_ucAux1, 255);
    EXPECT_EQ(pep.m_ucAux2, 44);
    EXPECT_EQ(Peps("t").at(1).m_bDecoy, 1);
    EXPECT_EQ(Peps("t").at(1).m_ucAux2, 255);
    EXPECT_EQ(Peps("t").at(2).m_bDecoy, 0);
}

TEST_F(read_results, third_flag_byte_is_read_as_unsigned) {
    const auto third = [this](const std::string& text) {
        Results().clear();
        EXPECT_EQ(Load(head("t") + pep_line("AAK", "1", "1", "1",
                                            "0 0 0 0 0 " + text + " 1 2 3 4 5 1 2 3 4 5 6 7 8")),
                  "");
        return int{Peps("t").at(0).m_ucAux2};
    };
    EXPECT_EQ(third("2147483648"), 0);
    EXPECT_EQ(third("3000000000"), 0);  // 0xB2D05E00
    EXPECT_EQ(third("3000000007"), 7);
    EXPECT_EQ(third("4294967294"), 254);
    EXPECT_EQ(third("4294967296"), 255);  // the largest
    EXPECT_EQ(third("99999999999999999999"), 255);
    EXPECT_EQ(third("-2"), 254);
    EXPECT_EQ(third("-99999999999"), 0);
}

TEST_F(read_results, text_behind_a_number_is_ignored_and_integers_saturate) {
    EXPECT_EQ(Load(head("t") + "1 AAK 1000.5Da 0x10 1e-2x .5.5 0.9 3.7 0 0 1;2 9;8;A;Bxyz 0 " +
                   "inf nan 1,5 +2 -3 99999999999 -99999999999 0x7 +4 5 6 7 8.9\n"),
              "");
    const CPepRes& pep = Peps("t").at(0);
    EXPECT_EQ(pep.m_lfPepMass, 1000.5);
    EXPECT_EQ(pep.m_lfScore, 0.0);
    EXPECT_EQ(pep.m_lfFinalScore, 0.01);
    EXPECT_EQ(pep.m_lfQValue, 0.5);
    EXPECT_EQ(pep.m_ucAuxMax, 3);
    ASSERT_EQ(pep.m_setProteins.size(), 1U);
    EXPECT_EQ(pep.m_setProteins.begin()->m_cNext, 'B');
    EXPECT_EQ(pep.m_lfSubScores[0], kInfinity);
    EXPECT_TRUE(pep.m_lfSubScores[1] != pep.m_lfSubScores[1]);
    EXPECT_EQ(pep.m_lfSubScores[2], 1.0);
    EXPECT_EQ(pep.m_nAuxA, (std::array<int, 4>{std::numeric_limits<int>::max(),
                                               std::numeric_limits<int>::min(), 0, 4}));
    EXPECT_EQ(pep.m_nAuxB, (std::array<int, 4>{5, 6, 7, 8}));
}

TEST_F(read_results, residues_of_a_hit_may_be_any_characters) {
    EXPECT_EQ(Load(head("t") + pep_line("AAK", "1", "1", "1",
                                        "0 0 0 0 3 1;1;;;; 2;2;1;2 3;3;\xE9;\x01 0 "
                                        "1 2 3 4 5 1 2 3 4 5 6 7 8")),
              "");
    std::string residues;
    for (const PRO_INFO& hit : Peps("t").at(0).m_setProteins) {
        residues += hit.m_cPrev;
        residues += hit.m_cNext;
    }
    EXPECT_EQ(residues, ";;12\xE9\x01");
}

TEST_F(read_results, record_that_cannot_be_read_is_dropped_with_one_alert) {
    const std::string tail = " 1 2 3 4 5 1 2 3 4 5 6 7 8";
    const struct {
        const char* name;
        std::string record;
    } rows[] = {
        {"rank alone", "1"},
        {"mass is a word", "1 AAK x 1 1 1 " + kPlainRest},
        {"mass is not a number", "1 AAK nan 1 1 1 " + kPlainRest},
        {"score is not a number", "1 AAK 1 -nan 1 1 " + kPlainRest},
        {"final score is not a number", "1 AAK 1 1 NAN 1 " + kPlainRest},
        {"score is a word", "1 AAK 1 x 1 1 " + kPlainRest},
        {"final score is a word", "1 AAK 1 1 x 1 " + kPlainRest},
        {"q-value is a word", "1 AAK 1 1 1 x " + kPlainRest},
        {"number of sites is a word", "1 AAK 1 1 1 1 x 0 0 0 0 0" + tail},
        {"number of sites is negative", "1 AAK 1 1 1 1 -1 0 0 0 0 0" + tail},
        {"number of sites is above 255", "1 AAK 1 1 1 1 256 0 0 0 0 0" + tail},
        {"number of sites is 2^31", "1 AAK 1 1 1 1 2147483648 0 0 0 0 0" + tail},
        {"number of sites is 2^32", "1 AAK 1 1 1 1 4294967296 0 0 0 0 0" + tail},
        {"number of sites is beyond 64 bits", "1 AAK 1 1 1 1 18446744073709551616 0" + tail},
        {"position is a word", "1 AAK 1 1 1 1 1 x X 0 0 0 0 0" + tail},
        {"first flag byte is a word", "1 AAK 1 1 1 1 0 x 0 0 0 0" + tail},
        {"decoy flag is a word", "1 AAK 1 1 1 1 0 0 x 0 0 0" + tail},
        {"second flag byte is a word", "1 AAK 1 1 1 1 0 0 0 x 0 0" + tail},
        {"number of hits is a word", "1 AAK 1 1 1 1 0 0 0 0 x 0" + tail},
        {"number of hits is negative", "1 AAK 1 1 1 1 0 0 0 0 -1 0" + tail},
        {"number of hits is 2^31", "1 AAK 1 1 1 1 0 0 0 0 2147483648 1;1;a;b 0" + tail},
        {"hit without residues", "1 AAK 1 1 1 1 0 0 0 0 1 1;1 0" + tail},
        {"hit with one residue", "1 AAK 1 1 1 1 0 0 0 0 1 1;1;a 0" + tail},
        {"hit without its second residue", "1 AAK 1 1 1 1 0 0 0 0 1 1;1;a; 0" + tail},
        {"hit with a long residue", "1 AAK 1 1 1 1 0 0 0 0 1 1;1;ab;c 0" + tail},
        {"hit without a key", "1 AAK 1 1 1 1 0 0 0 0 1 ;1;a;b 0" + tail},
        {"hit without a site", "1 AAK 1 1 1 1 0 0 0 0 1 1;;a;b 0" + tail},
        {"hit with another separator", "1 AAK 1 1 1 1 0 0 0 0 1 1,1,a,b 0" + tail},
        {"third flag byte is a word", "1 AAK 1 1 1 1 0 0 0 0 0 x" + tail},
        {"sub-score is a word", "1 AAK 1 1 1 1 0 0 0 0 0 0 1 2 3 4 x 1 2 3 4 5 6 7 8"},
        {"first number is a word", "1 AAK 1 1 1 1 0 0 0 0 0 0 1 2 3 4 5 x 2 3 4 5 6 7 8"},
        {"last number is a word", "1 AAK 1 1 1 1 0 0 0 0 0 0 1 2 3 4 5 1 2 3 4 5 6 7 x"},
    };
    for (const auto& row : rows) {
        Results().clear();
        const std::string text =
            head("t") + pep_line("FIRST") + row.record + '\n' + head("u") + pep_line("SECOND");
        EXPECT_EQ(Load(text), malformed(1, 4)) << row.name;
        ASSERT_EQ(Results().size(), 2U) << row.name;
        EXPECT_EQ(sequences(Peps("t")), "FIRST") << row.name;
        EXPECT_EQ(sequences(Peps("u")), "SECOND") << row.name;
        EXPECT_EQ(Peps("u").at(0).m_lfMassDev, 1.0) << row.name;
    }
}

TEST_F(read_results, one_alert_counts_the_dropped_records_and_names_the_first_line) {
    EXPECT_EQ(Load("\n" + head("t") + pep_line("A") + "bad\n" + pep_line("B") + "bad again\n\n" +
                   pep_line("C", "x") + pep_line("D")),
              // The two words before a good line take it along as their fields.
              malformed(3, 5));
    EXPECT_EQ(sequences(Peps("t")), "A B D");
}

TEST_F(read_results, head_inside_a_record_ends_it) {
    EXPECT_EQ(Load(head("t") + "1\tAAK\t1000.5\t10\n" + head("u") + pep_line("CCK")),
              malformed(1, 3));
    EXPECT_TRUE(Peps("t").empty());
    EXPECT_EQ(sequences(Peps("u")), "CCK");
}

TEST_F(read_results, record_may_run_over_lines) {
    std::string lines =
        pep_line("AAK", "1", "1", "1", "1 2 X 3 0 4 2 1;1;a;b 2;2;c;d 5 1 2 3 4 5 1 2 3 4 5 6 7 8");
    std::replace(lines.begin(), lines.end(), ' ', '\n');
    std::replace(lines.begin(), lines.end(), '\t', '\v');
    EXPECT_EQ(Load(head("t") + lines + "\n\n" + pep_line("CCK") + "bad\n"), malformed(1, 29));
    EXPECT_EQ(sequences(Peps("t")), "AAK CCK");
    EXPECT_EQ(Peps("t")[0].m_setProteins.size(), 2U);
}

TEST_F(read_results, reading_resumes_behind_the_line_on_which_the_record_began) {
    // The first record begins on line 3 and fails on line 5, at the word "x"; line 4 is then taken
    // as a record of its own, which fails there, too; line 5 begins one that is complete.
    EXPECT_EQ(Load(head("t") + "1 AAK 1\n1 1 1 0 0 0 0 0 0 1\nx CCK 1 1 1 1 " + kPlainRest + "\n"),
              malformed(2, 3));
    EXPECT_EQ(sequences(Peps("t")), "CCK");
}

TEST_F(read_results, file_without_a_last_line_feed_is_complete) {
    std::string text = head("t") + pep_line("AAK");
    text.pop_back();
    EXPECT_EQ(Load(text), "");
    EXPECT_EQ(Peps("t").at(0).m_nAuxB[3], 8);
    EXPECT_EQ(Load("S 1 1\nu"), "");
    EXPECT_EQ(Results().count("u"), 1U);
}

TEST_F(read_results, file_without_records_changes_nothing) {
    for (const std::string text : {"", " ", "\n", "\xEF\xBB\xBF", "\xEF\xBB\xBF\r\n \t\v\f\n"}) {
        EXPECT_EQ(Load(text), "");
        EXPECT_TRUE(Results().empty());
    }
    EXPECT_EQ(Load(std::string(1000000, '\n') + std::string(1000000, ' ') + "x"),
              malformed(1, 1000001));
}

TEST_F(read_results, byte_order_mark_at_the_start_is_skipped) {
    EXPECT_EQ(Load("\xEF\xBB\xBF" + head("t") + pep_line("AAK")), "");
    ASSERT_EQ(Results().size(), 1U);
    EXPECT_EQ(sequences(Peps("t")), "AAK");
}

TEST_F(read_results, nul_bytes_are_ordinary_characters) {
    using namespace std::string_literals;
    EXPECT_EQ(Load(head("a\0b\0"s) + pep_line("A\0K"s) + "\0\0\0\n"s + pep_line("CCK")),
              malformed(1, 4));
    EXPECT_EQ(sequences(Peps("a\0b"s)), "A\0K CCK"s);
}

TEST_F(read_results, missing_file_or_folder_is_an_alert_and_changes_nothing) {
    Results()["t"];
    const std::string missing = m_cFolder.Path("missing.txt");
    EXPECT_EQ(captured_output([&] { EXPECT_EQ(m_cCondition._LoadResult(missing, 1, 1.0), 1); }),
              "[Tessel] ALERT: Cannot open the result file: " + missing + "\n");
    EXPECT_EQ(captured_output([&] { EXPECT_EQ(m_cCondition._LoadGroupResult(missing), 1); }),
              "[Tessel] ALERT: Cannot open the result file: " + missing + "\n");
    EXPECT_EQ(captured_output([&] { m_cCondition._LoadResult(m_cFolder.Path(), 1, 1.0); }),
              "[Tessel] ALERT: Cannot open the result file: " + m_cFolder.Path() + "\n");
    EXPECT_EQ(Results().size(), 1U);
}

TEST_F(read_results, file_that_fails_while_it_is_read_is_an_alert) {
    // The memory of this process: it opens, but nothing is at its start.
    const std::string path = "/proc/self/mem";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "no such file on this system";
    EXPECT_EQ(captured_output([&] { m_cCondition._LoadResult(path, 1, 1.0); }),
              "[Tessel] ALERT: Cannot read the result file: " + path + "\n");
}

TEST_F(read_results, sites_of_255_fit_and_hits_may_fill_many_buffers) {
    std::string rest = "255";
    for (int i = 0; i < 255; ++i)
        rest += ' ' + std::to_string(i) + " X";
    rest += " 0 0 0 100000";
    for (int i = 0; i < 100000; ++i)
        rest += ' ' + std::to_string(i) + ";1;a;b";
    rest += " 0 1 2 3 4 5 1 2 3 4 5 6 7 8";
    EXPECT_EQ(Load(head("t") + pep_line("AAK", "1", "1", "1", rest) + pep_line("CCK")), "");
    EXPECT_EQ(sequences(Peps("t")), "AAK CCK");
    EXPECT_EQ(Peps("t")[0].m_ucModNum, 255);
    EXPECT_EQ(Peps("t")[0].m_pMods[254].m_ucPos, 254);
    EXPECT_EQ(Peps("t")[0].m_setProteins.size(), 100000U);
}

TEST_F(read_results, hits_of_the_shortest_form_fit_at_the_end_of_a_file) {
    std::string rest = "0 0 0 0 40";
    for (int i = 0; i < 40; ++i)
        rest += " 0;0;a;b";
    EXPECT_EQ(Load(head("t") + "1 AAK 1 1 1 1 " + rest + " 0 1 2 3 4 5 1 2 3 4 5 6 7 8"),
              "[Tessel] ALERT: Invalid format: t\n\n");
    EXPECT_EQ(sequences(Peps("t")), "AAK");
}

TEST_F(read_results, huge_malformed_record_gives_back_the_lines_behind_its_first) {
    std::string text = head("t") + "1 AAK 1 1 1 1 0 0 0 0 1000000";
    for (int i = 0; i < 200000; ++i)
        text += " 5;5;a;b";
    EXPECT_EQ(Load(text + '\n' + pep_line("CCK")), malformed(1, 3));
    EXPECT_EQ(sequences(Peps("t")), "CCK");
    EXPECT_EQ(Load(text), malformed(1, 3));
}

TEST_F(read_results, lines_that_a_malformed_record_took_for_hits_are_read_again) {
    // Every token of these lines is a hit, and every line is a complete record.
    constexpr std::size_t kLines = 5000;
    std::string line;
    for (int field = 1; field <= 25; ++field)
        line += field == 7 || field == 11 ? " 0;0;a;b" : " 1;2;a;b";
    std::string lines;
    for (std::size_t i = 0; i < kLines; ++i)
        lines += line + '\n';
    ASSERT_GT(lines.size(), 900000U);
    EXPECT_EQ(Load(head("t") + "1 AAK 1 1 1 1 0 0 0 0 2147483647\n" + lines + "x\n", kLines + 1),
              malformed(2, 3));
    EXPECT_EQ(Peps("t").size(), kLines);
}

TEST_F(read_results, token_longer_than_the_line_buffer_is_cut_there) {
    const std::string full(kPiece, 'A');
    EXPECT_EQ(Load(head("t") + pep_line(full)), "");
    EXPECT_EQ(Peps("t").at(0).m_strSeq, full);
    // The rest of the sequence is read as the mass.
    Results().clear();
    EXPECT_EQ(Load(head("t") + "1 " + full + "5 1 1 1 " + kPlainRest + "\n"), "");
    EXPECT_EQ(Peps("t").at(0).m_strSeq, full);
    EXPECT_EQ(Peps("t").at(0).m_lfPepMass, 5.0);
    Results().clear();
    EXPECT_EQ(Load(head("t") + pep_line(full + "A")), malformed(1, 3));
}

TEST_F(read_results, longer_lines_come_in_pieces_but_count_once) {
    const std::string full(kPiece, 'T');
    // The rest of the title's line is a record that cannot be read.
    EXPECT_EQ(Load("S 1 1\n" + full + "T\n" + pep_line("AAK") + "bad\n"), malformed(2, 2));
    EXPECT_EQ(sequences(Peps(full)), "AAK");
    // The rest of the head's line is the title.
    Results().clear();
    EXPECT_EQ(Load("S" + std::string(kPiece - 4, ' ') + "55 3rest\nAAK 1\n"), malformed(1, 2));
    ASSERT_EQ(Results().count("rest"), 1U);
    EXPECT_EQ(Results().at("rest").m_lfMH, 55.0);
    EXPECT_EQ(Results().at("rest").m_nCharge, 3);
}

TEST_F(read_results, cut_off_anywhere_a_file_yields_what_is_complete) {
    const std::string rest = "1 2 X 3 0 4 2 1;1;a;b 22;2;c;d 5 1 2 3 4 5 1 2 3 4 5 6 7 89";
    std::string text;
    for (const char* title : {"first", "second", "third"}) {
        text += head(title) + pep_line("AAK", "10.25", "0.5", "0.01", rest) +
                pep_line("CCCK", "10.25", "0.5", "0.01", rest);
    }
    const auto kept = [this] {
        std::vector<std::string> peps;
        for (const char* title : {"first", "second", "third"}) {
            if (Results().count(title) == 0) continue;
            for (const CPepRes& pep : Peps(title))
                peps.push_back(described(pep));
        }
        return peps;
    };
    EXPECT_EQ(Load(text), "");
    const std::vector<std::string> whole = kept();
    ASSERT_EQ(whole.size(), 6U);

    std::size_t complete = 0;
    int line = 0;  // of four: head, title, two candidates
    std::size_t lineBegin = 0;
    for (std::size_t length = 0; length < text.size(); ++length) {
        if (length > 0 && text[length - 1] == '\n') {
            ++line;
            lineBegin = length;
        }
        const bool isPep = line % 4 >= 2;
        // The last number may be cut between its digits.
        const bool isRead = isPep && text[length] == '\n';
        const bool isCutNumber = isPep && text.compare(length, 2, "9\n") == 0;
        const bool hasText = length > lineBegin;
        if (isRead) ++complete;
        const bool isDropped = (line % 4 == 0 && hasText) || (line % 4 == 1 && !hasText) ||
                               (isPep && hasText && !isRead && !isCutNumber);

        Results().clear();
        // A head is missed on the line behind it.
        const int dropLine = line % 4 == 1 ? line : line + 1;
        ASSERT_EQ(Load(text.substr(0, length)), isDropped ? malformed(1, dropLine) : "") << length;
        const std::vector<std::string> peps = kept();
        ASSERT_EQ(peps.size(), complete + (isCutNumber ? 1 : 0)) << length;
        for (std::size_t i = 0; i < complete; ++i)
            ASSERT_EQ(peps[i], whole[i]) << length;
    }
}

TEST_F(read_results, random_bytes_never_end_reading_early_or_crash) {
    std::mt19937 random(11);
    const std::string alphabet = "S1234567890;;--. \t\n\n\rA\x80";
    for (int round = 0; round < 300; ++round) {
        std::string text = head("before") + pep_line("AAK");
        const std::size_t length = random() % 3000;
        for (std::size_t i = 0; i < length; ++i)
            text += alphabet[random() % alphabet.size()];
        // More than the fields of any record that begins there without hits or sites: none takes
        // the words behind for its own.
        text += '\n';
        for (int i = 0; i < 40; ++i)
            text += "x ";
        Results().clear();
        Load(text + '\n' + head("after") + pep_line("CCK"));
        ASSERT_EQ(Peps("before").at(0).m_strSeq, "AAK");
        ASSERT_EQ(sequences(Peps("after")), "CCK") << round;
    }
}

// ---- A plain reader of well-formed files ----

std::map<std::string, CPSMRes> twin_load(const std::string& text,
                                         std::map<std::string, CMod*>& mods, std::size_t maxPeps,
                                         double maxFinalScore) {
    test::CClassicIn in(text);
    std::map<std::string, CPSMRes> results;
    CPSMRes current;
    std::string token;
    std::string line;
    while (in >> token) {
        if (token == "S") {
            in >> current.m_lfMH >> current.m_nCharge;
            std::getline(in, line);
            std::getline(in, line);
            while (!line.empty() && (line.back() < ' ' || line.back() > '~'))
                line.pop_back();
            current.m_strTitle = line;
            if (results.count(line) == 0) results[line] = current;
            continue;
        }
        CPepRes pep;
        std::size_t sites = 0;
        in >> pep.m_strSeq >> pep.m_lfPepMass >> pep.m_lfScore >> pep.m_lfFinalScore >>
            pep.m_lfQValue >> sites;
        std::vector<MOD_SITE> list;
        for (std::size_t i = 0; i < sites; ++i) {
            int position = 0;
            in >> position >> token;
            list.push_back({static_cast<unsigned char>(position), mods[token]});
        }
        test::set_sites(pep, list);
        int bytes[4];
        int hits = 0;
        in >> bytes[0] >> bytes[1] >> bytes[2] >> hits;
        for (int i = 0; i < hits; ++i) {
            PRO_INFO hit;
            char separator = 0;
            in >> hit.m_nProID >> separator >> hit.m_nSite >> separator >> hit.m_cPrev >>
                separator >> hit.m_cNext;
            pep.m_setProteins.insert(hit);
        }
        in >> bytes[3];
        for (double& score : pep.m_lfSubScores)
            in >> score;
        for (int& number : pep.m_nAuxA)
            in >> number;
        for (int& number : pep.m_nAuxB)
            in >> number;
        std::getline(in, line);
        pep.m_ucAuxMax = static_cast<unsigned char>(bytes[0]);
        pep.m_bDecoy = bytes[1] != 0;
        pep.m_ucAux1 = static_cast<unsigned char>(bytes[2]);
        pep.m_ucAux2 = static_cast<unsigned char>(bytes[3]);
        pep.m_lfMassDev = current.m_lfMH - pep.m_lfPepMass;
        if (results.count(current.m_strTitle) == 0) results[current.m_strTitle] = current;
        std::vector<CPepRes>& peps = results[current.m_strTitle].m_vPeps;
        if (peps.size() < maxPeps && pep.m_lfFinalScore <= maxFinalScore) peps.push_back(pep);
    }
    return results;
}

class CRandomFile {
public:
    explicit CRandomFile(unsigned seed) : m_cRandom(seed) {}

    std::string Text() {
        m_strText.clear();
        const unsigned blocks = 1 + Below(60);
        for (unsigned block = 0; block < blocks; ++block) {
            if (block > 0 || Below(2) == 0) Head();
            for (unsigned pep = Below(6); pep > 0; --pep)
                Pep();
        }
        return m_strText;
    }

private:
    unsigned Below(unsigned limit) { return static_cast<unsigned>(m_cRandom() % limit); }

    void Add(const std::string& field) {
        const char* blanks[] = {"\t", "\t", "\t", " ", "  ", "\n", "\r\n", " \t\v"};
        m_strText += field + blanks[Below(8)];
    }

    std::string Number() {
        std::string text = std::to_string(static_cast<int>(Below(4000)) - 1000);
        if (Below(3) > 0) text += '.' + std::to_string(Below(1000000));
        if (Below(8) == 0) text += "e-" + std::to_string(Below(20));
        return text;
    }

    void LineEnd() { m_strText += Below(4) == 0 ? " more 5 S\r\n" : Below(2) == 0 ? "\n" : "\r\n"; }

    void Head() {
        m_strText += "S\t" + Number() + ' ' + std::to_string(Below(6));
        LineEnd();
        m_strText += "title " + std::to_string(Below(20)) + (Below(2) == 0 ? " \n" : "\r\n");
    }

    void Pep() {
        Add(std::to_string(Below(10)));
        Add(std::string(1 + Below(40), static_cast<char>('A' + Below(26))));
        for (int i = 0; i < 4; ++i)
            Add(Number());
        const unsigned sites = Below(4);
        Add(std::to_string(sites));
        for (unsigned i = 0; i < sites; ++i) {
            Add(std::to_string(Below(600)));
            Add("Mod" + std::to_string(Below(4)) + "[S]");
        }
        for (int i = 0; i < 3; ++i)
            Add(std::to_string(static_cast<int>(Below(600)) - 300));
        const unsigned hits = Below(5);
        Add(std::to_string(hits));
        for (unsigned i = 0; i < hits; ++i) {
            Add(std::to_string(Below(6)) + ';' + std::to_string(Below(900)) + ";K;" +
                static_cast<char>('!' + Below(90)));
        }
        Add(std::to_string(Below(600)));
        for (int i = 0; i < 5; ++i)
            Add(Number());
        for (int i = 0; i < 7; ++i)
            Add(std::to_string(static_cast<int>(m_cRandom())));
        m_strText += std::to_string(Below(1000));
        LineEnd();
    }

    std::mt19937 m_cRandom;
    std::string m_strText;
};

TEST_F(read_results, reads_what_a_plain_reader_reads) {
    CMod mods[2];
    mods[0].m_strName = "Mod0[S]";
    mods[1].m_strName = "Mod1[S]";
    for (unsigned seed = 0; seed < 200; ++seed) {
        const std::string text = CRandomFile(seed).Text();
        const std::size_t maxPeps = 1 + seed % 12;
        const double maxFinalScore = seed % 3 == 0 ? kInfinity : 500.0 * (seed % 5);
        m_cCondition.m_mapMods = {{"Mod0[S]", &mods[0]}, {"Mod1[S]", &mods[1]}};
        auto twinMods = m_cCondition.m_mapMods;
        Results().clear();
        const std::string output = Load(text, maxPeps, maxFinalScore);
        ASSERT_EQ(output.find("Malformed"), std::string::npos) << seed;
        ASSERT_EQ(described(Results()),
                  described(twin_load(text, twinMods, maxPeps, maxFinalScore)))
            << seed;
        ASSERT_EQ(m_cCondition.m_mapMods, twinMods) << seed;
    }
}

TEST_F(read_results, reads_many_buffers_as_a_plain_reader_does) {
    std::string text;
    for (unsigned seed = 1000; seed < 1100; ++seed)
        text += CRandomFile(seed).Text();
    ASSERT_GT(text.size(), 2000000U);
    auto twinMods = m_cCondition.m_mapMods;
    EXPECT_EQ(Load(text, 1000000).find("Malformed"), std::string::npos);
    EXPECT_TRUE(described(Results()) == described(twin_load(text, twinMods, 1000000, kInfinity)));
}

TEST(result_text, lines_are_counted_anew_behind_a_record_that_is_left) {
    const test::CTempFolder folder;
    const FilePtr file = open_file(folder.Write("text", "a\nb c\n\nd\ne"), "rb");
    CResultText text(file.get());
    std::string_view token;
    for (const int line : {1, 2, 4, 5}) {
        ASSERT_TRUE(text.NextRecord(token));
        EXPECT_EQ(text.RecordLine(), static_cast<unsigned>(line));
        while (text.Token(token)) {
        }
        text.LeaveRecord();
    }
    EXPECT_FALSE(text.NextRecord(token));
    EXPECT_FALSE(text.LinePiece(token));
    EXPECT_FALSE(text.Failed());
}

// ---- One peptide of a stream ----

class read_one_pep : public testing::Test {
protected:
    // Reads from a stream that stands behind the rank, and returns what it holds behind the fields.
    std::string Read(const std::string& text, CPepRes& pep) {
        const std::string path = m_cFolder.Write("stream.txt", "1" + text);
        std::FILE* file = std::fopen(path.c_str(), "rb");
        EXPECT_EQ(std::getc(file), '1');
        std::vector<char> buffer(81920);
        m_strOutput = captured_output(
            [&] { EXPECT_EQ(m_cCondition._ReadOnePep(m_cSpectrum, pep, buffer.data(), file), 1); });
        std::string left;
        for (int c = std::getc(file); c != EOF; c = std::getc(file))
            left += static_cast<char>(c);
        std::fclose(file);
        return left;
    }

    test::CTempFolder m_cFolder;
    CCondition m_cCondition;
    CPSMRes m_cSpectrum;
    std::string m_strOutput;
};

TEST_F(read_one_pep, reads_the_fields_and_leaves_the_stream_right_behind_them) {
    m_cSpectrum.m_strTitle = "t";
    m_cSpectrum.m_lfMH = 1001.0;
    CPepRes pep;
    EXPECT_EQ(
        Read("\tAAK\t1000.5\t10\t0.5\t0.01\t1\t2\tX\t3\t0\t4\t2\t1;1;a;b\t1;2;c;d\t5\t1\t2\t3\t"
             "4\t5\t1\t2\t3\t4\t5\t6\t7\t8\r\nS 1 1\n",
             pep),
        "\r\nS 1 1\n");
    EXPECT_EQ(m_strOutput, "[Tessel] ALERT: Invalid format: t\n\n");
    CPepRes expected;
    expected.m_strSeq = "AAK";
    expected.m_lfPepMass = 1000.5;
    expected.m_lfScore = 10;
    expected.m_lfFinalScore = 0.5;
    expected.m_lfQValue = 0.01;
    test::set_sites(expected, {{2, nullptr}});
    expected.m_ucAuxMax = 3;
    expected.m_bDecoy = 0;
    expected.m_ucAux1 = 4;
    expected.m_setProteins = {{1, 1, 'a', 'b'}};
    expected.m_ucAux2 = 5;
    expected.m_lfSubScores = {1, 2, 3, 4, 5};
    expected.m_nAuxA = {1, 2, 3, 4};
    expected.m_nAuxB = {5, 6, 7, 8};
    expected.m_lfMassDev = 0.5;
    EXPECT_EQ(described(pep), described(expected));
    EXPECT_EQ(m_cCondition.m_mapMods.count("X"), 1U);
}

TEST_F(read_one_pep, field_that_cannot_be_read_ends_the_reading) {
    m_cSpectrum.m_lfMH = 1001.0;
    CPepRes pep;
    EXPECT_EQ(Read(" AAK 1000.5 x 7 7 " + kPlainRest, pep), " 7 7 " + kPlainRest);
    EXPECT_EQ(pep.m_strSeq, "AAK");
    EXPECT_EQ(pep.m_lfMassDev, 0.5);
    EXPECT_EQ(pep.m_lfFinalScore, 0.0);
    CPepRes cutOff;
    EXPECT_EQ(Read(" AAK 1000.5 1 1 1 3 7 X", cutOff), "");
    EXPECT_EQ(cutOff.m_ucModNum, 3);
    EXPECT_EQ(cutOff.m_pMods[0].m_ucPos, 7);
    EXPECT_EQ(cutOff.m_pMods[2].m_pMod, nullptr);
    EXPECT_EQ(Read("", cutOff), "");
}

TEST_F(read_one_pep, record_that_is_read_again_gives_its_sites_back) {
    CPepRes pep;
    Read(" AAK 1 1 1 1 2 7 X 8 X 0 0 0 0 0 1 2 3 4 5 1 2 3 4 5 6 7 8", pep);
    EXPECT_EQ(pep.m_ucModNum, 2);
    Read(" AAK 1 1 1 1 " + kPlainRest, pep);
    EXPECT_EQ(pep.m_ucModNum, 0);
    EXPECT_EQ(pep.m_pMods, nullptr);
}

TEST_F(read_one_pep, token_fills_the_buffer_and_no_more) {
    CPepRes pep;
    EXPECT_EQ(Read(" " + std::string(kPiece, 'A') + "5 1 1 1 " + kPlainRest + "\n", pep), "\n");
    EXPECT_EQ(pep.m_strSeq.size(), kPiece);
    EXPECT_EQ(pep.m_lfPepMass, 5.0);
}

// ---- Several files, groups, the spectra of the batch ----

TEST_F(read_results, all_files_are_read_sorted_by_score_and_cleaned) {
    const std::string one = m_cFolder.Write(
        "1", head("t") + pep_line("AAK", "1") + pep_line("CCK", "3") + pep_line("CCK", "3"));
    const std::string two =
        m_cFolder.Write("2", pep_line("EEK", "7") + head("t") + pep_line("DDK", "2"));
    const std::string missing = m_cFolder.Path("3");
    EXPECT_EQ(captured_output([&] {
                  EXPECT_EQ(m_cCondition.LoadResult({one, missing, two}, 100, kInfinity), 1);
              }),
              "[Tessel] ALERT: Cannot open the result file: " + missing + "\n");
    EXPECT_EQ(sequences(Peps("t")), "CCK DDK AAK");
    EXPECT_EQ(sequences(Peps("")), "EEK");
}

TEST_F(read_results, sorting_keeps_the_file_order_of_ties) {
    std::string text = head("t");
    for (int i = 0; i < 40; ++i) {
        text += "1 AAK " + std::to_string(1000 + (i * 7) % 40) + " 5 1 1 " + kPlainRest + '\n';
    }
    m_cCondition.LoadResult({m_cFolder.Write("1", text)}, 100, kInfinity);
    ASSERT_EQ(Peps("t").size(), 40U);
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(Peps("t")[static_cast<std::size_t>(i)].m_lfPepMass, 1000 + (i * 7) % 40);
}

TEST_F(read_results, candidate_that_moves_leaves_ties_in_file_order) {
    std::string text = head("t");
    for (int i = 0; i < 40; ++i) {
        text += "1 AAK " + std::to_string(1000 + (i * 7) % 40) + " 5 1 1 " + kPlainRest + '\n';
    }
    m_cCondition.LoadResult({m_cFolder.Write("1", text + pep_line("CCK", "6"))}, 100, kInfinity);
    ASSERT_EQ(Peps("t").size(), 41U);
    EXPECT_EQ(Peps("t")[0].m_strSeq, "CCK");
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(Peps("t")[static_cast<std::size_t>(i) + 1].m_lfPepMass, 1000 + (i * 7) % 40);
}

TEST_F(read_results, group_keeps_the_most_confident_candidate_of_each_spectrum) {
    const std::string one = m_cFolder.Write(
        "1", head("t") + pep_line("A", "1", "0.5", "0.03") + pep_line("B", "9", "0.5", "0.02") +
                 pep_line("C", "99", "0.1", "0.04") + head("u") + pep_line("D", "1", "9e9", "nan"));
    const std::string two = m_cFolder.Write(
        "2", head("t") + pep_line("E", "9", "0.5", "0.02") + head("u") + pep_line("F", "0"));
    EXPECT_EQ(captured_output([&] {
                  EXPECT_EQ(m_cCondition.LoadGroupResult({one, two}, 0, -1.0), 1);
              }),
              "");
    EXPECT_EQ(sequences(Peps("t")), "B");
    EXPECT_EQ(sequences(Peps("u")), "F");
}

TEST_F(read_results, group_replaces_the_first_of_a_list_and_sorts_it) {
    Results()["t"].m_vPeps.resize(2);
    Peps("t")[0].m_strSeq = "OLD";
    Peps("t")[0].m_lfQValue = 0.5;
    Peps("t")[1].m_strSeq = "OTHER";
    Peps("t")[1].m_lfQValue = 0.1;
    m_cCondition._LoadGroupResult(
        m_cFolder.Write("1", head("t") + pep_line("NEW", "1", "1", "0.4")));
    EXPECT_EQ(sequences(Peps("t")), "NEW OTHER");
    m_cCondition.LoadGroupResult({}, 0, 0.0);
    EXPECT_EQ(sequences(Peps("t")), "OTHER NEW");
}

TEST_F(read_results, group_reports_malformed_records_likewise) {
    const std::string path = m_cFolder.Write("1", head("t") + "bad\n" + pep_line("A"));
    EXPECT_EQ(
        captured_output([&] { m_cCondition._LoadGroupResult(path); }),
        "[Tessel] ALERT: Malformed records dropped: 1, the first on line 3 of the result file: " +
            path + "\n");
    EXPECT_EQ(sequences(Peps("t")), "A");
}

CSpectrum spectrum(const std::string& title, double mass, int charge) {
    CSpectrum made;
    made.m_strTitle = title;
    made.m_lfMH = mass;
    made.m_nCharge = charge;
    return made;
}

TEST_F(read_results, result_map_starts_with_an_empty_entry_for_every_spectrum) {
    Results()["old"];
    m_cCondition.m_vSpectra = {spectrum("b", 1000.5, 2), spectrum("a", 2000.5, 3)};
    EXPECT_EQ(captured_output([&] { EXPECT_EQ(m_cCondition.InitialResMap(), 1); }), "");
    ASSERT_EQ(Results().size(), 2U);
    EXPECT_EQ(Results().at("a").m_strTitle, "a");
    EXPECT_EQ(Results().at("a").m_lfMH, 2000.5);
    EXPECT_EQ(Results().at("a").m_nCharge, 3);
    EXPECT_TRUE(Peps("a").empty());
    EXPECT_EQ(Results().at("b").m_nCharge, 2);
    m_cCondition.m_vSpectra.clear();
    EXPECT_EQ(m_cCondition.InitialResMap(), 1);
    EXPECT_TRUE(Results().empty());
}

TEST_F(read_results, last_spectrum_of_a_title_wins_with_one_warning) {
    m_cCondition.m_vSpectra = {spectrum("a", 1, 1), spectrum("b", 2, 2), spectrum("a", 3, 3),
                               spectrum("c", 4, 4), spectrum("b", 5, 5), spectrum("a", 6, 6)};
    EXPECT_EQ(
        captured_output([&] { m_cCondition.InitialResMap(); }),
        "[Tessel] WARNING: Titles that several spectra share, the last of which is kept: 2\n");
    ASSERT_EQ(Results().size(), 3U);
    EXPECT_EQ(Results().at("a").m_lfMH, 6.0);
    EXPECT_EQ(Results().at("a").m_nCharge, 6);
    EXPECT_EQ(Results().at("b").m_lfMH, 5.0);
    EXPECT_EQ(Results().at("c").m_nCharge, 4);
}

// Each row begins a record that claims more hits than the file holds. Reading on to the end for
// every one of them would take minutes.
TEST(read_results_time, hit_counts_beyond_the_file_are_refused_at_once) {
    const test::CTempFolder folder;
    std::string text = "S\t1\t2\nt\n";
    for (int i = 0; i < 20'000; ++i)
        text +=
            "0;1;A;A 0;1;A;A 0;1;A;A 0;1;A;A 0;1;A;A 0;1;A;A 0;1;A;A 0;1;A;A 0;1;A;A 0;1;A;A "
            "2000000000;1;A;A\n";
    CCondition condition;
    const auto start = std::chrono::steady_clock::now();
    const std::string output = test::captured_output(
        [&] { condition._LoadResult(folder.Write("hostile", text), 10, 1.0); });
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_NE(output.find("Malformed records dropped: 20000, the first on line 3"),
              std::string::npos);
}

// Eleven tokens a line that serve as the front of a record and as hits alike: every record has as
// many hits as bring it to the end of the file, or `missing` fewer.
std::string swallowing_lines(int number, int missing) {
    std::string text = head("t");
    for (int i = 1; i <= number; ++i) {
        for (int k = 0; k < 6; ++k)
            text += "1;1;A;B ";
        for (int k = 0; k < 4; ++k)
            text += "0;1;A;B ";
        text += std::to_string(11 * (number - i) + 11 - missing) + ";1;A;B\n";
    }
    return text;
}

TEST(read_results_time, records_that_swallow_all_others_take_no_square_of_the_length) {
    const test::CTempFolder folder;
    // The hits end behind the file, at its end, and so near it that fields behind them are missing.
    for (const int missing : {0, 11, 14, 24}) {
        constexpr int kLines = 20000;
        const std::string path = folder.Write("hostile", swallowing_lines(kLines, missing));
        CCondition condition;
        const auto start = std::chrono::steady_clock::now();
        const std::string output =
            test::captured_output([&] { condition._LoadResult(path, 10, 1.0); });
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << missing;
        EXPECT_NE(output.find("Malformed records dropped: 20000, the first on line 3"),
                  std::string::npos)
            << output.substr(0, 300);
    }
}

TEST(read_results_time, lists_with_ends_of_their_own_take_no_square_of_the_length) {
    // The fields behind each list are bad, so that every list is kept; none may stay for good.
    constexpr int kRecords = 400'000;
    const test::CTempFolder folder;
    std::string text = head("t");
    for (int i = 0; i < kRecords; ++i)
        text += "1 A 1 1 1 1 0 0 0 0 1 1;1;A;B x\n";
    const std::string path = folder.Write("hostile", text);
    CCondition condition;
    const auto start = std::chrono::steady_clock::now();
    const std::string output =
        test::captured_output([&] { load_first_peps(condition, path, 10, kInfinity, 0); });
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_NE(output.find("dropped: 400000, the first on line 3 "), std::string::npos) << output;
}

TEST(read_results_time, lists_that_cannot_be_read_do_not_hide_those_that_can) {
    // Each of 300 records fails at the "x" behind them, whose line begins one that is complete; a
    // second such part follows, with lists that end before its "x".
    const test::CTempFolder folder;
    const std::string last = "x CCK 1 1 1 1 " + kPlainRest + "\n";
    std::string text = swallowing_lines(300, 0) + last;
    for (int i = 0; i < 300; ++i)
        text += "1 AAK 1 1 1 1 0 0 0 0 2 1;1;A;B 2;1;A;B 0 1 2 3 4 5 1 2 3 4 5 6 7 8\n";
    text += "1 GGK 1 1 1 1 0 0 0 0 200";
    for (int i = 0; i < 200; ++i)
        text += ' ' + std::to_string(i) + ";1;A;B";
    text +=
        " 0 1 2 3 4 5 1 2 3 4 5 6 7 8\n" + swallowing_lines(200, 0).substr(head("t").size()) + last;
    CCondition condition;
    const std::string output = test::captured_output(
        [&] { condition._LoadResult(folder.Write("hostile", text), 1000, kInfinity); });
    EXPECT_NE(output.find("Malformed records dropped: 500, the first on line 3 "),
              std::string::npos)
        << output;
    const auto& peps = condition.m_mapPSMRes.at("t").m_vPeps;
    ASSERT_EQ(peps.size(), 303u);
    EXPECT_EQ(peps[0].m_strSeq, "CCK");
    EXPECT_EQ(peps[1].m_setProteins.size(), 2u);
    EXPECT_EQ(peps[301].m_setProteins.size(), 200u);
    EXPECT_EQ(peps[302].m_strSeq, "CCK");
}

TEST_F(read_results, complete_record_whose_rank_ended_the_list_before_is_kept) {
    std::string hits;
    for (int i = 0; i < 150; ++i)
        hits += ' ' + std::to_string(i) + ";1;A;B";
    EXPECT_EQ(Load(head("t") + "1 AAK 1 1 1 1 0 0 0 0 200" + hits + '\n' +
                   "1 CCK 1 1 1 1 0 0 0 0 150" + hits + " 0 1 2 3 4 5 1 2 3 4 5 6 7 8\n"),
              malformed(1, 3));
    ASSERT_EQ(sequences(Peps("t")), "CCK");
    EXPECT_EQ(Peps("t")[0].m_setProteins.size(), 150U);
}

// ---- What is kept of lists that fail never changes what is read ----

// Records whose counts are wrong more often than not, of words that serve as numbers and hits
// alike, so that lists run over the records behind them and end anywhere.
std::string wild_records(std::mt19937& random) {
    const auto below = [&random](unsigned limit) {
        return static_cast<unsigned>(random() % limit);
    };
    const auto end = [&] { return below(8) == 0 ? '\n' : ' '; };
    const unsigned badWords = 1 + below(60);  // of a thousand
    const unsigned longest = 1 + below(300);
    std::string text;
    for (unsigned record = 2 + below(40); record > 0; --record) {
        if (below(12) == 0) text += "S 5 2\nspectrum " + std::to_string(below(5)) + '\n';
        const unsigned sites = below(4) == 0 ? below(20) : 0;
        const unsigned hits = below(longest);
        std::vector<std::string> words{"1", "AAK", "1", "1", "1", "1", std::to_string(sites)};
        for (unsigned i = 0; i < 2 * sites; ++i)
            words.push_back(std::to_string(i));
        const unsigned claimed = below(3) == 0 ? hits : below(2 * longest);
        for (const unsigned field : {0U, 0U, 0U, claimed})
            words.push_back(std::to_string(field));
        for (unsigned i = 0; i < hits; ++i)
            words.push_back(std::to_string(below(longest)) + ";1;A;B");
        for (unsigned i = 0; i < 14; ++i)
            words.push_back(std::to_string(i));
        for (std::string& word : words) {
            if (below(1000) < badWords) word = below(3) == 0 ? "S" : "x";
            if (below(3) == 0 && word[0] != 'S' && word[0] != 'x' && word.back() != 'B') {
                word += ";1;A;B";
            }
            text += word + end();
        }
        text += '\n';
    }
    return text;
}

TEST_F(read_results, lists_that_are_kept_change_nothing_of_what_is_read) {
    constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();
    std::mt19937 random(7);
    std::size_t kept = 0;
    for (int round = 0; round < 1000; ++round) {
        const std::string path = m_cFolder.Write("wild.txt", wild_records(random));
        std::vector<std::string> reports;
        std::vector<std::string> results;
        for (const std::uint64_t longList :
             {kNever, std::uint64_t{0}, std::uint64_t{3}, CFailedLists::kLongList}) {
            CCondition condition;
            const std::string report = captured_output(
                [&] { load_first_peps(condition, path, 1000, kInfinity, longList); });
            // Hits that name a protein twice are told for each list that is read.
            const std::size_t dropped = report.find("[Tessel] ALERT: Malformed");
            reports.push_back(dropped == std::string::npos ? "" : report.substr(dropped));
            results.push_back(described(condition.m_mapPSMRes));
            kept += condition.m_mapPSMRes.size();
        }
        for (std::size_t i = 1; i < results.size(); ++i) {
            ASSERT_EQ(results[i], results[0]) << round << ' ' << i;
            ASSERT_EQ(reports[i], reports[0]) << round << ' ' << i;
        }
    }
    EXPECT_GT(kept, 4000U);
}

}  // namespace
}  // namespace tessel
