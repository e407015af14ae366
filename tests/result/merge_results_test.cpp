#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tessel/condition/condition.h"
#include "tessel/result/score_key.h"
#include "tests/result/result_records.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::captured_output;
using test::described;
using test::sequences;
using test::set_sites;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

CPepRes pep(const std::string& sequence, double score = 10.0, double mass = 1000.0) {
    CPepRes made;
    made.m_strSeq = sequence;
    made.m_lfScore = score;
    made.m_lfPepMass = mass;
    return made;
}

CMod mod(const std::string& name) {
    CMod made;
    made.m_strName = name;
    return made;
}

// ---- Score keys ----

TEST(score_key, truncated_keys_cut_and_rounded_keys_round_the_fifth_decimal) {
    EXPECT_EQ(truncated_score(12.34567), 123456U);
    EXPECT_EQ(truncated_score(12.34561), 123456U);
    EXPECT_EQ(rounded_score(12.34567), 123457U);
    EXPECT_EQ(rounded_score(12.34561), 123456U);
    EXPECT_EQ(truncated_score(-1.00019), static_cast<std::uint32_t>(-10001));
    EXPECT_EQ(truncated_score(-0.00009), 0U);
    EXPECT_EQ(rounded_score(-0.0001), 0U);
}

TEST(score_key, keys_are_the_low_32_bits_and_0_out_of_range) {
    EXPECT_EQ(truncated_score(1000000.0), 1410065408U);  // 10^10 mod 2^32
    EXPECT_EQ(truncated_score(429496.7296), 0U);
    EXPECT_EQ(low_bits(9223372036854774784.0), 0xFFFFFC00U);
    EXPECT_EQ(low_bits(-9223372036854775808.0), 0U);
    for (const double far : {9223372036854775808.0, -9223372036854777856.0, 1e300, -1e300,
                             kInfinity, -kInfinity, kNaN}) {
        EXPECT_EQ(low_bits(far), 0U) << far;
    }
}

// ---- Equal candidates ----

TEST(equal_res, masses_may_differ_by_a_ten_thousandth) {
    const CCondition condition;
    EXPECT_TRUE(condition._equal_res(pep("AAK", 1, 1000), pep("AAK", 2, 1000.00005)));
    EXPECT_TRUE(condition._equal_res(pep("AAK", 1, 1000.00005), pep("AAK", 2, 1000)));
    EXPECT_FALSE(condition._equal_res(pep("AAK", 1, 1000), pep("AAK", 2, 1000.0002)));
    EXPECT_FALSE(condition._equal_res(pep("AAK", 1, 1000.0002), pep("AAK", 2, 1000)));
    EXPECT_TRUE(condition._equal_res(pep("AAK", 1, 0.0), pep("AAK", 2, 0.0001)));
    EXPECT_FALSE(condition._equal_res(pep("AAK", 1, kInfinity), pep("AAK", 2, 1)));
    EXPECT_TRUE(condition._equal_res(pep("AAK", 1, kInfinity), pep("AAK", 2, kInfinity)));
}

TEST(equal_res, sequences_are_equal_byte_for_byte) {
    const CCondition condition;
    EXPECT_FALSE(condition._equal_res(pep("AAK"), pep("AAk")));
    EXPECT_FALSE(condition._equal_res(pep("AAK"), pep("AAKK")));
}

