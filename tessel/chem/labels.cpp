// Quantitation labels: the method setting and "quant.ini" come in, the names of the labels and the
// element replacements of one label are filled. With these, residues and modifications are
// relabelled for the temporary tables of the label.

#include <algorithm>
#include <iostream>

#include "tessel/base/end_process.h"
#include "tessel/base/line_reader.h"
#include "tessel/base/message_text.h"
#include "tessel/base/text.h"
#include "tessel/chem/composition.h"
#include "tessel/chem/residues.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"

namespace tessel {
namespace {

// One item of a label, such as "R:KR{C,13C}".
struct LABEL_ITEM {
    char m_cKind;
    std::string m_strTarget;
    std::string m_strElement;
    std::string m_strReplacement;

    bool ForAll() const { return m_strTarget == "*" || m_strTarget == "+" || m_strTarget == "-"; }
};

// Takes the next item off the front; false when what is there is none.
bool take_item(std::string_view& text, LABEL_ITEM& item) {
    item.m_cKind = text.front();
    const std::size_t open = text.find('{', 2);
    const std::size_t close = text.find('}', std::min(open, text.size()));
    if (open == std::string_view::npos || close == std::string_view::npos) return false;
    const std::string_view pair = text.substr(open + 1, close - open - 1);
    const std::size_t comma = pair.find(',');
    if (comma == std::string_view::npos) return false;
    item.m_strTarget = text.substr(2, open - 2);
    item.m_strElement = pair.substr(0, comma);
    item.m_strReplacement = pair.substr(comma + 1);
    text.remove_prefix(close + 1);
    return true;
}

void require_known_kind(char kind) {
    if (kind == 'R' || kind == 'M') return;
    std::cerr << "unknown label type!\n" << std::flush;
    end_process(1);
}

// The first line is a heading. The value of the first line whose key is the label.
bool find_label(const std::string& label, std::string& value) {
    CLineReader reader(working_folder() + "\\quant.ini");
    std::string_view line;
    reader.ReadLine(line);
    while (reader.ReadLine(line)) {
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos || line.substr(0, sign) != label) continue;
        value = line.substr(sign + 1);
        if (const std::size_t end = value.find('\r'); end != std::string::npos) value.erase(end, 1);
        return true;
    }
    return false;
}

bool has_groups(std::string_view composition) {
    bool found = false;
    visit_composition(composition, [&found](std::string_view, std::string_view) { found = true; });
    return found;
}

// The composition in this label; empty when the label does not name the modification.
WEIGHED relabelled(const CMod& mod, const std::map<std::string, Replacements>& labels,
                   ElementMasses& masses) {
    const auto found = labels.find(mod.m_strName);
    if (found == labels.end()) return {};
    return weigh(mod.m_strComposition, masses, &found->second);
}

}  // namespace

bool is_conversion(const CMod& mod) {
    const std::string& name = mod.m_strName;
    return name.size() == 11 && name.compare(3, 2, "->") == 0 && has_groups(mod.m_strComposition);
}

void CCondition::ParseQuantMethod() {
    std::string_view names(m_strQuant);
    if (const std::size_t count = names.find('|'); count != std::string_view::npos) {
        names.remove_prefix(count + 1);
    }
    for_each_field(names, '|', [this](std::string_view name) { m_vLabels.emplace_back(name); });
    if (m_vLabels.back().empty()) m_vLabels.pop_back();  // behind the last bar
}

void CCondition::ReadLabelInfo(const std::string& label) {
    m_mapAALabel.clear();
    m_mapModLabel.clear();
    std::string value;
    if (!find_label(label, value)) {
        Message("Cannot find the label: " + label, LOG_ALERT);
        end_process(1);
    }
    if (value == "none") return;
    std::string_view items(value);
    LABEL_ITEM item;
    while (!items.empty()) {
        require_known_kind(items.front());
        if (!take_item(items, item)) return;
        if (item.m_cKind == 'R') {
            for (const char letter : item.ForAll() ? kAnyResidue : item.m_strTarget)
                m_mapAALabel[letter][item.m_strElement] = item.m_strReplacement;
        } else if (item.ForAll()) {
            for (const CMod& mod : m_vMods)
                m_mapModLabel[mod.m_strName][item.m_strElement] = item.m_strReplacement;
        } else {
            m_mapModLabel[item.m_strTarget][item.m_strElement] = item.m_strReplacement;
        }
    }
}

void CCondition::GenTmpAA(const std::size_t& labelIndex) {
    read_residues(m_strAAPath, [this](char letter, std::string_view composition) {
        // A letter gets its entry when it is asked for.
        const Replacements* label = has_groups(composition) ? &m_mapAALabel[letter] : nullptr;
        const WEIGHED weighed = weigh(composition, m_mapElementMass, label);
        define_residue(m_cAlphaBet, letter, weighed);
        Message(message_text(letter, " ", fixed_text(weighed.m_lfMass, 5), "\n"), LOG_DEBUG);
    });
    WriteAA(labelIndex);
}

void CCondition::GenTmpMod(const std::size_t& labelIndex) {
    std::vector<CMod> mods;
    const auto add = [&](const CMod& mod, int labelNumber) -> CMod& {
        mods.push_back(mod);
        mods.back().m_strName = _get_labeled_mod_name(mod.m_strName, labelNumber);
        return mods.back();
    };
    for (const CMod& mod : m_vMods) {
        const WEIGHED heavy = relabelled(mod, m_mapModLabel, m_mapElementMass);
        if (heavy.m_bReplaced) {
            CMod& labelled = add(mod, static_cast<int>(labelIndex + 1));
            labelled.m_lfMass = heavy.m_lfMass;
            labelled.m_strComposition = heavy.m_strComposition;
        }
        // Where a labelled atom leaves, a light one cannot.
        if (!heavy.m_bReplacedLeaves && !is_conversion(mod)) add(mod, 0);
    }
    DropModAddresses();
    m_vMods = std::move(mods);
    WriteMod(labelIndex);
}

}  // namespace tessel
