#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tessel/condition/condition.h"
#include "tests/support/captured.h"
#include "tests/support/scarce_memory.h"
#include "tests/support/system.h"

namespace tessel {
namespace {

using Texts = std::vector<std::string>;

CMod mod(const std::string& name, double mass, MOD_TYPE type = NORMAL) {
    CMod made;
    made.m_strName = name;
    made.m_lfMass = mass;
    made.m_eType = type;
    return made;
}

std::string names(const CModCombInfo& comb) {
    std::string joined;
    for (std::size_t i = 0; i < comb.m_cModNum; ++i)
        joined += comb.m_pMods[i]->m_strName;
    return joined;
}

Texts names(const std::vector<CModCombInfo>& group) {
    Texts all;
    for (const CModCombInfo& comb : group)
        all.push_back(names(comb));
    return all;
}

std::vector<double> masses(const std::vector<CModCombInfo>& group) {
    std::vector<double> all;
    for (const CModCombInfo& comb : group)
        all.push_back(comb.m_lfMass);
    return all;
}

Texts sorted(Texts texts) {
    std::sort(texts.begin(), texts.end());
    return texts;
}

// Selected modifications that are not in the table, and a table that always has its placeholder.
class mod_combinations : public testing::Test {
protected:
    void Select(std::vector<CMod> selected) {
        m_vSelected = std::move(selected);
        m_cCondition.m_vSelMods.clear();
        for (const CMod& each : m_vSelected)
            m_cCondition.m_vSelMods.push_back(&each);
    }
    void Generate(std::vector<CMod> selected, std::vector<CMod> extras = {}) {
        Prepare(std::move(selected), std::move(extras));
        m_cCondition.GenerateModComb();
    }
    void Prepare(std::vector<CMod> selected, std::vector<CMod> extras) {
        Select(std::move(selected));
        m_cCondition.m_vMods = std::move(extras);
        m_cCondition.m_vMods.push_back(mod("NULL", 0.0, MOD_PLACEHOLDER));
    }
    const std::vector<CModCombInfo>& Group(std::size_t i) const {
        return m_cCondition.m_vModComb.at(i);
    }
    const std::vector<std::uint32_t>& Table(std::size_t i) const {
        return m_cCondition.m_vModCombHash.at(i);
    }

