// Conditions share nothing: each thread may use its own at the same time as all others. Meant to be
// run under the thread sanitizer.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tessel/condition/condition.h"
#include "tessel/param/condition_reader.h"
#include "tessel/param/condition_writer.h"
#include "tessel/platform/file.h"
#include "tessel/space/godel_code.h"
#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"
#include "tests/support/zb2_writer.h"

namespace tessel {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 3;

// A folder with all files of a search. The working folder with the element and label tables is that
// of the whole process.
class CSearchFolder {
public:
    explicit CSearchFolder(int number) {
        const std::string name = std::to_string(number);
        std::string proteins;
        std::string spectra;
        for (int i = 0; i < 50; ++i) {
            proteins += ">P" + name + " d\nGGKGKK\n";
            spectra += "BEGIN IONS\nTITLE=t" + name + '.' + std::to_string(i) +
                       ".1\nCHARGE=2+\nPEPMASS=" + std::to_string(500 + i) +
                       "\n100.5 1\n200.5 2\nEND IONS\n";
        }
        m_cFolder.Write("aa.ini", "R1=G|C(2)H(3)|\nR2=K|C(6)|\n");
        m_cFolder.Write("modification.ini",
                        "name1=A[K]\t1\nA[K]=K NORMAL 42 42 0 C(2)\nname2=B[G]\t1\n"
                        "B[G]=G NORMAL 12.5 12.5 1 3.5 3.5 C(1)\n");
        m_cFolder.Write("db.fasta", proteins);
        m_cFolder.Write("a.mgf", spectra);
        m_cFolder.Write("a.zb2", test::zb2_file("z" + name, test::plain_scans(50)));
        m_cFolder.Write("a.zbs", m_cFolder.Path("a.zb2") + '\n' + m_cFolder.Path("a.zb2") + '\n');
        m_cFolder.Write(
            "search.param",
            "[param]\nmaxmod=21\nselectmod=A[K];B[G];C\nmaxspec=20\nmaxdelta=2\n[file]\n"
            "fastapath=" +
                m_cFolder.Path("db.fasta") + "\noutputpath=" + m_cFolder.Path() +
                "/\noutputname=run\nmodpath=" + m_cFolder.Path("modification.ini") +
                "\naapath=" + m_cFolder.Path("aa.ini") + "\n[system]\nlog=LOG_DEBUG\n");
    }

    test::CTempFolder m_cFolder;
};

std::size_t spectra_of(CCondition& condition, const std::string& path, const std::string& type) {
    condition.m_strMSMSPath = path;
    condition.m_strMSMSType = type;
    std::size_t spectra = 0;
    for (bool more = true; more;) {
        more = condition.LoadSpectra(type == "ZBS");
        spectra += condition.m_vSpectra.size();
    }
    return spectra;
}

void write_batch(const CCondition& condition, const std::string& path) {
    const FilePtr file = open_file(path, "wb");
    for (const CSpectrum& spectrum : condition.m_vSpectra) {
        const std::string text = "S\t999\t2\n" + spectrum.m_strTitle +
                                 "\n1\tGK\t99\t10\t0\t0\t1\t1\tA[K]#0\t0\t0\t0\t1\t1;1;K;G\t0"
                                 "\t1\t2\t3\t4\t5\t1\t2\t3\t4\t5\t6\t7\t8\n";
        std::fputs(text.c_str(), file.get());
    }
}

// One search with everything in it; returns its figures and its final result.
std::string search(const test::CTempFolder& folder) {
    CConditionReader reader(folder.Path("search.param"));
    reader.Read();
    CCondition& condition = reader.m_cCondition;
    condition.Initialize();
    condition.m_cFastaLoader.Reset();
    condition.m_cFastaLoader.ReadNextBatch();
    condition.WriteConfFiles();
    condition.ReLoadAllMods();
    condition.GenerateModComb();
    std::string told = std::to_string(condition.m_vModComb[2].size()) + ' ' +
                       std::to_string(condition.m_cFastaLoader.m_vProteins.size());
    told += ' ' + std::to_string(spectra_of(condition, folder.Path("a.zb2"), "ZB2"));
    told += ' ' + std::to_string(spectra_of(condition, folder.Path("a.zbs"), "ZBS"));

    condition.m_strMSMSPath = folder.Path("a.mgf");
    condition.m_strMSMSType = "MGF";
    for (bool more = true; more;) {
        more = condition.LoadSpectra(false);
        write_batch(condition, folder.Path("run." + std::to_string(condition.m_tBatchNo) + ".res"));
    }
    condition.MergeSubRes("res");
    condition.InitialResMap();
    condition.LoadResult({folder.Path("run.res")}, 10, 1.0);
    condition.RemoveRedundancy();
    condition.WriteFinalResult(folder.Path("final.res"), 0.0);
    CConditionWriter(folder.Path("written.param"), &condition).Write();

    GodelCode code;
    told +=
        ' ' + std::to_string(condition.m_mapPSMRes.begin()->second.m_vPeps[0].GetHash(code) > 0);
    return told + '\n' + folder.Read("final.res") + folder.Read("db.fasta_td.fasta");
}

class conditions : public testing::Test {
protected:
    conditions() {
        m_cFolder.Write("element.ini", test::kWholeElements);
        m_cFolder.Write("quant.ini", "\nNone=none\n");
    }

