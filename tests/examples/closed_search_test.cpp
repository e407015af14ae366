// The demonstration engine, run as a program: what it finds, and that how the work is divided does
// not matter.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "tests/examples/search_run.h"
#include "tests/support/classic.h"

using namespace tessel::test;

namespace {

constexpr double kOxygen = 15.994915;
constexpr double kCarbamidomethyl = 57.021464;
constexpr double kAcetyl = 42.010565;

// Four peptides by trypsin; the first with an initial M, cut off by the cell.
const std::string kProtein = "MSAGVNDEFKWLTSEYQRGHLDAFPVKNTYELSDGR";

std::string database(const std::string& sequence) {
    return ">P1 protein\n" + sequence + '\n';
}

using Site = std::pair<int, std::string>;
using Sites = std::vector<Site>;

// The candidate at rank 1 for the only spectrum.
RESULT_ROW first_row(const CSearchRun& run) {
    const std::vector<RESULT_BLOCK> blocks = run.Search();
    EXPECT_EQ(blocks.size(), 1U);
    if (blocks.empty() || blocks[0].m_vRows.empty()) return {};
    return blocks[0].m_vRows[0];
}

// The first proteins of the E. coli database.
std::string ecoli_part(std::size_t proteins) {
    std::istringstream all(read_file(source_path("examples/ecoli/ecoli.fasta")));
    std::string part;
    std::size_t number = 0;
    for (std::string line; std::getline(all, line);) {
        if (line.starts_with(">") && ++number > proteins) break;
        part += line + '\n';
    }
    return part;
}

void use_ecoli_spectra(CSearchRun& run) {
    run.m_cFolder.Write("spectra.mgf", read_file(source_path("examples/ecoli/ecoli.mgf")));
    run.m_mapSettings["auto_rev"] = "1";
    run.m_mapSettings["fixmod"] = "Carbamidomethyl[C];";
    run.m_mapSettings["selectmod"] = "Oxidation[M];";
}

// Of each spectrum with candidates: the score of the first and whether it is a decoy.
std::vector<const RESULT_ROW*> first_rows(const std::vector<RESULT_BLOCK>& blocks) {
    std::vector<const RESULT_ROW*> rows;
    for (const RESULT_BLOCK& block : blocks) {
        if (!block.m_vRows.empty()) rows.push_back(&block.m_vRows[0]);
    }
    return rows;
}

double fdr_from(const std::vector<const RESULT_ROW*>& rows, double score) {
    double targets = 0.0;
    double decoys = 0.0;
    for (const RESULT_ROW* row : rows) {
        if (row->m_lfScore >= score) (row->m_nDecoy != 0 ? decoys : targets) += 1.0;
    }
    return targets > 0.0 ? decoys / targets : 1.0;
}

}  // namespace

// ---- Arguments and failures ----

TEST(closed_search, bad_arguments_give_the_usage_and_status_2) {
    const CSearchRun run;
    for (const char* words : {"", "a.param b.param"}) {
        const ENDED ended = run.RunWith(words);
        EXPECT_EQ(ended.m_nStatus, 2) << words;
        EXPECT_EQ(ended.m_strOutput, "") << words;
        EXPECT_TRUE(ended.m_strErrors.starts_with("Usage: closed_search PARAMETERS\n")) << words;
    }
}

TEST(closed_search, missing_parameter_file_gives_status_1) {
    const ENDED ended = CSearchRun().RunWith("none.param");
    EXPECT_EQ(ended.m_nStatus, 1);
    EXPECT_NE(ended.m_strOutput.find("Invalid_Path: [none.param]"), std::string::npos);
}

TEST(closed_search, database_that_cannot_be_read_gives_a_message_and_status_1) {
    CSearchRun run;
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    std::filesystem::create_directory(run.m_cFolder.Path("db.fasta"));
    const ENDED ended = run.Run();
    EXPECT_EQ(ended.m_nStatus, 1);
    EXPECT_EQ(ended.m_strErrors, "Database db.fasta not exists.\n");
}

TEST(closed_search, run_without_spectrum_files_gives_status_1) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_mapSettings["msmsnum"] = "0";
    const ENDED ended = run.Run();
    EXPECT_EQ(ended.m_nStatus, 1);
    EXPECT_NE(ended.m_strOutput.find("No spectrum file is given."), std::string::npos);
}

// ---- Output ----

