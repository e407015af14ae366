#include <gtest/gtest.h>

#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"
#include "tests/support/classic.h"

namespace tessel {
namespace {

using test::captured_output;
using test::CChemistry;

using Names = std::vector<std::string>;
using Replacements = std::map<std::string, std::string>;
using AALabel = std::map<char, Replacements>;
using ModLabel = std::map<std::string, Replacements>;

// ---- Method ----

TEST(quant_method, text_is_cut_into_label_names) {
    struct {
        const char* method;
        Names labels;
    } rows[] = {
        {"1|None|", {"None"}},
        {"1|None", {"None"}},
        {"2|None|SILAC-K8|", {"None", "SILAC-K8"}},
        {"2|None|SILAC-K8", {"None", "SILAC-K8"}},
        {"|None|", {"None"}},
        {"None", {"None"}},
        {"", {}},
        {"1|", {}},
        {"|", {}},
        {"1||", {""}},
        {"1|||", {"", ""}},
        {"2||None", {"", "None"}},
    };
    for (const auto& row : rows) {
        CCondition condition;
        condition.m_strQuant = row.method;
        condition.ParseQuantMethod();
        EXPECT_EQ(condition.m_vLabels, row.labels) << row.method;
    }
}

TEST(quant_method, default_is_the_one_label_none) {
    CCondition condition;
    condition.ParseQuantMethod();
    EXPECT_EQ(condition.m_vLabels, (Names{"None"}));
}

TEST(quant_method, names_are_added_to_those_of_an_earlier_call) {
    CCondition condition;
    condition.ParseQuantMethod();
    condition.ParseQuantMethod();
    EXPECT_EQ(condition.m_vLabels, (Names{"None", "None"}));
}

// ---- Definition of a label ----

// Reads the label L, whose definition is this.
class CLabel : public CChemistry {
public:
    explicit CLabel(const std::string& definition) {
        for (const char* name : {"Oxidation[M]", "Acetyl[K]"}) {
            m_cCondition.m_vMods.emplace_back();
            m_cCondition.m_vMods.back().m_strName = name;
        }
        Labels("heading\nL=" + definition + '\n');
        m_cCondition.ReadLabelInfo("L");
    }
    const AALabel& Residues() const { return m_cCondition.m_mapAALabel; }
    const ModLabel& Mods() const { return m_cCondition.m_mapModLabel; }
};

TEST(label, empty_value_and_none_change_nothing) {
    for (const char* definition : {"", "none", "none\r", "\r", "no\rne", "none\r\r"}) {
        const CLabel label(definition);
        EXPECT_TRUE(label.Residues().empty()) << definition;
        EXPECT_TRUE(label.Mods().empty()) << definition;
    }
}

TEST(label, residue_item_replaces_an_element_of_each_letter) {
    const CLabel label("R:KR{C,13C}");
    EXPECT_EQ(label.Residues(), (AALabel{{'K', {{"C", "13C"}}}, {'R', {{"C", "13C"}}}}));
    EXPECT_TRUE(label.Mods().empty());
}

TEST(label, modification_item_replaces_an_element_of_the_modification) {
    const CLabel label("M:Gln->pyro-Glu[AnyN-termQ]{N,15N}");
    EXPECT_EQ(label.Mods(), (ModLabel{{"Gln->pyro-Glu[AnyN-termQ]", {{"N", "15N"}}}}));
    EXPECT_TRUE(label.Residues().empty());
}

TEST(label, items_follow_each_other_without_a_separator) {
    const CLabel label("R:K{C,13C}M:X{N,15N}R:R{N,15N}\r");
    EXPECT_EQ(label.Residues(), (AALabel{{'K', {{"C", "13C"}}}, {'R', {{"N", "15N"}}}}));
    EXPECT_EQ(label.Mods(), (ModLabel{{"X", {{"N", "15N"}}}}));
}

TEST(label, character_behind_the_kind_is_not_looked_at) {
    const CLabel label("R{K{C,13C}M-X{N,15N}");
    EXPECT_EQ(label.Residues(), (AALabel{{'K', {{"C", "13C"}}}}));
    EXPECT_EQ(label.Mods(), (ModLabel{{"X", {{"N", "15N"}}}}));
}

TEST(label, three_signs_mean_every_residue) {
    for (const char* sign : {"*", "+", "-"}) {
        const CLabel label(std::string("R:") + sign + "{N,15N}");
        ASSERT_EQ(label.Residues().size(), 26u) << sign;
        for (char letter = 'A'; letter <= 'Z'; ++letter)
            EXPECT_EQ(label.Residues().at(letter), (Replacements{{"N", "15N"}})) << sign << letter;
    }
}

TEST(label, three_signs_mean_every_modification_of_the_table) {
    for (const char* sign : {"*", "+", "-"}) {
        const CLabel label(std::string("M:") + sign + "{N,15N}");
        EXPECT_EQ(label.Mods(),
                  (ModLabel{{"Acetyl[K]", {{"N", "15N"}}}, {"Oxidation[M]", {{"N", "15N"}}}}))
            << sign;
    }
}

TEST(label, later_replacement_of_an_element_overwrites_the_earlier) {
    const CLabel label("R:*{C,13C}R:K{C,14C}R:K{N,15N}M:X{C,13C}M:X{C,14C}");
    EXPECT_EQ(label.Residues().at('K'), (Replacements{{"C", "14C"}, {"N", "15N"}}));
    EXPECT_EQ(label.Residues().at('A'), (Replacements{{"C", "13C"}}));
    EXPECT_EQ(label.Mods(), (ModLabel{{"X", {{"C", "14C"}}}}));
}

TEST(label, first_line_with_the_exact_name_is_the_definition) {
    CChemistry chemistry;
    chemistry.Labels(
        "L=R:A{C,13C}\n\nno sign\nl=R:B{C,13C}\nL =R:C{C,13C}\n L=R:D{C,13C}\nLL=R:E{C,13C}\n"
        "L=R:F{C,13C}\r\nL=R:G{C,13C}\n");
    chemistry.m_cCondition.ReadLabelInfo("L");
    EXPECT_EQ(chemistry.m_cCondition.m_mapAALabel, (AALabel{{'F', {{"C", "13C"}}}}));
}

TEST(label, reading_replaces_the_label_before) {
    CLabel label("R:K{C,13C}M:X{C,13C}");
    label.Labels("heading\nL=none\n");
    label.m_cCondition.ReadLabelInfo("L");
    EXPECT_TRUE(label.Residues().empty());
    EXPECT_TRUE(label.Mods().empty());
}

TEST(label, malformed_items_end_the_reading) {
    for (const char* rest : {"R", "R:", "R:R", "R:R{", "R:R{N", "R:R{N,15N", "R:R{N15N}", "R:R{}",
                             "R:R{N}M:X{N,15N}", "M", "M:", "RR", "R:R}N,15N", "MX{N,15N"}) {
        const CLabel label(std::string("R:K{C,13C}") + rest);
        EXPECT_EQ(label.Residues(), (AALabel{{'K', {{"C", "13C"}}}})) << rest;
    }
    EXPECT_TRUE(CLabel("R:R{N}M:X{N,15N}").Mods().empty());
}

TEST(label, empty_parts_of_an_item_are_taken_as_they_are) {
    const CLabel label("R:{N,15N}M:{,}");
    EXPECT_TRUE(label.Residues().empty());
    EXPECT_EQ(label.Mods(), (ModLabel{{"", {{"", ""}}}}));
}

TEST(label, missing_definition_ends_the_process) {
    CChemistry chemistry;
    chemistry.Labels("None=none\nLight=none\n");
    EXPECT_ENDS_PROCESS(chemistry.m_cCondition.ReadLabelInfo("None"),
                        "[Tessel] ALERT: Cannot find the label: None\n", "");
    CChemistry without;
    EXPECT_ENDS_PROCESS(without.m_cCondition.ReadLabelInfo("None"),
                        "[Tessel] ALERT: Cannot find the label: None\n", "");
}

TEST(label, unknown_kind_ends_the_process) {
    EXPECT_ENDS_PROCESS(CLabel("X:K{C,13C}"), "", "unknown label type!\n");
    EXPECT_ENDS_PROCESS(CLabel("R:K{C,13C};R:R{C,13C}"), "", "unknown label type!\n");
    EXPECT_ENDS_PROCESS(CLabel("r"), "", "unknown label type!\n");
    EXPECT_ENDS_PROCESS(CLabel("None"), "", "unknown label type!\n");
    // Only the first carriage return is passed over.
    EXPECT_ENDS_PROCESS(CLabel("n\ro\rne"), "", "unknown label type!\n");
    EXPECT_ENDS_PROCESS(CLabel("none "), "", "unknown label type!\n");
}

// ---- Relabelled residues ----

// The residues in the label L, read from a table that was labelled before.
class CLabelledResidues : public CChemistry {
public:
    CLabelledResidues(const std::string& residues, const std::string& definition) {
        Elements();
        Residues(residues);
        Labels("heading\nL=" + definition + '\n');
        m_cCondition.m_vLabels = {"L"};
        m_cCondition.m_strOutputPath = m_cFolder.Path() + '\\';
        m_cCondition.ReadLabelInfo("L");
        m_cCondition.GenTmpAA(0);
    }
    double Mass(char letter) const {
        return m_cCondition.m_cAlphaBet.m_lfMass[static_cast<std::size_t>(letter - 'A')];
    }
    std::string Composition(char letter) const {
        return m_cCondition.m_cAlphaBet.m_strComposition[static_cast<std::size_t>(letter - 'A')];
    }
};

const std::string kLysineAndGlycine = "R1=K|C(6)H(12)N(2)O(1)|\nR2=G|C(2)H(3)N(1)O(1)|\n";

TEST(labelled_residues, heavy_carbon_of_lysine_changes_only_lysine) {
    const CLabelledResidues label(kLysineAndGlycine, "R:K{C,13C}");
    EXPECT_EQ(label.Mass('K'), 134.0);  // 6 * 13 + 12 + 2 * 14 + 16
    EXPECT_EQ(label.Composition('K'), "13C(6)H(12)N(2)O(1)");
    EXPECT_EQ(label.Mass('G'), 57.0);  // 2 * 12 + 3 + 14 + 16
    EXPECT_EQ(label.Composition('G'), "C(2)H(3)N(1)O(1)");
}

TEST(labelled_residues, heavy_nitrogen_of_all_residues) {
    const CLabelledResidues label(kLysineAndGlycine, "R:*{N,15N}");
    EXPECT_EQ(label.Mass('K'), 130.0);  // 72 + 12 + 2 * 15 + 16
    EXPECT_EQ(label.Mass('G'), 58.0);   // 24 + 3 + 15 + 16
    EXPECT_EQ(label.Composition('G'), "C(2)H(3)15N(1)O(1)");
    EXPECT_EQ(label.Mass('A'), 0.0);
}

TEST(labelled_residues, replacements_are_not_replaced_again) {
    const CLabelledResidues label("R1=K|C(1)N(1)|\n", "R:K{C,N}R:K{N,O}");
    EXPECT_EQ(label.Composition('K'), "N(1)O(1)");
    EXPECT_EQ(label.Mass('K'), 30.0);  // 14 + 16
}

TEST(labelled_residues, counts_stay_as_they_were_written) {
    const CLabelledResidues label("R1=K|C(+02)H(-1)|\n", "R:K{C,13C}");
    EXPECT_EQ(label.Composition('K'), "13C(+02)H(-1)");
    EXPECT_EQ(label.Mass('K'), 25.0);  // 2 * 13 - 1
}

TEST(labelled_residues, unknown_replacement_weighs_nothing) {
    const CLabelledResidues label("R1=K|C(2)H(3)|\n", "R:K{C,14C}");
    EXPECT_EQ(label.Mass('K'), 3.0);
    EXPECT_EQ(label.Composition('K'), "14C(2)H(3)");
}

TEST(labelled_residues, are_told_as_details_and_written) {
    CChemistry chemistry;
    chemistry.Elements("E1=C|12.0000049,|1,|\nE2=13C|13.5,|1,|\n");
    chemistry.Residues("R1=K|C(2)|\nR2=B|C(1)|\nR3=K|C(1)|\n");
    CCondition& condition = chemistry.m_cCondition;
    condition.m_vLabels = {"None", "L"};
    condition.m_strOutputPath = chemistry.m_cFolder.Path() + '\\';
    condition.m_mapAALabel['K']["C"] = "13C";
    condition.m_eLogType = LOG_DEBUG;
    EXPECT_EQ(captured_output([&] { condition.GenTmpAA(1); }),
              "[Tessel] DEBUG: K 27.00000\n\n[Tessel] DEBUG: B 12.00000\n\n"
              "[Tessel] DEBUG: K 13.50000\n\n");
    const std::string table = chemistry.m_cFolder.Read("2.aa");
    EXPECT_EQ(table.substr(0, 13), "label_name=L\n");
    EXPECT_NE(table.find("\nR2=B|C(1)|\n"), std::string::npos);
    EXPECT_NE(table.find("\nR11=K|13C(1)|\n"), std::string::npos);
}

TEST(labelled_residues, letter_of_a_group_has_an_entry_in_the_label) {
    const CLabelledResidues label("R1=B||\nR2=C|xyz|\nR3=D|C(1)|\n", "none");
    EXPECT_EQ(label.m_cCondition.m_mapAALabel, (AALabel{{'D', {}}}));
}

TEST(labelled_residues, missing_table_still_writes_the_residues) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues("R1=K|C(2)|\n");
    CCondition& condition = chemistry.m_cCondition;
    condition.m_vLabels = {"L"};
    condition.m_strOutputPath = chemistry.m_cFolder.Path() + '\\';
    condition.m_strAAPath = "absent";
    condition.m_mapAALabel['K']["C"] = "13C";
    condition.GenTmpAA(0);
    EXPECT_NE(chemistry.m_cFolder.Read("1.aa").find("\nR11=K|C(2)|\n"), std::string::npos);
}

// ---- Relabelled modifications ----

// The modification table X in the label of this definition, which has this index.
std::vector<CMod> labelled(const std::string& mods, const std::string& definition,
                           std::size_t labelIndex = 0) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Mods(mods);
    chemistry.Labels("heading\nL=" + definition + '\n');
    CCondition& condition = chemistry.m_cCondition;
    condition.m_strOutputPath = chemistry.m_cFolder.Path() + '\\';
    condition.ReadLabelInfo("L");
    condition.GenTmpMod(labelIndex);
    EXPECT_TRUE(chemistry.m_cFolder.Has(std::to_string(labelIndex + 1) + ".mod"));
    return condition.m_vMods;
}

