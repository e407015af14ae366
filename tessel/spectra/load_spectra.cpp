// Spectra batch by batch: a spectrum file comes in, the batch and the range of peptide masses that
// its search needs are filled.

#include <algorithm>

#include "tessel/condition/condition.h"
#include "tessel/spectra/mgf_input.h"

namespace tessel {
namespace {

constexpr double kMinMass = 0.0;  // MH+ of a plausible precursor, Da
constexpr double kMaxMass = 20000.0;

std::unique_ptr<CInput> make_reader(const std::string& type) {
    if (type == "MGF") return std::make_unique<CMGFInput>();
    return nullptr;
}

void drop_implausible(std::vector<CSpectrum>& spectra) {
    std::erase_if(spectra, [](const CSpectrum& spectrum) {
        return !(spectrum.m_lfMH >= kMinMass && spectrum.m_lfMH <= kMaxMass);  // NaN goes, too
    });
}

// The peptide masses from which a mass shift of at most `maxDelta` around `center` leads to one of
// the spectra.
void find_mass_range(const std::vector<CSpectrum>& spectra, double maxDelta, double center,
                     double& lower, double& upper) {
    lower = 1e9;
    upper = -1e9;
    for (const CSpectrum& spectrum : spectra) {
        const double mass = spectrum.m_lfMH - center;
        lower = std::min(lower, mass - maxDelta);
        upper = std::max(upper, mass + maxDelta);
    }
}

}  // namespace

bool CCondition::LoadSpectra(bool bAll) {
    std::vector<CSpectrum>().swap(m_vSpectra);  // a batch may be large: give its memory back
    if (!m_pSpecReader) {
        m_pSpecReader = make_reader(m_strMSMSType);
        if (!m_pSpecReader) {
            Message("Spectrum files of type " + m_strMSMSType + " cannot be read", LOG_ALERT);
            return false;
        }
        m_tTotalSpec = m_pSpecReader->Count(m_strMSMSPath);
        m_tLoadedSpec = 0;
        m_tBatchNo = 0;
    }

    const std::size_t wanted = bAll ? m_tTotalSpec : m_nMaxSpec;
    const std::size_t remaining = m_tTotalSpec - m_tLoadedSpec;
    const std::size_t read = m_pSpecReader->Browse(m_vSpectra, wanted);
    for (const std::string& fault : m_pSpecReader->TakeFaults())
        Message("Spectrum file of type " + m_strMSMSType + ": " + fault, LOG_ALERT);
    m_tLoadedSpec += read;
    m_tBatchNo += 1;

    drop_implausible(m_vSpectra);
    if (!m_vSpectra.empty()) {
        double lower;
        double upper;
        find_mass_range(m_vSpectra, m_lfMaxDelta, m_lfCenter, lower, upper);
        m_lfBatchMassLower = std::max(lower, m_lfMassLower);
        m_lfBatchMassUpper = std::min(upper, m_lfMassUpper);
    }

    // A file that ends early yields nothing more, however often it is asked.
    const bool ended = read < std::max<std::size_t>(std::min(wanted, remaining), 1);
    if (m_tLoadedSpec < m_tTotalSpec && !ended) return true;
    m_pSpecReader->Close();
    m_pSpecReader.reset();
    return false;
}

}  // namespace tessel
