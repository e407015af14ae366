#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/condition/constants.h"
#include "tessel/spectra/spectrum.h"

namespace tessel {

// What the readers of spectrum files have in common.

/// The entry before which a call for `num` more entries stops.
inline std::size_t entry_limit(std::size_t total, std::size_t consumed, std::size_t num) {
    return consumed < total && num < total - consumed ? consumed + num : total;
}

/// Makes room for the spectra of so many more entries. Not for any number at once: it may be a
/// file's claim. And at least twice the room there was, so that small batches do not move all that
/// came before each time.
inline void make_room(std::vector<CSpectrum>& spectra, std::size_t entries) {
    constexpr std::size_t kMost = std::size_t{1} << 16;  // about 7 MB
    const std::size_t needed = spectra.size() + std::min(entries, kMost);
    if (needed > spectra.capacity()) spectra.reserve(std::max(needed, 2 * spectra.capacity()));
}

/// The singly protonated mass of a precursor, Da.
inline double protonated_mass(double mz, int charge) {
    const auto protons = static_cast<double>(charge);
    return protons * mz - (protons - 1.0) * kProtonMass;
}

/// Whether a precursor of this MH+, Da, is searched; NaN is not.
inline bool is_plausible(double protonatedMass) {
    return protonatedMass >= 0.0 && protonatedMass <= 20000.0;
}

/// Appends one number of a generated title and its dot; titles show numbers as signed 32-bit ones.
inline void append_title_number(std::string& title, std::uint64_t number) {
    append_integer(title, static_cast<std::int32_t>(number));
    title += '.';
}

/// The fault of a file that ends before all its entries were read.
inline std::string entries_missing(const std::string& path, std::size_t total,
                                   std::size_t consumed) {
    return joined_text(consumed, " of ", total, " entries read, no more are in ", path);
}

}  // namespace tessel