TEST(closed_search, table_and_path_of_the_result_end_the_output) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    std::filesystem::create_directory(run.m_cFolder.Path("results"));
    run.m_mapSettings["outputpath"] = "results";
    run.m_mapSettings["psm_fdr"] = "0.05";
    const ENDED ended = run.Run();
    ASSERT_EQ(ended.m_nStatus, 0);
    const std::vector<std::string> lines = ended.Lines();
    ASSERT_GE(lines.size(), 4U);
    EXPECT_EQ(lines[lines.size() - 4], "   spectra   peptides scored      matches at 5 % FDR");
    EXPECT_EQ(lines[lines.size() - 3], "         1                 1                       1");
    EXPECT_EQ(lines[lines.size() - 2],
              "No decoy is among the matches, so the FDR is not estimated.");
    EXPECT_EQ(lines[lines.size() - 1],
              (std::filesystem::path("results") / "out.final.txt").string());
    EXPECT_EQ(ended.m_strErrors, "");
}

TEST(closed_search, temporary_results_are_removed_unless_they_are_wanted) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR") +
                                           perfect_spectrum("a.2.2.2.0.dta", "GHLDAFPVK"));
    run.m_mapSettings["maxspec"] = "1";
    run.Run();
    EXPECT_FALSE(run.m_cFolder.Has("out.res"));
    EXPECT_FALSE(run.m_cFolder.Has("out.1.res"));
    EXPECT_FALSE(run.m_cFolder.Has("out.2.res"));
    run.m_mapSettings["del_tmp_files"] = "0";
    run.Run();
    EXPECT_TRUE(run.m_cFolder.Has("out.res"));
}

TEST(closed_search, several_files_number_their_results) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    run.m_cFolder.Write("more.mgf", perfect_spectrum("b.1.1.2.0.dta", "GHLDAFPVK"));
    run.m_mapSettings["msmsnum"] = "2";
    run.m_mapSettings["msmspath2"] = "more.mgf";
    const std::vector<std::string> lines = run.Run().Lines();
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[lines.size() - 2], "out_1.final.txt");
    EXPECT_EQ(lines[lines.size() - 1], "out_2.final.txt");
    EXPECT_EQ(read_results(run.m_cFolder.Read("out_1.final.txt"))[0].m_strTitle, "a.1.1.2.0.dta");
    EXPECT_EQ(read_results(run.m_cFolder.Read("out_2.final.txt"))[0].m_strTitle, "b.1.1.2.0.dta");
    EXPECT_FALSE(run.m_cFolder.Has("out.final.txt"));
}

TEST(closed_search, files_of_a_folder_are_searched_by_name) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    std::filesystem::create_directory(run.m_cFolder.Path("runs"));
    run.m_cFolder.Write("runs/2.mgf", perfect_spectrum("two.1.1.2.0.dta", "WLTSEYQR"));
    run.m_cFolder.Write("runs/1.mgf", perfect_spectrum("one.1.1.2.0.dta", "GHLDAFPVK"));
    run.m_cFolder.Write("runs/notes.txt", "");
    run.m_mapSettings["msmsfolder"] = "1";
    run.m_mapSettings["msmspath1"] = "runs";
    ASSERT_EQ(run.Run().m_nStatus, 0);
    EXPECT_EQ(read_results(run.m_cFolder.Read("out_1.final.txt"))[0].m_strTitle, "one.1.1.2.0.dta");
    EXPECT_EQ(read_results(run.m_cFolder.Read("out_2.final.txt"))[0].m_strTitle, "two.1.1.2.0.dta");
    EXPECT_FALSE(run.m_cFolder.Has("out_3.final.txt"));
}

TEST(closed_search, file_without_spectra_gives_an_empty_result) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_cFolder.Write("spectra.mgf", "");
    const ENDED ended = run.Run();
    EXPECT_EQ(ended.m_nStatus, 0);
    EXPECT_EQ(run.m_cFolder.Read("out.final.txt"), "");
}

// ---- What is found ----

TEST(closed_search, result_holds_the_fields_of_the_engine) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database("AAAAAAK") + ">P2\n" + kProtein + '\n');
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    const RESULT_ROW row = first_row(run);
    EXPECT_EQ(row.m_strSequence, "WLTSEYQR");
    EXPECT_NEAR(row.m_lfMass, peptide_mass("WLTSEYQR"), 0.001);
    EXPECT_GT(row.m_lfScore, 0.0);
    EXPECT_EQ(row.m_lfFinalScore, -row.m_lfScore);
    EXPECT_EQ(row.m_lfQValue, 0.0);
    EXPECT_EQ(row.m_nDecoy, 0);
    EXPECT_EQ(row.m_vHits, std::vector<std::string>{"1;10;K;G"});
    EXPECT_EQ(row.m_vSubScores, (std::vector<double>{7.0, 7.0, 1.0, 0.0, 0.0}));
}