// Name, mass and composition of each.
Names told(const std::vector<CMod>& mods) {
    Names lines;
    for (const CMod& mod : mods) {
        lines.push_back(mod.m_strName + ' ' + test::printed("%f", mod.m_lfMass) + ' ' +
                        mod.m_strComposition);
    }
    return lines;
}

TEST(labelled_mods, label_none_gives_every_modification_its_unlabelled_name) {
    EXPECT_EQ(told(labelled("A=K NORMAL 1.5 1 0 C(1)\nB=K NORMAL 2.5 2 0 N(1)\n", "none")),
              (Names{"A#0 1.500000 C(1)", "B#0 2.500000 N(1)"}));
}

TEST(labelled_mods, changed_one_comes_before_its_unlabelled_form) {
    EXPECT_EQ(
        told(labelled("A=K NORMAL 1.5 1 0 C(2)H(-1)\nB=K NORMAL 2.5 2 0 C(1)\n", "M:A{C,13C}")),
        (Names{"A#1 25.000000 13C(2)H(-1)",  // 2 * 13 - 1 replaces the mass of the file
               "A#0 1.500000 C(2)H(-1)", "B#0 2.500000 C(1)"}));
}

TEST(labelled_mods, labelled_form_keeps_everything_else) {
    const auto mods = labelled("name1=A\t7\nA=KR PRO_N 12 12 1 3.5 3.5 C(1)\n", "M:A{C,13C}");
    ASSERT_EQ(mods.size(), 2u);
    EXPECT_EQ(mods[0].m_lfMass, 13.0);
    EXPECT_EQ(mods[0].m_strSites, "KR");
    EXPECT_EQ(mods[0].m_eType, PRO_N);
    EXPECT_EQ(mods[0].m_vLossMass, (std::vector<double>{3.5}));
    EXPECT_EQ(mods[0].m_nFlag, 7);
}