    std::vector<CMod> m_vSelected;
    CCondition m_cCondition;
};

using Table32 = std::vector<std::uint32_t>;

// ---- Enumeration ----

TEST_F(mod_combinations, without_modifications_there_is_the_empty_combination) {
    Generate({});
    ASSERT_EQ(m_cCondition.m_vModComb.size(), 3U);
    ASSERT_EQ(m_cCondition.m_vModCombHash.size(), 3U);
    EXPECT_EQ(names(Group(0)), Texts{""});
    EXPECT_EQ(masses(Group(0)), std::vector<double>{0.0});
    EXPECT_TRUE(Group(1).empty());
    EXPECT_TRUE(Group(2).empty());
    EXPECT_EQ(Table(0), Table32{0});
    EXPECT_TRUE(Table(1).empty());
    EXPECT_TRUE(Table(2).empty());
}

TEST_F(mod_combinations, one_selected_modification_is_taken_up_to_three_times) {
    Generate({mod("A", 0.5)});
    EXPECT_EQ(masses(Group(0)), (std::vector<double>{0.0, 0.5, 1.0, 1.5}));
    EXPECT_EQ(names(Group(0)), (Texts{"", "A", "AA", "AAA"}));
    EXPECT_EQ(Table(0).size(), 1501U);
    EXPECT_TRUE(Group(1).empty());
}

TEST_F(mod_combinations, limit_of_modifications_on_a_peptide_is_not_consulted) {
    for (const std::size_t maxMods : {0U, 1U, 20U}) {
        m_cCondition.m_tMaxModNum = maxMods;
        Generate({mod("A", 1.0)}, {mod("x", 2.0)});
        EXPECT_EQ(Group(0).size(), 4U) << maxMods;
        EXPECT_EQ(Group(2).size(), 4U) << maxMods;
    }
}

TEST_F(mod_combinations, two_extra_modifications_are_paired_without_order) {
    Generate({mod("A", 100.0)}, {mod("a", 1.0), mod("b", 3.0)});
    EXPECT_EQ(names(Group(1)), (Texts{"a", "b", "Aa", "Ab", "AAa", "AAb", "AAAa", "AAAb"}));
    EXPECT_EQ(names(Group(2)), (Texts{"aa", "ab", "bb", "Aaa", "Aab", "Abb", "AAaa", "AAab", "AAbb",
                                      "AAAaa", "AAAab", "AAAbb"}));
}

TEST_F(mod_combinations, a_terminus_takes_one_modification) {
    struct {
        const char* name;
        MOD_TYPE a, b;
        Texts group;
    } rows[] = {
        {"PEP_N and PRO_N", PEP_N, PRO_N, {"", "A", "B"}},
        {"PEP_C and PRO_C", PEP_C, PRO_C, {"", "A", "B"}},
        {"two PEP_N", PEP_N, PEP_N, {"", "A", "B"}},
        {"PEP_N and PEP_C", PEP_N, PEP_C, {"", "A", "AB", "B"}},
        {"PRO_C and PRO_N", PRO_C, PRO_N, {"", "A", "AB", "B"}},
        {"PRO_N and NORMAL", PRO_N, NORMAL, {"", "A", "AB", "ABB", "B", "BB", "BBB"}},
        {"NORMAL and PEP_C", NORMAL, PEP_C, {"", "A", "AA", "AAA", "AAB", "AB", "B"}},
    };
    for (const auto& row : rows) {
        const CMod a = mod("A", 1.0, row.a);
        const CMod b = mod("B", 10.0, row.b);
        Generate({a, b});
        EXPECT_EQ(sorted(names(Group(0))), row.group) << row.name;

        // The extra modifications see the termini that the selected ones have taken.
        Generate({a}, {b});
        Texts withB;
        for (const std::string& each : row.group)
            if (std::count(each.begin(), each.end(), 'B') == 1) withB.push_back(each);
        Texts upToThreeAs = names(Group(1));
        std::erase_if(upToThreeAs, [](const std::string& each) { return each.size() > 3; });
        EXPECT_EQ(sorted(upToThreeAs), withB) << row.name;
    }
}

TEST_F(mod_combinations, five_modifications_fit) {
    Generate({mod("A", 1.0)}, {mod("x", 10.0)});
    const CModCombInfo& full = Group(2).back();
    EXPECT_EQ(names(full), "AAAxx");
    EXPECT_EQ(full.m_cModNum, 5);
    EXPECT_EQ(full.m_lfMass, 23.0);
}

TEST_F(mod_combinations, combinations_know_their_group) {
    Generate({mod("A", 1.0)}, {mod("x", 10.0), mod("y", -10.0)});
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_FALSE(Group(i).empty());
        for (const CModCombInfo& comb : Group(i)) {
            EXPECT_EQ(comb.m_cExtraNum, i);
            EXPECT_EQ(comb.m_lfWeight, 1.0);
            EXPECT_EQ(comb.m_nTag1, 0U);
            EXPECT_EQ(comb.m_nTag2, 0U);
        }
    }
}

TEST_F(mod_combinations, placeholder_of_the_table_is_skipped_but_may_be_selected) {
    m_cCondition.m_vMods = {mod("NULL", 0.0, MOD_PLACEHOLDER), mod("x", 1.0),
                            mod("NULL", 0.0, MOD_PLACEHOLDER)};
    m_cCondition.m_vSelMods = {&m_cCondition.m_vMods[0]};
    m_cCondition.GenerateModComb();
    EXPECT_EQ(names(Group(0)), (Texts{"", "NULL", "NULLNULL", "NULLNULLNULL"}));
    EXPECT_EQ(names(Group(1)), (Texts{"x", "NULLx", "NULLNULLx", "NULLNULLNULLx"}));
    EXPECT_EQ(Group(2).size(), 4U);
}

TEST_F(mod_combinations, walk_is_depth_first) {
    Prepare({mod("A", 1.0), mod("B", 2.0)}, {mod("y", 5.0), mod("x", 4.0)});
    m_cCondition.m_vModComb.resize(3);
    CModCombInfo comb;
    comb.m_lfWeight = 0.5;
    comb.m_nTag1 = 7;
    m_cCondition._generate_mod_comb(comb, 0, 0, 0);
    EXPECT_EQ(names(Group(0)), (Texts{"", "A", "AA", "AAA", "AAB", "AB", "ABB", "B", "BB", "BBB"}));
    const Texts ones = names(Group(1));
    EXPECT_EQ(Texts(ones.begin(), ones.begin() + 6), (Texts{"y", "x", "Ay", "Ax", "AAy", "AAx"}));
    const Texts twos = names(Group(2));
    EXPECT_EQ(Texts(twos.begin(), twos.begin() + 6),
              (Texts{"yy", "yx", "xx", "Ayy", "Ayx", "Axx"}));
    EXPECT_EQ(Group(2).back().m_lfWeight, 0.5);
    EXPECT_EQ(Group(2).back().m_nTag1, 7U);
    EXPECT_EQ(comb.m_cModNum, 0);
    EXPECT_EQ(comb.m_lfMass, 0.0);
    EXPECT_EQ(comb.m_cExtraNum, 0);
}

TEST_F(mod_combinations, step_begins_at_the_given_modification_and_flags) {
    Prepare({mod("A", 1.0), mod("N", 2.0, PEP_N), mod("C", 4.0, PRO_C)}, {});
    m_cCondition.m_vModComb.resize(3);
    CModCombInfo comb;
    m_cCondition._generate_mod_comb(comb, PRO_N, 0, 1);
    EXPECT_EQ(names(Group(0)), (Texts{"", "C"}));
}

TEST_F(mod_combinations, full_combination_gets_extras_and_no_more_selected_ones) {
    Prepare({mod("A", 1.0)}, {mod("x", 5.0)});
    m_cCondition.m_vModComb.resize(3);
    CModCombInfo comb;
    comb.m_pMods.fill(&m_vSelected[0]);
    comb.m_cModNum = 3;
    m_cCondition._generate_mod_comb(comb, 0, 0, 0);
    EXPECT_EQ(names(Group(0)), Texts{"AAA"});
    EXPECT_EQ(names(Group(1)), Texts{"AAAx"});
    comb.m_cModNum = 5;
    m_cCondition._generate_mod_comb(comb, 0, 0, 0);
    EXPECT_EQ(names(Group(0)), (Texts{"AAA", "AAAAA"}));
    EXPECT_EQ(names(Group(1)), Texts{"AAAx"});
}

// 0.7 does not come out as 0.7: what 0.1 added three times leaves is still in the sum.
TEST_F(mod_combinations, running_mass_is_undone_by_subtraction) {
    Prepare({mod("A", 0.1), mod("B", 0.7)}, {});
    m_cCondition.m_vModComb.resize(3);
    CModCombInfo comb;
    m_cCondition._generate_mod_comb(comb, 0, 0, 0);
    EXPECT_EQ(masses(Group(0)),
              (std::vector<double>{0.0, 0.1, 0.2, 0x1.3333333333334p-2, 0.9, 0.8, 1.5,
                                   0x1.6666666666667p-1, 1.4, 0x1.0ccccccccccccp+1}));
}

TEST_F(mod_combinations, second_call_starts_over) {
    Generate({mod("A", 1.0), mod("B", 2.0)}, {mod("x", 4.0)});
    Generate({mod("A", 1.0)});
    EXPECT_EQ(Group(0).size(), 4U);
    EXPECT_EQ(Group(0).capacity(), 4U);
    EXPECT_TRUE(Group(1).empty());
    EXPECT_EQ(Group(1).capacity(), 0U);
    EXPECT_EQ(Table(0).size(), 3001U);
    EXPECT_EQ(Table(1).capacity(), 0U);
}

// ---- Twins ----

// All index sequences of a length that do not descend.
void visit_multisets(std::size_t kinds, std::size_t size, std::vector<std::size_t>& chosen,
                     const std::function<void()>& visit) {
    if (chosen.size() == size) {
        visit();
        return;
    }
    for (std::size_t i = chosen.empty() ? 0 : chosen.back(); i < kinds; ++i) {
        chosen.push_back(i);
        visit_multisets(kinds, size, chosen, visit);
        chosen.pop_back();
    }
}

// Every multiset of up to three selected and of `extra` further modifications, then those left out
// that have two modifications at one terminus.
Texts naive_group(const std::vector<CMod>& selected, const std::vector<CMod>& table,
                  std::size_t extra) {
    Texts all;
    std::vector<std::size_t> bases;
    std::vector<std::size_t> extras;
    const auto take = [&] {
        int nTerminal = 0;
        int cTerminal = 0;
        std::string joined;
        const auto add = [&](const CMod& each) {
            nTerminal += each.m_eType == 2 || each.m_eType == 4 ? 1 : 0;
            cTerminal += each.m_eType == 1 || each.m_eType == 3 ? 1 : 0;
            joined += each.m_strName;
            return each.m_eType != 6;
        };
        for (const std::size_t i : bases)
            add(selected[i]);
        for (const std::size_t i : extras)
            if (!add(table[i])) return;
        if (nTerminal <= 1 && cTerminal <= 1) all.push_back(joined);
    };
    for (std::size_t size = 0; size <= 3; ++size)
        visit_multisets(selected.size(), size, bases,
                        [&] { visit_multisets(table.size(), extra, extras, take); });
    return all;
}

std::vector<CMod> random_mods(std::mt19937& random, std::size_t most, char firstName) {
    std::vector<CMod> mods;
    for (std::size_t number = random() % (most + 1); number > 0; --number) {
        const double mass = (static_cast<double>(random() % 40'000) - 15'000.0) / 997.0;
        const auto type = static_cast<MOD_TYPE>(random() % 3 == 0 ? 0 : random() % 5);
        mods.push_back(mod(std::string(1, firstName++), mass, type));
    }
    return mods;
}

TEST_F(mod_combinations, groups_are_what_a_naive_enumeration_filters) {
    std::mt19937 random(3);
    m_cCondition.m_eLogType = LOG_DEBUG;
    for (int round = 0; round < 60; ++round) {
        const std::string output = test::captured_output(
            [&] { Generate(random_mods(random, 5, 'A'), random_mods(random, 6, 'a')); });
        std::size_t total = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(sorted(names(Group(i))),
                      sorted(naive_group(m_vSelected, m_cCondition.m_vMods, i)));
            EXPECT_TRUE(std::is_sorted(Group(i).begin(), Group(i).end(), CModCombInfo::Mass_Less));
            // The number was known beforehand.
            EXPECT_EQ(Group(i).capacity(), Group(i).size());
            total += Group(i).size();
        }
        EXPECT_EQ(output, "[Tessel] DEBUG: " + std::to_string(total) +
                              " modification combinations, " +
                              std::to_string(total * sizeof(CModCombInfo)) + " bytes\n");
    }
}

TEST_F(mod_combinations, masses_are_the_sums_of_the_modifications) {
    std::mt19937 random(4);
    Generate(random_mods(random, 5, 'A'), random_mods(random, 6, 'a'));
    for (std::size_t i = 0; i < 3; ++i) {
        for (const CModCombInfo& comb : Group(i)) {
            double mass = 0.0;
            for (std::size_t j = 0; j < comb.m_cModNum; ++j)
                mass += comb.m_pMods[j]->m_lfMass;
            EXPECT_NEAR(comb.m_lfMass, mass, 1e-12);
        }
    }
}

// What the table of a group must hold, by a search for every key.
Table32 scanned_table(const std::vector<CModCombInfo>& group) {
    std::vector<std::int64_t> keys;
    for (const CModCombInfo& comb : group)
        keys.push_back(static_cast<std::int64_t>(comb.m_lfMass * 1000.0));
    const std::int64_t offset = std::min<std::int64_t>(keys.front(), 0);
    Table32 table;
    for (std::int64_t key = offset; key <= keys.back(); ++key) {
        const auto first = std::find_if(keys.begin(), keys.end(),
                                        [key](std::int64_t each) { return each >= key; });
        table.push_back(static_cast<std::uint32_t>(first - keys.begin()));
    }
    return table;
}

TEST_F(mod_combinations, tables_agree_with_a_linear_scan_for_every_key) {
    std::mt19937 random(5);
    for (int round = 0; round < 10; ++round) {
        Generate(random_mods(random, 2, 'A'), random_mods(random, 3, 'a'));
        for (std::size_t i = 0; i < 3 && !Group(i).empty(); ++i)
            EXPECT_EQ(Table(i), scanned_table(Group(i)));
    }
}

// ---- Tables ----

TEST_F(mod_combinations, table_starts_at_the_lightest_combination_when_that_is_negative) {
    Generate({mod("A", -0.002)});
    EXPECT_EQ(names(Group(0)), (Texts{"AAA", "AA", "A", ""}));
    EXPECT_EQ(Table(0), (Table32{0, 1, 1, 2, 2, 3, 3}));
}

TEST_F(mod_combinations, table_starts_at_zero_when_the_lightest_combination_is_positive) {
    Generate({}, {mod("x", 0.002)});
    EXPECT_EQ(Table(0), Table32{0});
    EXPECT_EQ(Table(1), (Table32{0, 0, 0}));
    EXPECT_EQ(Table(2), (Table32{0, 0, 0, 0, 0}));
}

TEST_F(mod_combinations, keys_are_truncated_toward_zero) {
    m_cCondition.m_vModComb.resize(3);
    for (const double mass : {0.0019, -0.0009, 0.0009, -0.0015}) {
        CModCombInfo comb;
        comb.m_lfMass = mass;
        m_cCondition.m_vModComb[0].push_back(comb);
    }
    m_cCondition.CreateModCombHash();
    EXPECT_EQ(masses(Group(0)), (std::vector<double>{-0.0015, -0.0009, 0.0009, 0.0019}));
    EXPECT_EQ(Table(0), (Table32{0, 1, 3}));
}

TEST_F(mod_combinations, masses_beyond_32_bits_of_key_are_tabled_from_the_lightest) {
    Generate({}, {mod("x", -3e6), mod("y", -3e6 + 0.001)});
    EXPECT_EQ(names(Group(1)), (Texts{"x", "y"}));
    EXPECT_EQ(Table(1), (Table32{0, 1}));
    EXPECT_EQ(Table(2), (Table32{0, 1, 2}));
}

TEST_F(mod_combinations, equal_masses_stay_in_the_order_of_enumeration) {
    Generate({mod("A", 1.0), mod("B", 1.0), mod("C", 1.0), mod("D", 1.0)}, {});
    Texts bySize = sorted(names(Group(0)));  // which is the order of enumeration
    std::stable_sort(bySize.begin(), bySize.end(), [](const std::string& a, const std::string& b) {
        return a.size() < b.size();
    });
    EXPECT_EQ(bySize.size(), 35U);
    EXPECT_EQ(names(Group(0)), bySize);
}

TEST_F(mod_combinations, empty_group_ends_the_sorting) {
    m_cCondition.m_vModComb.resize(3);
    m_cCondition.m_vModCombHash = {{9}, {9}, {9}};
    for (const std::size_t i : {0U, 2U}) {
        for (const double mass : {0.001, 0.0}) {
            CModCombInfo comb;
            comb.m_lfMass = mass;
            m_cCondition.m_vModComb[i].push_back(comb);
        }
    }
    m_cCondition.CreateModCombHash();
    EXPECT_EQ(masses(Group(0)), (std::vector<double>{0.0, 0.001}));
    EXPECT_EQ(Table(0), (Table32{0, 1}));
    EXPECT_TRUE(Table(1).empty());
    EXPECT_EQ(masses(Group(2)), (std::vector<double>{0.001, 0.0}));
    EXPECT_EQ(Table(2), Table32{9});
}

TEST_F(mod_combinations, mass_out_of_reach_leaves_its_table_empty) {
    const std::string output =
        test::captured_output([&] { Generate({mod("A", 17'000.0)}, {mod("x", -49'999.0)}); });
    EXPECT_EQ(output,
              "[Tessel] ALERT: Mass out of reach of the lookup table: 51000.000000\n"
              "[Tessel] ALERT: Mass out of reach of the lookup table: -49999.000000\n"
              "[Tessel] ALERT: Mass out of reach of the lookup table: -99998.000000\n");
    EXPECT_EQ(names(Group(0)), (Texts{"", "A", "AA", "AAA"}));
    EXPECT_EQ(names(Group(1)), (Texts{"x", "Ax", "AAx", "AAAx"}));
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(Table(i).empty());
}

TEST_F(mod_combinations, masses_that_are_not_finite_sort_last_and_enter_no_table) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::string output = test::captured_output([&] {
        Generate({}, {mod("n", std::nan("")), mod("i", infinity), mod("m", -infinity),
                      mod("x", 0.002), mod("h", 1e300)});
    });
    EXPECT_EQ(names(Group(1)), (Texts{"x", "h", "m", "i", "n"}));
    EXPECT_TRUE(Table(1).empty());
    // The heaviest of groups 1 and 2, cut with the message.
    std::string expected;
    for (const double mass : {1e300, 2e300}) {
        char digits[400];
        std::snprintf(digits, sizeof digits, "%.0f", mass);
        const std::string text = std::string("Mass out of reach of the lookup table: ") + digits;
        expected += "[Tessel] ALERT: " + text.substr(0, 255) + '\n';
    }
    EXPECT_EQ(output, expected);