TEST(closed_search, peptides_at_the_ends_of_a_protein_have_no_neighbour) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database("WLTSEYQR"));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    EXPECT_EQ(first_row(run).m_vHits, std::vector<std::string>{"0;0;-;-"});
}

TEST(closed_search, settings_decide_which_peptides_are_searched) {
    struct {
        const char* name;
        std::map<std::string, std::string> settings;
        const char* peptide;
        bool isFound;
    } rows[] = {
        {"specific peptide", {}, "WLTSEYQR", true},
        {"last peptide", {}, "NTYELSDGR", true},
        {"one missed cleavage", {{"max_clv_sites", "1"}}, "WLTSEYQRGHLDAFPVK", true},
        {"one too many", {{"max_clv_sites", "0"}}, "WLTSEYQRGHLDAFPVK", false},
        {"initial M kept", {{"max_clv_sites", "0"}}, "MSAGVNDEFK", true},
        {"initial M removed", {{"max_clv_sites", "0"}}, "SAGVNDEFK", true},
        {"semi-specific at its N terminus", {{"digest", "1"}}, "LTSEYQR", true},
        {"semi-specific at its C terminus", {{"digest", "1"}}, "WLTSEYQ", true},
        {"semi-specific counts missed cleavages",
         {{"digest", "1"}, {"max_clv_sites", "0"}},
         "TSEYQRGHLDAFPVK",
         false},
        {"unspecific in a semi-specific search", {{"digest", "1"}}, "LTSEYQ", false},
        {"semi-specific in a specific search", {}, "LTSEYQR", false},
        {"digest 2 is specific", {{"digest", "2"}}, "LTSEYQR", false},
        {"unspecific", {{"digest", "0"}}, "LTSEYQ", true},
        {"unspecific counts no missed cleavages",
         {{"digest", "0"}, {"max_clv_sites", "0"}},
         "KWLTSEYQRGH",
         true},
        {"another enzyme", {{"enzyme", "GluC E _ C"}}, "FKWLTSE", true},
        {"a cut before a residue", {{"enzyme", "AspN D _ N"}}, "DAFPVKNTYELS", true},
        {"shortest length", {{"len_lower", "8"}}, "WLTSEYQR", true},
        {"too short", {{"len_lower", "9"}}, "WLTSEYQR", false},
        {"longest length", {{"len_upper", "8"}}, "WLTSEYQR", true},
        {"too long", {{"len_upper", "7"}}, "WLTSEYQR", false},
        {"lightest mass", {{"mass_lower", "1082.5"}}, "WLTSEYQR", true},
        {"too light", {{"mass_lower", "1082.6"}}, "WLTSEYQR", false},
        {"heaviest mass", {{"mass_upper", "1082.6"}}, "WLTSEYQR", true},
        {"too heavy", {{"mass_upper", "1082.5"}}, "WLTSEYQR", false},
    };
    ASSERT_NEAR(peptide_mass("WLTSEYQR"), 1082.53, 0.02);
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    const auto settings = run.m_mapSettings;
    for (const auto& row : rows) {
        run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", row.peptide));
        run.m_mapSettings = row.settings;
        run.m_mapSettings.insert(settings.begin(), settings.end());
        EXPECT_EQ(run.FirstSequence() == row.peptide, row.isFound) << row.name;
    }
}

TEST(closed_search, precursor_tolerance_is_obeyed) {
    struct {
        const char* tolerance;
        const char* isPpm;
        bool isFound;
    } rows[] = {{"20", "1", false}, {"40", "1", true}, {"0.02", "0", false}, {"0.05", "0", true}};
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    // 30 ppm of 1082.53 Da.
    run.m_cFolder.Write("spectra.mgf", [] {
        std::string text = perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR");
        CClassicOut moved;
        moved.precision(9);
        moved << "PEPMASS=" << (peptide_mass("WLTSEYQR") + 0.0325 + 1.00727647) / 2.0;
        const std::size_t begin = text.find("PEPMASS=");
        return text.replace(begin, text.find('\n', begin) - begin, moved.str());
    }());
    for (const auto& row : rows) {
        run.m_mapSettings["mstol"] = row.tolerance;
        run.m_mapSettings["mstolppm"] = row.isPpm;
        EXPECT_EQ(run.FirstSequence() == "WLTSEYQR", row.isFound) << row.tolerance;
    }
}

