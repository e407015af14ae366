#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/chem/tables.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::captured_output;
using test::CTables;
using test::kAll;
using test::modification;
using test::Names;
using test::warning;

using Index = std::vector<std::uint32_t>;

// ---- Names ----

TEST(selected_names, trailing_semicolon_adds_nothing) {
    CTables tables({modification("Carbamidomethyl[C]", 57.0, "C")});
    EXPECT_EQ(tables.Select("Carbamidomethyl[C];", ""), "");
    EXPECT_EQ(tables.Selected(), (Names{"Carbamidomethyl[C]"}));
    EXPECT_EQ(tables.Fixed(), (Names{"Carbamidomethyl[C]"}));
}

TEST(selected_names, two_adjacent_semicolons_spoil_the_second_name) {
    CTables tables({modification("A", 1.0), modification("B", 2.0)});
    EXPECT_EQ(tables.Select("", "A;;B"), warning("ignore the modification: ;B"));
    EXPECT_EQ(tables.Selected(), (Names{"A"}));
}

TEST(selected_names, end_of_a_name_is_looked_for_behind_its_first_character) {
    struct {
        const char* names;
        Names selected;
        Names ignored;
    } rows[] = {
        {"", {}, {}},
        {"A", {"A"}, {}},
        {"A;B", {"A", "B"}, {}},
        {"A;B;", {"A", "B"}, {}},
        {";", {}, {";"}},
        {";;", {}, {";"}},
        {";A;B", {"B"}, {";A"}},
        {"A;;", {"A"}, {";"}},
        {"A;;;B", {"A", "B"}, {";"}},
        {"A;;B;A", {"A"}, {";B"}},
        {" A;B ", {}, {" A", "B "}},
    };
    for (const auto& row : rows) {
        CTables tables({modification("A", 1.0), modification("B", 2.0)});
        std::string warnings;
        for (const std::string& name : row.ignored)
            warnings += warning("ignore the modification: " + name);
        EXPECT_EQ(tables.Select("", row.names), warnings) << row.names;
        EXPECT_EQ(tables.Selected(), row.selected) << row.names;
    }
}

TEST(selected_names, fixed_ones_come_first_each_list_in_its_own_order) {
    CTables tables({modification("A", 1.0), modification("B", 2.0), modification("C", 3.0),
                    modification("D", 4.0)});
    EXPECT_EQ(tables.Select("D;B", "C;A"), "");
    EXPECT_EQ(tables.Selected(), (Names{"D", "B", "C", "A"}));
    EXPECT_EQ(tables.Fixed(), (Names{"B", "D"}));
}

TEST(selected_names, name_in_both_lists_is_selected_once_and_fixed) {
    CTables tables({modification("A", 1.0), modification("B", 2.0)});
    EXPECT_EQ(tables.Select("B", "A;B;A"), "");
    EXPECT_EQ(tables.Selected(), (Names{"B", "A"}));
    EXPECT_EQ(tables.Fixed(), (Names{"B"}));
}

TEST(selected_names, unknown_name_is_skipped_with_a_warning) {
    CTables tables({modification("A", 1.0)});
    EXPECT_EQ(tables.Select("X", "A;Y"),
              warning("ignore the modification: X") + warning("ignore the modification: Y"));
    EXPECT_EQ(tables.Selected(), (Names{"A"}));
}

TEST(selected_names, labelled_forms_of_all_labels_are_selected) {
    CTables tables({modification("Oxidation[M]#0", 16.0), modification("Oxidation[M]#1", 17.0),
                    modification("Oxidation[M]#2", 18.0), modification("Oxidation[M]#3", 19.0)});
    tables.m_cCondition.m_vLabels = {"None", "Heavy"};
    EXPECT_EQ(tables.Select("Oxidation[M]", ""), "");
    EXPECT_EQ(tables.Selected(), (Names{"Oxidation[M]#0", "Oxidation[M]#1", "Oxidation[M]#2"}));
    EXPECT_EQ(tables.Fixed().size(), 3u);
}

