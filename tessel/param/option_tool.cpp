// Key lookup in a parameter file: a path, a section and a key come in, the value's text or number
// goes out. The file is open during a lookup only.

#include "tessel/param/option_tool.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "tessel/base/line_reader.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"

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

std::string_view without_line_end(std::string_view value) {
    while (value.ends_with('\r'))
        value.remove_suffix(1);
    return value;
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
        return without_line_end(line.substr(key.size() + 1));
    }
    return std::nullopt;
}

// The number that a key of digits without leading zeros stands for; 0 for any other key.
std::size_t number_of(std::string_view key) {
    if (key.empty() || key.front() == '0' || !std::all_of(key.begin(), key.end(), is_digit)) {
        return 0;
    }
    std::size_t number = 0;
    read_integer(key.data(), key.data() + key.size(), number);
    return number;
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

std::vector<std::string> COptionTool::GetStrings(std::string_view prefix, std::size_t count,
                                                 const char* defaultValue) const {
    CLineReader lines(m_strPath, kLinePiece);
    std::vector<std::string> values(count, lines.IsOpen() ? defaultValue : "");
    if (!find_section(lines, m_strSection)) return values;
    std::vector<bool> found(count);
    std::string_view line;
    while (lines.ReadLine(line)) {
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos || !line.starts_with(prefix)) continue;
        const std::size_t number = number_of(text_from(line.substr(0, sign), prefix.size()));
        if (number == 0 || number > count || found[number - 1]) continue;
        found[number - 1] = true;
        values[number - 1] = without_line_end(line.substr(sign + 1));
    }
    return values;
}

int COptionTool::_GetPrivateProfileInt(const std::string& section, const char* key,
                                       const int& defaultValue, const std::string& path) const {
    CLineReader lines(path, kLinePiece);
    const auto value = find_value(lines, section, key);
    return value && !value->empty() ? to_int(*value) : defaultValue;
}

}  // namespace tessel