    // Runs the action once in each thread, all at the same time; returns what was printed.
    static std::string InThreads(const std::function<void(int)>& action) {
        return test::captured_output([&action] {
            std::vector<std::thread> threads;
            for (int i = 0; i < kThreads; ++i)
                threads.emplace_back(action, i);
            for (std::thread& thread : threads)
                thread.join();
        });
    }

    test::CTempFolder m_cFolder;
    test::CWorkingFolder m_cHere{m_cFolder.Path()};
};

TEST_F(conditions, search_at_the_same_time_as_they_do_one_after_the_other) {
    std::vector<CSearchFolder> folders;
    std::vector<std::string> expected;
    for (int i = 0; i < kThreads; ++i) {
        const CSearchFolder folder(i);
        test::captured_output([&] { expected.push_back(search(folder.m_cFolder)); });
        // 10 multisets of up to three of two selected ones, each with 3 pairs of the table's two.
        EXPECT_EQ(expected.back().substr(0, 16), "30 100 50 100 1\n");
    }
    std::vector<std::string> results(kThreads);
    InThreads([&](int i) {
        for (int round = 0; round < kRounds; ++round) {
            const CSearchFolder folder(i);
            results[static_cast<std::size_t>(i)] = search(folder.m_cFolder);
        }
    });
    EXPECT_EQ(results == expected, true);
}

TEST_F(conditions, prepare_one_database_at_the_same_time) {
    const CSearchFolder shared(0);
    EXPECT_EQ(InThreads([&](int) {
                  CCondition condition;
                  condition.m_strFastaPath = shared.m_cFolder.Path("db.fasta");
                  condition.SetFastaPath();
              }),
              "");
    EXPECT_EQ(shared.m_cFolder.Read("db.fasta_td.fasta").substr(0, 39),
              ">P0\td\t\nGGKGKK\n>REV_P0\t_REV1\nKKGKGG\n>P0\t");
}

// Lines of different conditions do not run into one another.
TEST_F(conditions, tell_whole_lines) {
    const std::string output = InThreads([](int i) {
        CCondition condition;
        for (int line = 0; line < 200; ++line)
            condition.Message(std::string(50, static_cast<char>('a' + i)), LOG_WARNING);
    });
    std::size_t lines = 0;
    for (std::size_t begin = 0; begin < output.size(); ++lines) {
        const std::size_t end = output.find('\n', begin);
        const std::string line = output.substr(begin, end - begin);
        ASSERT_EQ(line, "[Tessel] WARNING: " + std::string(50, line.back()));
        begin = end + 1;
    }
    EXPECT_EQ(lines, std::size_t{kThreads * 200});
}

}  // namespace
}  // namespace tessel