TEST(selected_names, plain_form_comes_before_the_labelled_ones) {
    CTables tables({modification("A#1", 1.0), modification("A", 2.0), modification("A#0", 3.0)});
    tables.m_cCondition.m_vLabels = {"None"};
    EXPECT_EQ(tables.Select("", "A"), "");
    EXPECT_EQ(tables.Selected(), (Names{"A", "A#0", "A#1"}));
}

TEST(selected_names, without_labels_the_unlabelled_form_is_found) {
    CTables tables({modification("A#0", 1.0), modification("A#1", 2.0)});
    EXPECT_EQ(tables.Select("", "A"), "");
    EXPECT_EQ(tables.Selected(), (Names{"A#0"}));
}

TEST(selected_names, label_number_is_one_character) {
    const CCondition condition;
    EXPECT_EQ(condition._get_labeled_mod_name("A[K]", 0), "A[K]#0");
    EXPECT_EQ(condition._get_labeled_mod_name("A[K]", 9), "A[K]#9");
    EXPECT_EQ(condition._get_labeled_mod_name("", 10), "#:");
}

TEST(selected_names, name_whose_entry_is_null_counts_as_absent) {
    CTables tables;
    tables.m_cCondition.m_mapMods["A"] = nullptr;
    EXPECT_EQ(captured_output([&] { tables.m_cCondition._parse_mod("A", true); }),
              warning("ignore the modification: A"));
    EXPECT_TRUE(tables.m_cCondition.m_vSelMods.empty());
    EXPECT_TRUE(tables.m_cCondition.m_setFixMods.empty());
}

TEST(selected_names, of_duplicate_names_the_last_in_the_table_is_selected) {
    CTables tables({modification("A", 5.0), modification("A", 3.0), modification("A", 5.0, "R")});
    tables.Select("", "A");
    ASSERT_EQ(tables.m_cCondition.m_vSelMods.size(), 1u);
    EXPECT_EQ(tables.m_cCondition.m_vSelMods[0]->m_strSites, "R");
}

// ---- Slots ----

TEST(slots, normal_ones_go_to_their_sites_and_terminal_ones_to_their_type) {
    CTables tables({modification("ST", 1.0, "ST"), modification("T", 2.0, "T"),
                    modification("pepC", 3.0, kAll, PEP_C), modification("pepN", 4.0, "Q", PEP_N),
                    modification("proC", 5.0, "", PRO_C), modification("proN", 6.0, kAll, PRO_N),
                    modification("none", 7.0, "")});
    tables.Select("T;proN", "ST;pepC;pepN;proC;none");
    const std::map<std::size_t, Names> filled = {{1, {"pepC"}}, {2, {"pepN"}}, {3, {"proC"}},
                                                 {4, {"proN"}}, {'S', {"ST"}}, {'T', {"T", "ST"}}};
    for (std::size_t slot = 0; slot < tables.m_cCondition.m_vSelModMap.size(); ++slot) {
        const auto found = filled.find(slot);
        EXPECT_EQ(tables.Slot(slot), found == filled.end() ? Names() : found->second) << slot;
    }
}

TEST(slots, sites_that_are_no_letters_are_ignored) {
    CTables tables({modification("odd", 1.0, "a[Z\x01\x04@\xFF{")});
    tables.Residue('Z', 50.0);
    tables.Select("", "odd");
    for (std::size_t slot = 0; slot < tables.m_cCondition.m_vSelModMap.size(); ++slot)
        EXPECT_EQ(tables.Slot(slot).size(), slot == 'Z' ? 1u : 0u) << slot;
    EXPECT_EQ(tables.Letters(), (Names{"Z", "Z+odd"}));
}

TEST(slots, placeholder_selected_by_name_goes_to_slot_six) {
    CTables tables;
    tables.Select("", "NULL");
    EXPECT_EQ(tables.Slot(6), (Names{"NULL"}));
    tables.m_cCondition.m_vSelMods.clear();
    tables.m_cCondition.CreateSelModMap();
    EXPECT_EQ(tables.Slot(6), Names());
}

