#include "tessel/spectra/zbs_input.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"
#include "tests/support/zb2_writer.h"

namespace tessel {
namespace {

using test::plain_scans;
using test::zb2_file;
using test::zb2_header;
using Texts = std::vector<std::string>;

// A folder with ZB2 files and a list of them.
class CZbs {
public:
    // A file of so many entries; the path is returned.
    std::string File(const std::string& name, std::size_t entries) {
        return m_cFolder.Write(name, zb2_file(name, plain_scans(entries)));
    }

    std::size_t Count(const std::string& list) {
        m_strPath = m_cFolder.Write("list.zbs", list);
        return m_cReader.Count(m_strPath);
    }

    std::vector<CSpectrum> Read(std::size_t num = kAllEntries) {
        std::vector<CSpectrum> spectra;
        m_tRead = m_cReader.Browse(spectra, num);
        return spectra;
    }

    test::CTempFolder m_cFolder;
    std::string m_strPath;
    CZBSInput m_cReader;
    std::size_t m_tRead = 0;
};

TEST(zbs_input, listed_files_are_one_stream) {
    CZbs zbs;
    const std::string a = zbs.File("a", 4);
    const std::string b = zbs.File("b", 6);
    EXPECT_EQ(zbs.Count(a + '\n' + b + '\n'), 10u);
    EXPECT_EQ(zbs.m_cReader.m_strPath, zbs.m_strPath);
    EXPECT_EQ(zbs.m_cReader.m_vFiles, (Texts{a, b}));
    EXPECT_EQ(zbs.m_cReader.m_vFileSpecNum, (std::vector<std::size_t>{4, 6}));
    EXPECT_EQ(zbs.m_cReader.m_tSpecNum, 10u);
    EXPECT_EQ(zbs.m_cReader.m_tFileIdx, 0u);
    EXPECT_NE(zbs.m_cReader.m_pReader, nullptr);
    const std::vector<CSpectrum> spectra = zbs.Read();
    ASSERT_EQ(spectra.size(), 10u);
    EXPECT_EQ(zbs.m_tRead, 10u);
    EXPECT_EQ(spectra[3].m_strTitle, "a.4.4.2.0.dta");
    EXPECT_EQ(spectra[4].m_strTitle, "b.1.1.2.0.dta");
    EXPECT_EQ(zbs.m_cReader.m_tCurIdx, 10u);
    EXPECT_EQ(zbs.m_cReader.m_tFileIdx, 2u);
    EXPECT_EQ(zbs.Read().size(), 0u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts());
}

TEST(zbs_input, batch_ends_before_the_file_that_would_exceed_it) {
    CZbs zbs;
    const std::string list = zbs.File("a", 4) + '\n' + zbs.File("b", 6) + '\n';
    EXPECT_EQ(zbs.Count(list), 10u);
    EXPECT_EQ(zbs.Read(5).size(), 4u);
    EXPECT_EQ(zbs.m_tRead, 4u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts());
    EXPECT_EQ(zbs.Read(5).size(), 0u);
    EXPECT_EQ(zbs.m_tRead, 0u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults().size(), 1u);
    EXPECT_FALSE(zbs.m_cReader.Exhausted());
    EXPECT_EQ(zbs.Read(5).size(), 0u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts());  // told once
    EXPECT_TRUE(zbs.m_cReader.Exhausted());
    EXPECT_EQ(zbs.Read(6).size(), 6u);
    EXPECT_FALSE(zbs.m_cReader.Exhausted());
    for (int call = 0; call < 3; ++call)  // nothing remains
        EXPECT_EQ(zbs.Read(5).size(), 0u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts());
    EXPECT_FALSE(zbs.m_cReader.Exhausted());
}

TEST(zbs_input, batch_takes_all_files_that_fit) {
    CZbs zbs;
    const std::string list =
        zbs.File("a", 2) + '\n' + zbs.File("b", 3) + '\n' + zbs.File("c", 1) + '\n';
    EXPECT_EQ(zbs.Count(list), 6u);
    EXPECT_EQ(zbs.Read(5).size(), 5u);
    EXPECT_EQ(zbs.Read(5).size(), 1u);
    EXPECT_EQ(zbs.Count(list), 6u);
    EXPECT_EQ(zbs.Read(kAllEntries - 1).size(), 6u);
    EXPECT_EQ(zbs.Count(list), 6u);
    EXPECT_EQ(zbs.Read(2).size(), 2u);
    EXPECT_EQ(zbs.Read(kAllEntries - 1).size(), 4u);  // 2 more than that is not 0
}

TEST(zbs_input, entries_not_spectra_are_counted) {
    CZbs zbs;
    std::vector<test::ZB2_SCAN> scans = plain_scans(2);
    scans[0].m_vPrecursors.emplace_back(400.0, 3);
    const std::string path = zbs.m_cFolder.Write("a", zb2_file("a", scans));
    EXPECT_EQ(zbs.Count(path), 2u);
    EXPECT_EQ(zbs.Read(2).size(), 3u);
    EXPECT_EQ(zbs.m_tRead, 2u);
}

TEST(zbs_input, line_ends_of_windows_and_a_missing_last_one_do_no_harm) {
    CZbs zbs;
    const std::string a = zbs.File("a", 1);
    const std::string b = zbs.File("b", 1);
    EXPECT_EQ(zbs.Count("\xEF\xBB\xBF" + a + "\r\n" + b), 2u);
    EXPECT_EQ(zbs.m_cReader.m_vFiles, (Texts{a, b}));
}

TEST(zbs_input, lines_have_any_length_and_are_not_trimmed) {
    CZbs zbs;
    std::string path = zbs.File("a", 1);
    path.insert(path.rfind('/') + 1, 100000, 'x');
    EXPECT_EQ(zbs.Count(path + "\n " + path + '\n'), 0u);  // longer than any file name may be
    EXPECT_EQ(zbs.m_cReader.m_vFiles, (Texts{path, ' ' + path}));
    EXPECT_EQ(zbs.m_cReader.TakeFaults().size(), 2u);
}

TEST(zbs_input, list_without_lines_counts_zero_and_opens_nothing) {
    CZbs zbs;
    zbs.Count(zbs.File("a", 1));
    EXPECT_EQ(zbs.Count(""), 0u);
    EXPECT_EQ(zbs.m_cReader.m_pReader, nullptr);
    EXPECT_TRUE(zbs.m_cReader.m_vFiles.empty());
    EXPECT_TRUE(zbs.m_cReader.m_vFileSpecNum.empty());
    EXPECT_EQ(zbs.Read().size(), 0u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts());
}

TEST(zbs_input, list_that_cannot_be_read_counts_zero) {
    CZbs zbs;
    zbs.Count(zbs.File("a", 1));
    for (const std::string name : {"missing.zbs", ""}) {
        const std::string path = zbs.m_cFolder.Path(name);
        EXPECT_EQ(zbs.m_cReader.Count(path), 0u);
        EXPECT_EQ(zbs.m_cReader.m_pReader, nullptr);
        EXPECT_TRUE(zbs.m_cReader.m_vFiles.empty());
        EXPECT_EQ(zbs.m_cReader.m_tSpecNum, 0u);
        EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts{"cannot open " + path});
        EXPECT_EQ(zbs.Read().size(), 0u);
    }
    EXPECT_EQ(zbs.m_cReader.Count("/proc/self/mem"), 0u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults().size(), 1u);
}

TEST(zbs_input, without_an_open_list_nothing_is_read) {
    CZBSInput reader;
    std::vector<CSpectrum> spectra;
    EXPECT_EQ(reader.Browse(spectra, kAllEntries), 0u);
    EXPECT_TRUE(reader.Close());
    CZbs zbs;
    zbs.Count(zbs.File("a", 1));
    EXPECT_TRUE(zbs.m_cReader.Close());
    EXPECT_EQ(zbs.m_cReader.m_pReader, nullptr);
    EXPECT_EQ(zbs.Read().size(), 0u);
    EXPECT_FALSE(zbs.m_cReader.Exhausted());
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts());
}

