// A parameter file comes in; its lines are sorted into headers, assignments and others.

#include "tools/tessel_check/parameter_file.h"

#include "tessel/base/line_reader.h"
#include "tools/tessel_check/names.h"

namespace tessel::check {

CParameterFile::CParameterFile(const std::string& path) : m_strPath(path) {
    CLineReader lines(path, kLinePiece);
    std::string section;
    std::string_view line;
    for (std::size_t number = 1; lines.ReadLine(line); ++number) {
        const std::size_t close = line.find(']');
        const std::size_t sign = line.find('=');
        if (line.starts_with('[') && close != std::string_view::npos) {
            section = line.substr(1, close - 1);
            m_vHeaders.push_back({number, section});
        } else if (line.starts_with('#') || trimmed(line).empty()) {
            continue;
        } else if (sign != std::string_view::npos) {
            std::string_view value = line.substr(sign + 1);
            while (value.ends_with('\r'))
                value.remove_suffix(1);
            m_vAssignments.push_back(
                {number, section, std::string(line.substr(0, sign)), std::string(value)});
        } else if (section != "Version Info") {
            m_vStray.push_back({number, std::string(line)});
        }
    }
    m_bReadable = lines.IsOpen() && !lines.Failed();
}

PLACE CParameterFile::PlaceOf(const SETTING& setting) const {
    const ASSIGNMENT* const used = Used(setting);
    return At(used == nullptr ? 0 : used->m_tLine);
}

const ASSIGNMENT* CParameterFile::Used(std::string_view section, std::string_view key) const {
    const std::size_t header = HeaderLine(section);
    if (header == 0) return nullptr;
    for (const ASSIGNMENT& assignment : m_vAssignments) {
        if (assignment.m_tLine > header && assignment.m_strKey == key) return &assignment;
    }
    return nullptr;
}

std::string CParameterFile::Value(CKnownKey key) const {
    const ASSIGNMENT* const used = Used(*key);
    return used == nullptr ? key->m_szMissing : used->m_strValue;
}

std::size_t CParameterFile::HeaderLine(std::string_view section) const {
    for (const OTHER_LINE& header : m_vHeaders) {
        if (header.m_strText == section) return header.m_tLine;
    }
    return 0;
}

}  // namespace tessel::check