TEST(closed_search, fragment_tolerance_is_obeyed) {
    struct {
        const char* tolerance;
        const char* isPpm;
        bool isFound;
    } rows[] = {{"0.5", "0", true}, {"0.2", "0", false}, {"2000", "1", true}, {"200", "1", false}};
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    // Every peak lies 0.3 beside its place, which is from m/z 175 to 969.
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR", {}, 0.3));
    for (const auto& row : rows) {
        run.m_mapSettings["msmstol"] = row.tolerance;
        run.m_mapSettings["msmstolppm"] = row.isPpm;
        EXPECT_EQ(run.FirstSequence() == "WLTSEYQR", row.isFound) << row.tolerance;
    }
}

TEST(closed_search, large_fragments_of_highly_charged_precursors_have_several_charges) {
    const std::string peptide = "WLTSEYQRGHLDAFPVKNTYELSDGR";
    const double proton = 1.00727647;
    // Doubly charged b and y ions alone.
    std::vector<double> peaks;
    for (std::size_t i = 1; i < peptide.size(); ++i) {
        peaks.push_back((peptide_mass(peptide.substr(0, i)) - 18.0105647 + proton) / 2.0);
        peaks.push_back((peptide_mass(peptide.substr(i)) + proton) / 2.0);
    }
    std::sort(peaks.begin(), peaks.end());
    const auto large =
        std::count_if(peaks.begin(), peaks.end(), [](double mz) { return mz >= 400.0; });

    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_mapSettings["msmstol"] = "0.001";
    for (const int charge : {2, 3}) {
        CClassicOut spectrum;
        spectrum.precision(9);
        spectrum << "BEGIN IONS\nTITLE=a.1.1.0.0.dta\nCHARGE=" << charge
                 << "+\nPEPMASS=" << (peptide_mass(peptide) + (charge - 1) * proton) / charge
                 << '\n';
        for (const double mz : peaks)
            spectrum << mz << " 100\n";
        spectrum << "END IONS\n";
        run.m_cFolder.Write("spectra.mgf", spectrum.str());
        if (charge == 2) {
            EXPECT_EQ(run.FirstSequence(), "");
        } else {
            const RESULT_ROW row = first_row(run);
            ASSERT_EQ(row.m_strSequence, peptide);
            EXPECT_EQ(row.m_vSubScores[0] + row.m_vSubScores[1], static_cast<double>(large));
        }
    }
}

TEST(closed_search, letters_without_a_mass_are_in_no_peptide) {
    CSearchRun run;
    run.m_mapSettings["digest"] = "0";
    for (const char* letter : {"X", "B", "Z", "J", "*", "a", "-"}) {
        run.m_cFolder.Write("db.fasta",
                            database(kProtein + "WLTS" + letter + "EYQR" + letter + "WLTSEYQR"));
        run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
        const std::vector<RESULT_BLOCK> blocks = run.Search();
        ASSERT_EQ(blocks.size(), 1U) << letter;
        ASSERT_FALSE(blocks[0].m_vRows.empty()) << letter;
        EXPECT_EQ(blocks[0].m_vRows[0].m_strSequence, "WLTSEYQR") << letter;
        for (const RESULT_ROW& row : blocks[0].m_vRows)
            EXPECT_EQ(row.m_strSequence.find(letter), std::string::npos) << letter;
    }
}

TEST(closed_search, ranks_end_at_pepnum) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database("WLTSEYQRWLTSYEQRWLSTYEQRLWTSEYQR"));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    EXPECT_EQ(run.Search()[0].m_vRows.size(), 4U);
    run.m_mapSettings["pepnum"] = "2";
    EXPECT_EQ(run.Search()[0].m_vRows.back().m_nRank, 2);
    run.m_mapSettings["pepnum"] = "10";
    run.m_mapSettings["temppepnum"] = "3";
    EXPECT_EQ(run.Search()[0].m_vRows.size(), 3U);
}

TEST(closed_search, only_the_most_intense_peaks_are_used) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    const double score = first_row(run).m_lfScore;
    run.m_mapSettings["selectpeak"] = "5";
    EXPECT_LT(first_row(run).m_lfScore, score);
    run.m_mapSettings["selectpeak"] = "0";
    EXPECT_EQ(run.FirstSequence(), "");
}

// ---- Modifications ----

