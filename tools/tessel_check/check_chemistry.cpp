// The tables of elements, residues, modifications and labels come in; the condition's own tables
// are filled by the library's own readers. Reported is what these skip, read in part or take
// otherwise than it stands in the files.

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "tessel/base/line_reader.h"
#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"
#include "tessel/chem/residues.h"
#include "tessel/platform/file.h"
#include "tools/tessel_check/checks.h"
#include "tools/tessel_check/library_step.h"
#include "tools/tessel_check/names.h"

namespace tessel::check {
namespace {

constexpr double kMassTolerance = 0.001;  // Da
constexpr std::string_view kStandardResidues = "ACDEFGHIKLMNPQRSTVWY";

// ---- Fields ----

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

// Without the empty field behind a delimiter at the end.
std::vector<std::string_view> list_of(std::string_view text) {
    std::vector<std::string_view> items = fields_of(text, ',');
    if (items.back().empty()) items.pop_back();
    return items;
}

std::vector<std::string_view> words_of(std::string_view text) {
    std::vector<std::string_view> words;
    while (!(text = trimmed(text)).empty()) {
        const auto end = std::find_if(text.begin(), text.end(), is_blank);
        words.push_back(text.substr(0, static_cast<std::size_t>(end - text.begin())));
        text.remove_prefix(words.back().size());
    }
    return words;
}

// ---- A table under check ----

// One file of the chemistry: its lines, and findings about them.
class CTable {
public:
    CTable(std::string path, CReport& report) : m_strPath(std::move(path)), m_cReport(report) {}

    /// visit(line) for every line; false when there is none to read.
    template <class Visit>
    bool VisitLines(Visit visit) {
        CLineReader lines(m_strPath);
        std::string_view line;
        for (m_tLine = 1; lines.ReadLine(line); ++m_tLine)
            visit(line);
        m_tLine = 0;
        return lines.IsOpen();
    }