TEST(zbs_input, unreadable_listed_file_counts_zero_and_is_told_once) {
    CZbs zbs;
    const std::string missing = zbs.m_cFolder.Path("missing");
    const std::string text = zbs.m_cFolder.Write("text", "BEGIN IONS\nEND IONS\n");
    const std::string list = missing + '\n' + zbs.File("a", 2) + '\n' + text + '\n' + missing +
                             '\n' + zbs.File("b", 1) + '\n';
    EXPECT_EQ(zbs.Count(list), 3u);
    EXPECT_EQ(zbs.m_cReader.m_vFileSpecNum, (std::vector<std::size_t>{0, 2, 0, 0, 1}));
    EXPECT_EQ(zbs.m_cReader.TakeFaults(),
              (Texts{"cannot open " + missing, "no ZB2 header in " + text}));
    EXPECT_EQ(zbs.Read(2).size(), 2u);
    EXPECT_EQ(zbs.Read(2).size(), 1u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts());
    zbs.Count(list);
    EXPECT_EQ(zbs.m_cReader.TakeFaults().size(), 2u);  // told again for a new run
}

TEST(zbs_input, blank_line_is_a_file_without_a_name) {
    CZbs zbs;
    EXPECT_EQ(zbs.Count(zbs.File("a", 2) + "\n\n"), 2u);
    EXPECT_EQ(zbs.m_cReader.m_vFileSpecNum, (std::vector<std::size_t>{2, 0}));
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts{"cannot open "});
    EXPECT_EQ(zbs.Read().size(), 2u);
}

TEST(zbs_input, listed_file_that_ends_early_is_passed_over) {
    CZbs zbs;
    const std::string whole = zb2_file("cut", plain_scans(5));
    const std::string cut = zbs.m_cFolder.Write("cut", whole.substr(0, whole.size() - 50));
    EXPECT_EQ(zbs.Count(cut + '\n' + zbs.File("a", 2)), 7u);
    EXPECT_EQ(zbs.Read(5).size(), 3u);
    EXPECT_EQ(zbs.m_tRead, 5u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts{"3 of 5 entries read, no more are in " + cut});
    EXPECT_EQ(zbs.Read(5).size(), 2u);
    EXPECT_EQ(zbs.m_cReader.m_tCurIdx, 7u);
    EXPECT_EQ(zbs.Read(5).size(), 0u);
}

TEST(zbs_input, claim_that_a_file_cannot_hold_is_told_once) {
    CZbs zbs;
    const std::string path = zbs.m_cFolder.Write("a", zb2_header(4294967295u, "a"));
    EXPECT_EQ(zbs.Count(path + '\n' + path), 8589934590u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(),
              Texts{"4294967295 entries announced, at most 0 fit into " + path});
    EXPECT_EQ(zbs.Read().size(), 0u);
    EXPECT_EQ(zbs.m_tRead, 8589934590u);
}

TEST(zbs_input, file_changed_after_counting_is_told) {
    CZbs zbs;
    const std::string b = zbs.File("b", 6);
    zbs.Count(zbs.File("a", 4) + '\n' + b);
    zbs.File("b", 1);
    EXPECT_EQ(zbs.Read().size(), 5u);
    EXPECT_EQ(zbs.m_tRead, 10u);
    EXPECT_EQ(zbs.m_cReader.TakeFaults(), Texts{"1 entries, no longer 6, are in " + b});
}

}  // namespace
}  // namespace tessel
