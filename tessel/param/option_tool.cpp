// Key lookup in a parameter file: a path, a section and a key come in, the value's text or number
// goes out. The file is open during a lookup only.

#include "tessel/param/option_tool.h"

#include <optional>
#include <string_view>

#include "tessel/base/line_reader.h"
#include "tessel/base/number.h"

namespace tessel {
namespace {

bool find_section(CLineReader& lines, const std::string& section) {
    const std::string header = '[' + section + ']';
    std::string_view line;
    while (lines.ReadLine(line)) {
        if (line.starts_with(header)) return true;
    }
    return false;
}

// Reads on past the headers of later sections, so that a key that was put into the wrong one is
// found all the same.
std::optional<std::string_view> find_value(CLineReader& lines, const std::string& section,
                                           std::string_view key) {
    if (!find_section(lines, section)) return std::nullopt;
    std::string_view line;
    while (lines.ReadLine(line)) {
        if (line.size() <= key.size() || line[key.size()] != '=' || !line.starts_with(key)) {
            continue;
        }
        std::string_view value = line.substr(key.size() + 1);
        while (value.ends_with('\r'))
            value.remove_suffix(1);
        return value;
    }
    return std::nullopt;
}

}  // namespace

COptionTool::COptionTool(const std::string& path, const std::string& section)
    : m_strPath(path), m_strSection(section) {
}

std::string COptionTool::GetString(const char* key, const char* defaultValue) const {
    CLineReader lines(m_strPath, kLinePiece);
    if (!lines.IsOpen()) return "";
    return std::string(find_value(lines, m_strSection, key).value_or(defaultValue));
}

int COptionTool::_GetPrivateProfileInt(const std::string& section, const char* key,
                                       const int& defaultValue, const std::string& path) const {
    CLineReader lines(path, kLinePiece);
    const auto value = find_value(lines, section, key);
    return value && !value->empty() ? to_int(*value) : defaultValue;
}

}  // namespace tessel
