// MGF files in batches, against a plain reading line by line.

#include <cmath>

#include "tessel/platform/file.h"
#include "tessel/spectra/mgf_input.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/spectra.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

constexpr double kProton = 1.00727647012;

std::string from(const std::string& line, std::size_t position) {
    return line.size() > position ? line.substr(position) : "";
}

CPeak plain_peak(const std::string& line) {
    CPeak peak;
    const auto mz = plain_double(line);
    peak.m_lfMz = mz.value;
    peak.m_lfIntensity = plain_double(line.substr(mz.length)).value;
    return peak;
}

// Every call of the reader starts with charge 0 and m/z 0.
struct PLAIN_MGF {
    std::vector<std::string> lines;
    std::size_t next = 0;
    std::size_t total = 0;
    std::size_t read = 0;

    explicit PLAIN_MGF(std::string_view text) : lines(plain_lines(text, 81919)) {
        for (const std::string& line : lines)
            total += line.starts_with("BEGIN") ? 1 : 0;
    }

    void Browse(std::vector<CSpectrum>& out, std::size_t num) {
        const std::size_t limit = num < total - read ? read + num : total;
        int charge = 0;
        double mz = 0.0;
        while (read < total) {
            while (next < lines.size() && !lines[next].starts_with("BEGIN"))
                ++next;
            if (next++ >= lines.size()) return;
            out.push_back(Block(charge, mz));
            if (++read == limit) return;
        }
    }

    CSpectrum Block(int& charge, double& mz) {
        CSpectrum spectrum;
        for (; next < lines.size(); ++next) {
            const std::string& line = lines[next];
            const char key = line.empty() ? '\0' : line[0];
            if (key == 'C') charge = plain_integer<int>(from(line, 7)).value;
            if (key == 'P') mz = plain_double(from(line, 8)).value;
            if (key == 'T') spectrum.m_strTitle = from(Printable(line), 6);
            if (key >= '0' && key <= '9') spectrum.m_vPeaks.push_back(plain_peak(line));
            if (key == 'E') break;
        }
        next += next < lines.size() ? 1 : 0;
        spectrum.m_nCharge = charge;
        spectrum.m_lfMH = static_cast<double>(charge) * mz - (charge - 1.0) * kProton;
        const std::string index = std::to_string(read);
        if (spectrum.m_strTitle.empty()) {
            spectrum.m_strTitle = std::to_string(total) + '.' + index + '.' + index + '.' +
                                  std::to_string(charge) + ".dta";
        }
        spectrum._ExtractScanNo();
        return spectrum;
    }

    static std::string Printable(std::string line) {
        while (!line.empty() && (line.back() < ' ' || line.back() > '~'))
            line.pop_back();
        return line;
    }
};

// One block written is one block read.
void check_output(const CSpectrum& spectrum) {
    {
        const FilePtr file = open_file(scratch_path("out.mgf"), "wb");
        spectrum.Output(file.get());
    }
    CMGFInput reader;
    std::vector<CSpectrum> spectra;
    check(reader.Count(scratch_path("out.mgf")) == 1 && reader.Browse(spectra, 1) == 1,
          "one block is written");
    check(
        spectra[0].m_strTitle == spectrum.m_strTitle && spectra[0].m_nCharge == spectrum.m_nCharge,
        "title and charge read back");
    std::size_t peaks = 0;
    for (const CPeak& peak : spectrum.m_vPeaks) {
        if (!std::isfinite(peak.m_lfMz)) continue;  // no digit begins its line
        check(peaks < spectra[0].m_vPeaks.size() &&
                  std::fabs(spectra[0].m_vPeaks[peaks++].m_lfMz - peak.m_lfMz) <=
                      1e-6 + peak.m_lfMz * 1e-15,
              "peaks read back");
    }
    check(peaks == spectra[0].m_vPeaks.size(), "no peaks are added");
}

}  // namespace

void run(CBytes input) {
    const std::size_t batch = input.Choice(4);  // 0 reads all that remain
    write_scratch("in.mgf", input.Text());
    PLAIN_MGF plain(input.Text());
    CMGFInput reader;
    check(reader.Count(scratch_path("in.mgf")) == plain.total, "lines with BEGIN are counted");
    std::vector<CSpectrum> expected;
    std::vector<CSpectrum> spectra;
    for (bool more = true; more;) {
        const std::size_t before = expected.size();
        plain.Browse(expected, batch);
        check(reader.Browse(spectra, batch) == expected.size() - before, "entries are counted");
        check(spectra.size() == expected.size(), "batches have their size");
        more = expected.size() > before;
    }
    check_spectra(expected, spectra);
    check(reader.TakeFaults().empty() ==
              (expected.size() == plain.total && (plain.total > 0 || input.Text().empty())),
          "a fault is told when entries are missing");
    if (!spectra.empty()) check_output(spectra.front());
    check_loading("MGF", "in.mgf", batch, spectra);
}

}  // namespace tessel::fuzz