TEST(closed_search, modified_peptides_are_found_with_their_sites) {
    struct {
        const char* name;
        std::map<std::string, std::string> settings;
        const char* protein;
        const char* peptide;
        Shifts shifts;
        Sites sites;  // empty: not found
    } rows[] = {
        {"variable beside fixed",
         {{"fixmod", "Carbamidomethyl[C];"}, {"selectmod", "Oxidation[M];"}},
         "AAAKMLEMCDSMGKAAAK",
         "MLEMCDSMGK",
         {{4, kOxygen}, {5, kCarbamidomethyl}},
         {{4, "Oxidation[M]"}, {5, "Carbamidomethyl[C]"}}},
        {"two of three sites",
         {{"fixmod", "Carbamidomethyl[C];"}, {"selectmod", "Oxidation[M];"}},
         "AAAKMLEMCDSMGKAAAK",
         "MLEMCDSMGK",
         {{1, kOxygen}, {5, kCarbamidomethyl}, {8, kOxygen}},
         {{1, "Oxidation[M]"}, {5, "Carbamidomethyl[C]"}, {8, "Oxidation[M]"}}},
        {"more than maxmod",
         {{"fixmod", "Carbamidomethyl[C];"}, {"selectmod", "Oxidation[M];"}, {"maxmod", "1"}},
         "AAAKMLEMCDSMGKAAAK",
         "MLEMCDSMGK",
         {{1, kOxygen}, {5, kCarbamidomethyl}, {8, kOxygen}},
         {}},
        {"fixed ones do not count for maxmod",
         {{"fixmod", "Carbamidomethyl[C];"}, {"maxmod", "0"}},
         "AAAKCLEECDSCGKAAAK",
         "CLEECDSCGK",
         {{1, kCarbamidomethyl}, {5, kCarbamidomethyl}, {8, kCarbamidomethyl}},
         {{1, "Carbamidomethyl[C]"}, {5, "Carbamidomethyl[C]"}, {8, "Carbamidomethyl[C]"}}},
        {"a fixed one is always there",
         {{"fixmod", "Carbamidomethyl[C];"}},
         "AAAKCLEEGDSVGKAAAK",
         "CLEEGDSVGK",
         {},
         {}},
        {"named in both lists is fixed",
         {{"fixmod", "Carbamidomethyl[C];"}, {"selectmod", "Carbamidomethyl[C];"}},
         "AAAKCLEEGDSVGKAAAK",
         "CLEEGDSVGK",
         {},
         {}},
        {"one modification for a position",
         {{"fixmod", "Carbamidomethyl[C];"}, {"selectmod", "Nitrosyl[C];"}},
         "AAAKCLEEGDSVGKAAAK",
         "CLEEGDSVGK",
         {{1, kCarbamidomethyl + 28.990164}},
         {}},
        {"variable ones side by side on one residue letter",
         {{"selectmod", "Carbamidomethyl[C];Nitrosyl[C];"}},
         "AAAKCLEEGDSCGKAAAK",
         "CLEEGDSCGK",
         {{1, kCarbamidomethyl}, {8, 28.990164}},
         {{1, "Carbamidomethyl[C]"}, {8, "Nitrosyl[C]"}}},
        {"N terminus of the protein",
         {{"selectmod", "Acetyl[ProteinN-term];"}},
         "WLTSEYQRGGGK",
         "WLTSEYQR",
         {{0, kAcetyl}},
         {{0, "Acetyl[ProteinN-term]"}}},
        {"N terminus of the protein behind the initial M",
         {{"selectmod", "Acetyl[ProteinN-term];"}},
         "MWLTSEYQRGGGK",
         "WLTSEYQR",
         {{0, kAcetyl}},
         {{0, "Acetyl[ProteinN-term]"}}},
        {"another N terminus",
         {{"selectmod", "Acetyl[ProteinN-term];"}},
         "AAAKWLTSEYQRGGGK",
         "WLTSEYQR",
         {{0, kAcetyl}},
         {}},
        {"N terminus of any peptide",
         {{"selectmod", "Acetyl[AnyN-term];"}},
         "AAAKWLTSEYQRGGGK",
         "WLTSEYQR",
         {{0, kAcetyl}},
         {{0, "Acetyl[AnyN-term]"}}},
        {"fixed at the N terminus of any peptide",
         {{"fixmod", "Acetyl[AnyN-term];"}, {"maxmod", "0"}},
         "AAAKWLTSEYQRGGGK",
         "WLTSEYQR",
         {{0, kAcetyl}},
         {{0, "Acetyl[AnyN-term]"}}},
        {"terminal residue that is allowed",
         {{"selectmod", "Gln->pyro-Glu[AnyN-termQ];"}},
         "AAAKQLTSEYWRGGGK",
         "QLTSEYWR",
         {{0, -17.026549}},
         {{0, "Gln->pyro-Glu[AnyN-termQ]"}}},
        {"terminal residue that is not allowed",
         {{"selectmod", "Gln->pyro-Glu[AnyN-termQ];"}},
         "AAAKWLTSEYQRGGGK",
         "WLTSEYQR",
         {{0, -17.026549}},
         {}},
        {"C terminus of the protein",
         {{"selectmod", "Amidated[ProteinC-term];"}},
         "AAAKWLTSEYQV",
         "WLTSEYQV",
         {{9, -0.984016}},
         {{9, "Amidated[ProteinC-term]"}}},
        {"another C terminus",
         {{"selectmod", "Amidated[ProteinC-term];"}},
         "WLTSEYQRGGGK",
         "WLTSEYQR",
         {{9, -0.984016}},
         {}},
        {"terminus and its residue",
         {{"selectmod", "Acetyl[AnyN-term];Oxidation[M];"}},
         "AAAKMLTSEYQRGGGK",
         "MLTSEYQR",
         {{0, kAcetyl}, {1, kOxygen}},
         {{0, "Acetyl[AnyN-term]"}, {1, "Oxidation[M]"}}},
    };
    CSearchRun run;
    const auto settings = run.m_mapSettings;
    for (const auto& row : rows) {
        run.m_cFolder.Write("db.fasta", database(row.protein));
        run.m_cFolder.Write("spectra.mgf",
                            perfect_spectrum("a.1.1.2.0.dta", row.peptide, row.shifts));
        run.m_mapSettings = row.settings;
        run.m_mapSettings.insert(settings.begin(), settings.end());
        const RESULT_ROW found = first_row(run);
        if (row.sites.empty()) {
            EXPECT_NE(found.m_strSequence, row.peptide) << row.name;
            continue;
        }
        EXPECT_EQ(found.m_strSequence, row.peptide) << row.name;
        EXPECT_EQ(found.m_vSites, row.sites) << row.name;
        EXPECT_NEAR(found.m_lfMass, peptide_mass(row.peptide, row.shifts), 0.001) << row.name;
    }
}