TEST(labelled_mods, number_in_the_name_is_the_label_index_plus_one) {
    EXPECT_EQ(labelled("A=K NORMAL 1 1 0 C(1)\n", "M:A{C,13C}", 1)[0].m_strName, "A#2");
    EXPECT_EQ(labelled("A=K NORMAL 1 1 0 C(1)\n", "M:A{C,13C}", 9)[0].m_strName, "A#:");
}

TEST(labelled_mods, star_relabels_every_modification_that_holds_the_element) {
    EXPECT_EQ(told(labelled("A=K NORMAL 1 1 0 C(1)N(1)\nB=K NORMAL 2 2 0 H(1)\n"
                            "C=K NORMAL 3 3 0 N(2)\n",
                            "M:*{N,15N}")),
              (Names{"A#1 27.000000 C(1)15N(1)", "A#0 1.000000 C(1)N(1)", "B#0 2.000000 H(1)",
                     "C#1 30.000000 15N(2)", "C#0 3.000000 N(2)"}));
}

TEST(labelled_mods, replaced_atoms_that_leave_drop_the_unlabelled_form) {
    EXPECT_EQ(told(labelled("A=K NORMAL -17 -17 0 N(-1)H(-3)\nB=K NORMAL 11 11 0 C(1)H(-1)\n",
                            "M:*{N,15N}M:B{C,13C}")),
              (Names{"A#1 -18.000000 15N(-1)H(-3)", "B#1 12.000000 13C(1)H(-1)",
                     "B#0 11.000000 C(1)H(-1)"}));
    // One such group is enough, wherever it stands.
    EXPECT_EQ(told(labelled("A=K NORMAL 1 1 0 N(-1)C(1)\n", "M:A{C,13C}M:A{N,15N}")),
              (Names{"A#1 -2.000000 15N(-1)13C(1)"}));
    EXPECT_EQ(told(labelled("A=K NORMAL 1 1 0 C(1)N(-1)O(1)\n", "M:A{C,13C}M:A{N,15N}")),
              (Names{"A#1 14.000000 13C(1)15N(-1)O(1)"}));
}

