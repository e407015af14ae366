#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tessel/param/settings.h"
#include "tools/tessel_check/report.h"

namespace tessel::check {

/// A line of a parameter file that holds "=".
struct ASSIGNMENT {
    std::size_t m_tLine;
    std::string m_strSection;  ///< of the last header above it; empty above the first
    std::string m_strKey;      ///< in front of the first "=", blanks included
    std::string m_strValue;    ///< behind it, blanks included
};

struct OTHER_LINE {
    std::size_t m_tLine;
    std::string m_strText;
};

/// The lines of a parameter file, and which of them the library takes.
class CParameterFile {
public:
    explicit CParameterFile(const std::string& path);

    PLACE At(std::size_t line) const { return {m_strPath, line}; }
    /// The line that gives a key its value, or the file as a whole.
    PLACE PlaceOf(const SETTING& setting) const;

    /// The first assignment of a key behind the header of a section; null when there is none.
    const ASSIGNMENT* Used(std::string_view section, std::string_view key) const;
    const ASSIGNMENT* Used(const SETTING& setting) const {
        return Used(setting.m_strSection, setting.m_szKey);
    }
    /// The value as the library reads it, with the value of a missing key.
    std::string Value(CKnownKey key) const;
    /// The line of the first header of a section; 0 when there is none.
    std::size_t HeaderLine(std::string_view section) const;

    std::string m_strPath;
    std::vector<ASSIGNMENT> m_vAssignments;
    std::vector<OTHER_LINE> m_vHeaders;  ///< names, without the brackets
    std::vector<OTHER_LINE> m_vStray;    ///< neither headers, assignments, comments nor empty
    bool m_bReadable = false;            ///< to its end
};

}  // namespace tessel::check