TEST(slots, are_emptied_first) {
    CTables tables({modification("A", 1.0, "K"), modification("N", 1.0, "K", PEP_N)});
    tables.Select("", "A;N");
    tables.m_cCondition.CreateSelModMap();
    EXPECT_EQ(tables.Slot('K'), (Names{"A"}));
    EXPECT_EQ(tables.Slot(PEP_N), (Names{"N"}));
}

TEST(slots, type_without_a_slot_is_left_out) {
    CTables tables({modification("A", 1.0, "K", static_cast<MOD_TYPE>(-1)),
                    modification("B", 1.0, "K", static_cast<MOD_TYPE>(92))});
    tables.Select("", "A;B");
    for (const auto& slot : tables.m_cCondition.m_vSelModMap)
        EXPECT_TRUE(slot.empty());
}

// ---- Table and index by mass ----

TEST(sorted_table, placeholder_joins_the_table) {
    CTables tables({modification("heavy", 1.0), modification("light", -1.0)});
    tables.Select("", "");
    const auto& mods = tables.m_cCondition.m_vMods;
    ASSERT_EQ(mods.size(), 3u);
    EXPECT_EQ(mods[0].m_strName, "light");
    EXPECT_EQ(mods[1].m_strName, "NULL");
    EXPECT_EQ(mods[1].m_lfMass, 0.0);
    EXPECT_EQ(mods[1].m_strSites, kAll);
    EXPECT_EQ(mods[1].m_eType, MOD_PLACEHOLDER);
    EXPECT_EQ(mods[1].m_strComposition, "H(300)");
    EXPECT_EQ(mods[1].m_nFlag, 0);
    EXPECT_EQ(mods[1].m_lfProb, 1.0);
    EXPECT_EQ(mods[2].m_strName, "heavy");
}

TEST(mod_mass_index, negative_mass_lowers_the_offset) {
    CTables tables({modification("a", -0.0025), modification("b", 0.0031)});
    tables.Select("", "");
    // Keys -2, 0, 3 give positions 0, 2, 5.
    EXPECT_EQ(tables.m_cCondition.m_vModMassIndex, (Index{0, 1, 1, 2, 2, 2}));
}

TEST(mod_mass_index, without_negative_masses_it_starts_at_zero) {
    CTables tables({modification("a", 0.0045)});
    tables.Select("", "");
    EXPECT_EQ(tables.m_cCondition.m_vModMassIndex, (Index{0, 1, 1, 1, 1}));
}

TEST(mod_mass_index, of_an_empty_table_holds_the_placeholder) {
    CTables tables;
    tables.Select("", "");
    EXPECT_EQ(tables.m_cCondition.m_vModMassIndex, (Index{0}));
}

TEST(mod_mass_index, masses_that_are_not_finite_sort_last_and_stay_outside) {
    CTables tables({modification("nan", std::numeric_limits<double>::quiet_NaN()),
                    modification("-inf", -std::numeric_limits<double>::infinity()),
                    modification("a", 0.0025)});
    EXPECT_EQ(tables.Select("", ""), "");
    EXPECT_EQ(tables.m_cCondition.m_vMods[0].m_strName, "NULL");
    EXPECT_EQ(tables.m_cCondition.m_vMods[1].m_strName, "a");
    EXPECT_EQ(tables.m_cCondition.m_vMods[3].m_strName, "nan");
    EXPECT_EQ(tables.m_cCondition.m_vModMassIndex, (Index{0, 1, 1}));
}

TEST(mod_mass_index, mass_out_of_reach_is_reported_and_leaves_it_empty) {
    CTables heavy({modification("heavy", 50000.0), modification("light", -2.5)});
    EXPECT_EQ(heavy.Select("", "heavy"),
              "[Tessel] ALERT: Mass out of reach of the lookup table: 50000.000000\n");
    EXPECT_TRUE(heavy.m_cCondition.m_vModMassIndex.empty());
    EXPECT_EQ(heavy.Selected(), (Names{"heavy"}));

    CTables light({modification("heavy", 5.0), modification("light", -50000.25)});
    EXPECT_EQ(light.Select("", ""),
              "[Tessel] ALERT: Mass out of reach of the lookup table: -50000.250000\n");
    EXPECT_TRUE(light.m_cCondition.m_vModMassIndex.empty());
}

