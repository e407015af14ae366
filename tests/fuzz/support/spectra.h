#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tessel/spectra/spectrum.h"

namespace tessel::fuzz {

/// Breaks the program unless the peak index is that of a linear scan.
void check_peak_index(const CSpectrum& spectrum);

/// Breaks the program unless both lists hold equal spectra with right indexes.
void check_spectra(const std::vector<CSpectrum>& expected, const std::vector<CSpectrum>& spectra);

/// Breaks the program unless loading a scratch file batch by batch ends in time and gives the
/// plausible ones of the spectra.
void check_loading(const std::string& type, const std::string& name, std::size_t batch,
                   const std::vector<CSpectrum>& spectra);

}  // namespace tessel::fuzz
