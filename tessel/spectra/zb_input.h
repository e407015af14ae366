#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "tessel/spectra/input.h"

namespace tessel {

/// Reads ZB2 files, the binary form of a run: a header with the number of entries and the stem of
/// all titles, then one entry for each scan. An entry holds one peak list and any number of
/// precursors, and yields one spectrum for each of them, titled stem.scan.scan.charge.index.dta
/// with the precursor's position in the entry as index. An entry without precursors yields nothing,
/// but counts.
///
/// What a file claims is checked against its size. At an entry that is cut off or impossible, or
/// whose spectra with their peaks and tables would not fit into memory, the file ends: that entry
/// is dropped and not counted, all before it are kept, the fault is noted and the file is closed.
class TESSEL_API CZBInput : public CInput {
public:
    CZBInput();
    ~CZBInput() override;
    CZBInput(const CZBInput&) = delete;
    CZBInput& operator=(const CZBInput&) = delete;

    /// At least one entry is read where one is left, even for `num` 0.
    std::size_t Browse(std::vector<CSpectrum>& out, std::size_t num) override;
    /// The number of entries that the header claims. A claim that the file is too small for is
    /// noted as a fault and stands; without a possible header it is 0.
    std::size_t Count(const std::string& path) override;
    bool Close() override;
    std::vector<std::string> TakeFaults() override;
    bool Exhausted() const override { return m_fp == nullptr; }  ///< no file is open

    std::FILE* m_fp = nullptr;   ///< the open file, owned, or null
    std::string m_strPath;       ///< as given to Count()
    std::size_t m_tSpecNum = 0;  ///< entries in the file, by its header
    std::size_t m_tCurIdx = 0;   ///< entries consumed so far
    std::string m_strStem;       ///< begins every title

private:
    bool ReadHeader();
    bool ReadEntry(std::vector<CSpectrum>& out);
    const char* ReadBytes(std::uint64_t count);
    bool Refill(std::size_t size);
    const char* ReadList(std::int32_t count, std::size_t width, std::size_t behind);

    std::uint64_t m_uLeft = 0;  // bytes of the file that are not yet handed out
    std::vector<char> m_vBuffer;
    std::size_t m_tBegin = 0;  // of these, read from the file: [m_tBegin, m_tEnd)
    std::size_t m_tEnd = 0;
    std::string m_strTitle;  // keeps its memory from spectrum to spectrum
    std::vector<std::string> m_vFaults;
};

}  // namespace tessel
