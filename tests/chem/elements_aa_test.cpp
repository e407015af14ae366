#include <gtest/gtest.h>

#include <limits>

#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

using Masses = std::map<std::string, double>;
using test::captured_output;
using test::CChemistry;

Masses elements(const std::string& text) {
    CChemistry chemistry;
    chemistry.Elements(text);
    return chemistry.m_cCondition.m_mapElementMass;
}

double mass(const CChemistry& chemistry, char letter) {
    return chemistry.m_cCondition.m_cAlphaBet.m_lfMass[static_cast<std::size_t>(letter - 'A')];
}

std::string composition(const CChemistry& chemistry, char letter) {
    const auto index = static_cast<std::size_t>(letter - 'A');
    return chemistry.m_cCondition.m_cAlphaBet.m_strComposition[index];
}

TEST(element_table, most_abundant_isotope_gives_the_mass) {
    EXPECT_EQ(elements("E1=Fe|53.9396,55.9349,56.9354,|0.058,0.917,0.022,|\n"),
              (Masses{{"Fe", 55.9349}}));
}

TEST(element_table, first_of_equal_abundances_wins) {
    EXPECT_EQ(elements("E1=X|1.5,2.5,3.5,|0.2,0.4,0.4,|\nE2=Y|1.25,2.25,|0.5,0.5,|\n"),
              (Masses{{"X", 2.5}, {"Y", 1.25}}));
}

TEST(element_table, without_an_abundance_above_zero_the_first_mass_is_taken) {
    EXPECT_EQ(elements("E1=X|1.5,2.5,|0,0,|\nE2=Y|3.5,4.5,||\nE3=Z|5.5,6.5,|-1,nan,|\n"),
              (Masses{{"X", 1.5}, {"Y", 3.5}, {"Z", 5.5}}));
}

TEST(element_table, only_lines_that_begin_with_e_and_hold_a_sign_are_records) {
    EXPECT_EQ(elements("@NUMBER_ELEMENT=9\ne1=A|1,|1,|\n E1=B|1,|1,|\n\nElement C|1,|1,|\n"
                       "Eany text at all=D|4,|1,|\n"),
              (Masses{{"D", 4.0}}));
}

TEST(element_table, only_the_first_sign_opens_the_record) {
    EXPECT_EQ(elements("E1=A=B|1,|1,|\n"), (Masses{{"A=B", 1.0}}));
}

TEST(element_table, last_field_ends_at_the_third_bar_or_the_line_end) {
    EXPECT_EQ(elements("E1=A|1,2|0.1,0.2|0.9\nE2=B|1,2|0.1,0.2\r\nE3=C|1,2|0.1,0.2"),
              (Masses{{"A", 2.0}, {"B", 2.0}, {"C", 2.0}}));
}

TEST(element_table, later_record_of_a_symbol_replaces_the_earlier) {
    EXPECT_EQ(elements("E1=A|1,|1,|\nE2=A|2,|1,|\n"), (Masses{{"A", 2.0}}));
}

TEST(element_table, symbols_are_told_apart_by_case) {
    EXPECT_EQ(elements("E1=CO|1,|1,|\nE2=Co|2,|1,|\n"), (Masses{{"CO", 1.0}, {"Co", 2.0}}));
}

TEST(element_table, too_short_a_mass_list_defines_nothing) {
    EXPECT_EQ(elements("E1=A|1,|0.1,0.9,|\nE2=B||1,|\nE3=C\nE4=D|\n"), (Masses{}));
}

TEST(element_table, too_short_a_mass_list_leaves_the_earlier_record) {
    EXPECT_EQ(elements("E1=A|7,|1,|\nE2=A|1,|0.1,0.9,|\n"), (Masses{{"A", 7.0}}));
}

TEST(element_table, empty_pieces_of_the_lists_are_dropped) {
    EXPECT_EQ(elements("E1=A|,1,,2,,|,0.1,,0.9,|\n"), (Masses{{"A", 2.0}}));
}

TEST(element_table, empty_symbol_does_not_shift_the_fields) {
    EXPECT_EQ(elements("E1=|1,2,|0.1,0.9,|\n"), (Masses{{"", 2.0}}));
}

TEST(element_table, malformed_numbers_read_as_zero) {
    EXPECT_EQ(elements("E1=A|x,2,|1.0,y,|\nE2=B|12.5Da,|1,|\n"), (Masses{{"A", 0.0}, {"B", 12.5}}));
}

TEST(element_table, byte_order_mark_and_carriage_returns_do_not_matter) {
    EXPECT_EQ(elements("\xEF\xBB\xBF"
                       "E1=A|1,|1,|\r\nE2=B|2,3|0.1,0.9\r\n"),
              (Masses{{"A", 1.0}, {"B", 3.0}}));
}

