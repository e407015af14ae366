// The label tables as the example prints them.

#include <gtest/gtest.h>

#include "tests/examples/search_run.h"

using namespace tessel::test;

namespace {

using Lines = std::vector<std::string>;

// What the example prints for these labels and selected modifications.
Lines label_lines(const std::string& labels, const std::string& selected) {
    CSearchRun run;
    run.m_cFolder.Write("db.fasta", ">P1\nGHLDAFPVK\n");
    run.m_cFolder.Write("spectra.mgf", "");
    run.m_mapSettings["quant"] = labels;
    run.m_mapSettings["selectmod"] = selected;
    const ENDED ended = run.Run(LABELS);
    EXPECT_EQ(ended.m_nStatus, 0);
    EXPECT_EQ(ended.m_strErrors, "");
    return ended.Lines();
}

}  // namespace

TEST(labels, residues_of_a_label_get_its_isotopes) {
    // 6 C and 2 N of lysine, 6 C and 4 N of arginine; 1.003355 for each C, 0.997035 for each N.
    EXPECT_EQ(label_lines("2|None|SILAC-K8R10|", "Oxidation[M];"),
              (Lines{"SILAC-K8R10\tK\t136.109162\t8.014199",
                     "SILAC-K8R10\tR\t166.109380\t10.008269", "Oxidation[M]#0\t15.994915"}));
}

TEST(labels, labelled_modification_stands_beside_its_light_form) {
    // 2 C of the acetyl group.
    EXPECT_EQ(
        label_lines("2|None|Acetyl-13C2", "Acetyl[K];Oxidation[M];"),
        (Lines{"Acetyl[K]#0\t42.010565", "Acetyl[K]#2\t44.017274", "Oxidation[M]#0\t15.994915"}));
}

TEST(labels, unlabelled_search_changes_nothing) {
    EXPECT_EQ(label_lines("1|None", "Oxidation[M];"), (Lines{"Oxidation[M]#0\t15.994915"}));
}

TEST(labels, bad_arguments_and_missing_files_are_told_by_the_status) {
    const CSearchRun run;
    EXPECT_EQ(run.RunWith("", LABELS).m_nStatus, 2);
    EXPECT_EQ(run.RunWith("a.param b.param", LABELS).m_nStatus, 2);
    EXPECT_EQ(run.RunWith("none.param", LABELS).m_nStatus, 1);
}
