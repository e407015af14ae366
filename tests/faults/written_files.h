#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tessel/condition/condition.h"
#include "tests/support/temp_folder.h"

namespace tessel::test {

/// One of the files that the library writes.
struct WRITTEN_FILE {
    std::string m_strName;
    std::string m_strPath;
    std::function<bool()> m_fWrite;  ///< false when the caller is told by the result
    std::string m_strAlert;          ///< what a failed write prints
    int m_nExit = 0;  ///< how a process ends in which writing fails; see run_writer()
};

constexpr int kToldByResult = 3;

/// For a child: writes the file and returns the child's exit status.
int run_writer(const WRITTEN_FILE& file);

/// A condition with enough of everything, and the files that it writes into one folder: small ones,
/// which leave the C library's buffers only when they are closed, or large ones.
class CWrittenFiles {
public:
    explicit CWrittenFiles(bool large);

    const std::vector<WRITTEN_FILE>& All() const { return m_vFiles; }
    /// The names and bytes of all files in the folder.
    std::map<std::string, std::string> Contents() const;
    /// Gives the folder these contents and no others.
    void Restore(const std::map<std::string, std::string>& contents) const;

    CTempFolder m_cFolder;
    CCondition m_cCondition;

private:
    void AddDatabase(std::size_t proteins);
    void AddTables(std::size_t mods);
    void AddParameterFile(std::size_t files);
    void AddMerged(std::size_t lines);
    void AddFinalResult(std::size_t spectra);
    void AddSpectrum(std::size_t peaks);

    std::vector<WRITTEN_FILE> m_vFiles;
};

}  // namespace tessel::test
