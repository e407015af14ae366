// ZBS lists: the paths of ZB2 files come in, the spectra of those files are filled file by file.

#include "tessel/spectra/zbs_input.h"

#include <string_view>
#include <utility>

#include "tessel/base/line_reader.h"
#include "tessel/base/message_text.h"
#include "tessel/spectra/entries.h"
#include "tessel/spectra/zb_input.h"

namespace tessel {

std::size_t CZBSInput::Count(const std::string& path) {
    Close();
    m_strPath = path;
    m_tSpecNum = 0;
    m_tCurIdx = 0;
    m_tFileIdx = 0;
    m_tStalledCalls = 0;
    m_vFileSpecNum.clear();
    m_setNoted.clear();
    if (!ReadList()) return 0;
    for (const std::string& file : m_vFiles) {
        CZBInput reader;
        m_vFileSpecNum.push_back(reader.Count(file));
        m_tSpecNum += m_vFileSpecNum.back();
        TakeFaultsOf(reader);
    }
    if (!m_vFiles.empty()) OpenFile();
    return m_tSpecNum;
}

bool CZBSInput::ReadList() {
    m_vFiles.clear();
    CLineReader lines(m_strPath);
    for (std::string_view line; lines.ReadLine(line);)
        m_vFiles.emplace_back(line);
    if (lines.IsOpen() && !lines.Failed()) return true;
    NoteFault((lines.IsOpen() ? "cannot read " : "cannot open ") + m_strPath);
    m_vFiles.clear();
    return false;
}

std::size_t CZBSInput::Browse(std::vector<CSpectrum>& out, std::size_t num) {
    if (!m_pReader) return 0;
    const std::size_t first = m_tCurIdx;
    const std::size_t limit = entry_limit(m_tSpecNum, m_tCurIdx, num);
    while (m_tFileIdx < m_vFiles.size()) {
        const std::size_t entries = m_vFileSpecNum[m_tFileIdx];
        if (entries > limit - m_tCurIdx) break;
        m_pReader->Browse(out, kAllEntries);
        TakeFaultsOf(*m_pReader);
        m_tCurIdx += entries;
        ++m_tFileIdx;
        if (m_tFileIdx < m_vFiles.size()) OpenFile();
    }
    const bool stalled = m_tCurIdx == first && m_tCurIdx < m_tSpecNum;
    m_tStalledCalls = stalled ? m_tStalledCalls + 1 : 0;
    if (m_tStalledCalls == 1) {
        m_vFaults.push_back(joined_text("maxspec ", num, " is less than the ",
                                        m_vFileSpecNum[m_tFileIdx], " entries of ",
                                        m_vFiles[m_tFileIdx]));
    }
    return m_tCurIdx - first;
}

// Makes the current file of the list the one that is read.
void CZBSInput::OpenFile() {
    m_pReader = std::make_unique<CZBInput>();
    const std::string& file = m_vFiles[m_tFileIdx];
    const std::size_t counted = m_vFileSpecNum[m_tFileIdx];
    const std::size_t entries = m_pReader->Count(file);
    TakeFaultsOf(*m_pReader);
    if (entries != counted) {
        NoteFault(joined_text(entries, " entries, no longer ", counted, ", are in ", file));
    }
}

void CZBSInput::TakeFaultsOf(CInput& reader) {
    for (const std::string& fault : reader.TakeFaults())
        NoteFault(fault);
}

void CZBSInput::NoteFault(const std::string& fault) {
    if (m_setNoted.insert(fault).second) m_vFaults.push_back(fault);
}

bool CZBSInput::Close() {
    m_pReader.reset();
    return true;
}

std::vector<std::string> CZBSInput::TakeFaults() {
    return std::exchange(m_vFaults, {});
}

}  // namespace tessel
