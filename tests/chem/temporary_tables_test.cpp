#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

using test::captured_output;
using test::CChemistry;

using Names = std::vector<std::string>;

double residue(const CCondition& condition, char letter) {
    return condition.m_cAlphaBet.m_lfMass[static_cast<std::size_t>(letter - 'A')];
}

Names names(const std::vector<CMod>& mods) {
    Names all;
    for (const CMod& mod : mods)
        all.push_back(mod.m_strName);
    return all;
}

Names names(const std::vector<const CMod*>& mods) {
    Names all;
    for (const CMod* mod : mods)
        all.push_back(mod->m_strName);
    return all;
}

double mass(const CCondition& condition, const std::string& name) {
    for (const CMod& mod : condition.m_vMods) {
        if (mod.m_strName == name) return mod.m_lfMass;
    }
    ADD_FAILURE() << name << " is not in the table";
    return 0.0;
}

// A search with lysine, glycine, three modifications and two labels.
class CSearch : public CChemistry {
public:
    explicit CSearch(const std::string& method = "2|None|Heavy|") {
        m_cFolder.Write("element.ini", test::kWholeElements);
        m_cCondition.m_strAAPath =
            m_cFolder.Write("aa.ini", "R1=K|C(6)H(12)N(2)O(1)|\nR2=G|C(2)H(3)N(1)O(1)|\n");
        m_cCondition.m_strModPath = m_cFolder.Write(
            "modification.ini",
            "name1=Acetyl[K]\t1\nAcetyl[K]=K NORMAL 42.5 42.6 1 17.25 17.3 C(2)H(2)O(1)\n"
            "name2=Amidated[AnyC-term]\t0\n"
            "Amidated[AnyC-term]=GK PEP_C -1.0 -1.0 0 H(1)N(1)O(-1)\n"
            "name3=Loss[K]\t12\nLoss[K]=K NORMAL -17.0 -17.0 0 H(-3)N(-1)\n");
        Labels(
            "heading\nNone=none\n"
            "Heavy=R:K{C,13C}R:K{N,15N}M:Acetyl[K]{C,13C}M:Loss[K]{N,15N}\n");
        m_cCondition.m_strOutputPath = m_cFolder.Path() + '\\';
        m_cCondition.m_strQuant = method;
        m_cCondition.ParseQuantMethod();
    }
};

// A worker of a label: knows the element table and the paths of its tables alone.
class CWorker {
public:
    explicit CWorker(const CSearch& search, const std::string& number) {
        m_cCondition.ReadElementInfo();
        m_cCondition.m_strAAPath = search.m_cCondition.m_strOutputPath + number + ".aa";
        m_cCondition.m_strModPath = search.m_cCondition.m_strOutputPath + number + ".mod";
        m_cCondition.ReadAA();
        m_cCondition.ReadMod();
    }
    CCondition m_cCondition;
};

TEST(temporary_tables, paths_are_the_output_path_and_a_number_from_one) {
    CCondition condition;
    condition.m_strOutputPath = "out\\";
    EXPECT_EQ(condition.GetTmpAAPath(0), "out\\1.aa");
    EXPECT_EQ(condition.GetTmpModPath(0), "out\\1.mod");
    EXPECT_EQ(condition.GetTmpAAPath(11), "out\\12.aa");
    EXPECT_EQ(condition.GetTmpModPath(11), "out\\12.mod");
}

TEST(temporary_tables, paths_have_any_length) {
    CCondition condition;
    condition.m_strOutputPath = std::string(1000, 'p');
    EXPECT_EQ(condition.GetTmpModPath(0), condition.m_strOutputPath + "1.mod");
}

TEST(temporary_tables, output_path_without_a_separator_is_glued_to_the_number) {
    CSearch search("1|None|");
    search.m_cCondition.m_strOutputPath = search.m_cFolder.Path("run");
    EXPECT_EQ(search.m_cCondition.WriteConfFiles(), 1u);
    EXPECT_TRUE(search.m_cFolder.Has("run1.aa"));
    EXPECT_TRUE(search.m_cFolder.Has("run1.mod"));
}