TEST(equal_res, sites_are_equal_in_number_position_and_modification_name) {
    const CCondition condition;
    const CMod oxidation = mod("Oxidation[M]");
    const CMod sameName = mod("Oxidation[M]");
    const CMod other = mod("Acetyl[K]");
    const struct {
        const char* name;
        std::vector<MOD_SITE> a;
        std::vector<MOD_SITE> b;
        bool equal;
    } rows[] = {
        {"none", {}, {}, true},
        {"same records", {{1, &oxidation}}, {{1, &oxidation}}, true},
        {"same names", {{1, &oxidation}}, {{1, &sameName}}, true},
        {"other names", {{1, &oxidation}}, {{1, &other}}, false},
        {"other positions", {{1, &oxidation}}, {{2, &oxidation}}, false},
        {"other number", {{1, &oxidation}}, {{1, &oxidation}, {2, &other}}, false},
        {"one and none", {{1, &oxidation}}, {}, false},
        {"other order", {{1, &oxidation}, {2, &other}}, {{2, &other}, {1, &oxidation}}, false},
        {"last differs", {{1, &oxidation}, {2, &other}}, {{1, &oxidation}, {2, nullptr}}, false},
        {"both unknown", {{1, nullptr}}, {{1, nullptr}}, true},
        {"one unknown", {{1, nullptr}}, {{1, &oxidation}}, false},
        {"unknown elsewhere", {{1, nullptr}}, {{2, nullptr}}, false},
    };
    for (const auto& row : rows) {
        CPepRes a = pep("AAK");
        CPepRes b = pep("AAK");
        set_sites(a, row.a);
        set_sites(b, row.b);
        EXPECT_EQ(condition._equal_res(a, b), row.equal) << row.name;
        EXPECT_EQ(condition._equal_res(b, a), row.equal) << row.name;
    }
}

TEST(equal_res, cleaned_record_has_no_sites_whatever_its_count) {
    const CCondition condition;
    CPepRes cleaned = pep("AAK");
    set_sites(cleaned, {{1, nullptr}});
    const CPepRes modified = cleaned;
    cleaned.Clean();
    EXPECT_TRUE(condition._equal_res(cleaned, pep("AAK")));
    EXPECT_FALSE(condition._equal_res(cleaned, modified));
}

// ---- Removing duplicates ----

TEST(remove_redundancy, empty_list_stays_empty) {
    std::vector<CPepRes> peps;
    const CCondition condition;
    condition.RemoveRedundancy(peps);
    EXPECT_TRUE(peps.empty());
}

TEST(remove_redundancy, candidates_of_one_score_key_are_compared) {
    const CCondition condition;
    std::vector<CPepRes> peps{pep("AAK", 12.34567), pep("AAK", 12.34561)};
    condition.RemoveRedundancy(peps);
    ASSERT_EQ(peps.size(), 1U);
    EXPECT_EQ(peps[0].m_lfScore, 12.34567);

    peps = {pep("AAK", 12.5), pep("AAK", 12.4)};
    condition.RemoveRedundancy(peps);
    EXPECT_EQ(peps.size(), 2U);
    // Truncated, not rounded: these round to the same four decimals.
    peps = {pep("AAK", 10.00006), pep("AAK", 10.00014)};
    condition.RemoveRedundancy(peps);
    EXPECT_EQ(peps.size(), 2U);
}

TEST(remove_redundancy, copies_separated_by_another_score_are_kept) {
    const CCondition condition;
    std::vector<CPepRes> peps{pep("AAK", 3), pep("CCK", 2), pep("AAK", 3)};
    condition.RemoveRedundancy(peps);
    EXPECT_EQ(sequences(peps), "AAK CCK AAK");
}

TEST(remove_redundancy, copies_within_a_run_are_found_behind_other_candidates) {
    const CCondition condition;
    std::vector<CPepRes> peps{pep("AAK"), pep("CCK"), pep("AAK"),
                              pep("DDK"), pep("CCK"), pep("AAK")};
    condition.RemoveRedundancy(peps);
    EXPECT_EQ(sequences(peps), "AAK CCK DDK");
}

TEST(remove_redundancy, first_copy_stays_and_takes_over_hits_target_and_larger_byte) {
    const CCondition condition;
    CPepRes first = pep("AAK", 10.00001, 1000.00001);
    first.m_setProteins = {{1, 10, 'A', 'A'}, {3, 30, 'A', 'A'}};
    first.m_bDecoy = 1;
    first.m_ucAuxMax = 5;
    first.m_ucAux0 = first.m_ucAux1 = first.m_ucAux2 = 1;
    first.m_vstrExtra = {"first"};
    CPepRes second = pep("AAK", 10.00002, 1000.00002);
    second.m_setProteins = {{2, 20, 'B', 'B'}, {3, 31, 'B', 'B'}};
    second.m_bDecoy = 0;
    second.m_ucAuxMax = 9;
    second.m_ucAux0 = second.m_ucAux1 = second.m_ucAux2 = 7;
    second.m_lfQValue = 0.5;
    second.m_lfFinalScore = 0.5;
    second.m_vstrExtra = {"second"};
    CPepRes third = pep("AAK", 10.00003, 1000.00003);
    third.m_setProteins = {{2, 21, 'C', 'C'}};
    third.m_ucAuxMax = 7;

    CPepRes expected = first;
    expected.m_setProteins = {{1, 10, 'A', 'A'}, {2, 20, 'B', 'B'}, {3, 30, 'A', 'A'}};
    expected.m_bDecoy = 0;
    expected.m_ucAuxMax = 9;
    std::vector<CPepRes> peps{first, second, third};
    condition.RemoveRedundancy(peps);
    ASSERT_EQ(peps.size(), 1U);
    EXPECT_EQ(described(peps[0]), described(expected));
}