// The entry that a lookup must give, by looking at all of them.
template <class Entries>
void expect_index_of(const Entries& entries, const Index& index) {
    const auto key = [](const auto& entry) { return static_cast<long>(entry.m_lfMass * 1000.0); };
    const long offset = std::min(0L, key(entries.front()));
    ASSERT_EQ(index.size(), static_cast<std::size_t>(key(entries.back()) - offset) + 1);
    for (std::size_t bucket = 0; bucket < index.size(); ++bucket) {
        std::uint32_t first = 0;
        while (key(entries[first]) - offset < static_cast<long>(bucket))
            ++first;
        ASSERT_EQ(index[bucket], first) << bucket;
    }
}

TEST(mod_mass_index, agrees_with_a_linear_scan) {
    std::mt19937 random(20240607);
    for (int round = 0; round < 60; ++round) {
        const double low = round % 3 == 0 ? 0.0 : -2.0;
        const double high = round % 3 == 1 ? 0.0 : 2.0;
        std::uniform_real_distribution<double> masses(low, high);
        CTables tables;
        for (int i = 0; i < 5 * round; ++i)
            tables.m_cCondition.m_vMods.push_back(modification("m", masses(random)));
        tables.Select("", "");
        expect_index_of(tables.m_cCondition.m_vMods, tables.m_cCondition.m_vModMassIndex);
    }
}

TEST(extended_mass_index, agrees_with_a_linear_scan) {
    std::mt19937 random(19991231);
    for (int round = 0; round < 60; ++round) {
        std::uniform_real_distribution<double> masses(round % 3 == 0 ? 0.0 : -1.0,
                                                      round % 3 == 1 ? 0.0 : 1.0);
        CTables tables;
        for (const char* letter = kAll; *letter != '\0'; ++letter)
            tables.Residue(*letter, masses(random));
        std::string selected;
        for (int i = 0; i < round / 8; ++i) {
            tables.m_cCondition.m_vMods.push_back(
                modification(std::to_string(i), masses(random), kAll));
            selected += std::to_string(i) + ';';
        }
        EXPECT_EQ(tables.Select("", selected), "");
        ASSERT_GT(tables.m_cCondition.m_vExtendedAA.size(), 20u);
        expect_index_of(tables.m_cCondition.m_vExtendedAA, tables.m_cCondition.m_vEAAMassIndex);
    }
}

// ---- Extended alphabet ----

TEST(extended_alphabet, residues_stand_alone_and_with_each_selected_modification) {
    CTables tables({modification("ox", 16.0, "MW"), modification("ac", 42.0, "KM", PRO_N),
                    modification("unused", 1.0, "K")});
    tables.Residue('K', 128.0);
    tables.Residue('M', 131.0);
    tables.Select("ox", "ac");
    EXPECT_EQ(tables.Letters(), (Names{"K", "M", "M+ox", "K+ac", "M+ac"}));
    const auto& letters = tables.m_cCondition.m_vExtendedAA;
    EXPECT_EQ(letters[4].m_lfMass, 173.0);  // 131 + 42
    EXPECT_EQ(letters[4].m_pMod, tables.m_cCondition.m_mapMods.at("ac"));
    for (std::size_t i = 0; i < letters.size(); ++i)
        EXPECT_EQ(letters[i].m_ucCode, i);
    EXPECT_GE(letters.capacity(), 256u);
}

TEST(extended_alphabet, residues_below_a_hundredth_are_left_out) {
    CTables tables({modification("any", 1.0, kAll)});
    tables.Residue('A', 0.0099);
    tables.Residue('B', 0.01);
    tables.Residue('C', -0.01);
    tables.Residue('D', -0.0099);
    tables.Residue('E', std::numeric_limits<double>::quiet_NaN());
    tables.Select("", "any");
    EXPECT_EQ(tables.Letters(), (Names{"C", "B", "C+any", "B+any"}));
}