    Generate({}, {mod("n", std::nan("")), mod("i", infinity), mod("x", 0.002)});
    EXPECT_EQ(names(Group(1)), (Texts{"x", "i", "n"}));
    EXPECT_EQ(Table(1), (Table32{0, 0, 0}));

    Generate({}, {mod("n", std::nan(""))});
    EXPECT_TRUE(Table(1).empty());
}

// ---- The table in order, as selecting modifications leaves it ----

void put_in_order(std::vector<CMod>& table) {
    std::stable_sort(table.begin(), table.end(), CMod::Mass_Less);
}

// Everything that a combination holds, as one line.
Texts records(const std::vector<CModCombInfo>& group) {
    Texts all;
    for (const CModCombInfo& comb : group) {
        char mass[40];
        std::snprintf(mass, sizeof mass, "%a", comb.m_lfMass);
        all.push_back(names(comb) + ' ' + mass + ' ' + std::to_string(comb.m_cExtraNum) + ' ' +
                      std::to_string(comb.m_lfWeight) + std::to_string(comb.m_nTag1) +
                      std::to_string(comb.m_nTag2));
    }
    return all;
}

bool is_same(const CModCombInfo& a, const CModCombInfo& b) {
    return a.m_pMods == b.m_pMods && a.m_cModNum == b.m_cModNum && a.m_lfMass == b.m_lfMass &&
           a.m_cExtraNum == b.m_cExtraNum && a.m_lfWeight == b.m_lfWeight &&
           a.m_nTag1 == b.m_nTag1 && a.m_nTag2 == b.m_nTag2;
}

