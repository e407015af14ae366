// Modification combinations as the example lists them.

#include <gtest/gtest.h>

#include "tests/examples/search_run.h"

using namespace tessel::test;

namespace {

using Lines = std::vector<std::string>;

// A table of three, of which the first is selected.
class list_combinations : public testing::Test {
protected:
    list_combinations() {
        m_cRun.m_cFolder.Write("db.fasta", "");
        m_cRun.m_cFolder.Write("spectra.mgf", "");
        m_cRun.m_cFolder.Write("modification.ini",
                               "name1=Oxidation[M]\t1\n"
                               "Oxidation[M]=M NORMAL 15.994915 15.9994 0 O(1)\n"
                               "name2=Amidated[AnyC-term]\t1\n"
                               "Amidated[AnyC-term]=ABCDEFGHIJKLMNOPQRSTUVWXYZ PEP_C -0.984016 "
                               "-0.9848 0 H(1)N(1)O(-1)\n"
                               "name3=Dioxidation[M]\t1\n"
                               "Dioxidation[M]=M NORMAL 31.989829 31.9988 0 O(2)\n");
        m_cRun.m_mapSettings["selectmod"] = "Oxidation[M];";
        m_cRun.m_mapSettings["fixmod"] = "";
        m_cRun.Run(LIST_COMBINATIONS);  // writes the parameter file
    }

    Lines Listed(const std::string& window) const {
        const ENDED ended = m_cRun.RunWith("search.param " + window, LIST_COMBINATIONS);
        EXPECT_EQ(ended.m_nStatus, 0) << ended.m_strErrors;
        return ended.Lines();
    }

    CSearchRun m_cRun;
};

}  // namespace

// Both oxidations may be selected ones, one of them may be an extra one, or both.
TEST_F(list_combinations, every_group_is_searched_for_the_window) {
    const std::string twice = "31.989830\tOxidation[M];Oxidation[M]";
    EXPECT_EQ(Listed("31.98 31.99"), (Lines{twice, "31.989829\tDioxidation[M]", twice, twice}));
}

TEST_F(list_combinations, masses_below_zero_are_found) {
    EXPECT_EQ(Listed("-1 0.5"), (Lines{"0.000000\t", "-0.984016\tAmidated[AnyC-term]"}));
}

TEST_F(list_combinations, window_is_narrower_than_the_tables) {
    EXPECT_EQ(Listed("31.9898294 31.9898306").size(), 3u);
    EXPECT_TRUE(Listed("31.9898306 31.9899").empty());
    EXPECT_TRUE(Listed("1000 2000").empty());
    EXPECT_TRUE(Listed("2 1").empty());
}

TEST_F(list_combinations, bad_arguments_and_missing_files_are_told_by_the_status) {
    for (const char* words : {"", "search.param", "search.param 1", "search.param 1 x",
                              "search.param 1x 2", "search.param nan 2", "search.param 1 2 3"}) {
        EXPECT_EQ(m_cRun.RunWith(words, LIST_COMBINATIONS).m_nStatus, 2) << words;
    }
    EXPECT_EQ(m_cRun.RunWith("none.param 1 2", LIST_COMBINATIONS).m_nStatus, 1);
}