TEST(closed_search, forms_of_a_peptide_are_bounded) {
    // 30 sites and up to 20 modifications would be 10^9 forms.
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database("AAAK" + std::string(30, 'S') + "K"));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", std::string(30, 'S') + "K",
                                                        {{7, 79.966331}}));
    run.m_mapSettings["selectmod"] = "Phospho[S];";
    run.m_mapSettings["maxmod"] = "20";
    EXPECT_EQ(first_row(run).m_vSites, (Sites{{7, "Phospho[S]"}}));
    // More than 4000 forms have three.
    run.m_cFolder.Write("spectra.mgf",
                        perfect_spectrum("a.1.1.2.0.dta", std::string(30, 'S') + "K",
                                         {{28, 79.966331}, {29, 79.966331}, {30, 79.966331}}));
    run.m_mapSettings["maxmod"] = "3";
    const RESULT_ROW row = first_row(run);
    EXPECT_EQ(row.m_vSites.size(), 3U);
    EXPECT_NE(row.m_vSites, (Sites{{28, "Phospho[S]"}, {29, "Phospho[S]"}, {30, "Phospho[S]"}}));
}

// ---- Merged candidates ----

TEST(closed_search, isoleucine_and_leucine_count_as_one_if_wanted) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", ">P1\nAAAKWLTSEYIR\n>P2\nAAAKWITSEYLR\n>P3\nAAAKWLTSEYLR\n");
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYLR"));
    const std::vector<RESULT_ROW> one = run.Search().at(0).m_vRows;
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(one[0].m_strSequence, "WITSEYLR");
    EXPECT_EQ(one[0].m_vHits, (std::vector<std::string>{"0;4;K;-", "1;4;K;-", "2;4;K;-"}));
    run.m_mapSettings["IeqL"] = "0";
    const std::vector<RESULT_ROW> three = run.Search().at(0).m_vRows;
    ASSERT_EQ(three.size(), 3U);
    EXPECT_EQ(three[1].m_strSequence, "WLTSEYIR");
    EXPECT_EQ(three[1].m_vHits, std::vector<std::string>{"0;4;K;-"});
    EXPECT_EQ(three[2].m_nRank, 1);
}

