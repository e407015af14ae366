#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

// The tables of the data folder, read as a search reads them.
class default_tables : public testing::Test {
protected:
    default_tables() : m_cWorkingFolder(kFolder) {
        m_cCondition.m_strAAPath = kFolder + "/aa.ini";
        m_cCondition.m_strModPath = kFolder + "/modification.ini";
        m_cCondition.ReadElementInfo();
        m_cCondition.ReadAA();
        m_cCondition.ReadMod();
    }

    const CMod* Mod(const std::string& name) const {
        const CMod* found = nullptr;
        for (const CMod& mod : m_cCondition.m_vMods) {
            if (mod.m_strName != name) continue;
            EXPECT_EQ(found, nullptr) << name;
            found = &mod;
        }
        return found;
    }

    static inline const std::string kFolder = test::source_path("data");
    test::CWorkingFolder m_cWorkingFolder;
    CCondition m_cCondition;
};

// Sums up a composition in a way of its own: symbols and counts alternate between the brackets.
double mass_of(const std::string& composition, const std::map<std::string, double>& masses) {
    double mass = 0.0;
    std::size_t begin = 0;
    while (begin < composition.size()) {
        const std::size_t open = composition.find('(', begin);
        const std::size_t close = composition.find(')', begin);
        if (close >= composition.size() || open > close) return NAN;
        mass += masses.at(composition.substr(begin, open - begin)) *
                std::stoi(composition.substr(open + 1, close - open - 1));
        begin = close + 1;
    }
    return mass;
}

TEST_F(default_tables, elements_on_which_the_ions_rest_are_exact) {
    const std::map<std::string, double> exact = {
        {"H", 1.007825035},   {"C", 12.0},          {"N", 14.003074},    {"O", 15.99491463},
        {"P", 30.973762},     {"S", 31.9720707},    {"2H", 2.014101779}, {"13C", 13.00335483},
        {"15N", 15.00010897}, {"16O", 15.99491463}, {"18O", 17.9991603}};
    for (const auto& [symbol, mass] : exact)
        EXPECT_EQ(m_cCondition.m_mapElementMass.at(symbol), mass) << symbol;
    for (const auto& [symbol, mass] : m_cCondition.m_mapElementMass)
        EXPECT_GT(mass, 1.0) << symbol;
}

// Monoisotopic residue masses as published, to five decimals.
TEST_F(default_tables, twenty_two_residues_have_their_masses) {
    const std::map<char, double> published = {
        {'A', 71.03711},  {'C', 103.00919}, {'D', 115.02694}, {'E', 129.04259}, {'F', 147.06841},
        {'G', 57.02146},  {'H', 137.05891}, {'I', 113.08406}, {'K', 128.09496}, {'L', 113.08406},
        {'M', 131.04049}, {'N', 114.04293}, {'O', 237.14773}, {'P', 97.05276},  {'Q', 128.05858},
        {'R', 156.10111}, {'S', 87.03203},  {'T', 101.04768}, {'U', 150.95364}, {'V', 99.06841},
        {'W', 186.07931}, {'Y', 163.06333}};
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const auto known = published.find(letter);
        const double mass =
            m_cCondition.m_cAlphaBet.m_lfMass[static_cast<std::size_t>(letter - 'A')];
        EXPECT_NEAR(mass, known == published.end() ? 0.0 : known->second, 1e-5) << letter;
    }
}

TEST_F(default_tables, every_modification_weighs_what_its_composition_does) {
    EXPECT_GT(m_cCondition.m_vMods.size(), 200u);
    for (const CMod& mod : m_cCondition.m_vMods) {
        EXPECT_FALSE(mod.m_strComposition.empty()) << mod.m_strName;
        EXPECT_NEAR(mod.m_lfMass, mass_of(mod.m_strComposition, m_cCondition.m_mapElementMass),
                    1e-5)
            << mod.m_strName;
    }
}

TEST_F(default_tables, modifications_of_every_open_search_are_there_once) {
    for (const char* name : {"Oxidation[M]", "Deamidated[N]", "Acetyl[ProteinN-term]",
                             "Gln->pyro-Glu[AnyN-termQ]", "Carbamidomethyl[C]"}) {
        EXPECT_NE(Mod(name), nullptr) << name;
    }
    EXPECT_EQ(Mod("Acetyl[ProteinN-term]")->m_eType, PRO_N);
    EXPECT_EQ(Mod("Gln->pyro-Glu[AnyN-termQ]")->m_eType, PEP_N);
}

TEST_F(default_tables, names_are_unique_and_mean_nothing_else) {
    std::set<std::string> names;
    for (const CMod& mod : m_cCondition.m_vMods) {
        EXPECT_TRUE(names.insert(mod.m_strName).second) << mod.m_strName;
        EXPECT_EQ(mod.m_strName.find_first_of(" \t;#=|,{}"), std::string::npos) << mod.m_strName;
        EXPECT_EQ(mod.m_strName.find("TESSEL_DELTA_"), std::string::npos) << mod.m_strName;
        for (const char* reserved : {"name", "Label_", "@", "NULL"})
            EXPECT_FALSE(mod.m_strName.starts_with(reserved)) << mod.m_strName;
    }
}

