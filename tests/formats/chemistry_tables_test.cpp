// The pages of the chemistry tables: what they say that their examples give.

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tests/formats/format_page.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::CFormatPage;
using test::CTempFolder;
using test::CWorkingFolder;
using test::example_path;
using test::TableRows;

// A condition in the folder of the examples, with their residues and modifications loaded and no
// mass shifts.
class CExampleChemistry {
public:
    CExampleChemistry() : m_cWorking(example_path()) {
        m_cCondition.m_strAAPath = "aa.ini";
        m_cCondition.m_strModPath = "modification.ini";
        m_cCondition.m_lfMaxDelta = -1.0;
        m_cCondition.ReadElementInfo();
        m_cCondition.ReadAA();
        m_cCondition.ReadMod();
    }

    CCondition m_cCondition;

private:
    CWorkingFolder m_cWorking;
};

std::string decimals(double value, int count) {
    return fixed_text(value, count);
}

std::string joined(const std::vector<double>& values) {
    std::string text;
    for (const double value : values)
        text += (text.empty() ? "" : " ") + decimals(value, 6);
    return text;
}

// Letter, mass and composition of the residues that are defined.
TableRows residues(const CAlphaBet& alphabet) {
    TableRows rows;
    for (std::size_t i = 0; i < kResidueLetters; ++i) {
        if (alphabet.m_strComposition[i].empty()) continue;
        rows.push_back({std::string(1, static_cast<char>('A' + i)),
                        decimals(alphabet.m_lfMass[i], 6), alphabet.m_strComposition[i]});
    }
    return rows;
}

TEST(element_ini_page, gives_the_masses_of_its_example) {
    const CExampleChemistry chemistry;
    TableRows rows;
    for (const auto& [symbol, mass] : chemistry.m_cCondition.m_mapElementMass)
        rows.push_back({symbol, decimals(mass, 9)});
    EXPECT_EQ(rows, CFormatPage("element_ini").Table("What the example gives"));
}

TEST(aa_ini_page, gives_the_residues_of_its_example) {
    const CExampleChemistry chemistry;
    EXPECT_EQ(residues(chemistry.m_cCondition.m_cAlphaBet),
              CFormatPage("aa_ini").Table("What the example gives"));
}

TEST(modification_ini_page, gives_the_definitions_of_its_example) {
    const CExampleChemistry chemistry;
    TableRows rows;
    for (const CMod& mod : chemistry.m_cCondition.m_vMods)
        rows.push_back({mod.m_strName, mod.m_strSites, std::to_string(mod.m_eType),
                        decimals(mod.m_lfMass, 6), joined(mod.m_vLossMass), mod.m_strComposition,
                        std::to_string(mod.m_nFlag)});
    EXPECT_EQ(rows, CFormatPage("modification_ini").Table("What the example gives"));
}

TEST(quant_ini_page, gives_the_labels_of_its_example) {
    CExampleChemistry chemistry;
    CCondition& condition = chemistry.m_cCondition;
    TableRows rows;
    for (const std::string label : {"None", "SILAC-K8R10"}) {
        condition.ReadLabelInfo(label);
        for (const auto& [letter, replacements] : condition.m_mapAALabel) {
            for (const auto& [element, replacement] : replacements)
                rows.push_back({label, std::string(1, letter), element, replacement});
        }
        for (const auto& [name, replacements] : condition.m_mapModLabel) {
            for (const auto& [element, replacement] : replacements)
                rows.push_back({label, name, element, replacement});
        }
    }
    EXPECT_EQ(rows, CFormatPage("quant_ini").Table("What the example gives"));

    condition.ReadLabelInfo("15N");
    EXPECT_EQ(condition.m_mapAALabel.size(), 26U);
    for (const auto& [letter, replacements] : condition.m_mapAALabel)
        EXPECT_EQ(replacements, (std::map<std::string, std::string>{{"N", "15N"}})) << letter;
}

TEST(temporary_tables_page, shows_what_is_written) {
    const CTempFolder folder;
    CExampleChemistry chemistry;
    CCondition& condition = chemistry.m_cCondition;
    condition.m_strOutputPath = folder.Path() + '\\';
    condition.m_strQuant = "2|None|SILAC-K8R10|";
    condition.ParseQuantMethod();
    EXPECT_EQ(condition.WriteConfFiles(), 2U);
    for (const std::string name : {"1.aa", "1.mod", "2.aa", "2.mod"})
        EXPECT_EQ(folder.Read(name), test::read_file(example_path("temporary/" + name))) << name;
}

TEST(temporary_tables_page, gives_the_residues_of_its_example) {
    CExampleChemistry chemistry;
    CCondition& condition = chemistry.m_cCondition;
    const CAlphaBet unlabelled = condition.m_cAlphaBet;
    condition.m_strAAPath = "temporary/2.aa";
    condition.ReadAA();
    TableRows rows;
    for (std::size_t i = 0; i < kResidueLetters; ++i) {
        const double mass = condition.m_cAlphaBet.m_lfMass[i];
        if (mass > unlabelled.m_lfMass[i] + 1e-6)
            rows.push_back({std::string(1, static_cast<char>('A' + i)), decimals(mass, 6)});
    }
    EXPECT_EQ(rows, CFormatPage("temporary_tables").Table("What the example gives"));
}

TEST(temporary_tables_example, comes_back_as_one_table_of_all_labels) {
    CExampleChemistry chemistry;
    CCondition& condition = chemistry.m_cCondition;
    condition.m_strOutputPath = "temporary\\";
    condition.m_strQuant = "2|None|SILAC-K8R10|";
    condition.ParseQuantMethod();
    condition.ReLoadAllMods();
    std::set<std::string> names;
    for (const CMod& mod : condition.m_vMods)
        names.insert(mod.m_strName);
    EXPECT_EQ(names, (std::set<std::string>{"Acetyl[ProteinN-term]#0", "Carbamidomethyl[C]#0",
                                            "Citrullination[R]#0", "Citrullination[R]#2",
                                            "Deamidated[N]#0", "Gln->pyro-Glu[AnyN-termQ]#0",
                                            "NULL", "Oxidation[M]#0", "Phospho[S]#0"}));
}

TEST(learn_file_page, gives_the_selection_of_its_example) {
    CExampleChemistry chemistry;
    CCondition& condition = chemistry.m_cCondition;
    condition.m_strOutputPath = ".\\";
    condition.m_strOutputName = "example";
    condition.CreateModList();
    EXPECT_EQ(test::captured_output([&] { EXPECT_TRUE(condition.SetSelMod(10)); }), "");
    TableRows rows;
    for (const CMod* mod : condition.m_vSelMods)
        rows.push_back({mod->m_strName, decimals(mod->m_lfProb, 2)});
    EXPECT_EQ(rows, CFormatPage("learn_file").Table("What the example gives"));
    EXPECT_EQ(condition.m_lfCleaveProb, (std::array<double, 4>{0.9, 0.8, 0.5, 1.2}));
}

}  // namespace
}  // namespace tessel