TEST(closed_search, peptide_of_a_target_and_a_decoy_is_a_target) {
    CSearchRun run;
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYLR"));
    run.m_cFolder.Write("db.fasta", ">REV_P1\nAAAKWITSEYIR\n>P2\nAAAKWLTSEYLR\n");
    for (const char* residuesOfBatch : {"1", "1000"}) {
        run.m_mapSettings["maxprolen"] = residuesOfBatch;
        const std::vector<RESULT_ROW> rows = run.Search().at(0).m_vRows;
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0].m_nDecoy, 0);
        EXPECT_EQ(rows[0].m_strSequence, "WLTSEYLR");
        EXPECT_EQ(rows[0].m_vHits, (std::vector<std::string>{"0;4;K;-", "1;4;K;-"}));
    }
    run.m_cFolder.Write("db.fasta", ">REV_P1\nAAAKWITSEYIR\n");
    EXPECT_EQ(first_row(run).m_nDecoy, 1);
}

TEST(closed_search, candidates_do_not_depend_on_the_order_of_the_proteins) {
    // Without the outermost fragments the order of G and H is open.
    std::string spectrum = perfect_spectrum("a.1.1.2.0.dta", "GHLDAFPVK");
    const std::size_t last = spectrum.rfind('\n', spectrum.find("\nEND") - 1);
    spectrum.erase(last, spectrum.find("\nEND") - last);
    const std::size_t first = spectrum.find("\n58.");
    spectrum.erase(first, spectrum.find('\n', first + 1) - first);
    CSearchRun run;
    run.m_cFolder.Write("spectra.mgf", spectrum);
    std::vector<std::string> proteins{">P1\nAAAKGHLDAFPVK\n", ">P2\nAAAKHGLDAFPVK\n",
                                      ">REV_P3\nAAAKGHIDAFPVK\n"};
    run.m_cFolder.Write("db.fasta", proteins[0] + proteins[1]);
    ASSERT_EQ(run.Search().at(0).m_vRows.at(1).m_nRank, 1);
    run.m_mapSettings["temppepnum"] = "1";
    do {
        run.m_cFolder.Write("db.fasta", proteins[0] + proteins[1] + proteins[2]);
        const RESULT_ROW row = first_row(run);
        EXPECT_EQ(row.m_strSequence, "GHLDAFPVK");
        EXPECT_EQ(row.m_nDecoy, 0);
        EXPECT_EQ(row.m_vHits.size(), 2U);
    } while (std::next_permutation(proteins.begin(), proteins.end()));
}

TEST(closed_search, decoys_of_the_target_decoy_database_are_known) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database("AAAKRQYESTLWK"));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    run.m_mapSettings["auto_rev"] = "1";
    const RESULT_ROW row = first_row(run);
    EXPECT_EQ(row.m_strSequence, "WLTSEYQR");
    EXPECT_EQ(row.m_nDecoy, 1);
    EXPECT_EQ(row.m_vHits, std::vector<std::string>{"1;1;K;K"});
    EXPECT_EQ(row.m_lfQValue, 1.0);
}

TEST(closed_search, protein_with_a_peptide_twice_is_hit_where_it_comes_first) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database("AAAKWLTSEYQRGGGKWLTSEYQR"));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    EXPECT_EQ(first_row(run).m_vHits, std::vector<std::string>{"0;4;K;G"});
}

// ---- The whole ----

TEST(closed_search, result_does_not_depend_on_the_size_of_the_batches) {
    CSearchRun run;
    use_ecoli_spectra(run);
    // Few proteins but a wide tolerance, for many candidates in a short time.
    run.m_cFolder.Write("db.fasta", ecoli_part(15));
    run.m_mapSettings["mstol"] = "1";
    run.m_mapSettings["mstolppm"] = "0";
    run.m_mapSettings["selectmod"] = "Oxidation[M];Acetyl[ProteinN-term];";
    for (const char* kept : {"50", "2"}) {
        run.m_mapSettings["temppepnum"] = kept;
        run.m_mapSettings["maxspec"] = "10000";
        run.m_mapSettings["maxprolen"] = "1000000";
        ASSERT_EQ(run.Run().m_nStatus, 0);
        const std::string whole = run.m_cFolder.Read("out.final.txt");
        ASSERT_EQ(read_results(whole).size(), 139U);
        for (const auto& [spectra, residues] :
             {std::pair("1", "1000000"), std::pair("10", "1"), std::pair("138", "300"),
              std::pair("139", "4000"), std::pair("1000", "-1")}) {
            run.m_mapSettings["maxspec"] = spectra;
            run.m_mapSettings["maxprolen"] = residues;
            ASSERT_EQ(run.Run().m_nStatus, 0);
            EXPECT_TRUE(run.m_cFolder.Read("out.final.txt") == whole) << spectra << residues;
        }
    }
}

