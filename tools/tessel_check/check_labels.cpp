// The label definitions of quant.ini come in. Reported is what of them is read in part or ends the
// run, and what the parameter file asks for in vain.

#include <algorithm>

#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"
#include "tools/tessel_check/chemistry_checks.h"
#include "tools/tessel_check/names.h"

namespace tessel::check {
namespace {

// The labels of a quantitation file, each by the text of its first definition.
class CLabels {
public:
    CLabels(const CCondition& condition, const CTable& modifications, CReport& report)
        : m_cCondition(condition), m_cModifications(modifications), m_cTable("quant.ini", report) {}

    void CheckTable() {
        bool heading = true;
        m_cTable.VisitLines([this, &heading](std::string_view line) {
            const bool first = heading;
            heading = false;
            const std::size_t sign = line.find('=');
            if (sign == std::string_view::npos || line.starts_with('#')) {
                if (!first) m_cTable.Skipped(line, "it has no \"=\"");
            } else if (first) {
                m_cTable.Warning("heading-is-record",
                                 in_quotes(line.substr(0, sign)) +
                                     " stands on the first line, which is never read",
                                 "Put a comment on the first line.");
            } else {
                const std::string name(line.substr(0, sign));
                m_cTable.Name(name, "duplicate-label", "the earlier line counts");
                CheckItems(name, line.substr(sign + 1));
            }
        });
    }

    /// The labels that the parameter file asks for.
    void CheckSelected(const CParameterFile& file, CReport& report) {
        for (const std::string& label : m_cCondition.m_vLabels) {
            if (m_cTable.LineOf(label) > 0) continue;
            report.Error("missing-label", file.PlaceOf(*CKnownKey("quant")),
                         in_quotes(label) +
                             " is not defined in quant.ini; the run ends when its "
                             "tables are made",
                         did_you_mean(label, m_vNames, "Define it in quant.ini."));
        }
    }

private:
    void CheckItems(const std::string& name, std::string_view items) {
        m_vNames.push_back(name);
        if (items == "none") return;
        while (!items.empty()) {
            const std::size_t open = items.find('{');
            const std::size_t close = items.find('}', std::min(open, items.size()));
            if (items.front() != 'R' && items.front() != 'M') {
                m_cTable.Error("unknown-label-kind",
                               in_quotes(items) + " in " + in_quotes(name) +
                                   " is neither R: nor M:; the run ends when the label is used",
                               "Write R:RESIDUES{FROM,TO} or M:NAME{FROM,TO}.");
                return;
            }
            if (open == std::string_view::npos || close == std::string_view::npos || open < 2 ||
                items[1] != ':') {
                return HalfRead(name, items);
            }
            const std::string_view pair = items.substr(open + 1, close - open - 1);
            const std::size_t comma = pair.find(',');
            if (comma == std::string_view::npos) return HalfRead(name, items);
            CheckElement(pair.substr(0, comma));
            CheckElement(pair.substr(comma + 1));
            CheckTarget(items.front(), std::string(items.substr(2, open - 2)));
            items.remove_prefix(close + 1);
        }
    }

    void HalfRead(const std::string& name, std::string_view items) {
        m_cTable.HalfRead("of the label " + in_quotes(name) + ' ' + in_quotes(items) +
                          " is ignored: it is no item R:RESIDUES{FROM,TO} or M:NAME{FROM,TO}");
    }

    void CheckElement(std::string_view symbol) {
        const ElementMasses& masses = m_cCondition.m_mapElementMass;
        if (masses.empty() || masses.contains(std::string(symbol))) return;
        m_cTable.Warning("unknown-element",
                         in_quotes(symbol) + " is not in the element table; it weighs nothing",
                         "Add it to element.ini or correct the symbol.");
    }

    void CheckTarget(char kind, const std::string& target) {
        if (target == "*" || target == "+" || target == "-") return;
        if (kind == 'M' && !m_cCondition.m_vMods.empty() && m_cModifications.LineOf(target) == 0) {
            m_cTable.Warning("unknown-modification",
                             in_quotes(target) +
                                 " is not in the modification table; nothing of it "
                                 "is labelled",
                             "Correct the name.");
        }
        if (kind == 'R' && !std::all_of(target.begin(), target.end(), is_upper)) {
            m_cTable.HalfRead("of the residues " + in_quotes(target) +
                              " only the letters from A to Z count");
        }
    }

    const CCondition& m_cCondition;
    const CTable& m_cModifications;
    CTable m_cTable;
    std::vector<std::string> m_vNames;
};

}  // namespace

bool asks_for_labels(const CCondition& condition) {
    return std::any_of(condition.m_vLabels.begin(), condition.m_vLabels.end(),
                       [](const std::string& label) { return label != "None"; });
}

// "2|None|Heavy": the number in front is not used, but tells what the user meant.
void check_label_number(const CParameterFile& file, const CCondition& condition, CReport& report) {
    const int stated = to_int(condition.m_strQuant);
    const std::size_t labels = condition.m_vLabels.size();
    if (stated >= 0 && static_cast<std::size_t>(stated) == labels) return;
    report.Warning("label-number", file.PlaceOf(*CKnownKey("quant")),
                   joined_text(in_quotes(condition.m_strQuant), " names ", labels,
                               " labels; the number in front is ignored"),
                   "Write NUMBER|LABEL|LABEL, as many labels as the number says.");
}

void check_labels(const CParameterFile& file, const CCondition& condition,
                  const CTable& modifications, CReport& report) {
    CLabels labels(condition, modifications, report);
    labels.CheckTable();
    if (asks_for_labels(condition)) labels.CheckSelected(file, report);
}

}  // namespace tessel::check
