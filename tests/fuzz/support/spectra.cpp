#include "tests/fuzz/support/spectra.h"

#include <cmath>

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

constexpr double kMaxIndexedMz = 100000.0;

bool is_covered(const CPeak& peak) {
    return std::isfinite(peak.m_lfMz) && peak.m_lfMz <= kMaxIndexedMz;
}

bool same_peaks(const std::vector<CPeak>& a, const std::vector<CPeak>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const CPeak& x, const CPeak& y) {
        return same(x.m_lfMz, y.m_lfMz) && same(x.m_lfIntensity, y.m_lfIntensity) &&
               x.m_cFlag == y.m_cFlag;
    });
}

}  // namespace

void check_peak_index(const CSpectrum& spectrum) {
    std::vector<int> expected;
    int position = 0;
    for (const CPeak& peak : spectrum.m_vPeaks) {
        if (is_covered(peak)) {
            const double last = std::max(std::trunc(peak.m_lfMz), 0.0);
            const std::size_t size = std::max(expected.size(), static_cast<std::size_t>(last) + 1);
            expected.resize(size, position);
        }
        ++position;
    }
    check(spectrum.m_vHashTable == expected, "the index leads to the first peak");
}

void check_spectra(const std::vector<CSpectrum>& expected, const std::vector<CSpectrum>& spectra) {
    check(spectra.size() == expected.size(), "every spectrum is read");
    for (std::size_t i = 0; i < spectra.size(); ++i) {
        check(spectra[i].m_strTitle == expected[i].m_strTitle, "titles are read");
        check(spectra[i].m_nScanNo == expected[i].m_nScanNo &&
                  spectra[i].m_nCharge == expected[i].m_nCharge,
              "scan number and charge are read");
        check(same(spectra[i].m_lfMH, expected[i].m_lfMH), "masses are computed");
        check(same_peaks(spectra[i].m_vPeaks, expected[i].m_vPeaks), "peaks are read");
        check_peak_index(spectra[i]);
    }
}

void check_loading(const std::string& type, const std::string& name, std::size_t batch,
                   const std::vector<CSpectrum>& spectra) {
    CCondition condition;
    condition.m_strMSMSType = type;
    condition.m_strMSMSPath = scratch_path(name);
    condition.m_nMaxSpec = batch;
    std::vector<std::string> titles;
    bool more = true;
    for (std::size_t call = 0; more; ++call) {
        check(call <= 2 * condition.m_tTotalSpec + 2, "loading ends");
        more = condition.LoadSpectra(false);
        for (const CSpectrum& spectrum : condition.m_vSpectra) {
            check(spectrum.m_lfMH >= 0.0 && spectrum.m_lfMH <= 20000.0, "masses are plausible");
            titles.push_back(spectrum.m_strTitle);
        }
    }
    check(condition.m_pSpecReader == nullptr, "the file is closed");
    std::vector<std::string> expected;
    for (const CSpectrum& spectrum : spectra) {
        if (spectrum.m_lfMH >= 0.0 && spectrum.m_lfMH <= 20000.0) {
            expected.push_back(spectrum.m_strTitle);
        }
    }
    check(titles == expected, "plausible spectra are loaded in their order");
}

}  // namespace tessel::fuzz
