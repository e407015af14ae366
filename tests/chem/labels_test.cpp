#include <gtest/gtest.h>

#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"

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

}  // namespace
}  // namespace tessel
