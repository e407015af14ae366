#include <gtest/gtest.h>

#include <stdexcept>

#include "tessel/condition/condition.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

// A working folder with a small chemistry and database, and a condition that uses it.
class initialize : public testing::Test {
protected:
    initialize() : m_cHere(m_cFolder.Path()) {
        m_cFolder.Write("element.ini", "E1=H|1.0,|1.0,|\nE2=C|12.0,|1.0,|\nE3=O|16.0,|1.0,|\n");
        m_cFolder.Write("quant.ini", "first line\nNone=none\n");
        m_cCondition.m_strAAPath = m_cFolder.Write("aa.ini", "R1=G|C(2)H(3)|\nR2=M|C(5)|\n");
        m_cCondition.m_strModPath = m_cFolder.Write(
            "modification.ini", "name1=Oxidation[M]\t1\nOxidation[M]=M NORMAL 16.0 16.0 0 O(1)\n");
        m_cCondition.m_strFastaPath = m_cFolder.Write("db.fasta", ">P1 one\nGGM\n");
        m_cCondition.m_strFixMod = "Oxidation[M]";
        m_cCondition.m_lfMaxDelta = 1.0;
    }

    test::CTempFolder m_cFolder;
    test::CWorkingFolder m_cHere;
    CCondition m_cCondition;
};

TEST_F(initialize, fills_every_table) {
    EXPECT_EQ(m_cCondition.Initialize(), 1);
    EXPECT_EQ(m_cCondition.m_vLabels, std::vector<std::string>{"None"});
    EXPECT_EQ(m_cCondition.m_mapElementMass.at("O"), 16.0);
    EXPECT_EQ(m_cCondition.m_cAlphaBet.m_lfMass['G' - 'A'], 27.0);
    ASSERT_EQ(m_cCondition.m_vSelMods.size(), 1u);
    EXPECT_EQ(m_cCondition.m_vSelMods[0]->m_strName, "Oxidation[M]");
    EXPECT_EQ(m_cCondition.m_vExtendedAA.size(), 3u);
    EXPECT_EQ(m_cCondition.m_vIonTypes.size(), 10u);
    EXPECT_EQ(m_cCondition.m_strInputFastaPath, m_cFolder.Path("db.fasta_td.fasta"));
    EXPECT_EQ(m_cFolder.Read("db.fasta_td.fasta"), ">P1\tone\t\nGGM\n>REV_P1\t_REV1\nMGG\n");
}

TEST_F(initialize, labels_come_before_the_selection) {
    m_cCondition.m_strQuant = "1|None|Heavy";
    m_cCondition.m_strModPath =
        m_cFolder.Write("two.ini", "Oxidation[M]#1=M NORMAL 17.0 17.0 0 O(1)\n");
    EXPECT_EQ(m_cCondition.Initialize(), 1);
    ASSERT_EQ(m_cCondition.m_vSelMods.size(), 1u);
    EXPECT_EQ(m_cCondition.m_vSelMods[0]->m_strName, "Oxidation[M]#1");
}

TEST_F(initialize, only_the_beginning_of_the_activation_type_counts) {
    struct {
        const char* type;
        bool isEtd;
    } rows[] = {{"ETD-IT", true},    {"ECD", true},      {"ETD", true},      {"EThcD", false},
                {"HCD-FTMS", false}, {"HCD-ETD", false}, {"CID-ETD", false}, {"", false}};
    for (const auto& row : rows) {
        CCondition condition;
        condition.m_strAAPath = m_cCondition.m_strAAPath;
        condition.m_strModPath = m_cCondition.m_strModPath;
        condition.m_strFastaPath = m_cCondition.m_strFastaPath;
        condition.m_lfMaxDelta = 0.0;
        condition.m_strActivationType = row.type;
        EXPECT_EQ(condition.Initialize(), 1);
        EXPECT_EQ(condition.m_bETD, row.isEtd) << row.type;
        EXPECT_EQ(condition.m_vIonTypes.size(), row.isEtd ? 25u : 10u) << row.type;
    }
}

TEST_F(initialize, missing_modification_table_ends_the_process) {
    m_cCondition.m_strModPath = "missing.ini";
    EXPECT_ENDS_PROCESS(m_cCondition.Initialize(),
                        "[Tessel] ALERT: Invalid modification file: missing.ini\n\n", "");
}

TEST_F(initialize, returns_1_when_a_step_only_warned) {
    m_cCondition.m_strSelectMod = "Unknown[X]";
    int result = 0;
    const std::string output = test::captured_output([&] { result = m_cCondition.Initialize(); });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(output, "[Tessel] WARNING: ignore the modification: Unknown[X]\n");
}

TEST_F(initialize, missing_database_raises_an_error) {
    m_cCondition.m_strFastaPath = "missing.fasta";
    try {
        m_cCondition.Initialize();
        ADD_FAILURE() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Database missing.fasta not exists.");
    }
}

TEST_F(initialize, second_call_runs_every_step_again) {
    m_cCondition.Initialize();
    m_cCondition.m_strFixMod = "";
    EXPECT_EQ(m_cCondition.Initialize(), 1);
    EXPECT_EQ(m_cCondition.m_vLabels.size(), 2u);  // labels and ion types are appended
    EXPECT_EQ(m_cCondition.m_vIonTypes.size(), 20u);
    EXPECT_TRUE(m_cCondition.m_vSelMods.empty());
    EXPECT_TRUE(m_cCondition.m_setFixMods.empty());
}

}  // namespace
}  // namespace tessel
