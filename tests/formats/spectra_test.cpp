// The pages of the spectrum files: what they say that their examples give.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tessel/base/number.h"
#include "tessel/spectra/mgf_input.h"
#include "tessel/spectra/zb_input.h"
#include "tessel/spectra/zbs_input.h"
#include "tests/formats/format_page.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

using test::CFormatPage;
using test::example_path;
using test::TableRows;

template <class Reader>
std::vector<CSpectrum> spectra_of(const std::string& path) {
    Reader reader;
    std::vector<CSpectrum> spectra;
    reader.Browse(spectra, reader.Count(path));
    EXPECT_EQ(reader.TakeFaults(), std::vector<std::string>());
    return spectra;
}

TableRows rows_of(const std::vector<CSpectrum>& spectra) {
    TableRows rows;
    for (const CSpectrum& spectrum : spectra) {
        std::string peaks;
        for (const CPeak& peak : spectrum.m_vPeaks) {
            peaks += (peaks.empty() ? "" : " ") + shortest_text(peak.m_lfMz) + ':' +
                     shortest_text(peak.m_lfIntensity);
        }
        rows.push_back({spectrum.m_strTitle, std::to_string(spectrum.m_nScanNo),
                        std::to_string(spectrum.m_nCharge), fixed_text(spectrum.m_lfMH, 6), peaks});
    }
    return rows;
}

TEST(mgf_page, gives_the_spectra_of_its_example) {
    EXPECT_EQ(rows_of(spectra_of<CMGFInput>(example_path("example.mgf"))),
              CFormatPage("mgf").Table("What the example gives"));
}

TEST(mgf_page, tells_what_other_keys_are_taken_for) {
    const test::CTempFolder folder;
    const auto spectra = spectra_of<CMGFInput>(
        folder.Write("run.mgf", "BEGIN IONS\nTOLERANCE=20\n 100 1\n+100 1\nEND IONS\n"));
    ASSERT_EQ(spectra.size(), 1U);
    EXPECT_EQ(spectra[0].m_strTitle, "NCE=20");
    EXPECT_TRUE(spectra[0].m_vPeaks.empty());
}

TEST(zb2_page, gives_the_spectra_of_its_example) {
    EXPECT_EQ(rows_of(spectra_of<CZBInput>(example_path("example.zb2"))),
              CFormatPage("zb2").Table("What the example gives"));
}

std::string hex(unsigned number, int digits) {
    std::string text(static_cast<std::size_t>(digits), '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number /= 16)
        *digit = "0123456789abcdef"[number % 16];
    return text;
}

// Two digits for each byte, blanks between.
std::string hex_bytes(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes)
        text += (text.empty() ? "" : " ") + hex(static_cast<unsigned char>(byte), 2);
    return text;
}

TEST(zb2_page, dumps_the_bytes_of_its_example) {
    const std::string bytes = test::read_file(example_path("example.zb2"));
    std::string dump;
    for (std::size_t at = 0; at < bytes.size(); at += 16)
        dump += hex(static_cast<unsigned>(at), 8) + ": " + hex_bytes(bytes.substr(at, 16)) + '\n';
    const CFormatPage page("zb2");
    EXPECT_EQ(page.BlockBehind("`examples/example.zb2`"), dump);
}

// What a field holds, by its width: an integer, a double, or the characters of the stem.
std::string value_of(const std::string& bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    if (bytes.size() == 4) return std::to_string(number);
    if (bytes.size() != 8) return bytes;
    double real;
    std::memcpy(&real, &number, sizeof real);
    return shortest_text(real);
}

TEST(zb2_page, explains_every_byte_of_its_example) {
    const std::string bytes = test::read_file(example_path("example.zb2"));
    std::size_t at = 0;
    for (const auto& row : CFormatPage("zb2").Table("Field by field")) {
        ASSERT_EQ(row.at(0), std::to_string(at));
        const std::size_t length = (row.at(1).size() + 1) / 3;
        const std::string field = bytes.substr(at, length);
        EXPECT_EQ(row.at(1), hex_bytes(field)) << at;
        EXPECT_EQ(row.at(2), value_of(field)) << at;
        at += length;
    }
    EXPECT_EQ(at, bytes.size());
}

TEST(zbs_page, gives_the_spectra_of_its_example) {
    const test::CWorkingFolder working(example_path());
    EXPECT_EQ(rows_of(spectra_of<CZBSInput>("example.zbs")),
              CFormatPage("zbs").Table("What the example gives"));
}

TEST(zbs_page, gives_the_batches_of_its_example) {
    const test::CWorkingFolder working(example_path());
    CZBSInput reader;
    EXPECT_EQ(reader.Count("example.zbs"), 3U);
    std::vector<CSpectrum> spectra;
    TableRows rows;
    for (const std::string call : {"1", "2"})
        rows.push_back({call, std::to_string(reader.Browse(spectra, 2))});
    EXPECT_EQ(rows, CFormatPage("zbs").Table("Batches of two entries"));
    reader.Count("example.zbs");
    EXPECT_EQ(reader.Browse(spectra, 1), 0U);
}

}  // namespace
}  // namespace tessel