// What a reader drops silently would not be missed otherwise.
TEST_F(default_tables, no_definition_is_lost_in_reading) {
    std::istringstream lines(test::read_file(kFolder + "/modification.ini"));
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "@NUMBER_MODIFICATION=" + std::to_string(m_cCondition.m_vMods.size()));
}

TEST_F(default_tables, search_starts_on_them_without_a_warning) {
    m_cCondition.m_strFixMod = "Carbamidomethyl[C]";
    m_cCondition.m_strSelectMod = "Oxidation[M];Deamidated[N]";
    m_cCondition.m_eLogType = LOG_WARNING;
    EXPECT_EQ(test::captured_output([this] { m_cCondition.CreateModList(); }), "");
    EXPECT_EQ(m_cCondition.m_vSelMods.size(), 3u);
    EXPECT_EQ(m_cCondition.m_vExtendedAA.size(), 25u);  // 22 residues, C, M and N modified
}

TEST_F(default_tables, every_label_can_be_read) {
    std::istringstream lines(test::read_file(kFolder + "/quant.ini"));
    std::string line;
    std::getline(lines, line);
    int labels = 0;
    while (std::getline(lines, line)) {
        const std::string name = line.substr(0, line.find('='));
        m_cCondition.ReadLabelInfo(name);
        ++labels;
        EXPECT_EQ(m_cCondition.m_mapAALabel.empty() && m_cCondition.m_mapModLabel.empty(),
                  name == "None")
            << name;
        for (const auto& [mod, replacements] : m_cCondition.m_mapModLabel) {
            EXPECT_NE(Mod(mod), nullptr) << name << ": " << mod;
            for (const auto& [from, to] : replacements)
                EXPECT_EQ(m_cCondition.m_mapElementMass.count(to), 1u) << name << ": " << mod;
        }
        for (const auto& [letter, replacements] : m_cCondition.m_mapAALabel) {
            for (const auto& [from, to] : replacements)
                EXPECT_EQ(m_cCondition.m_mapElementMass.count(to), 1u) << name << ": " << letter;
        }
    }
    EXPECT_GT(labels, 10);
}

// Published shifts, Da.
TEST_F(default_tables, labels_give_their_known_masses_to_the_workers) {
    const test::CTempFolder folder;
    m_cCondition.m_strOutputPath = folder.Path() + '\\';
    m_cCondition.m_vLabels = {"None", "SILAC-K8R10", "15N", "Dimethyl-Medium", "18O2"};
    ASSERT_EQ(m_cCondition.WriteConfFiles(), 5u);
    struct {
        const char* number;
        double lysine;
        double arginine;
        const char* mod;
        double mass;
    } rows[] = {{"1", 128.094963, 156.101111, "Dimethyl[K]#0", 28.031300},
                {"2", 136.109162, 166.109380, "Citrullination[R]#2", -0.013019},
                {"3", 130.089033, 160.089251, "GG[K]#3", 116.036997},
                {"4", 128.094963, 156.101111, "Dimethyl[K]#4", 32.056407},
                {"5", 128.094963, 156.101111, "Label:16O2[AnyC-term]#5", 4.008491},
                {"5", 128.094963, 156.101111, "Label:16O2[AnyC-term]#0", 0.0}};
    for (const auto& row : rows) {
        m_cCondition.m_strAAPath = m_cCondition.m_strOutputPath + row.number + ".aa";
        m_cCondition.m_strModPath = m_cCondition.m_strOutputPath + row.number + ".mod";
        m_cCondition.ReadAA();
        m_cCondition.ReadMod();
        EXPECT_NEAR(m_cCondition.m_cAlphaBet.m_lfMass['K' - 'A'], row.lysine, 1e-5) << row.number;
        EXPECT_NEAR(m_cCondition.m_cAlphaBet.m_lfMass['R' - 'A'], row.arginine, 1e-5) << row.number;
        ASSERT_NE(Mod(row.mod), nullptr) << row.mod;
        EXPECT_NEAR(Mod(row.mod)->m_lfMass, row.mass, 1e-5) << row.mod;
    }
}

// What tools/unimod_to_ini makes of its excerpt.
TEST_F(default_tables, converted_table_is_read_whole) {
    m_cCondition.m_strModPath = test::source_path("tests/tools/excerpt.expected.ini");
    m_cCondition.ReadMod();
    ASSERT_EQ(m_cCondition.m_vMods.size(), 11u);
    for (const CMod& mod : m_cCondition.m_vMods)
        EXPECT_NEAR(mod.m_lfMass, mass_of(mod.m_strComposition, m_cCondition.m_mapElementMass),
                    1e-6)
            << mod.m_strName;
    EXPECT_EQ(Mod("Phospho[S]")->m_vLossMass, std::vector<double>{97.976896});
    EXPECT_EQ(Mod("Phospho[S]")->m_nFlag, 1);
    EXPECT_EQ(Mod("Phospho[Y]")->m_nFlag, 0);
    EXPECT_EQ(Mod("Gln->pyro-Glu[AnyN-termQ]")->m_eType, PEP_N);
    EXPECT_EQ(Mod("Gln->pyro-Glu[AnyN-termQ]")->m_strSites, "Q");
}

}  // namespace
}  // namespace tessel