    void Warning(std::string_view code, std::string message, std::string advice) {
        m_cReport.Warning(code, Place(), std::move(message), std::move(advice));
    }
    void Error(std::string_view code, std::string message, std::string advice) {
        m_cReport.Error(code, Place(), std::move(message), std::move(advice));
    }
    /// A line that is neither a record, nor a comment, nor empty.
    void Skipped(std::string_view line, const std::string& reason) {
        if (trimmed(line).empty() || line.starts_with('#') || line.starts_with('@')) return;
        Warning("skipped-line", in_quotes(line) + " is ignored: " + reason,
                "Correct it, or begin a comment with \"#\".");
    }
    void HalfRead(const std::string& what) {
        Warning("half-read-record", what, "Correct the record.");
    }
    /// Tells of a name that an earlier line had; `fate` says which of the two counts.
    void Name(const std::string& name, std::string_view code, const std::string& fate) {
        const auto [place, isNew] = m_mapLines.emplace(name, m_tLine);
        if (isNew) return;
        Warning(code,
                joined_text(in_quotes(name), " was defined on line ", place->second, " already; ",
                            fate),
                "Remove one of the two.");
    }
    std::size_t LineOf(const std::string& name) const {
        const auto found = m_mapLines.find(name);
        return found == m_mapLines.end() ? 0 : found->second;
    }
    PLACE Place() const { return {m_strPath, m_tLine}; }

private:
    std::string m_strPath;
    CReport& m_cReport;
    std::size_t m_tLine = 0;
    std::map<std::string, std::size_t> m_mapLines;  // of names
};

// Checks the groups SYMBOL(COUNT) of a composition against the elements.
void check_composition(CTable& table, std::string_view composition, const ElementMasses& masses) {
    std::string_view rest = composition;
    while (!rest.empty()) {
        const std::size_t open = rest.find('(');
        const std::size_t close = rest.find(')');
        if (open == std::string_view::npos || close == std::string_view::npos || close < open ||
            open == 0 || !is_integer(rest.substr(open + 1, close - open - 1))) {
            table.HalfRead("the composition " + in_quotes(composition) + " cannot be read from " +
                           in_quotes(rest) + " on");
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

// ---- Elements ----

void check_numbers(CTable& table, std::string_view record,
                   const std::vector<std::string_view>& numbers) {
    for (const std::string_view number : numbers) {
        if (!is_number(number)) {
            table.HalfRead(in_quotes(number) + " in " + in_quotes(record) + " is no number");
        }
    }
}

void check_element(CTable& table, std::string_view record, const CCondition& condition) {
    const std::vector<std::string_view> fields = fields_of(record, '|');
    const std::string symbol(fields.front());
    if (symbol.empty() || fields.size() < 3) {
        table.HalfRead(in_quotes(record) + " is not SYMBOL|MASSES|ABUNDANCES|");
        return;
    }
    table.Name(symbol, "duplicate-element", "this line counts");
    const auto masses = list_of(fields[1]);
    const auto abundances = list_of(fields[2]);
    if (!condition.m_mapElementMass.contains(symbol)) {
        table.Warning("skipped-record",
                      in_quotes(symbol) +
                          " has no mass for its most abundant isotope; the record "
                          "is ignored",
                      "Give as many masses as abundances.");
        return;
    }
    check_numbers(table, record, masses);
    check_numbers(table, record, abundances);
    if (masses.size() != abundances.size()) {
        table.HalfRead(joined_text(in_quotes(symbol), " has ", masses.size(), " masses and ",
                                   abundances.size(), " abundances"));
    }
}

void check_elements(CCondition& condition, CReport& report) {
    run_step([&condition] { condition.ReadElementInfo(); });
    CTable table("element.ini", report);
    const bool isOpen = table.VisitLines([&](std::string_view line) {
        const std::size_t sign = line.find('=');
        if (!line.starts_with('E')) {
            table.Skipped(line, "a record begins with \"E\"");
        } else if (sign == std::string_view::npos) {
            table.Skipped(line, "it has no \"=\"");
        } else {
            check_element(table, line.substr(sign + 1), condition);
        }
    });
    if (isOpen) return;
    table.Error("missing-table", "there is no element table; every composition weighs nothing",
                "Copy element.ini into the working folder.");
}

// ---- Residues ----

void check_residue(CTable& table, std::string_view record, const CCondition& condition) {
    const std::vector<std::string_view> fields = fields_of(record, '|');
    const std::string name(fields.front());
    if (name.empty() || !is_upper(name.front())) {
        table.Warning("skipped-record",
                      in_quotes(record) + " names no residue from A to Z; the record is ignored",
                      "Begin with a capital letter and \"|\".");
        return;
    }
    if (name.size() > 1) {
        table.HalfRead(in_quotes(name) + " is no single letter; it counts as " +
                       in_quotes(name.substr(0, 1)));
    }
    table.Name(name.substr(0, 1), "duplicate-residue", "this line counts");
    const std::string_view composition = fields.size() > 1 ? fields[1] : std::string_view();
    if (composition.empty()) {
        table.HalfRead("residue " + in_quotes(name) + " has no composition; it weighs nothing");
    }
    check_composition(table, composition, condition.m_mapElementMass);
}

void check_residues(CCondition& condition, CReport& report) {
    if (condition.m_strAAPath.empty()) return;
    const ElementMasses known = condition.m_mapElementMass;  // reading adds unknown ones
    CTable table(condition.m_strAAPath, report);
    table.VisitLines([&](std::string_view line) {
        const std::size_t sign = line.find('=');
        if (!line.starts_with('R')) {
            table.Skipped(line, "a record begins with \"R\"");
        } else if (sign == std::string_view::npos) {
            table.Skipped(line, "it has no \"=\"");
        } else {
            check_residue(table, line.substr(sign + 1), condition);
        }
    });
    run_step([&condition] { condition.ReadAA(); });
    condition.m_mapElementMass = known;
    std::string missing;
    for (const char letter : kStandardResidues) {
        if (table.LineOf(std::string(1, letter)) == 0) missing += letter;
    }
    if (missing.empty()) return;
    table.Warning("missing-residue", "no record defines " + missing + "; they weigh nothing",
                  "Add them.");
}

// ---- Modifications ----

void check_position(CTable& table, std::string_view name, std::string_view position) {
    for (const std::string_view known : {"NORMAL", "PEP_C", "PEP_N", "PRO_C", "PRO_N"}) {
        if (position == known) return;
    }
    table.Warning("unknown-position",
                  in_quotes(position) + " is no position; " + in_quotes(name) + " counts as NORMAL",
                  "Write NORMAL, PEP_N, PEP_C, PRO_N or PRO_C.");
}

void check_sites(CTable& table, std::string_view name, std::string_view sites) {
    if (std::all_of(sites.begin(), sites.end(), is_upper)) return;
    table.HalfRead("of the sites " + in_quotes(sites) + " of " + in_quotes(name) +
                   " only the letters from A to Z count");
}

// What stands in which word: sites, position, mass, average mass, number of losses, two words for
// each loss, composition.
void check_words(CTable& table, std::string_view name, const std::vector<std::string_view>& words) {
    constexpr std::size_t kMass = 2;
    constexpr std::size_t kLossNumber = 4;
    for (std::size_t i = kMass; i < kLossNumber; ++i) {
        if (i < words.size() && is_number(words[i])) continue;
        const std::string word = i < words.size() ? in_quotes(words[i]) : "nothing";
        table.HalfRead(in_quotes(name) + " has " + word + " where a mass has to be");
        return;
    }
    int losses = 0;
    if (words.size() <= kLossNumber || !is_integer(words[kLossNumber]) ||
        (losses = to_int(words[kLossNumber])) < 0) {
        table.HalfRead(in_quotes(name) + " has no number of losses behind its masses");
        return;
    }
    const std::size_t expected = kLossNumber + 1 + 2 * static_cast<std::size_t>(losses);
    if (words.size() < expected || words.size() > expected + 1) {
        table.HalfRead(joined_text(in_quotes(name), " announces ", losses,
                                   " neutral losses, but has ", words.size() - kLossNumber - 1,
                                   " words behind the number; two for each loss and a "
                                   "composition are read"));
        return;
    }
    for (std::size_t i = kLossNumber + 1; i < expected; ++i) {
        if (!is_number(words[i])) {
            table.HalfRead(in_quotes(words[i]) + " is no mass of a loss of " + in_quotes(name));
        }
    }
}

void check_mass(CTable& table, std::string_view name, const std::vector<std::string_view>& words,
                const ElementMasses& known) {
    if (words.size() < 3 || !is_number(words[2]) ||
        words.back().find('(') == std::string_view::npos)
        return;
    ElementMasses masses = known;
    const double weight = weigh(words.back(), masses).m_lfMass;
    const double mass = to_double(words[2]);
    if (masses.size() != known.size()) return;  // an unknown element, which is reported
    if (std::fabs(weight - mass) <= kMassTolerance) return;
    table.Warning("mass-differs",
                  joined_text(in_quotes(name), " weighs ", fixed_text(mass, 6), " Da, but ",
                              words.back(), " is ", fixed_text(weight, 6),
                              " Da; the mass is taken, and the composition by labels"),
                  "Correct the mass or the composition.");
}

void check_name(CTable& table, const std::string& name) {
    if (name.starts_with('#')) {
        table.Warning("comment-read-as-record",
                      in_quotes(name) + " is a comment with \"=\"; it is read as a modification",
                      "Remove the \"=\" from the comment.");
    } else if (std::any_of(name.begin(), name.end(), is_blank) || name.empty()) {
        table.Warning("name-with-blank",
                      in_quotes(name) +
                          " has blanks in its name; results with it cannot be read "
                          "back",
                      "Choose a name without blanks.");
    } else if (name.find(';') != std::string::npos) {
        table.Warning("name-with-semicolon",
                      in_quotes(name) + " cannot be selected: \";\" separates names",
                      "Choose a name without \";\".");
    }
}

void check_definition(CTable& table, std::string_view line, const CCondition& condition) {
    const std::size_t sign = line.find('=');
    const std::string name(line.substr(0, sign));
    check_name(table, name);
    if (name.starts_with('#')) return;
    table.Name(name, "duplicate-modification",
               "names lead to the heavier one, of equal masses to the later one");
    const std::vector<std::string_view> words = words_of(line.substr(sign + 1));
    if (words.size() < 2) {
        table.HalfRead(in_quotes(name) + " has no sites and position");
        return;
    }
    check_sites(table, name, words[0]);
    check_position(table, name, words[1]);
    check_words(table, name, words);
    if (words.size() > 5 && !is_number(words.back())) {
        check_composition(table, words.back(), condition.m_mapElementMass);
    }
    check_mass(table, name, words, condition.m_mapElementMass);
}

// "nameN=NAME FLAG", the flag in the last two characters.
void check_index_line(CTable& table, std::string_view line) {
    constexpr std::size_t kNumberAt = 4;
    if (!is_integer(line.substr(kNumberAt, line.find('=') - kNumberAt))) {
        table.Warning("name-begins-with-name",
                      in_quotes(line) +
                          " begins with \"name\"; it is taken for an index line, not "
                          "for a modification",
                      "Choose another name.");
        return;
    }
    if (is_integer(trimmed(line.substr(line.size() - 2)))) return;
    table.HalfRead(in_quotes(line) + " does not end in a flag; 0 is taken for those that follow");
}

void check_modifications(CCondition& condition, CTable& table) {
    if (condition.m_strModPath.empty()) return;
    table.VisitLines([&](std::string_view line) {
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos) {
            table.Skipped(line, "it has no \"=\"");
        } else if (line.starts_with("@NUMBER_MODIFICATION=") || line.starts_with("label_name=") ||
                   line.starts_with("Label_")) {
            return;
        } else if (line.starts_with("name")) {
            check_index_line(table, line);
        } else {
            check_definition(table, line, condition);
        }
    });
    run_step([&condition] { condition.ReadMod(); });
}

// ---- Labels ----

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

// ---- Selection ----

std::vector<std::string> modification_names(const CCondition& condition) {
    std::vector<std::string> names;
    for (const CMod& mod : condition.m_vMods) {
        if (mod.m_eType != MOD_PLACEHOLDER) names.push_back(mod.m_strName);
    }
    return names;
}

void check_selection(const CParameterFile& file, CKnownKey key, CCondition& condition,
                     CReport& report) {
    const auto selected = condition.m_vSelMods;
    const auto fixed = condition.m_setFixMods;
    const STEP step = run_step([&] { condition._parse_mod(file.Value(key), true); });
    condition.m_vSelMods = selected;
    condition.m_setFixMods = fixed;
    for (const std::string& name : step.MessagesBehind("ignore the modification: ")) {
        const bool spoilt = name.starts_with(';');
        report.Warning("unknown-modification", file.PlaceOf(*key),
                       in_quotes(name) + " in " + in_quotes(key->m_szKey) +
                           " is no modification of the table; it is not searched for",
                       spoilt ? "Write one \";\" between two names."
                              : did_you_mean(name, modification_names(condition),
                                             "Add it to the modification table."));
    }
}

void check_conversions(const CParameterFile& file, const CCondition& condition, CReport& report) {
    if (!asks_for_labels(condition)) return;
    std::set<std::string> dropped;
    for (const CMod* mod : condition.m_vSelMods) {
        if (is_conversion(*mod)) dropped.insert(mod->m_strName);
    }
    for (const std::string& name : dropped) {
        const bool fixed = condition.m_strFixMod.find(name) != std::string::npos;
        report.Warning("dropped-conversion",
                       file.PlaceOf(*(fixed ? CKnownKey("fixmod") : CKnownKey("selectmod"))),
                       in_quotes(name) +
                           " turns one residue into another; tables of labels leave "
                           "it out where the label does not change it",
                       "Search for it without labels.");
    }
}

void check_tables(const CParameterFile& file, CCondition& condition, CReport& report) {
    const STEP step = run_step([&condition] { condition.CreateModList(); });
    if (!step.MessagesBehind("Invalid_Max_Delta: ").empty()) {
        report.Warning("no-mass-shifts", file.PlaceOf(*CKnownKey("maxdelta")),
                       "\"maxdelta\" is " + file.Value("maxdelta") +
                           ", which would make more than 10 million mass shifts; none are made",
                       "Write a number of daltons below 50000.");
    }
    for (const std::string& message : step.MessagesBehind("Mass out of reach")) {
        report.Warning("mass-out-of-reach", {condition.m_strModPath, 0},
                       "a mass" + message + "; modifications are not found by their mass",
                       "Remove what is so heavy.");
    }
    const std::size_t letters = condition.m_vExtendedAA.size();
    if (letters > kExtendedCodes) {
        report.Warning("large-alphabet", file.PlaceOf(*CKnownKey("selectmod")),
                       joined_text("residues with and without selected modifications are ", letters,
                                   " letters; above ", kExtendedCodes, " their codes repeat"),
                       "Select fewer modifications, or such with fewer sites.");
    }
}

}  // namespace

void check_chemistry(const CParameterFile& file, CCondition& condition, CReport& report) {
    run_step([&condition] { condition.ParseQuantMethod(); });
    check_label_number(file, condition, report);
    check_elements(condition, report);
    check_residues(condition, report);
    CTable modifications(condition.m_strModPath, report);
    check_modifications(condition, modifications);
    CLabels labels(condition, modifications, report);
    labels.CheckTable();
    if (asks_for_labels(condition)) labels.CheckSelected(file, report);
    check_tables(file, condition, report);
    if (!condition.m_strModPath.empty()) {
        check_selection(file, "fixmod", condition, report);
        check_selection(file, "selectmod", condition, report);
    }
    check_conversions(file, condition, report);
}

}  // namespace tessel::check