TEST(labelled_mods, conversions_have_no_unlabelled_form) {
    const std::string mods =
        "Ala->Ser[A]=A NORMAL 16 16 0 O(1)\nGly->Ala[G]=G NORMAL 14 14 0 C(1)H(2)\n";
    EXPECT_EQ(told(labelled(mods, "M:Gly->Ala[G]{C,13C}")),
              (Names{"Gly->Ala[G]#1 15.000000 13C(1)H(2)"}));
    EXPECT_TRUE(labelled(mods, "none").empty());
}

TEST(labelled_mods, conversions_are_known_by_length_and_arrow) {
    for (const char* name : {"Ala->Ser[AB]", "Ala->Ser[]", "Ala-<Ser[A]", "Alan->er[A]",
                             "Al->Serr[A]", "AlanineS[A]", "Gln->pyro-Glu[AnyN-termQ]"}) {
        const auto mods = labelled(std::string(name) + "=A NORMAL 16 16 0 O(1)\n", "none");
        ASSERT_EQ(mods.size(), 1u) << name;
        EXPECT_EQ(mods[0].m_strName, std::string(name) + "#0");
    }
}

TEST(labelled_mods, modification_without_groups_is_kept_unlabelled) {
    EXPECT_EQ(told(labelled("A=K NORMAL 16 16 0\nAla->Ser[A]=A NORMAL 16 16 0\n"
                            "B=K NORMAL 5 5 0 nonsense\nCys->Ser[C]=C NORMAL 5 5 0 nonsense\n",
                            "M:*{C,13C}")),
              (Names{"A#0 16.000000 ", "Ala->Ser[A]#0 16.000000 ", "B#0 5.000000 nonsense",
                     "Cys->Ser[C]#0 5.000000 nonsense"}));
}