TEST(remove_redundancy, only_copies_that_are_all_decoys_leave_a_decoy) {
    const CCondition condition;
    for (const int decoys : {0, 1, 2, 3}) {
        CPepRes a = pep("AAK");
        CPepRes b = pep("AAK");
        a.m_bDecoy = static_cast<unsigned char>(decoys & 1);
        b.m_bDecoy = static_cast<unsigned char>(decoys >> 1);
        std::vector<CPepRes> peps{a, b};
        condition.RemoveRedundancy(peps);
        ASSERT_EQ(peps.size(), 1U);
        EXPECT_EQ(peps[0].m_bDecoy, decoys == 3 ? 1 : 0) << decoys;
    }
}

TEST(remove_redundancy, mass_is_compared_with_the_one_that_stays) {
    // The third one is equal to the second one, which is gone, but not to the first one.
    const CCondition condition;
    std::vector<CPepRes> peps{pep("AAK", 1, 1000), pep("AAK", 1, 1000.00008),
                              pep("AAK", 1, 1000.00016)};
    condition.RemoveRedundancy(peps);
    ASSERT_EQ(peps.size(), 2U);
    EXPECT_EQ(peps[1].m_lfPepMass, 1000.00016);
}

TEST(remove_redundancy, whole_map_is_sorted_by_final_score_first) {
    CCondition condition;
    CPepRes best = pep("AAK", 5);
    best.m_lfFinalScore = 0.1;
    CPepRes copy = pep("AAK", 5);
    copy.m_lfFinalScore = 0.3;
    CPepRes other = pep("CCK", 5);
    other.m_lfFinalScore = 0.2;
    CPepRes worst = pep("DDK", 50);
    worst.m_lfFinalScore = kNaN;
    condition.m_mapPSMRes["t"].m_vPeps = {worst, copy, other, best};
    condition.m_mapPSMRes["u"].m_vPeps = {copy, best};
    condition.m_mapPSMRes["v"];
    condition.RemoveRedundancy();
    EXPECT_EQ(sequences(condition.m_mapPSMRes["t"].m_vPeps), "AAK CCK DDK");
    ASSERT_EQ(condition.m_mapPSMRes["u"].m_vPeps.size(), 1U);
    EXPECT_EQ(condition.m_mapPSMRes["u"].m_vPeps[0].m_lfFinalScore, 0.1);
}

// Every pair is compared; a pair counts when no candidate between the two that is still there has
// another key.
std::vector<CPepRes> twin_without_redundancy(const CCondition& condition,
                                             std::vector<CPepRes> peps) {
    const auto key = [](const CPepRes& p) {
        return static_cast<std::uint32_t>(static_cast<std::int64_t>(p.m_lfScore * 10000.0));
    };
    for (std::size_t i = 0; i < peps.size(); ++i) {
        for (std::size_t j = i + 1; j < peps.size();) {
            bool oneRun = true;
            for (std::size_t k = i; k <= j; ++k)
                oneRun = oneRun && key(peps[k]) == key(peps[i]);
            if (!oneRun || !condition._equal_res(peps[i], peps[j])) {
                ++j;
                continue;
            }
            for (const PRO_INFO& hit : peps[j].m_setProteins)
                peps[i].m_setProteins.insert(hit);
            peps[i].m_bDecoy = peps[i].m_bDecoy && peps[j].m_bDecoy;
            if (peps[j].m_ucAuxMax > peps[i].m_ucAuxMax) peps[i].m_ucAuxMax = peps[j].m_ucAuxMax;
            peps.erase(peps.begin() + static_cast<std::ptrdiff_t>(j));
        }
    }
    return peps;
}

