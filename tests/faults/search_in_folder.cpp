#include "tests/faults/search_in_folder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <set>

#include "tessel/param/condition_reader.h"
#include "tessel/param/condition_writer.h"
#include "tessel/platform/file.h"
#include "tests/chem/chemistry.h"

namespace tessel::test {

void search_in(const std::string& folder, const std::string& text) {
    CChemistry chemistry;  // the working folder with the element and label tables
    std::filesystem::create_directories(path_of(chemistry.m_cFolder.Path() + '/' + folder));
    const std::string before = chemistry.m_cFolder.Path() + '/' + text;
    const auto path = [&](const std::string& name) { return before + name; };
    chemistry.m_cFolder.Write("element.ini", test::kWholeElements);
    chemistry.m_cFolder.Write("quant.ini", "\nNone=none\n");
    const auto write = [&](const std::string& name, const std::string& content) {
        const FilePtr file = open_file(path(name), "wb");
        ASSERT_TRUE(file) << path(name);
        std::fputs(content.c_str(), file.get());
    };
    write("aa.ini", "R1=G|C(2)H(3)|\nR2=K|C(6)|\n");
    write("modification.ini", "name1=Acetyl[K]\t1\nAcetyl[K]=K NORMAL 42 42 0 C(2)\n");
    write("db.fasta", ">P one\nGGK\n");
    write("a.mgf", "BEGIN IONS\nTITLE=a.1.1.2.0.dta\nCHARGE=2+\nPEPMASS=500\n100 1\nEND IONS\n");
    write("run.1.res", "S\t999\t2\na.1.1.2.0.dta\n");

    CCondition settings;
    settings.m_strFastaPath = path("db.fasta");
    settings.m_strOutputPath = before;
    settings.m_strOutputName = "run";
    settings.m_strAAPath = path("aa.ini");
    settings.m_strModPath = path("modification.ini");
    settings.m_vMSMSFiles = {path("a.mgf")};
    settings.m_strMSMSType = "MGF";
    settings.m_strSelectMod = "Acetyl[K]";
    settings.m_lfMaxDelta = -1.0;
    CConditionWriter(path("search.param"), &settings).Write();

    CConditionReader reader(path("search.param"));
    reader.Read();
    CCondition& condition = reader.m_cCondition;
    condition.m_strOutputPath = before;  // the reader adds a backslash to a slash
    condition.Initialize();
    EXPECT_EQ(condition.m_vSelMods.size(), 1U);
    EXPECT_EQ(condition.m_strInputFastaPath, path("db.fasta_td.fasta"));
    condition.m_cFastaLoader.Reset();
    condition.m_cFastaLoader.ReadNextBatch();
    EXPECT_EQ(condition.m_cFastaLoader.m_vProteins.size(), 2U);
    EXPECT_EQ(condition.WriteConfFiles(), 1U);
    condition.ReLoadAllMods();
    EXPECT_EQ(condition.m_strModPath, path("1.mod"));
    ASSERT_EQ(condition.m_vMSMSFiles.size(), 1U);
    condition.m_strMSMSPath = condition.m_vMSMSFiles.front();
    EXPECT_FALSE(condition.LoadSpectra(false));
    EXPECT_EQ(condition.m_vSpectra.size(), 1U);
    condition.MergeSubRes("res");
    condition.LoadResult({path("run.res")}, 10, 1.0);
    condition.WriteFinalResult(path("final.res"), 0.0);

    std::set<std::string> names;
    // The iterator of the C++ library goes astray in long paths on Windows.
    const auto entries = folder_entries(chemistry.m_cFolder.Path() + '/' + folder);
    ASSERT_TRUE(entries);
    names.insert(entries->begin(), entries->end());
    EXPECT_EQ(names, (std::set<std::string>{"1.aa", "1.mod", "a.mgf", "aa.ini", "db.fasta",
                                            "db.fasta_td.fasta", "final.res", "modification.ini",
                                            "run.res", "search.param"}));
    EXPECT_TRUE(path_exists(path("final.res")));
    EXPECT_EQ(file_status(path("final.res"))->m_uSize, file_status(path("run.res"))->m_uSize + 7);
}

}  // namespace tessel::test
