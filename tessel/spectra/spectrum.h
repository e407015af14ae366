#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "tessel/export.h"

namespace tessel {

/// One peak of a spectrum.
class TESSEL_API CPeak {
public:
    double m_lfMz = 0.0;         ///< m/z
    double m_lfIntensity = 0.0;  ///< in the file's unit
    std::int8_t m_cFlag = 0;     ///< a mark for the engine

    // Sort orders for the engine; a NaN goes last in each.
    static bool Inten_Greater(const CPeak& a, const CPeak& b);  ///< most intense first
    static bool Inten_Less(const CPeak& a, const CPeak& b);     ///< least intense first
    static bool Mz_Less(const CPeak& a, const CPeak& b);        ///< ascending m/z
};

/// One tandem mass spectrum, a plain value.
class TESSEL_API CSpectrum {
public:
    double m_lfMH = 0.0;            ///< precursor mass as the singly protonated ion, Da
    std::uint32_t m_nScanNo = 0;    ///< scan number
    int m_nCharge = 0;              ///< precursor charge
    std::vector<CPeak> m_vPeaks;    ///< in the order read; ascending m/z is expected
    std::string m_strTitle;         ///< names the spectrum in results
    std::vector<int> m_vHashTable;  ///< first peak by integer m/z; see Create_Hash_Table()
    double m_lfAux = 0.0;           ///< for the engine
    std::uint64_t m_tAux = 0;       ///< for the engine

    /// Lighter precursor first, masses that are not finite last.
    static bool Mass_Less(const CSpectrum& a, const CSpectrum& b);
    /// The same for pointers, which must not be null.
    static bool Pr_Mass_Less(const CSpectrum* a, const CSpectrum* b);

    /// Sets the scan number from a title of the form stem.scan...: the number between the first two
    /// dots, 0 without two dots or without a number there.
    void _ExtractScanNo();

    /// Rebuilds m_vHashTable: entry k is the position in m_vPeaks of the first peak whose truncated
    /// m/z is at least k, up to the largest truncated m/z; a lookup beyond is the caller's to
    /// guard. Peaks above m/z 100,000 and those that are not finite are left out. Peaks must stand
    /// in ascending order; one behind a larger one is not found through the table. One peak may so
    /// cost 400 kB: the number of spectra in memory is what bounds all tables, in a batch by its
    /// size.
    void Create_Hash_Table();

    /// Writes the spectrum as one MGF block; the stream's error indicator tells of a failure.
    void Output(std::FILE* file) const;
};

// Titles of the form stem.scan.scan.charge.index.dta taken apart at the dots. Each function
// replaces `out`. Pieces that are joined are joined without the dots, on purpose: engines compare
// the results with names made that way. Of a title of two to five pieces the second is the scan
// number, and both together are the stem; one without a dot stands for everything.

/// The stem: a.b.12.12.2.0.dta gives "ab".
TESSEL_API void _get_title(const std::string& title, std::string& out);
/// The scan number's text: a.b.12.12.2.0.dta gives "12".
TESSEL_API void _get_scanno(const std::string& title, std::string& out);
/// Stem and scan: a.b.12.12.2.0.dta gives "ab12".
TESSEL_API void _get_title_scanno(const std::string& title, std::string& out);

}  // namespace tessel