TEST(remove_redundancy, leaves_what_comparing_all_pairs_leaves) {
    const CCondition condition;
    const CMod mods[] = {mod("A"), mod("B"), mod("A")};
    std::mt19937 random(3);
    const auto below = [&random](unsigned limit) {
        return static_cast<unsigned>(random() % limit);
    };
    for (int round = 0; round < 500; ++round) {
        std::vector<CPepRes> peps;
        for (unsigned left = below(40); left > 0; --left) {
            CPepRes made = pep(std::string(1 + below(2), 'A'), 10 + below(4) * 0.00004,
                               1000 + below(4) * 0.00006);
            std::vector<MOD_SITE> sites;
            for (unsigned site = below(3); site > 0; --site) {
                const unsigned kind = below(4);
                sites.push_back(
                    {static_cast<unsigned char>(below(2)), kind == 3 ? nullptr : &mods[kind]});
            }
            set_sites(made, sites);
            for (unsigned hit = below(3); hit > 0; --hit)
                made.m_setProteins.insert({static_cast<int>(below(9)), round, 'K', 'R'});
            made.m_bDecoy = static_cast<unsigned char>(below(2));
            made.m_ucAuxMax = static_cast<unsigned char>(below(256));
            peps.push_back(made);
        }
        const auto text = [](const std::vector<CPepRes>& list) {
            return described(std::map<std::string, CPSMRes>{{"", CPSMRes{"", 0, 0, list}}});
        };
        const std::string expected = text(twin_without_redundancy(condition, peps));
        condition.RemoveRedundancy(peps);
        ASSERT_EQ(text(peps), expected) << round;
    }
}

// Comparing each with all others would take minutes.
TEST(remove_redundancy_time, run_of_one_score_takes_no_square_of_its_length) {
    const CCondition condition;
    constexpr unsigned kDifferent = 100'000;
    std::vector<CPepRes> peps;
    for (unsigned i = 0; i < 2 * kDifferent; ++i)
        peps.push_back(pep("PEPTIDE" + std::to_string(i % kDifferent), 10, 1000));
    const auto start = std::chrono::steady_clock::now();
    condition.RemoveRedundancy(peps);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    ASSERT_EQ(peps.size(), kDifferent);
    EXPECT_EQ(peps.back().m_strSeq, "PEPTIDE99999");
}

// ---- Merging files ----

class merge_files : public testing::Test {
protected:
    // The result of merging; what is reported stands in m_strOutput.
    bool Merge(const std::vector<std::string>& inputs, const std::string& output, bool remove) {
        bool failed = false;
        m_strOutput =
            captured_output([&] { failed = m_cCondition.MergeFiles(inputs, output, remove); });
        return failed;
    }

    test::CTempFolder m_cFolder;
    CCondition m_cCondition;
    std::string m_strOutput;
};

TEST_F(merge_files, output_is_the_exact_concatenation_and_inputs_stay) {
    using namespace std::string_literals;
    const std::string one = m_cFolder.Write("one", "a\r\n\0b\x1A"s);
    const std::string empty = m_cFolder.Write("empty", "");
    const std::string two = m_cFolder.Write("two", "\xEF\xBB\xBF no line end");
    const std::string merged = m_cFolder.Write("merged", "what was there before");
    EXPECT_FALSE(Merge({one, empty, two, one}, merged, false));
    EXPECT_EQ(m_strOutput, "");
    EXPECT_EQ(m_cFolder.Read("merged"), "a\r\n\0b\x1A\xEF\xBB\xBF no line enda\r\n\0b\x1A"s);
    EXPECT_TRUE(m_cFolder.Has("one") && m_cFolder.Has("empty") && m_cFolder.Has("two"));
}

TEST_F(merge_files, inputs_of_any_size_are_copied) {
    std::string expected;
    std::vector<std::string> inputs;
    for (const std::size_t size : {std::size_t{1} << 20, (std::size_t{1} << 20) + 1,
                                   (std::size_t{1} << 20) - 1, std::size_t{3000000}}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i * 31 + i / 251 + size);
        inputs.push_back(m_cFolder.Write(std::to_string(size), bytes));
        expected += bytes;
    }
    EXPECT_FALSE(Merge(inputs, m_cFolder.Path("merged"), true));
    EXPECT_TRUE(m_cFolder.Read("merged") == expected);
    for (const std::string& input : inputs)
        EXPECT_FALSE(std::filesystem::exists(input));
}

