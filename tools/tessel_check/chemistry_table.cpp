// Lines of the chemistry tables come in; their fields and what is wrong with a composition go out.

#include "tools/tessel_check/chemistry_table.h"

#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"
#include "tools/tessel_check/names.h"

namespace tessel::check {

bool is_number(std::string_view text) {
    double value = 0.0;
    const char* const last = text.data() + text.size();
    return !text.empty() && read_double(text.data(), last, value) == last;
}

bool is_integer(std::string_view text) {
    int value = 0;
    const char* const last = text.data() + text.size();
    return !text.empty() && read_integer(text.data(), last, value) == last;
}

std::vector<std::string_view> fields_of(std::string_view text, char delimiter) {
    std::vector<std::string_view> fields;
    for_each_field(text, delimiter, [&fields](std::string_view field) { fields.push_back(field); });
    return fields;
}

void CTable::Skipped(std::string_view line, const std::string& reason) {
    if (trimmed(line).empty() || line.starts_with('#') || line.starts_with('@')) return;
    Warning("skipped-line", in_quotes(line) + " is ignored: " + reason,
            "Correct it, or begin a comment with \"#\".");
}

void CTable::Name(const std::string& name, std::string_view code, const std::string& fate) {
    const auto [place, isNew] = m_mapLines.emplace(name, m_tLine);
    if (isNew) return;
    Warning(
        code,
        joined_text(in_quotes(name), " was defined on line ", place->second, " already; ", fate),
        "Remove one of the two.");
}

std::size_t CTable::LineOf(const std::string& name) const {
    const auto found = m_mapLines.find(name);
    return found == m_mapLines.end() ? 0 : found->second;
}

void check_composition(CTable& table, std::string_view composition, const ElementMasses& masses) {
    std::string_view rest = composition;
    while (!rest.empty()) {
        const std::size_t open = rest.find('(');
        const std::size_t close = rest.find(')');
        if (open == std::string_view::npos || close == std::string_view::npos || close < open ||
            open == 0 || !is_integer(rest.substr(open + 1, close - open - 1))) {
            table.HalfRead("the composition " + in_quotes(composition) +
                           " is no row of SYMBOL(COUNT) from " + in_quotes(rest) + " on");
            return;
        }
        const std::string symbol(rest.substr(0, open));
        // Without any element table that is the finding.
        if (!masses.empty() && !masses.contains(symbol)) {
            table.Warning("unknown-element",
                          in_quotes(symbol) + " in " + in_quotes(composition) +
                              " is not in the element table; it weighs nothing",
                          "Add it to element.ini or correct the symbol.");
        }
        rest.remove_prefix(close + 1);
    }
}

}  // namespace tessel::check
