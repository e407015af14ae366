// ZB2 files in batches, against a plain decoding byte by byte.

#include "tessel/spectra/zb_input.h"

#include "tests/fuzz/support/spectra.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

constexpr double kProton = 1.00727647012;

struct PLAIN_ZB2 {
    std::string_view rest;
    bool good = true;
    std::size_t total = 0;
    std::string stem;

    explicit PLAIN_ZB2(std::string_view bytes) : rest(bytes) {
        total = Number<std::uint32_t>();
        const std::size_t length = Count(1);
        good = good && length < 81920;
        stem = std::string(rest.substr(0, good ? length : 0)).c_str();
        if (good) rest.remove_prefix(length);
        if (!good) total = 0;
    }

    template <class Value>
    Value Number() {
        Value value{};
        good = good && rest.size() >= sizeof value;
        if (!good) return Value{};
        std::memcpy(&value, rest.data(), sizeof value);
        rest.remove_prefix(sizeof value);
        return value;
    }

    // Of elements that are all there.
    std::size_t Count(std::size_t width) {
        const auto count = Number<std::int32_t>();
        good = good && count >= 0 && static_cast<std::size_t>(count) <= rest.size() / width;
        return good ? static_cast<std::size_t>(count) : 0;
    }

    // False for an entry that is cut off or impossible.
    bool Entry(std::vector<CSpectrum>& out) {
        CSpectrum spectrum;
        spectrum.m_nScanNo = Number<std::uint32_t>();
        spectrum.m_vPeaks.resize(Count(16));
        for (CPeak& peak : spectrum.m_vPeaks) {
            peak.m_lfMz = Number<double>();
            peak.m_lfIntensity = Number<double>();
        }
        const std::size_t precursors = Count(12);
        if (!good) return false;
        const std::string scan = std::to_string(static_cast<int>(spectrum.m_nScanNo));
        for (std::size_t i = 0; i < precursors; ++i) {
            const auto mz = Number<double>();
            const int charge = spectrum.m_nCharge = Number<std::int32_t>();
            spectrum.m_lfMH = static_cast<double>(charge) * mz - (charge - 1.0) * kProton;
            spectrum.m_strTitle = stem + '.' + scan + '.' + scan + '.' + std::to_string(charge) +
                                  '.' + std::to_string(i) + ".dta";
            out.push_back(spectrum);
        }
        return true;
    }
};

}  // namespace

void run(CBytes input) {
    const std::size_t batch = input.Choice(4);  // 0 reads one entry, too
    write_scratch("in.zb2", input.Text());
    PLAIN_ZB2 plain(input.Text());
    CZBInput reader;
    check(reader.Count(scratch_path("in.zb2")) == plain.total, "the header tells the count");
    check(reader.m_strStem == plain.stem, "the stem ends at a zero byte");
    std::vector<CSpectrum> expected;
    std::vector<CSpectrum> spectra;
    for (std::size_t read = 0; plain.good;) {
        std::size_t entries = 0;
        do {
            entries += read + entries < plain.total && plain.Entry(expected) ? 1 : 0;
        } while (plain.good && entries < batch && read + entries < plain.total);
        check(reader.Browse(spectra, batch) == entries, "entries are counted");
        read += entries;
        if (entries == 0) break;
    }
    check_spectra(expected, spectra);
    check(plain.good || !reader.TakeFaults().empty(), "a cut-off file is told");
    check_loading("ZB2", "in.zb2", batch, spectra);
}

}  // namespace tessel::fuzz