TEST(element_table, reading_again_forgets_the_elements_before) {
    CChemistry chemistry;
    chemistry.Elements("E1=A|1,|1,|\n");
    chemistry.Elements("E1=B|2,|1,|\n");
    EXPECT_EQ(chemistry.m_cCondition.m_mapElementMass, (Masses{{"B", 2.0}}));
}

TEST(element_table, missing_file_leaves_an_empty_map_without_a_message) {
    CChemistry chemistry;
    chemistry.m_cCondition.m_eLogType = LOG_DEBUG;
    chemistry.m_cCondition.m_mapElementMass = {{"A", 1.0}};
    EXPECT_EQ(captured_output([&] { chemistry.m_cCondition.ReadElementInfo(); }), "");
    EXPECT_TRUE(chemistry.m_cCondition.m_mapElementMass.empty());
}

TEST(amino_acid_table, residue_gets_the_sum_and_the_composition_in_file_order) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("@NUMBER_RESIDUE=1\nR1=G|O(1)C(2)N(1)H(3)|\n");
    EXPECT_EQ(mass(chemistry, 'G'), 57.0);  // 16 + 2 * 12 + 14 + 3 * 1
    EXPECT_EQ(composition(chemistry, 'G'), "O(1)C(2)N(1)H(3)");
}

TEST(amino_acid_table, masses_are_added_in_the_order_of_the_groups) {
    CChemistry chemistry;
    chemistry.Elements("E1=A|1e16,|1,|\nE2=B|1,|1,|\n");
    chemistry.Residues("R1=G|A(1)B(1)A(-1)|\nR2=K|A(1)A(-1)B(1)|\n");
    EXPECT_EQ(mass(chemistry, 'G'), 0.0);  // 1e16 + 1 rounds to 1e16
    EXPECT_EQ(mass(chemistry, 'K'), 1.0);
}

TEST(amino_acid_table, unknown_element_weighs_nothing_but_stays_in_the_composition) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.m_cCondition.m_eLogType = LOG_DEBUG;
    EXPECT_EQ(captured_output([&] { chemistry.Residues("R1=U|C(3)Se(1)H(5)|\n"); }), "");
    EXPECT_EQ(mass(chemistry, 'U'), 41.0);  // 3 * 12 + 5 * 1
    EXPECT_EQ(composition(chemistry, 'U'), "C(3)Se(1)H(5)");
    EXPECT_EQ(chemistry.m_cCondition.m_mapElementMass.at("Se"), 0.0);
}

TEST(amino_acid_table, lower_case_names_and_lines_beginning_with_a_space_are_ignored) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=g|C(1)|\n R2=G|C(2)|\nr3=G|C(3)|\nR4=1|C(4)|\nR5=|C(5)|\nR6 G|C(6)|\n");
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        EXPECT_EQ(mass(chemistry, letter), 0.0) << letter;
        EXPECT_EQ(composition(chemistry, letter), "") << letter;
    }
}

TEST(amino_acid_table, only_the_first_character_of_the_name_counts) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=Gly|C(2)|\n");
    EXPECT_EQ(mass(chemistry, 'G'), 24.0);
}

TEST(amino_acid_table, letters_that_the_file_leaves_out_keep_mass_zero) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=A|C(1)|\nR2=Z|C(2)|\n");
    EXPECT_EQ(mass(chemistry, 'A'), 12.0);
    EXPECT_EQ(mass(chemistry, 'Z'), 24.0);
    for (char letter = 'B'; letter <= 'Y'; ++letter)
        EXPECT_EQ(mass(chemistry, letter), 0.0) << letter;
}

TEST(amino_acid_table, second_reading_keeps_letters_that_are_absent_from_the_file) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=A|C(1)|\nR2=C|C(2)|\n");
    chemistry.Residues("R1=A|C(5)|\n");
    EXPECT_EQ(mass(chemistry, 'A'), 60.0);
    EXPECT_EQ(composition(chemistry, 'A'), "C(5)");
    EXPECT_EQ(mass(chemistry, 'C'), 24.0);
}

TEST(amino_acid_table, negative_counts_lower_the_mass) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=A|C(2)H(-3)|\n");
    EXPECT_EQ(mass(chemistry, 'A'), 21.0);  // 24 - 3
    EXPECT_EQ(composition(chemistry, 'A'), "C(2)H(-3)");
}

TEST(amino_acid_table, later_record_of_a_letter_replaces_the_earlier) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=A|C(1)|\nR2=A|H(2)|\nR3=C|C(1)|\nR4=C||\nR5=D|C(1)|\nR6=D\n");
    EXPECT_EQ(mass(chemistry, 'A'), 2.0);
    EXPECT_EQ(composition(chemistry, 'A'), "H(2)");
    for (const char letter : {'C', 'D'}) {
        EXPECT_EQ(mass(chemistry, letter), 0.0);
        EXPECT_EQ(composition(chemistry, letter), "");
    }
}