TEST(temporary_tables, default_method_writes_one_unlabelled_pair) {
    CSearch search("1|None|");
    EXPECT_EQ(search.m_cCondition.WriteConfFiles(), 1u);
    std::string residues = "label_name=None\n@NUMBER_RESIDUE=26\n";
    for (int k = 1; k <= 26; ++k) {
        const char letter = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"[k - 1];
        residues.append("R").append(std::to_string(k)).append("=").append(1, letter).append("|");
        residues += letter == 'K' ? "C(6)H(12)N(2)O(1)" : letter == 'G' ? "C(2)H(3)N(1)O(1)" : "";
        residues += "|\n";
    }
    EXPECT_EQ(search.m_cFolder.Read("1.aa"), residues);
    EXPECT_EQ(search.m_cFolder.Read("1.mod"),
              "label_name=None\n@NUMBER_MODIFICATION=3\n"
              "name1=Acetyl[K]#0\t1\n"
              "Acetyl[K]#0=K\tNORMAL\t42.500000\t42.500000\t1\t\t17.250000\t17.250000\t"
              "C(2)H(2)O(1)\n"
              "name2=Amidated[AnyC-term]#0\t0\n"
              "Amidated[AnyC-term]#0=GK\tPEP_C\t-1.000000\t-1.000000\t0\t\tH(1)N(1)O(-1)\n"
              "name3=Loss[K]#0\t12\n"
              "Loss[K]#0=K\tNORMAL\t-17.000000\t-17.000000\t0\t\tH(-3)N(-1)\n");
    EXPECT_FALSE(search.m_cFolder.Has("2.aa"));
}

TEST(temporary_tables, second_label_is_written_under_number_two) {
    CSearch search;
    EXPECT_EQ(search.m_cCondition.WriteConfFiles(), 2u);
    EXPECT_EQ(names(CWorker(search, "1").m_cCondition.m_vMods),
              (Names{"Acetyl[K]#0", "Amidated[AnyC-term]#0", "Loss[K]#0"}));
    // The changed one occurs twice; the one that loses a heavy atom has no light form.
    EXPECT_EQ(search.m_cFolder.Read("2.mod"),
              "label_name=Heavy\n@NUMBER_MODIFICATION=4\n"
              "name1=Acetyl[K]#2\t1\n"
              "Acetyl[K]#2=K\tNORMAL\t44.000000\t44.000000\t1\t\t17.250000\t17.250000\t"
              "13C(2)H(2)O(1)\n"  // 2 * 13 + 2 + 16
              "name2=Acetyl[K]#0\t1\n"
              "Acetyl[K]#0=K\tNORMAL\t42.500000\t42.500000\t1\t\t17.250000\t17.250000\t"
              "C(2)H(2)O(1)\n"
              "name3=Amidated[AnyC-term]#0\t0\n"
              "Amidated[AnyC-term]#0=GK\tPEP_C\t-1.000000\t-1.000000\t0\t\tH(1)N(1)O(-1)\n"
              "name4=Loss[K]#2\t12\n"  // -3 - 15
              "Loss[K]#2=K\tNORMAL\t-18.000000\t-18.000000\t0\t\tH(-3)15N(-1)\n");
}

TEST(temporary_tables, worker_sees_the_labelled_masses_by_the_ordinary_readers) {
    CSearch search;
    search.m_cCondition.WriteConfFiles();
    const CWorker light(search, "1");
    EXPECT_EQ(residue(light.m_cCondition, 'K'), 128.0);  // 72 + 12 + 28 + 16
    EXPECT_EQ(residue(light.m_cCondition, 'G'), 57.0);   // 24 + 3 + 14 + 16
    const CWorker heavy(search, "2");
    EXPECT_EQ(residue(heavy.m_cCondition, 'K'), 136.0);  // 78 + 12 + 30 + 16
    EXPECT_EQ(residue(heavy.m_cCondition, 'G'), 57.0);
    EXPECT_EQ(mass(heavy.m_cCondition, "Acetyl[K]#2"), 44.0);
    EXPECT_EQ(mass(heavy.m_cCondition, "Loss[K]#2"), -18.0);
    EXPECT_EQ(heavy.m_cCondition.m_vMods[0].m_vLossMass, (std::vector<double>{17.25}));
}