TEST_F(merge_files, input_named_twice_is_copied_twice_and_removed) {
    const std::string one = m_cFolder.Write("one", "1");
    EXPECT_FALSE(Merge({one, one}, m_cFolder.Path("merged"), true));
    EXPECT_EQ(m_strOutput, "");
    EXPECT_EQ(m_cFolder.Read("merged"), "11");
    EXPECT_FALSE(m_cFolder.Has("one"));
}

TEST_F(merge_files, missing_input_is_skipped_with_a_warning) {
    const std::string one = m_cFolder.Write("one", "1");
    const std::string missing = m_cFolder.Path("missing");
    EXPECT_FALSE(Merge({missing, one}, m_cFolder.Path("merged"), true));
    EXPECT_EQ(m_strOutput,
              "[Tessel] WARNING: The result file to merge does not exist: " + missing + "\n");
    EXPECT_EQ(m_cFolder.Read("merged"), "1");
    EXPECT_FALSE(m_cFolder.Has("one"));
}

TEST_F(merge_files, nothing_to_merge_leaves_an_empty_output) {
    m_cFolder.Write("merged", "before");
    EXPECT_FALSE(Merge({}, m_cFolder.Path("merged"), true));
    EXPECT_EQ(m_strOutput, "");
    EXPECT_EQ(m_cFolder.Read("merged"), "");
}

TEST_F(merge_files, output_that_cannot_be_opened_ends_the_process) {
    const std::string one = m_cFolder.Write("one", "1");
    const std::string output = m_cFolder.Path("no folder/merged");
    EXPECT_ENDS_PROCESS(m_cCondition.MergeFiles({one}, output, true),
                        "[Tessel] ALERT: Failed to write the result file: " + output + "\n", "");
    EXPECT_ENDS_PROCESS(
        m_cCondition.MergeFiles({m_cFolder.Path("missing")}, m_cFolder.Path(), true),
        "[Tessel] ALERT: Failed to write the result file: " + m_cFolder.Path() + "\n", "");
    EXPECT_EQ(m_cFolder.Read("one"), "1");
}

TEST_F(merge_files, input_that_cannot_be_read_is_an_alert_and_every_input_stays) {
    const std::string one = m_cFolder.Write("one", "1");
    const std::string two = m_cFolder.Write("two", "2");
    EXPECT_TRUE(Merge({one, m_cFolder.Path(), two}, m_cFolder.Path("merged"), true));
    EXPECT_EQ(m_strOutput,
              "[Tessel] ALERT: Cannot read the result file: " + m_cFolder.Path() + "\n");
    EXPECT_EQ(m_cFolder.Read("one") + m_cFolder.Read("two"), "12");
}

TEST_F(merge_files, input_that_fails_while_it_is_read_is_an_alert) {
    const std::string path = "/proc/self/mem";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "no such file on this system";
    EXPECT_TRUE(Merge({path}, m_cFolder.Path("merged"), false));
    EXPECT_EQ(m_strOutput, "[Tessel] ALERT: Cannot read the result file: " + path + "\n");
}

TEST_F(merge_files, output_that_is_an_input_is_an_alert_and_nothing_is_touched) {
    const std::string one = m_cFolder.Write("one", "1");
    const std::string two = m_cFolder.Write("two", "2");
    EXPECT_TRUE(Merge({one, two}, two, true));
    EXPECT_EQ(m_strOutput,
              "[Tessel] ALERT: The result file to write is also to be merged: " + two + "\n");
    EXPECT_EQ(m_cFolder.Read("one") + m_cFolder.Read("two"), "12");

    // Under another name, too.
    EXPECT_TRUE(Merge({one, m_cFolder.Path("./two")}, two, true));
    std::filesystem::create_hard_link(two, m_cFolder.Path("link"));
    EXPECT_TRUE(Merge({m_cFolder.Path("link"), one}, two, true));
    EXPECT_EQ(m_cFolder.Read("one") + m_cFolder.Read("two"), "12");

    // And when it does not exist yet: it is not created.
    const std::string none = m_cFolder.Path("none");
    EXPECT_TRUE(Merge({one, none}, none, true));
    EXPECT_FALSE(m_cFolder.Has("none"));
    EXPECT_TRUE(m_cFolder.Has("one"));
}

