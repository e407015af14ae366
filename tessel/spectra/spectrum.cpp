// One spectrum: its sort orders, the scan number in its title, the index over its peaks, and its
// form as an MGF block.

#include "tessel/spectra/spectrum.h"

#include <cmath>
#include <functional>
#include <string_view>

#include "tessel/base/bucket_index.h"
#include "tessel/base/mass_order.h"
#include "tessel/base/number.h"
#include "tessel/condition/constants.h"

namespace tessel {
namespace {

constexpr double kMaxIndexedMz = 100000.0;

// A NaN compares false with everything, which is no order; it goes behind all numbers.
template <class Before>
bool before_nan_last(double a, double b, Before before) {
    if (std::isnan(a) || std::isnan(b)) return !std::isnan(a);
    return before(a, b);
}

}  // namespace

bool CPeak::Inten_Greater(const CPeak& a, const CPeak& b) {
    return before_nan_last(a.m_lfIntensity, b.m_lfIntensity, std::greater<>());
}

bool CPeak::Inten_Less(const CPeak& a, const CPeak& b) {
    return before_nan_last(a.m_lfIntensity, b.m_lfIntensity, std::less<>());
}

bool CPeak::Mz_Less(const CPeak& a, const CPeak& b) {
    return before_nan_last(a.m_lfMz, b.m_lfMz, std::less<>());
}

bool CSpectrum::Mass_Less(const CSpectrum& a, const CSpectrum& b) {
    return mass_less(a.m_lfMH, b.m_lfMH);
}

bool CSpectrum::Pr_Mass_Less(const CSpectrum* a, const CSpectrum* b) {
    return Mass_Less(*a, *b);
}

void CSpectrum::_ExtractScanNo() {
    m_nScanNo = 0;
    const std::size_t begin = m_strTitle.find('.');
    if (begin == std::string::npos) return;
    const std::size_t end = m_strTitle.find('.', begin + 1);
    if (end == std::string::npos) return;
    const std::string_view number(m_strTitle.data() + begin + 1, end - begin - 1);
    // Titles show scan numbers as signed ones, so a minus sign stands for the upper half.
    m_nScanNo = static_cast<std::uint32_t>(to_int(number));
}

void CSpectrum::Create_Hash_Table() {
    fill_buckets(m_vHashTable, m_vPeaks, [](const CPeak& peak) {
        const bool covered = std::isfinite(peak.m_lfMz) && peak.m_lfMz <= kMaxIndexedMz;
        return covered ? truncated(peak.m_lfMz) : kNoBucket;
    });
}

void CSpectrum::Output(std::FILE* file) const {
    constexpr std::size_t kUsualHead = 128;  // bytes, like the line
    constexpr std::size_t kUsualLine = 24;
    const auto charge = static_cast<double>(m_nCharge);
    std::string block;
    block.reserve(kUsualHead + m_strTitle.size() + kUsualLine * m_vPeaks.size());
    block += "BEGIN IONS\nTITLE=";
    block += m_strTitle;
    block += "\nCHARGE=";
    append_integer(block, m_nCharge);
    block += "\nPEPMASS=";
    append_fixed(block, (m_lfMH + (charge - 1.0) * kProtonMass) / charge, 6);
    block += '\n';
    for (const CPeak& peak : m_vPeaks) {
        append_fixed(block, peak.m_lfMz, 6);
        block += ' ';
        append_fixed(block, peak.m_lfIntensity, 2);
        block += '\n';
    }
    block += "END IONS\n";
    std::fwrite(block.data(), 1, block.size(), file);
}

}  // namespace tessel