TEST(temporary_tables, residue_that_is_absent_from_the_table_reads_back_with_mass_zero) {
    CSearch search("1|None|");
    search.m_cCondition.WriteConfFiles();
    EXPECT_NE(search.m_cFolder.Read("1.aa").find("\nR2=B||\n"), std::string::npos);
    const CWorker worker(search, "1");
    EXPECT_EQ(residue(worker.m_cCondition, 'B'), 0.0);
    EXPECT_EQ(worker.m_cCondition.m_cAlphaBet.m_strComposition[1], "");
}

TEST(temporary_tables, tables_of_the_last_label_stay_in_the_object) {
    CSearch search;
    search.m_cCondition.WriteConfFiles();
    EXPECT_EQ(residue(search.m_cCondition, 'K'), 136.0);
    EXPECT_EQ(names(search.m_cCondition.m_vMods),
              (Names{"Acetyl[K]#2", "Acetyl[K]#0", "Amidated[AnyC-term]#0", "Loss[K]#2"}));
}

TEST(temporary_tables, every_label_starts_from_the_unlabelled_tables) {
    CSearch search("3|Heavy|None|Heavy|");
    EXPECT_EQ(search.m_cCondition.WriteConfFiles(), 3u);
    EXPECT_EQ(residue(CWorker(search, "1").m_cCondition, 'K'), 136.0);
    EXPECT_EQ(residue(CWorker(search, "2").m_cCondition, 'K'), 128.0);
    EXPECT_EQ(names(CWorker(search, "2").m_cCondition.m_vMods),
              (Names{"Acetyl[K]#0", "Amidated[AnyC-term]#0", "Loss[K]#0"}));
    EXPECT_EQ(names(CWorker(search, "3").m_cCondition.m_vMods),
              (Names{"Acetyl[K]#3", "Acetyl[K]#0", "Amidated[AnyC-term]#0", "Loss[K]#3"}));
}

TEST(temporary_tables, without_labels_the_element_table_alone_is_read) {
    CSearch search("");
    search.m_cCondition.m_strModPath = "no such file";
    EXPECT_EQ(search.m_cCondition.WriteConfFiles(), 0u);
    EXPECT_EQ(search.m_cCondition.m_mapElementMass.at("C"), 12.0);
    EXPECT_FALSE(search.m_cFolder.Has("1.aa"));
    EXPECT_TRUE(search.m_cCondition.m_vMods.empty());
}

TEST(temporary_tables, longer_files_of_an_earlier_run_are_replaced) {
    CSearch search("1|None|");
    search.m_cCondition.WriteConfFiles();
    const std::string residues = search.m_cFolder.Read("1.aa");
    const std::string mods = search.m_cFolder.Read("1.mod");
    search.m_cFolder.Write("1.aa", std::string(10000, 'R'));
    search.m_cFolder.Write("1.mod", std::string(10000, '='));
    search.m_cCondition.WriteConfFiles();
    EXPECT_EQ(search.m_cFolder.Read("1.aa"), residues);
    EXPECT_EQ(search.m_cFolder.Read("1.mod"), mods);
}

TEST(temporary_tables, flags_up_to_99_survive) {
    CChemistry chemistry;
    CCondition& condition = chemistry.m_cCondition;
    condition.m_vLabels = {"None"};
    condition.m_strOutputPath = chemistry.m_cFolder.Path() + '\\';
    for (const int flag : {0, 1, 9, 10, 99, 100}) {
        condition.m_vMods.emplace_back();
        condition.m_vMods.back().m_strName = std::to_string(flag);
        condition.m_vMods.back().m_strSites = "K";
        condition.m_vMods.back().m_nFlag = flag;
    }
    condition.WriteMod(0);
    condition.m_strModPath = condition.GetTmpModPath(0);
    condition.ReadMod();
    std::vector<int> flags;
    for (const CMod& mod : condition.m_vMods)
        flags.push_back(mod.m_nFlag);
    EXPECT_EQ(flags, (std::vector<int>{0, 1, 9, 10, 99, 0}));
}