TEST(labelled_mods, replacement_by_itself_counts_as_a_change) {
    EXPECT_EQ(told(labelled("A=K NORMAL 1 1 0 C(1)\n", "M:A{C,C}")),
              (Names{"A#1 12.000000 C(1)", "A#0 1.000000 C(1)"}));
}

TEST(labelled_mods, placeholder_of_a_mod_list_is_relabelled_like_any_other) {
    CChemistry chemistry;
    chemistry.Mods("");
    chemistry.m_cCondition.m_strOutputPath = chemistry.m_cFolder.Path() + '\\';
    chemistry.m_cCondition.CreateModList();
    chemistry.m_cCondition.GenTmpMod(0);
    EXPECT_EQ(told(chemistry.m_cCondition.m_vMods), (Names{"NULL#0 0.000000 H(300)"}));
}

TEST(labelled_mods, unnamed_modifications_add_no_element) {
    CChemistry chemistry;
    chemistry.Mods("A=K NORMAL 1 1 0 Xx(1)\n");
    chemistry.m_cCondition.m_strOutputPath = chemistry.m_cFolder.Path() + '\\';
    chemistry.m_cCondition.GenTmpMod(0);
    EXPECT_TRUE(chemistry.m_cCondition.m_mapElementMass.empty());
}

}  // namespace
}  // namespace tessel
