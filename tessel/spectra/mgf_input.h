#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "tessel/spectra/input.h"

namespace tessel {

class CLineReader;

/// Reads MGF text files. A block begins at a line that starts with "BEGIN" and ends at the next
/// line that starts with "E", or at the end of the file. Within it the first character alone
/// decides: "C" is the charge, "P" the precursor m/z, "T" the title, a digit a peak; every other
/// line is ignored. Keys that share a first letter are taken for one another; files in use count on
/// that.
class TESSEL_API CMGFInput : public CInput {
public:
    CMGFInput();
    ~CMGFInput() override;
    CMGFInput(const CMGFInput&) = delete;
    CMGFInput& operator=(const CMGFInput&) = delete;

    /// Every call starts with charge 0 and precursor m/z 0; a block without them takes those of the
    /// block before it in the same call. A block without a title gets scan number = its position in
    /// the file, from 0, and the title "count.position.position.charge.dta".
    /// A `num` of 0 is never reached: all that remain are read. A file that ends before its counted
    /// blocks, or cannot be read on, is closed, with a fault; a "BEGIN" inside a block is counted,
    /// but begins none.
    std::size_t Browse(std::vector<CSpectrum>& out, std::size_t num) override;
    std::size_t Count(const std::string& path) override;
    bool Close() override;
    std::vector<std::string> TakeFaults() override;
    bool Exhausted() const override { return m_fp == nullptr; }  ///< no file is open

    std::FILE* m_fp = nullptr;   ///< the open file, owned, or null
    std::string m_strPath;       ///< as given to Count()
    std::size_t m_tSpecNum = 0;  ///< entries in the file
    std::size_t m_tCurIdx = 0;   ///< entries consumed so far

private:
    std::unique_ptr<CLineReader> m_pLines;  // over m_fp
    std::vector<std::string> m_vFaults;
};

}  // namespace tessel