TEST(temporary_tables, table_that_cannot_be_created_is_reported) {
    CSearch search("1|None|");
    search.m_cCondition.m_strOutputPath = "no\\such\\folder\\";
    std::size_t labels = 0;
    EXPECT_EQ(captured_output([&] { labels = search.m_cCondition.WriteConfFiles(); }),
              "[Tessel] ALERT: Cannot write the file: no\\such\\folder\\1.aa\n"
              "[Tessel] ALERT: Cannot write the file: no\\such\\folder\\1.mod\n");
    EXPECT_EQ(labels, 1u);
}

TEST(temporary_tables, table_that_cannot_be_written_completely_is_reported) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
    CSearch search("1|None|");
    std::filesystem::create_symlink("/dev/full", search.m_cFolder.Path("1.aa"));
    EXPECT_EQ(
        captured_output([&] { search.m_cCondition.WriteConfFiles(); }),
        "[Tessel] ALERT: Cannot write the file: " + search.m_cCondition.GetTmpAAPath(0) + '\n');
    EXPECT_TRUE(search.m_cFolder.Has("1.mod"));
}

TEST(temporary_tables, number_without_a_label_has_no_label_name) {
    CSearch search("");
    search.m_cCondition.WriteAA(4);
    search.m_cCondition.WriteMod(4);
    EXPECT_EQ(search.m_cFolder.Read("5.aa").substr(0, 12), "label_name=\n");
    EXPECT_EQ(search.m_cFolder.Read("5.mod"), "label_name=\n@NUMBER_MODIFICATION=0\n");
}

TEST(temporary_tables, missing_modification_table_ends_the_process) {
    CSearch search("1|None|");
    search.m_cCondition.m_strModPath = "absent.ini";
    EXPECT_ENDS_PROCESS(search.m_cCondition.WriteConfFiles(),
                        "[Tessel] ALERT: Invalid modification file: absent.ini\n\n", "");
}

TEST(temporary_tables, unknown_label_ends_the_process) {
    CSearch search("2|None|Unknown|");
    EXPECT_ENDS_PROCESS(search.m_cCondition.WriteConfFiles(),
                        "[Tessel] ALERT: Cannot find the label: Unknown\n", "");
}

// ---- Reloading ----

TEST(reloading, forms_of_all_labels_become_one_table) {
    CSearch search;
    CCondition& condition = search.m_cCondition;
    condition.WriteConfFiles();
    condition.m_strFixMod = "Acetyl[K]";
    condition.m_strSelectMod = "Loss[K];Amidated[AnyC-term]";
    EXPECT_EQ(captured_output([&] { condition.ReLoadAllMods(); }), "");
    Names sorted = names(condition.m_vMods);
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(sorted, (Names{"Acetyl[K]#0", "Acetyl[K]#2", "Amidated[AnyC-term]#0", "Loss[K]#0",
                             "Loss[K]#2", "NULL"}));
    EXPECT_EQ(names(condition.m_vSelMods), (Names{"Acetyl[K]#0", "Acetyl[K]#2", "Loss[K]#0",
                                                  "Loss[K]#2", "Amidated[AnyC-term]#0"}));
    EXPECT_EQ(condition.m_setFixMods.size(), 2u);
    EXPECT_EQ(mass(condition, "Acetyl[K]#0"), 42.5);
    EXPECT_EQ(mass(condition, "Acetyl[K]#2"), 44.0);
    EXPECT_EQ(condition.m_strModPath, condition.m_strOutputPath + "2.mod");
}