TEST_F(merge_files, missing_input_that_spells_the_output_otherwise_is_a_missing_input) {
    const std::string one = m_cFolder.Write("one", "1");
    const std::string spelling = m_cFolder.Path("./merged");
    EXPECT_FALSE(Merge({one, spelling}, m_cFolder.Path("merged"), true));
    EXPECT_EQ(m_strOutput,
              "[Tessel] WARNING: The result file to merge does not exist: " + spelling + "\n");
    EXPECT_EQ(m_cFolder.Read("merged"), "1");
}

TEST_F(merge_files, failed_write_is_an_alert_and_every_input_stays) {
    const std::string full = "/dev/full";
    if (!std::filesystem::exists(full)) GTEST_SKIP() << "no full device on this system";
    const std::string message = "[Tessel] ALERT: Failed to write the result file: " + full + "\n";
    // The first one fails only when the output is closed.
    for (const std::size_t size : {std::size_t{10}, std::size_t{5000000}}) {
        const std::string one = m_cFolder.Write("one", std::string(size, '1'));
        EXPECT_TRUE(Merge({one}, full, true));
        EXPECT_EQ(m_strOutput, message);
        EXPECT_EQ(m_cFolder.Read("one").size(), size);
    }
}

TEST_F(merge_files, backslashes_separate_folders) {
    std::filesystem::create_directory(m_cFolder.Path("sub"));
    m_cFolder.Write("sub/one", "1");
    EXPECT_FALSE(Merge({m_cFolder.Path() + "\\sub\\one"}, m_cFolder.Path() + "\\sub\\two", true));
    EXPECT_EQ(m_cFolder.Read("sub/two"), "1");
    EXPECT_FALSE(m_cFolder.Has("sub/one"));
}

TEST_F(merge_files, results_of_all_batches_are_merged_and_removed) {
    m_cCondition.m_strOutputPath = m_cFolder.Path() + "\\";
    m_cCondition.m_strOutputName = "run";
    m_cCondition.m_tBatchNo = 11;
    std::string expected;
    for (int batch = 1; batch <= 12; ++batch) {
        const std::string text = "batch " + std::to_string(batch) + "\n";
        m_cFolder.Write("run." + std::to_string(batch) + ".res", text);
        if (batch <= 11) expected += text;
    }
    m_cFolder.Write("run.1.other", "other");
    EXPECT_EQ(captured_output([&] { m_cCondition.MergeSubRes("res"); }), "");
    EXPECT_EQ(m_cFolder.Read("run.res"), expected);
    EXPECT_FALSE(m_cFolder.Has("run.1.res") || m_cFolder.Has("run.11.res"));
    EXPECT_TRUE(m_cFolder.Has("run.12.res") && m_cFolder.Has("run.1.other"));
}

TEST_F(merge_files, without_batches_the_merged_result_is_empty) {
    m_cCondition.m_strOutputPath = m_cFolder.Path() + "\\";
    m_cFolder.Write("Test.1.res", "1");
    EXPECT_EQ(captured_output([&] { m_cCondition.MergeSubRes("res"); }), "");
    EXPECT_EQ(m_cFolder.Read("Test.res"), "");
    EXPECT_TRUE(m_cFolder.Has("Test.1.res"));
}

TEST_F(merge_files, missing_batch_is_a_warning_that_names_its_file) {
    m_cCondition.m_strOutputPath = m_cFolder.Path() + "\\";
    m_cCondition.m_tBatchNo = 2;
    m_cFolder.Write("Test.2.res", "2");
    EXPECT_EQ(captured_output([&] { m_cCondition.MergeSubRes("res"); }),
              "[Tessel] WARNING: The result file to merge does not exist: " + m_cFolder.Path() +
                  "\\Test.1.res\n");
    EXPECT_EQ(m_cFolder.Read("Test.res"), "2");
}

}  // namespace
}  // namespace tessel