TEST(extended_alphabet, modification_is_looked_up_by_name_but_weighs_as_selected) {
    CTables tables({modification("A", 1.0), modification("A", 2.0)});
    tables.Residue('K', 128.0);
    tables.Select("", "");
    auto& condition = tables.m_cCondition;
    condition.m_vSelMods = {&condition.m_vMods[1]};
    ASSERT_EQ(condition.m_vMods[1].m_lfMass, 1.0);
    condition.m_vExtendedAA.clear();
    condition.HandleSelectMod();
    ASSERT_EQ(condition.m_vExtendedAA.size(), 2u);
    EXPECT_EQ(condition.m_vExtendedAA[1].m_pMod, &condition.m_vMods[2]);
    EXPECT_EQ(condition.m_vExtendedAA[1].m_lfMass, 129.0);
}

TEST(extended_alphabet, without_a_residue_it_has_an_empty_index) {
    CTables tables({modification("A", 1.0)});
    EXPECT_EQ(tables.Select("A", ""), "");
    EXPECT_TRUE(tables.m_cCondition.m_vExtendedAA.empty());
    EXPECT_TRUE(tables.m_cCondition.m_vEAAMassIndex.empty());
}

TEST(extended_alphabet, more_than_256_letters_wrap_with_one_warning) {
    CTables tables;
    std::string selected;
    for (const char* letter = kAll; *letter != '\0'; ++letter)
        tables.Residue(*letter, 100.0 + *letter);
    for (char name = 'a'; name < 'j'; ++name) {
        tables.m_cCondition.m_vMods.push_back(modification(std::string(1, name), 1000.0, kAll));
        selected += name;
        selected += ';';
    }
    EXPECT_EQ(tables.Select("", selected),
              warning("Extended alphabet of 260 letters: its codes repeat after 256"));
    const auto& letters = tables.m_cCondition.m_vExtendedAA;
    ASSERT_EQ(letters.size(), 260u);
    EXPECT_EQ(letters[255].m_ucCode, 255);
    EXPECT_EQ(letters[259].m_ucCode, 3);
}

TEST(extended_alphabet, mass_out_of_reach_is_reported_and_leaves_the_index_empty) {
    CTables tables;
    tables.Residue('K', 1e9);
    EXPECT_EQ(tables.Select("", ""),
              "[Tessel] ALERT: Mass out of reach of the lookup table: 1000000000.000000\n");
    EXPECT_EQ(tables.m_cCondition.m_vExtendedAA.size(), 1u);
    EXPECT_TRUE(tables.m_cCondition.m_vEAAMassIndex.empty());
}

// ---- Once more ----

TEST(second_mod_list, older_letters_stay_without_their_modification) {
    CTables tables({modification("A", 1.0)});
    tables.Residue('K', 128.0);
    tables.Select("A", "");
    tables.Select("A", "");
    EXPECT_EQ(tables.Letters(), (Names{"K", "K", "K", "K+A"}));
    const auto& letters = tables.m_cCondition.m_vExtendedAA;
    EXPECT_EQ(letters[2].m_lfMass, 129.0);
    EXPECT_EQ(letters[3].m_pMod, tables.m_cCondition.m_mapMods.at("A"));
    EXPECT_EQ(letters[3].m_ucCode, 3);
}

TEST(second_mod_list, fixed_modifications_are_of_the_present_table_only) {
    CTables tables({modification("A", 1.0), modification("B", 2.0)});
    tables.Select("A;B", "");
    tables.Select("B", "A");
    EXPECT_EQ(tables.Fixed(), (Names{"B"}));
    EXPECT_EQ(tables.Selected(), (Names{"B", "A"}));
}

