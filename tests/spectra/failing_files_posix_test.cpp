// Spectrum files whose reading fails in the middle, as on a bad sector: a file of a Linux system
// that opens and cannot be read takes the place of the open one.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "tessel/spectra/mgf_input.h"
#include "tessel/spectra/zb_input.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zb2_writer.h"

namespace tessel {
namespace {

using Texts = std::vector<std::string>;

constexpr std::size_t kEntries = 50'000;  // more than is read ahead

class failing_files_posix : public testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(kFailing)) GTEST_SKIP() << "no file here that fails";
    }

    // Counts a file, reads its first entry, and then has every reading of it fail.
    template <class Reader>
    void ReadOneAndFail(Reader& reader, const std::string& bytes) {
        m_strPath = m_cFolder.Write("spectra", bytes);
        m_tCount = reader.Count(m_strPath);
        ASSERT_EQ(Read(reader, 1).size(), 1u);
        ASSERT_NE(std::freopen(kFailing, "rb", reader.m_fp), nullptr);
    }
    template <class Reader>
    std::vector<CSpectrum> Read(Reader& reader, std::size_t num) {
        std::vector<CSpectrum> spectra;
        reader.Browse(spectra, num);
        return spectra;
    }
    // What was read ahead is still read, and the rest told.
    template <class Reader>
    void ExpectEnd(Reader& reader) {
        const std::size_t held = Read(reader, kAllEntries).size();
        EXPECT_GT(held, 0u);
        EXPECT_LT(held, kEntries - 1);
        EXPECT_EQ(reader.TakeFaults(),
                  (Texts{"cannot read " + m_strPath,
                         std::to_string(1 + held) + " of " + std::to_string(m_tCount) +
                             " entries read, no more are in " + m_strPath}));
        EXPECT_TRUE(reader.Exhausted());
        EXPECT_EQ(Read(reader, kAllEntries).size(), 0u);
        EXPECT_EQ(reader.TakeFaults(), Texts());
    }

    static constexpr const char* kFailing = "/proc/self/mem";  // nothing is mapped at its start
    test::CTempFolder m_cFolder;
    std::string m_strPath;
    std::size_t m_tCount = 0;
};

TEST_F(failing_files_posix, mgf_file_that_cannot_be_read_on_says_so) {
    std::string bytes;
    for (std::size_t i = 0; i < kEntries; ++i)
        bytes += "BEGIN IONS\n100 2\nEND IONS\n";
    CMGFInput reader;
    ReadOneAndFail(reader, bytes);
    ExpectEnd(reader);
}

TEST_F(failing_files_posix, last_block_that_cannot_be_read_on_is_told) {
    std::string bytes = "BEGIN IONS\nEND IONS\nBEGIN IONS\n";
    for (int i = 0; i < 100'000; ++i)
        bytes += "100.5 2\n";
    CMGFInput reader;
    ReadOneAndFail(reader, bytes + "END IONS\n");
    const std::vector<CSpectrum> spectra = Read(reader, 1);
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_LT(spectra[0].m_vPeaks.size(), 100'000u);
    EXPECT_EQ(reader.TakeFaults(), Texts{"cannot read " + m_strPath});
}

TEST_F(failing_files_posix, zb2_file_that_cannot_be_read_on_says_so) {
    CZBInput reader;
    ReadOneAndFail(reader, test::zb2_file("run", test::plain_scans(kEntries)));
    ExpectEnd(reader);
}

}  // namespace
}  // namespace tessel
