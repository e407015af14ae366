#pragma once

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tessel/spectra/input.h"

namespace tessel {

/// Reads several ZB2 files one after another as one stream. A list file names them, one path a
/// line; every line counts, a blank one, too. Files are read whole: a batch ends before the file
/// that would exceed it, so a batch size below a file's number of entries yields nothing, as often
/// as it is asked for.
///
/// A listed file that cannot be read counts 0. Of one that ends early the entries that are there
/// are read, and all that it claims count as consumed. Either is a fault that names the file.
class TESSEL_API CZBSInput : public CInput {
public:
    std::size_t Browse(std::vector<CSpectrum>& out, std::size_t num) override;
    /// The sum over all listed files, by their headers.
    std::size_t Count(const std::string& path) override;
    bool Close() override;
    std::vector<std::string> TakeFaults() override;
    /// After the second call of Browse() in a row that consumed nothing: the batch size, which may
    /// change after the first one, is too small for the next file.
    bool Exhausted() const override { return m_tStalledCalls > 1; }

    std::unique_ptr<CInput> m_pReader;        ///< of the current file, or null
    std::string m_strPath;                    ///< the list file, as given to Count()
    std::size_t m_tSpecNum = 0;               ///< entries in all listed files
    std::size_t m_tCurIdx = 0;                ///< entries consumed so far, over all files
    std::size_t m_tFileIdx = 0;               ///< the current file's position in the list
    std::vector<std::string> m_vFiles;        ///< the listed paths
    std::vector<std::size_t> m_vFileSpecNum;  ///< entries of each listed file

private:
    bool ReadList();
    void OpenFile();
    void TakeFaultsOf(CInput& reader);
    void NoteFault(const std::string& fault);

    std::size_t m_tStalledCalls = 0;  // in a row; they consumed nothing although entries remained
    std::vector<std::string> m_vFaults;
    std::set<std::string> m_setNoted;  // each fault is told once, though files are opened twice
};

}  // namespace tessel