TEST(reloading, two_heavy_labels_give_three_forms) {
    CSearch search("3|Heavy|None|Heavy|");
    CCondition& condition = search.m_cCondition;
    condition.WriteConfFiles();
    condition.m_strSelectMod = "Acetyl[K]";
    condition.ReLoadAllMods();
    EXPECT_EQ(names(condition.m_vSelMods), (Names{"Acetyl[K]#0", "Acetyl[K]#1", "Acetyl[K]#3"}));
}

TEST(reloading, of_equal_names_the_first_is_kept_in_file_order) {
    CSearch search;
    search.m_cFolder.Write("1.mod", "b=K NORMAL 1 1 0 C(1)\na=K NORMAL 1 1 0 C(1)\nb=R X 1 1 0\n");
    search.m_cFolder.Write("2.mod", "a=R NORMAL 1 1 0 C(1)\nc=K NORMAL 1 1 0 C(1)\n");
    search.m_cCondition.ReLoadAllMods();
    EXPECT_EQ(names(search.m_cCondition.m_vMods), (Names{"NULL", "b", "a", "c"}));
    for (const CMod& mod : search.m_cCondition.m_vMods) {
        if (mod.m_strName == "NULL") continue;
        EXPECT_EQ(mod.m_strSites, "K") << mod.m_strName;
    }
}

TEST(reloading, selection_before_leaves_no_address_behind) {
    CSearch search;
    CCondition& condition = search.m_cCondition;
    condition.m_strFixMod = "Acetyl[K]";
    condition.ReadElementInfo();
    condition.ReadAA();
    condition.ReadMod();
    condition.CreateModList();
    EXPECT_EQ(condition.m_vExtendedAA.size(), 3u);
    const auto lettersWithMod = [&condition] {
        return std::count_if(condition.m_vExtendedAA.begin(), condition.m_vExtendedAA.end(),
                             [](const ExtendedAA& letter) { return letter.m_pMod != nullptr; });
    };
    EXPECT_GT(lettersWithMod(), 0);
    condition.WriteConfFiles();
    EXPECT_TRUE(condition.m_setFixMods.empty());
    EXPECT_EQ(lettersWithMod(), 0);
    condition.ReLoadAllMods();
    for (const CMod* mod : condition.m_setFixMods) {
        EXPECT_GE(mod, condition.m_vMods.data());
        EXPECT_LT(mod, condition.m_vMods.data() + condition.m_vMods.size());
    }
    EXPECT_EQ(condition.m_setFixMods.size(), 2u);
    // Of the older letters the masses are left, of the new ones those of the heavy lysine.
    EXPECT_EQ(condition.m_vExtendedAA.size(), 7u);
    EXPECT_EQ(lettersWithMod(), 2);
}

TEST(reloading, relabelled_table_forgets_the_fixed_modifications) {
    CSearch search;
    CCondition& condition = search.m_cCondition;
    condition.m_strFixMod = "Acetyl[K]";
    condition.ReadMod();
    condition.CreateModList();
    ASSERT_EQ(condition.m_setFixMods.size(), 1u);
    condition.GenTmpMod(0);
    EXPECT_TRUE(condition.m_setFixMods.empty());
}

TEST(reloading, missing_table_of_a_label_ends_the_process) {
    CSearch search("1|None|");
    search.m_cCondition.m_strOutputPath = "none\\";
    EXPECT_ENDS_PROCESS(search.m_cCondition.ReLoadAllMods(),
                        "[Tessel] ALERT: Invalid modification file: none\\1.mod\n\n", "");
}

TEST(reloading, without_labels_only_the_placeholder_is_left) {
    CSearch search("");
    search.m_cCondition.ReadMod();
    const std::string path = search.m_cCondition.m_strModPath;
    search.m_cCondition.ReLoadAllMods();
    EXPECT_EQ(names(search.m_cCondition.m_vMods), (Names{"NULL"}));
    EXPECT_EQ(search.m_cCondition.m_strModPath, path);
}

}  // namespace
}  // namespace tessel
