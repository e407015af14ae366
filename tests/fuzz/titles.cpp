// Spectrum titles: stem and scan number, against fields counted by hand.

#include "tessel/spectra/spectrum.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

std::string joined(const std::vector<std::string>& fields, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += fields[i];
    return text;
}

}  // namespace

void run(CBytes input) {
    const std::string title(input.Text());
    const std::vector<std::string> fields = plain_fields(title, '.');
    const std::size_t count = fields.size();
    const bool full = count > 5;
    const std::size_t few = count == 1 ? 1 : 2;

    std::string stem = "old";
    std::string scan = title;  // may be the title itself
    std::string both = title;
    _get_title(title, stem);
    _get_scanno(scan, scan);
    _get_title_scanno(both, both);
    check(stem == joined(fields, full ? count - 5 : few), "the stem stands before five fields");
    check(scan == fields[full ? count - 4 : few - 1], "the scan number is the fourth from behind");
    check(both == joined(fields, full ? count - 4 : few), "both are joined without a dot");

    CSpectrum spectrum;
    spectrum.m_strTitle = title;
    spectrum.m_nScanNo = 5;
    spectrum._ExtractScanNo();
    const int number = count < 3 ? 0 : plain_integer<int>(fields[1]).value;
    check(spectrum.m_nScanNo == static_cast<std::uint32_t>(number),
          "the scan number stands between the first two dots");
}

}  // namespace tessel::fuzz