TEST(amino_acid_table, composition_ends_at_the_next_bar_or_the_line_end) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=A|C(1)|H(9)|\nR2=C|C(2)\r\nR3=D|C(3)");
    EXPECT_EQ(composition(chemistry, 'A'), "C(1)");
    EXPECT_EQ(composition(chemistry, 'C'), "C(2)");
    EXPECT_EQ(composition(chemistry, 'D'), "C(3)");
}

TEST(amino_acid_table, malformed_groups_are_skipped) {
    struct {
        const char* text;
        double mass;
        const char* composition;
    } rows[] = {
        {"C(2)H", 24.0, "C(2)"},           // no count at all
        {"C(2)H(3", 27.0, "C(2)H(3)"},     // the last bracket is missing
        {"(2)C(1)", 12.0, "C(1)"},         // no symbol
        {"C()H(1)", 1.0, "H(1)"},          // no count in the brackets
        {"C2H3", 0.0, ""},                 // no bracket
        {")))C(1))", 12.0, "C(1)"},        // stray brackets
        {"C(x)H(1)", 1.0, "C(x)H(1)"},     // a count that is no number is 0
        {"C((2)H(1)", 25.0, "C(2)H(1)"},   // doubled bracket
        {"((C(2)H(1)", 25.0, "C(2)H(1)"},  // brackets in front
        {"(5(3)H(1)", 1.0, "5(3)H(1)"},    // a symbol all the same
        {"C(1)C(1)", 24.0, "C(1)C(1)"},    // a symbol twice
        {"C( +2x)", 24.0, "C( +2x)"},      // count texts stay as they are
    };
    for (const auto& row : rows) {
        CChemistry chemistry;
        chemistry.Elements();
        chemistry.Residues(std::string("R1=A|") + row.text + "|\n");
        EXPECT_EQ(mass(chemistry, 'A'), row.mass) << row.text;
        EXPECT_EQ(composition(chemistry, 'A'), row.composition) << row.text;
    }
}

TEST(amino_acid_table, counts_saturate_and_are_multiplied_as_doubles) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=A|C(99999999999999999999)|\n");
    EXPECT_EQ(mass(chemistry, 'A'), 12.0 * std::numeric_limits<int>::max());
}

TEST(amino_acid_table, lines_have_any_length) {
    CChemistry chemistry;
    chemistry.Elements();
    std::string groups;
    for (int i = 0; i < 50000; ++i)
        groups += "C(1)";
    chemistry.Residues("R1=A|" + groups + "|\nR2=C|H(1)|\n");
    EXPECT_EQ(mass(chemistry, 'A'), 600000.0);
    EXPECT_EQ(mass(chemistry, 'C'), 1.0);
}

TEST(amino_acid_table, missing_file_changes_nothing_without_a_message) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=A|C(1)|\n");
    chemistry.m_cCondition.m_eLogType = LOG_DEBUG;
    for (const std::string& path :
         {chemistry.m_cFolder.Path("absent"), std::string(), chemistry.m_cFolder.Path()}) {
        chemistry.m_cCondition.m_strAAPath = path;
        EXPECT_EQ(captured_output([&] { chemistry.m_cCondition.ReadAA(); }), "");
        EXPECT_EQ(mass(chemistry, 'A'), 12.0);
    }
}

TEST(amino_acid_table, path_may_hold_backslashes) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.m_cFolder.Write("aa.ini", "R1=A|C(1)|\n");
    chemistry.m_cCondition.m_strAAPath = chemistry.m_cFolder.Path() + "\\aa.ini";
    chemistry.m_cCondition.ReadAA();
    EXPECT_EQ(mass(chemistry, 'A'), 12.0);
}

TEST(extended_aa, lighter_letters_come_first_and_equal_ones_compare_false) {
    ExtendedAA light;
    ExtendedAA heavy;
    light.m_lfMass = -1.0;
    heavy.m_lfMass = 2.0;
    EXPECT_TRUE(ExtendedAA::EAA_Mass_Less(light, heavy));
    EXPECT_FALSE(ExtendedAA::EAA_Mass_Less(heavy, light));
    EXPECT_FALSE(ExtendedAA::EAA_Mass_Less(light, light));
    ExtendedAA none;
    none.m_lfMass = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(ExtendedAA::EAA_Mass_Less(heavy, none));
    EXPECT_FALSE(ExtendedAA::EAA_Mass_Less(none, heavy));
}

TEST(extended_aa, fresh_letter_is_not_ranked) {
    const ExtendedAA fresh;
    EXPECT_EQ(fresh.m_pMod, nullptr);
    EXPECT_EQ(fresh.m_ucCode, 0xFF);
}

}  // namespace
}  // namespace tessel
