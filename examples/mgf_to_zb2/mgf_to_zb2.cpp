// Writes the spectra of an MGF file as a ZB2 file.
//
//     mgf_to_zb2 RUN.mgf RUN.zb2 [STEM]
//
// Kept: the order of the spectra, scan numbers, charges, the peaks bit by bit, and the precursor
// masses but for rounding. A title becomes STEM.scan.scan.charge.0.dta; without STEM the name of
// the MGF file up to its last dot is taken. Not kept: what else the titles say, and keys that the
// library does not read. Exit status 1: a file cannot be read or written; 2: wrong arguments.

#include <bit>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tessel/tessel.h"

namespace {

// Numbers are stored with their lowest byte first.
void append(std::string& bytes, std::uint64_t number, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

void append(std::string& bytes, double number) {
    append(bytes, std::bit_cast<std::uint64_t>(number), 8);
}

// An entry: scan number, peaks and, here, one precursor.
std::string entry_of(const tessel::CSpectrum& spectrum) {
    const double charge = spectrum.m_nCharge;
    const double protonated = spectrum.m_lfMH + (charge - 1.0) * tessel::kProtonMass;
    std::string bytes;
    append(bytes, spectrum.m_nScanNo, 4);
    append(bytes, spectrum.m_vPeaks.size(), 4);
    for (const tessel::CPeak& peak : spectrum.m_vPeaks) {
        append(bytes, peak.m_lfMz);
        append(bytes, peak.m_lfIntensity);
    }
    append(bytes, 1, 4);
    append(bytes, charge == 0.0 ? 0.0 : protonated / charge);
    append(bytes, static_cast<std::uint32_t>(spectrum.m_nCharge), 4);
    return bytes;
}

bool write_zb2(const std::string& path, const std::string& stem,
               const std::vector<tessel::CSpectrum>& spectra) {
    std::string header;
    append(header, spectra.size(), 4);
    append(header, stem.size(), 4);
    std::ofstream file(path, std::ios::binary);
    file << header << stem;
    for (const tessel::CSpectrum& spectrum : spectra)
        file << entry_of(spectrum);
    file.close();
    return !file.fail();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::cerr << "usage: mgf_to_zb2 RUN.mgf RUN.zb2 [STEM]\n";
        return 2;
    }
    const std::string stem = argc == 4 ? argv[3] : std::filesystem::path(argv[1]).stem().string();

    tessel::CMGFInput input;
    std::vector<tessel::CSpectrum> spectra;
    input.Count(argv[1]);
    input.Browse(spectra, tessel::kAllEntries);
    const std::vector<std::string> faults = input.TakeFaults();
    for (const std::string& fault : faults)
        std::cerr << "mgf_to_zb2: " << fault << '\n';
    if (!faults.empty()) return 1;

    if (!write_zb2(argv[2], stem, spectra)) {
        std::cerr << "mgf_to_zb2: cannot write " << argv[2] << '\n';
        return 1;
    }
    return 0;
}
