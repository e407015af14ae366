#include "tessel/chem/mod.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"
#include "tests/support/classic.h"

namespace tessel {
namespace {

using test::captured_output;
using test::CChemistry;

using Losses = std::vector<double>;

std::vector<CMod> mods(const std::string& text) {
    CChemistry chemistry;
    chemistry.Mods(text);
    return chemistry.m_cCondition.m_vMods;
}

// Everything that a definition says, in a form that a failure prints.
std::string told(const CMod& mod) {
    test::CClassicOut text;
    text << mod.m_strName << ' ' << mod.m_strSites << ' ' << mod.m_eType << ' ' << mod.m_lfMass;
    for (const double loss : mod.m_vLossMass)
        text << " -" << loss;
    text << ' ' << mod.m_strComposition << ' ' << mod.m_nFlag;
    return text.str();
}

TEST(mod, fresh_modification_has_an_impossible_composition) {
    const CMod fresh;
    EXPECT_EQ(told(fresh), "  0 0 H(300) 0");
    EXPECT_EQ(fresh.m_lfProb, 1.0);
}

TEST(mod, lighter_ones_come_first_and_equal_ones_compare_false) {
    CMod light;
    CMod heavy;
    light.m_lfMass = -17.0;
    heavy.m_lfMass = 16.0;
    EXPECT_TRUE(CMod::Mass_Less(light, heavy));
    EXPECT_FALSE(CMod::Mass_Less(heavy, light));
    EXPECT_FALSE(CMod::Mass_Less(heavy, heavy));
    CMod none;
    none.m_lfMass = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(CMod::Mass_Less(heavy, none));
    EXPECT_FALSE(CMod::Mass_Less(none, heavy));
}

TEST(mod_line, without_losses_an_empty_field_follows_their_number) {
    CMod mod;
    mod.m_strName = "Oxidation[M]";
    mod.m_strSites = "M";
    mod.m_lfMass = 15.9949146;
    mod.m_strComposition = "O(1)";
    EXPECT_EQ(mod.GetLine(), "Oxidation[M]=M\tNORMAL\t15.994915\t15.994915\t0\t\tO(1)");
}

TEST(mod_line, every_loss_is_written_twice) {
    CMod mod;
    mod.m_strName = "X";
    mod.m_strSites = "ST";
    mod.m_eType = PRO_N;
    mod.m_lfMass = -0.5;
    mod.m_vLossMass = {97.976896, 1.0};
    mod.m_strComposition = "";
    EXPECT_EQ(mod.GetLine(),
              "X=ST\tPRO_N\t-0.500000\t-0.500000\t2\t\t97.976896\t97.976896\t1.000000\t1.000000\t");
}

TEST(mod_line, position_words_follow_the_type) {
    struct {
        MOD_TYPE type;
        const char* word;
    } rows[] = {
        {NORMAL, "NORMAL"},
        {PEP_C, "PEP_C"},
        {PEP_N, "PEP_N"},
        {PRO_C, "PRO_C"},
        {PRO_N, "PRO_N"},
        {static_cast<MOD_TYPE>(5), "NORMAL"},
        {MOD_PLACEHOLDER, "NORMAL"},
        {static_cast<MOD_TYPE>(-1), "NORMAL"},
    };
    for (const auto& row : rows) {
        CMod mod;
        mod.m_eType = row.type;
        EXPECT_EQ(mod.GetLine(),
                  std::string("=\t") + row.word + "\t0.000000\t0.000000\t0\t\tH(300)");
    }
}

TEST(mod_line, lines_have_any_length) {
    CMod mod;
    mod.m_strName = std::string(20000, 'n');
    mod.m_strComposition = std::string(20000, 'c');
    EXPECT_EQ(mod.GetLine(),
              mod.m_strName + "=\tNORMAL\t0.000000\t0.000000\t0\t\t" + mod.m_strComposition);
}

TEST(mod_table, definition_is_read_field_by_field) {
    const auto table = mods(
        "@NUMBER_MODIFICATION=1\nname1=Phospho[S]\t1\n"
        "Phospho[S]=S PEP_C 79.966331 79.979918 0 H(1)O(3)P(1)\n");
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(told(table[0]), "Phospho[S] S 1 79.9663 H(1)O(3)P(1) 1");
    EXPECT_EQ(table[0].m_lfMass, 79.966331);
    EXPECT_EQ(table[0].m_lfProb, 1.0);
}

TEST(mod_table, two_losses_are_kept_without_their_average_masses) {
    const auto table = mods("X=ST NORMAL 80.5 80.6 2 98.5 98.6 80.25 any C(1)\n");
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(table[0].m_vLossMass, (Losses{98.5, 80.25}));
    EXPECT_EQ(table[0].m_strComposition, "C(1)");
}

TEST(mod_table, position_words) {
    const auto table = mods(
        "a=A NORMAL 1 1 0 C(1)\nb=A PEP_C 1 1 0 C(1)\nc=A PEP_N 1 1 0 C(1)\n"
        "d=A PRO_C 1 1 0 C(1)\ne=A PRO_N 1 1 0 C(1)\nf=A pep_n 1 1 0 C(1)\ng=A NULL 1 1 0 C(1)\n");
    std::vector<int> types;
    for (const CMod& mod : table)
        types.push_back(mod.m_eType);
    EXPECT_EQ(types, (std::vector<int>{NORMAL, PEP_C, PEP_N, PRO_C, PRO_N, NORMAL, NORMAL}));
}

TEST(mod_table, unknown_position_words_are_taken_silently) {
    CChemistry chemistry;
    chemistry.m_cCondition.m_eLogType = LOG_WARNING;
    EXPECT_EQ(captured_output([&] { chemistry.Mods("f=A AnyWhere 1 1 0 C(1)\n"); }), "");
}

TEST(mod_table, flag_of_an_index_line_holds_until_the_next_one) {
    const auto table = mods(
        "a=A NORMAL 1 1 0 C(1)\n"
        "name1=b\t1\nb=A NORMAL 1 1 0 C(1)\nc=A NORMAL 1 1 0 C(1)\n"
        "name2=d\t0\nd=A NORMAL 1 1 0 C(1)\n");
    std::vector<int> flags;
    for (const CMod& mod : table)
        flags.push_back(mod.m_nFlag);
    EXPECT_EQ(flags, (std::vector<int>{0, 1, 1, 0}));
}

TEST(mod_table, flag_is_read_from_the_last_two_characters_of_the_index_line) {
    struct {
        const char* line;
        int flag;
    } rows[] = {{"name1=x\t1", 1},   {"name1=x\t42", 42},  {"name1=x\t1\r", 1},   {"name1=x 7", 7},
                {"name1=x\t-3", -3}, {"name1=x\t123", 23}, {"name1=x5", 0},       {"name1=55", 55},
                {"name=", 0},        {"name9=x\t1 ", 1},   {"names=1\t9=8\t2", 2}};
    for (const auto& row : rows) {
        const auto table = mods(std::string(row.line) + "\nx=A NORMAL 1 1 0 C(1)\n");
        ASSERT_EQ(table.size(), 1u) << row.line;
        EXPECT_EQ(table[0].m_nFlag, row.flag) << row.line;
    }
}

TEST(mod_table, flag_starts_at_zero_for_each_file) {
    CChemistry chemistry;
    chemistry.Mods("name1=a\t1\na=A NORMAL 1 1 0 C(1)\n");
    chemistry.Mods("b=A NORMAL 1 1 0 C(1)\n");
    ASSERT_EQ(chemistry.m_cCondition.m_vMods.size(), 1u);
    EXPECT_EQ(told(chemistry.m_cCondition.m_vMods[0]), "b A 0 1 C(1) 0");
}

TEST(mod_table, definitions_of_labels_are_dropped) {
    const auto table = mods(
        "Label_X[K]=K NORMAL 8 8 0 C(1)\nMyLabel_[K]=K NORMAL 8 8 0 C(1)\n"
        "Label[K]=K NORMAL 8 8 0 C(1)\n");
    ASSERT_EQ(table.size(), 2u);
    EXPECT_EQ(table[0].m_strName, "MyLabel_[K]");
    EXPECT_EQ(table[1].m_strName, "Label[K]");
}

TEST(mod_table, modification_whose_name_begins_with_name_is_an_index_line) {
    const auto table = mods("name_it[K]=K NORMAL 8 8 0 1\nx=K NORMAL 8 8 0 C(1)\n");
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(told(table[0]), "x K 0 8 C(1) 1");
}

TEST(mod_table, other_lines_are_ignored) {
    EXPECT_TRUE(mods("# a comment\n\n@NUMBER_MODIFICATION=7\nlabel_name=None\nno sign\n").empty());
}

TEST(mod_table, only_the_whole_keys_are_ignored) {
    const auto table = mods("@NUMBER_MODIFICATIONS=K NORMAL 1 1 0\nlabel_names=K NORMAL 1 1 0\n");
    EXPECT_EQ(table.size(), 2u);
}

TEST(mod_table, key_ends_at_the_first_sign_and_keeps_its_blanks) {
    const auto table = mods(" X [K] =K=R NORMAL 1 1 0 C(1)\n");
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(table[0].m_strName, " X [K] ");
    EXPECT_EQ(table[0].m_strSites, "K=R");
}

TEST(mod_table, runs_of_white_space_are_one_separator) {
    const auto table = mods("X=\t K \t\tNORMAL  1.5\t1.5 0\t\t\tC(1)  \r\n");
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(told(table[0]), "X K 0 1.5 C(1) 0");
}

TEST(mod_table, malformed_definitions_keep_what_was_read) {
    struct {
        const char* line;
        const char* told;
    } rows[] = {
        {"X=", "X  0 0  0"},
        {"X=K", "X K 0 0  0"},
        {"X=K PEP_N", "X K 2 0  0"},
        {"X=K PEP_N abc 1 0 C(1)", "X K 2 0  0"},
        {"X=K PEP_N 1.5", "X K 2 1.5  0"},
        {"X=K PEP_N 1.5 1.5 x C(1)", "X K 2 1.5  0"},
        {"X=K PEP_N 1.5 1.5 -1 C(1)", "X K 2 1.5  0"},
        {"X=K PEP_N 1.5 1.5 2 3.5 3.5 C(1)", "X K 2 1.5 -3.5  0"},
        {"X=K PEP_N 1.5 1.5 2 3.5 3.5 4.5", "X K 2 1.5 -3.5 -4.5  0"},
        {"X=K PEP_N 1.5 1.5 99999999999999999999 3.5 3.5", "X K 2 1.5 -3.5  0"},
        {"X=K PEP_N 1.5 1.5 0", "X K 2 1.5  0"},
        // What follows a number is the next field.
        {"X=K PEP_N 15.9x 0 C(1)", "X K 2 15.9 C(1) 0"},
        {"X=K PEP_N 1e999 1 0 C(1)", "X K 2 inf C(1) 0"},
    };
    for (const auto& row : rows) {
        std::vector<CMod> table;
        captured_output([&] { table = mods(std::string(row.line) + '\n'); });
        ASSERT_EQ(table.size(), 1u) << row.line;
        EXPECT_EQ(told(table[0]), row.told) << row.line;
    }
}

TEST(mod_table, malformed_definitions_are_told_once_with_the_first_line) {
    CChemistry chemistry;
    const std::string whole =
        "@NUMBER_MODIFICATION=9\nname1=W 0\nW=K NORMAL 1 1 0\nW=K NORMAL 1 1 1 2 2\nno record\n";
    EXPECT_EQ(captured_output([&] { chemistry.Mods(whole + "Label_X=\nV=K word 1 1 0 C(1)"); }),
              "");
    for (const char* line :
         {"X=", "X=K", "X=K PEP_N", "X=K PEP_N abc 1 0 C(1)", "X=K PEP_N 1.5", "X=K PEP_N 1.5 1.5",
          "X=K PEP_N 1.5 1.5 x C(1)", "X=K PEP_N 1.5 1.5 -1 C(1)", "X=K PEP_N 1.5 1.5 1",
          "X=K PEP_N 1.5 1.5 1 2", "X=K PEP_N 1.5 1.5 2 3.5 3.5 C(1)"}) {
        const std::string text = std::string(line) + '\n';
        EXPECT_EQ(
            captured_output([&] { chemistry.Mods(whole + text + whole + text); }),
            "[Tessel] ALERT: Malformed definitions: 2, the first on line 6 of the modification "
            "file: " +
                chemistry.m_cCondition.m_strModPath + '\n')
            << line;
    }
}

TEST(mod_table, duplicate_names_are_all_kept_in_file_order) {
    const auto table = mods("X=K NORMAL 1 1 0 C(1)\nX=R NORMAL 2 2 0 C(2)\n");
    ASSERT_EQ(table.size(), 2u);
    EXPECT_EQ(table[0].m_strSites, "K");
    EXPECT_EQ(table[1].m_strSites, "R");
}

TEST(mod_table, written_and_read_again_only_the_average_masses_change) {
    const std::string line =
        "Y[K]=KR\tPRO_C\t-17.026549\t-17.1\t2\t3.5\t3.6\t4.25\t4.3\tN(-1)H(-3)";
    const auto once = mods(line + '\n');
    ASSERT_EQ(once.size(), 1u);
    EXPECT_EQ(once[0].GetLine(),
              "Y[K]=KR\tPRO_C\t-17.026549\t-17.026549\t2\t\t3.500000\t3.500000\t4.250000\t"
              "4.250000\tN(-1)H(-3)");
    const auto twice = mods(once[0].GetLine() + '\n');
    ASSERT_EQ(twice.size(), 1u);
    EXPECT_EQ(told(twice[0]), told(once[0]));
    EXPECT_EQ(twice[0].m_lfMass, once[0].m_lfMass);
    EXPECT_EQ(twice[0].m_vLossMass, once[0].m_vLossMass);
}

TEST(mod_table, reading_is_announced_as_a_detail) {
    CChemistry chemistry;
    chemistry.m_cCondition.m_eLogType = LOG_DEBUG;
    EXPECT_EQ(captured_output([&] { chemistry.Mods(""); }),
              "[Tessel] DEBUG: Reading modifications... " +
                  chemistry.m_cFolder.Path("modification.ini") + "\n\n");
}

TEST(mod_table, missing_file_ends_the_process) {
    CChemistry chemistry;
    chemistry.m_cCondition.m_strModPath = "no\\such.ini";
    EXPECT_ENDS_PROCESS(chemistry.m_cCondition.ReadMod(),
                        "[Tessel] ALERT: Invalid modification file: no\\such.ini\n\n", "");
}

TEST(mod_table, folder_in_place_of_the_file_is_reported) {
    CChemistry chemistry;
    chemistry.Mods("X=K NORMAL 1 1 0 C(1)\n");
    chemistry.m_cCondition.m_strModPath = chemistry.m_cFolder.Path();
    EXPECT_EQ(
        captured_output([&] { chemistry.m_cCondition.ReadMod(); }),
        "[Tessel] ALERT: Cannot read the modification file: " + chemistry.m_cFolder.Path() + '\n');
    EXPECT_TRUE(chemistry.m_cCondition.m_vMods.empty());
}

TEST(mod_table, reading_forgets_the_fixed_modifications_of_the_table_before) {
    CChemistry chemistry;
    chemistry.m_cCondition.m_strFixMod = "X";
    chemistry.Mods("X=K NORMAL 1 1 0 C(1)\n");
    chemistry.m_cCondition.CreateModList();
    EXPECT_EQ(chemistry.m_cCondition.m_setFixMods.size(), 1u);
    chemistry.Mods("Y=K NORMAL 1 1 0 C(1)\n");
    EXPECT_TRUE(chemistry.m_cCondition.m_setFixMods.empty());
}

TEST(mod_table, byte_order_mark_is_skipped) {
    const auto table = mods("\xEF\xBB\xBFX=K NORMAL 1 1 0 C(1)\n");
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(table[0].m_strName, "X");
}

}  // namespace
}  // namespace tessel