TEST(second_mod_list, adds_a_second_placeholder_and_rebuilds_the_shifts) {
    CTables tables;
    tables.m_cCondition.m_lfMaxDelta = 0.0;
    tables.Select("", "");
    tables.Select("", "");
    ASSERT_EQ(tables.m_cCondition.m_vMods.size(), 2u);
    EXPECT_EQ(tables.m_cCondition.m_mapMods.at("NULL"), &tables.m_cCondition.m_vMods[1]);
    EXPECT_EQ(tables.m_cCondition.m_vDeltaMods.size(), 1u);
}

TEST(second_mod_list, forgets_the_names_of_the_table_before) {
    CTables tables({modification("A", 1.0)});
    tables.Select("", "A");
    tables.m_cCondition.m_vMods = {modification("B", 1.0)};
    EXPECT_EQ(tables.Select("", "A"), warning("ignore the modification: A"));
    EXPECT_EQ(tables.m_cCondition.m_mapMods.size(), 2u);  // B and the placeholder
    EXPECT_EQ(tables.Slot('K'), Names());
}

// ---- Learn file ----

const std::vector<CMod> kCommon = {modification("Oxidation[M]", 16.0, "M"),
                                   modification("Deamidated[N]", 1.0, "N"),
                                   modification("Acetyl[ProteinN-term]", 42.0, kAll, PRO_N),
                                   modification("Gln->pyro-Glu[AnyN-termQ]", -17.0, "Q", PEP_N),
                                   modification("Carbamidomethyl[C]", 57.0, "C")};
const Names kCommonNames = {"Oxidation[M]", "Deamidated[N]", "Acetyl[ProteinN-term]",
                            "Gln->pyro-Glu[AnyN-termQ]", "Carbamidomethyl[C]"};

// The common modifications, A, B and C with a learn file.
class CLearned : public CTables {
public:
    explicit CLearned(const std::string& learn, const std::string& fixed = "") : CTables(kCommon) {
        for (const char* name : {"A", "B", "C"})
            m_cCondition.m_vMods.push_back(modification(name, 3.0));
        Select(fixed, "");
        m_cFolder.Write("run.learn", learn);
        m_cCondition.m_strOutputPath = m_cFolder.Path() + '\\';
        m_cCondition.m_strOutputName = "run";
    }
    std::string SetSelMod(std::size_t maxMods) {
        return captured_output([&] { EXPECT_TRUE(m_cCondition.SetSelMod(maxMods)); });
    }
    /// The selection in front of the common modifications.
    Names Learned() const {
        Names names = Selected();
        EXPECT_GE(names.size(), kCommonNames.size());
        const auto common = names.end() - static_cast<std::ptrdiff_t>(kCommonNames.size());
        EXPECT_EQ(Names(common, names.end()), kCommonNames);
        return Names(names.begin(), common);
    }
    double Prob(const std::string& name) const { return m_cCondition.m_mapMods.at(name)->m_lfProb; }

private:
    test::CTempFolder m_cFolder;
};

using Coefficients = std::array<double, 4>;

TEST(learn_file, missing_file_changes_nothing) {
    CTables tables(kCommon);
    tables.Select("Oxidation[M]", "");
    tables.m_cCondition.m_strOutputPath = "no\\such\\";
    bool found = true;
    EXPECT_EQ(captured_output([&] { found = tables.m_cCondition.SetSelMod(5); }), "");
    EXPECT_FALSE(found);
    EXPECT_EQ(tables.Selected(), (Names{"Oxidation[M]"}));
    EXPECT_EQ(tables.m_cCondition.m_lfCleaveProb, (Coefficients{1.0, 1.0, 1.0, 1.0}));
}

TEST(learn_file, learned_and_common_modifications_are_selected) {
    CLearned learned("C 1 0.5\nB\t2\t0.25\nA 7 0.125\n[----mod prob end----]\nC 1 0.75\n");
    EXPECT_EQ(learned.SetSelMod(10), "");
    EXPECT_EQ(learned.Learned(), (Names{"B", "A"}));
    EXPECT_EQ(learned.Prob("B"), 0.25);
    EXPECT_EQ(learned.Prob("A"), 0.125);
    EXPECT_EQ(learned.Prob("C"), 1.0);
    EXPECT_EQ(learned.Slot('K'), (Names{"B", "A"}));
    EXPECT_TRUE(learned.Fixed().empty());
}