TEST(closed_search, spectra_that_share_a_title_do_not_depend_on_the_size_of_the_batches) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("same", "WLTSEYQR") +
                                           perfect_spectrum("same", "GHLDAFPVK") +
                                           perfect_spectrum("other", "NTYELSDGR"));
    for (const char* ranks : {"10", "1"}) {
        run.m_mapSettings["pepnum"] = ranks;
        run.m_mapSettings["maxspec"] = "3";
        ASSERT_EQ(run.Run().m_nStatus, 0);
        const std::string whole = run.m_cFolder.Read("out.final.txt");
        for (const char* spectra : {"1", "2"}) {
            run.m_mapSettings["maxspec"] = spectra;
            ASSERT_EQ(run.Run().m_nStatus, 0);
            EXPECT_EQ(run.m_cFolder.Read("out.final.txt"), whole) << ranks << ' ' << spectra;
        }
    }
}

TEST(closed_search, batch_of_no_spectra_ends_the_run) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", database(kProtein));
    run.m_cFolder.Write("spectra.mgf", perfect_spectrum("a.1.1.2.0.dta", "WLTSEYQR"));
    run.m_mapSettings["maxspec"] = "0";
    EXPECT_EQ(run.Run().m_nStatus, 0);
}

TEST(closed_search, result_does_not_depend_on_the_format_of_the_spectra) {
    CSearchRun run;
    use_ecoli_spectra(run);
    run.m_cFolder.Write("db.fasta", ecoli_part(600));
    ASSERT_EQ(run.Run().m_nStatus, 0);
    const std::string result = run.m_cFolder.Read("out.final.txt");

    // The same spectra as one file and as two.
    const std::string all = run.m_cFolder.Read("spectra.mgf");
    const std::size_t middle = all.find("BEGIN IONS", all.size() / 2);
    run.m_cFolder.Write("first.mgf", all.substr(0, middle));
    run.m_cFolder.Write("second.mgf", all.substr(middle));
    for (const std::string name : {"spectra", "first", "second"}) {
        const std::string words = name + ".mgf " + name + ".zb2 Ecoli_MS2_small";
        ASSERT_EQ(run.RunWith(words, MGF_TO_ZB2).m_nStatus, 0) << name;
    }
    run.m_cFolder.Write("list.zbs", "first.zb2\nsecond.zb2\n");

    struct {
        const char* type;
        const char* path;
        const char* spectraOfBatch;
    } rows[] = {{"ZB2", "spectra.zb2", "10000"},
                {"ZB2", "spectra.zb2", "30"},
                {"ZBS", "list.zbs", "10000"},
                {"ZBS", "list.zbs", "100"}};
    for (const auto& row : rows) {
        run.m_mapSettings["msmstype"] = row.type;
        run.m_mapSettings["msmspath1"] = row.path;
        run.m_mapSettings["maxspec"] = row.spectraOfBatch;
        ASSERT_EQ(run.Run().m_nStatus, 0) << row.type;
        EXPECT_TRUE(run.m_cFolder.Read("out.final.txt") == result)
            << row.type << ' ' << row.spectraOfBatch;
    }
}

TEST(closed_search, ecoli_spectra_are_identified) {
    CSearchRun run;
    use_ecoli_spectra(run);
    run.m_cFolder.Write("db.fasta", ecoli_part(10000));
    const ENDED ended = run.Run();
    ASSERT_EQ(ended.m_nStatus, 0);
    const std::vector<RESULT_BLOCK> blocks = read_results(run.m_cFolder.Read("out.final.txt"));
    ASSERT_EQ(blocks.size(), 139U);
    const std::vector<const RESULT_ROW*> rows = first_rows(blocks);
    int targets = 0;
    int accepted = 0;
    for (const RESULT_ROW* row : rows) {
        targets += row->m_nDecoy == 0;
        accepted += row->m_nDecoy == 0 && row->m_lfQValue <= 0.01;
        double smallest = 1.0;
        for (const RESULT_ROW* other : rows) {
            if (other->m_lfScore <= row->m_lfScore)
                smallest = std::min(smallest, fdr_from(rows, other->m_lfScore));
        }
        EXPECT_NEAR(row->m_lfQValue, smallest, 1e-6) << row->m_strSequence;
    }
    EXPECT_GE(targets, 115);
    EXPECT_GE(accepted, 75);
    const std::vector<std::string> lines = ended.Lines();
    CClassicIn table(lines.at(lines.size() - 2));
    int spectra = 0;
    int scored = 0;
    int reported = 0;
    table >> spectra >> scored >> reported;
    EXPECT_EQ(spectra, 139);
    EXPECT_EQ(reported, accepted);
}