// The combinations that come in order are those of the walk, sorted.
void expect_as_walked(CCondition& condition) {
    condition.GenerateModComb();
    const auto groups = condition.m_vModComb;
    const auto tables = condition.m_vModCombHash;
    condition.m_vModComb.assign(3, {});
    condition.m_vModCombHash.assign(3, {});
    CModCombInfo comb;
    condition._generate_mod_comb(comb, 0, 0, 0);
    condition.CreateModCombHash();
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& walked = condition.m_vModComb[i];
        // As texts only where they differ: there may be many.
        if (!std::equal(groups[i].begin(), groups[i].end(), walked.begin(), walked.end(),
                        is_same)) {
            ASSERT_EQ(records(groups[i]), records(walked)) << "group " << i;
        }
        ASSERT_EQ(tables[i], condition.m_vModCombHash[i]) << "group " << i;
    }
}

TEST_F(mod_combinations, random_table_in_order_gives_the_walk_sorted) {
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        Prepare(random_mods(random, 4, 'A'), random_mods(random, 12, 'a'));
        put_in_order(m_cCondition.m_vMods);
        expect_as_walked(m_cCondition);
    }
}

TEST_F(mod_combinations, many_windows_of_mass_give_the_walk_sorted) {
    std::mt19937 random(12);
    std::vector<CMod> extras;
    for (int i = 0; i < 300; ++i) {
        const double mass = (static_cast<double>(random() % 1'000'000) - 300'000.0) / 977.0;
        extras.push_back(mod("m" + std::to_string(i), mass, static_cast<MOD_TYPE>(random() % 5)));
    }
    Prepare({mod("A", 15.994915), mod("B", -17.026549, PEP_N)}, extras);
    put_in_order(m_cCondition.m_vMods);
    expect_as_walked(m_cCondition);
    EXPECT_GT(Group(2).size(), 100'000u);
}

// One extra modification on each of many bases: as many streams as combinations.
TEST_F(mod_combinations, many_bases_and_few_extras_give_the_walk_sorted) {
    std::vector<CMod> selected;
    for (int i = 0; i < 60; ++i)
        selected.push_back(mod("s" + std::to_string(i), 0.37 * (i % 23) - 2.0));
    Prepare(selected, {mod("x", 1.5), mod("y", 40.25)});
    put_in_order(m_cCondition.m_vMods);
    expect_as_walked(m_cCondition);
    EXPECT_GT(Group(2).size(), 100'000u);
}

TEST_F(mod_combinations, masses_that_crowd_in_one_bucket_are_sorted_in_it) {
    std::vector<CMod> extras;
    for (int i = 0; i < 120; ++i)
        extras.push_back(mod("m" + std::to_string(i), 1.0 + 1e-6 * ((i * 7) % 30)));
    Prepare({mod("A", 1e-7), mod("B", -1e-7)}, extras);
    put_in_order(m_cCondition.m_vMods);
    expect_as_walked(m_cCondition);
}

// An extra modification far from all others stretches the range of masses: nearly all combinations
// lie in a small part of it.
std::vector<CMod> crowded_mods(int number) {
    std::vector<CMod> mods;
    for (int i = 0; i < number; ++i)
        mods.push_back(mod("m" + std::to_string(i), 0.0137 * ((i * 7919) % 2903)));
    mods.push_back(mod("far", 2000.0));
    return mods;
}

TEST_F(mod_combinations, masses_that_crowd_in_one_window_give_the_walk_sorted) {
    Prepare({mod("A", 0.5), mod("B", 1.25), mod("C", 3.0, PEP_N)}, crowded_mods(300));
    put_in_order(m_cCondition.m_vMods);
    expect_as_walked(m_cCondition);
    EXPECT_GT(Group(2).size(), 500'000u);  // twice as many as a window holds
}

TEST_F(mod_combinations, masses_out_of_reach_in_an_ordered_table_are_reported) {
    Prepare({}, {mod("x", -49'999.0), mod("y", 3.0)});
    put_in_order(m_cCondition.m_vMods);
    const std::string output = test::captured_output([&] { m_cCondition.GenerateModComb(); });
    EXPECT_EQ(output,
              "[Tessel] ALERT: Mass out of reach of the lookup table: -49999.000000\n"
              "[Tessel] ALERT: Mass out of reach of the lookup table: -99998.000000\n");
    EXPECT_EQ(names(Group(1)), (Texts{"x", "y"}));
    EXPECT_EQ(names(Group(2)), (Texts{"xx", "xy", "yy"}));
    EXPECT_EQ(Table(0), Table32{0});
    EXPECT_TRUE(Table(1).empty() && Table(2).empty());
}

// ---- Memory ----

std::vector<CMod> many_mods(std::size_t number) {
    std::vector<CMod> mods;
    for (std::size_t i = 0; i < number; ++i)
        mods.push_back(mod("x", 1e-4 * static_cast<double>(i)));
    return mods;
}

TEST_F(mod_combinations, size_is_not_told_at_the_usual_level) {
    EXPECT_EQ(test::captured_output([&] { Generate({mod("A", 1.0)}); }), "");
}

// 200 selected ones have C(203, 3) multisets; 3000 extra ones C(3001, 2) pairs, and singles.
TEST_F(mod_combinations, more_than_any_memory_ends_the_process) {
    ASSERT_EQ(sizeof(CModCombInfo), 80U);
    Prepare(many_mods(200), many_mods(3000));
    EXPECT_ENDS_PROCESS(m_cCondition.GenerateModComb(),
                        "[Tessel] WARNING: 6187837528201 modification combinations, "
                        "495027002256080 bytes\n"
                        "[Tessel] ALERT: Not enough memory for 6187837528201 modification "
                        "combinations, 495027002256080 bytes\n",
                        "");
}

TEST_F(mod_combinations, number_beyond_64_bits_ends_the_process) {
    const CMod one = mod("A", 1.0);
    Prepare({}, many_mods(3000));
    m_cCondition.m_vSelMods.assign(200'000, &one);
    EXPECT_ENDS_PROCESS(m_cCondition.GenerateModComb(),
                        "[Tessel] WARNING: 18446744073709551615 modification combinations, "
                        "18446744073709551615 bytes\n"
                        "[Tessel] ALERT: Not enough memory for 18446744073709551615 modification "
                        "combinations, 18446744073709551615 bytes\n",
                        "");
}

TEST_F(mod_combinations, that_are_promised_memory_but_get_none_end_the_process) {
    Prepare(many_mods(2), many_mods(1000));
    EXPECT_ENDS_PROCESS(
        {
            const test::CScarceMemory scarce(1'000'000);
            m_cCondition.GenerateModComb();
        },
        "[Tessel] ALERT: Not enough memory for 5015010 modification combinations, "
        "401200800 bytes\n",
        "");
}

// Twice 20,000 Da have a lookup of 160 MB; the combinations themselves are few.
TEST_F(mod_combinations, without_memory_for_their_lookup_end_the_process) {
    Prepare({}, {mod("light", 1.0), mod("heavy", 20'000.0)});
    put_in_order(m_cCondition.m_vMods);
    EXPECT_ENDS_PROCESS(
        {
            const test::CScarceMemory scarce(10'000'000);
            m_cCondition.GenerateModComb();
        },
        "[Tessel] ALERT: Not enough memory for 6 modification combinations, 480 bytes\n", "");
}

#if !defined(__SANITIZE_ADDRESS__)  // which needs the whole address space
TEST_F(mod_combinations, more_than_the_address_space_may_hold_ends_the_process) {
    if (!test::kMemoryCanBeLimited) GTEST_SKIP() << "no limit of address space on this system";
    Prepare(many_mods(2), many_mods(1000));
    EXPECT_ENDS_PROCESS(
        {
            test::limit_memory(300'000'000);
            m_cCondition.GenerateModComb();
        },
        "[Tessel] ALERT: Not enough memory for 5015010 modification combinations, "
        "401200800 bytes\n",
        "");
}

// 10 combinations of the selected ones with 1, n and n(n + 1)/2 of n others, 80 bytes each.
TEST_F(mod_combinations, more_than_a_gigabyte_is_a_warning) {
    if (!test::kMemoryCanBeLimited) GTEST_SKIP() << "no limit of address space on this system";
    const auto end_with_limit = [this] {
        test::limit_memory(300'000'000);
        m_cCondition.GenerateModComb();
    };
    Prepare(many_mods(2), many_mods(1600));
    EXPECT_ENDS_PROCESS(end_with_limit(),
                        "[Tessel] ALERT: Not enough memory for 12824010 modification combinations, "
                        "1025920800 bytes\n",
                        "");
    Prepare(many_mods(2), many_mods(1800));
    EXPECT_ENDS_PROCESS(end_with_limit(),
                        "[Tessel] WARNING: 16227010 modification combinations, 1298160800 bytes\n"
                        "[Tessel] ALERT: Not enough memory for 16227010 modification combinations, "
                        "1298160800 bytes\n",
                        "");
}

TEST_F(mod_combinations, crowded_masses_take_little_memory_beside_the_combinations) {
    if (!test::kMemoryCanBeLimited) GTEST_SKIP() << "no limit of address space on this system";
    // 2,420,550 combinations of 194 MB. All of them in one window would be 155 MB more.
    Prepare({mod("A", 0.5), mod("B", 1.25), mod("C", 3.0)}, crowded_mods(490));
    put_in_order(m_cCondition.m_vMods);
    EXPECT_EXIT(
        {
            test::limit_memory(310'000'000);
            m_cCondition.GenerateModComb();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
}  // namespace tessel