TEST(learn_file, limit_counts_earlier_selections_and_is_tested_after_each_name) {
    struct {
        std::size_t maxMods;
        Names selected;
    } rows[] = {{0, {"A", "B"}},
                {1, {"A", "B"}},
                {2, {"A", "B"}},
                {3, {"A", "B", "C"}},
                {4, {"A", "B", "C"}}};
    for (const auto& row : rows) {
        CLearned learned("heading\nB 1 0.5\nC 1 0.5\n[----mod prob end----]\n", "A");
        learned.SetSelMod(row.maxMods);
        EXPECT_EQ(learned.Learned(), row.selected) << row.maxMods;
        EXPECT_EQ(learned.Fixed(), (Names{"A"}));
    }
}

TEST(learn_file, mass_shifts_and_blank_lines_are_passed_over) {
    CLearned learned(
        "heading\nTESSEL_DELTA_1.00 1 0.5\nmyTESSEL_DELTA_ 1 0.5\n\n \t\nA 1 0.5 TESSEL_DELTA_\n");
    EXPECT_EQ(learned.SetSelMod(1), "");
    EXPECT_EQ(learned.Learned(), (Names{"A"}));
}

TEST(learn_file, unknown_name_is_skipped_with_a_warning_and_does_not_count) {
    CLearned learned("heading\nX 1 0.5\nA 1 0.5\nB 1 0.5\n");
    EXPECT_EQ(learned.SetSelMod(1), warning("ignore the modification: X"));
    EXPECT_EQ(learned.Learned(), (Names{"A"}));
    EXPECT_EQ(learned.m_cCondition.m_mapMods.count("X"), 0u);
}

TEST(learn_file, unreadable_probability_keeps_the_present_one) {
    for (const char* line : {"A", "A 1", "A x 0.5", "A 1 x"}) {
        CLearned learned(std::string("heading\n") + line + '\n');
        learned.m_cCondition.m_mapMods.at("A")->m_lfProb = 0.75;
        learned.SetSelMod(10);
        EXPECT_EQ(learned.Learned(), (Names{"A"})) << line;
        EXPECT_EQ(learned.Prob("A"), 0.75) << line;
    }
}

TEST(learn_file, learned_name_that_is_selected_already_stays_once) {
    CLearned learned("heading\nCarbamidomethyl[C] 1 0.5\nA 1 0.5\nA 1 0.25\n");
    learned.SetSelMod(10);
    EXPECT_EQ(learned.Selected(), (Names{"Carbamidomethyl[C]", "A", "Oxidation[M]", "Deamidated[N]",
                                         "Acetyl[ProteinN-term]", "Gln->pyro-Glu[AnyN-termQ]"}));
    EXPECT_EQ(learned.Prob("A"), 0.25);
}

TEST(learn_file, empty_file_selects_the_common_modifications) {
    CLearned learned("");
    EXPECT_EQ(learned.SetSelMod(10), "");
    EXPECT_EQ(learned.Learned(), Names());
}

TEST(learn_file, common_modifications_that_the_table_lacks_are_warned_about) {
    CLearned learned("");
    learned.m_cCondition.m_mapMods.erase("Deamidated[N]");
    EXPECT_EQ(learned.SetSelMod(10), warning("ignore the modification: Deamidated[N]"));
}

TEST(learn_file, cleavage_coefficients_are_read_across_lines) {
    CLearned learned(
        "heading\nA 1 0.5\n[----mod prob end----]\nother\n[----cleave prob----]\n"
        "3 0.25 1\n\n0.5\n0 0.125 2 0.75 1 9.0\n");
    learned.SetSelMod(10);
    EXPECT_EQ(learned.m_cCondition.m_lfCleaveProb, (Coefficients{0.125, 0.5, 0.75, 0.25}));
}

