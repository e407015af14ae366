// Spectra batch by batch: a spectrum file comes in, the batch and the range of peptide masses that
// its search needs are filled.

#include <algorithm>

#include "tessel/condition/condition.h"
#include "tessel/spectra/entries.h"
#include "tessel/spectra/mgf_input.h"
#include "tessel/spectra/zb_input.h"
#include "tessel/spectra/zbs_input.h"

namespace tessel {
namespace {

std::unique_ptr<CInput> make_reader(const std::string& type) {
    if (type == "MGF") return std::make_unique<CMGFInput>();
    if (type == "ZBS") return std::make_unique<CZBSInput>();
    return std::make_unique<CZBInput>();
}

void drop_implausible(std::vector<CSpectrum>& spectra) {
    std::erase_if(spectra,
                  [](const CSpectrum& spectrum) { return !is_plausible(spectrum.m_lfMH); });
}

struct MASS_RANGE {
    double m_lfLower;
    double m_lfUpper;
};

// The peptide masses from which a mass shift of at most `maxDelta` around `center` leads to one of
// the spectra.
MASS_RANGE mass_range(const std::vector<CSpectrum>& spectra, double maxDelta, double center) {
    MASS_RANGE range{1e9, -1e9};
    for (const CSpectrum& spectrum : spectra) {
        const double mass = spectrum.m_lfMH - center;
        range.m_lfLower = std::min(range.m_lfLower, mass - maxDelta);
        range.m_lfUpper = std::max(range.m_lfUpper, mass + maxDelta);
    }
    return range;
}

}  // namespace

bool CCondition::LoadSpectra(bool bAll) {
    std::vector<CSpectrum>().swap(m_vSpectra);  // a batch may be large: give its memory back
    if (!m_pSpecReader) {
        m_pSpecReader = make_reader(m_strMSMSType);
        m_tTotalSpec = m_pSpecReader->Count(m_strMSMSPath);
        m_tLoadedSpec = 0;
        m_tBatchNo = 0;
    }

    m_tLoadedSpec += m_pSpecReader->Browse(m_vSpectra, bAll ? m_tTotalSpec : m_nMaxSpec);
    m_tBatchNo += 1;
    for (const std::string& fault : m_pSpecReader->TakeFaults())
        Message("Spectrum file of type " + m_strMSMSType + ": " + fault, LOG_ALERT);

    drop_implausible(m_vSpectra);
    if (!m_vSpectra.empty()) {
        const MASS_RANGE range = mass_range(m_vSpectra, m_lfMaxDelta, m_lfCenter);
        m_lfBatchMassLower = std::max(range.m_lfLower, m_lfMassLower);
        m_lfBatchMassUpper = std::min(range.m_lfUpper, m_lfMassUpper);
    }

    if (m_tLoadedSpec < m_tTotalSpec && !m_pSpecReader->Exhausted()) return true;
    m_pSpecReader->Close();
    m_pSpecReader.reset();
    return false;
}

}  // namespace tessel
