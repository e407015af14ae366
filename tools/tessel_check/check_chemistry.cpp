// The tables of elements and residues come in; the condition's own tables are filled by the
// library's own readers. Reported is what these skip, read in part or take otherwise than it stands
// in the files. Modifications and labels have files of their own.

#include "tessel/base/message_text.h"
#include "tessel/base/text.h"
#include "tools/tessel_check/checks.h"
#include "tools/tessel_check/chemistry_checks.h"
#include "tools/tessel_check/library_step.h"
#include "tools/tessel_check/names.h"

namespace tessel::check {
namespace {

constexpr std::string_view kStandardResidues = "ACDEFGHIKLMNPQRSTVWY";

// ---- Elements ----

// Without the empty field behind a delimiter at the end.
std::vector<std::string_view> list_of(std::string_view text) {
    std::vector<std::string_view> items = fields_of(text, ',');
    if (items.back().empty()) items.pop_back();
    return items;
}

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

}  // namespace

void check_chemistry(const CParameterFile& file, CCondition& condition, CReport& report) {
    run_step([&condition] { condition.ParseQuantMethod(); });
    check_label_number(file, condition, report);
    check_elements(condition, report);
    check_residues(condition, report);
    CTable modifications(condition.m_strModPath, report);
    check_modifications(condition, modifications);
    check_labels(file, condition, modifications, report);
    check_selected(file, condition, report);
}

}  // namespace tessel::check