TEST(learn_file, coefficients_follow_when_the_limit_ended_the_names) {
    CLearned learned(
        "heading\nA 1 0.5\nB 1 0.5\n[----mod prob end----]\n[----cleave prob----]\r\n0 2 1 3 2 4 3 "
        "5");
    learned.SetSelMod(1);
    EXPECT_EQ(learned.Learned(), (Names{"A"}));
    EXPECT_EQ(learned.m_cCondition.m_lfCleaveProb, (Coefficients{2.0, 3.0, 4.0, 5.0}));
}

TEST(learn_file, unreadable_pairs_repeat_the_pair_before) {
    struct {
        const char* pairs;
        Coefficients coefficients;
    } rows[] = {
        // The pair in force at first is 0 and 1.0.
        {"", {1.0, 9.0, 9.0, 9.0}},
        {"x", {1.0, 9.0, 9.0, 9.0}},
        {"2", {1.0, 9.0, 9.0, 9.0}},
        {"2 x", {1.0, 9.0, 9.0, 9.0}},
        {"2 0.5", {9.0, 9.0, 0.5, 9.0}},
        {"2 0.5 1 x 3 0.25", {9.0, 9.0, 0.5, 9.0}},
        {"2 0.5 1", {9.0, 9.0, 0.5, 9.0}},
        // An index without a place stays in force.
        {"4 0.5 x", {9.0, 9.0, 9.0, 9.0}},
        {"-1 0.5 1 0.25", {9.0, 0.25, 9.0, 9.0}},
        {"99999999999 0.5", {9.0, 9.0, 9.0, 9.0}},
        {"1 0.5 1 0.25", {9.0, 0.25, 9.0, 9.0}},
        // A word that is a number only in front is two fields.
        {"0 0.5x 2 0.25", {0.5, 9.0, 9.0, 9.0}},
        {"0.5 2 1 0.25", {0.25, 9.0, 1.0, 9.0}},
    };
    for (const auto& row : rows) {
        CLearned learned(std::string("heading\n[----mod prob end----]\n[----cleave prob----]\n") +
                         row.pairs);
        learned.m_cCondition.m_lfCleaveProb = {9.0, 9.0, 9.0, 9.0};
        learned.SetSelMod(10);
        EXPECT_EQ(learned.m_cCondition.m_lfCleaveProb, row.coefficients) << row.pairs;
    }
}

TEST(learn_file, without_coefficients_the_first_one_is_reset) {
    CLearned learned("heading\n[----mod prob end----]\n[----cleave prob----] \n2 0.5\n");
    learned.m_cCondition.m_lfCleaveProb = {9.0, 9.0, 9.0, 9.0};
    learned.SetSelMod(10);
    EXPECT_EQ(learned.m_cCondition.m_lfCleaveProb, (Coefficients{1.0, 9.0, 9.0, 9.0}));
}

TEST(learn_file, selection_is_told_as_a_detail) {
    CLearned learned("heading\nA 1 0.5\n");
    learned.m_cCondition.m_eLogType = LOG_DEBUG;
    EXPECT_EQ(learned.SetSelMod(10),
              "[Tessel] DEBUG: Modifications: A/Oxidation[M]/Deamidated[N]/Acetyl[ProteinN-term]/"
              "Gln->pyro-Glu[AnyN-termQ]/Carbamidomethyl[C]/\n");
}

TEST(learn_file, letters_are_added_to_the_extended_alphabet) {
    CLearned learned("heading\nA 1 0.5\n", "B");
    learned.m_cCondition.m_vExtendedAA.clear();
    learned.Residue('K', 128.0);
    learned.m_cCondition.HandleSelectMod();
    EXPECT_EQ(learned.Letters(), (Names{"K", "K+B"}));
    learned.SetSelMod(10);
    EXPECT_EQ(learned.Letters(), (Names{"K", "K", "K+B", "K+B", "K+A", "K+Acetyl[ProteinN-term]"}));
}

}  // namespace
}  // namespace tessel
