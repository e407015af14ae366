// The modification table and the selection from it come in; the condition's own tables are filled
// by the library's own reader. Reported is what this skips, reads in part or does not find.

#include <algorithm>
#include <cmath>
#include <set>

#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"
#include "tools/tessel_check/chemistry_checks.h"
#include "tools/tessel_check/library_step.h"
#include "tools/tessel_check/names.h"

namespace tessel::check {
namespace {

constexpr double kMassTolerance = 0.001;  // Da

// ---- The table ----

std::vector<std::string_view> words_of(std::string_view text) {
    std::vector<std::string_view> words;
    while (!(text = trimmed(text)).empty()) {
        const auto end = std::find_if(text.begin(), text.end(), is_blank);
        words.push_back(text.substr(0, static_cast<std::size_t>(end - text.begin())));
        text.remove_prefix(words.back().size());
    }
    return words;
}

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

void check_selected(const CParameterFile& file, CCondition& condition, CReport& report) {
    check_tables(file, condition, report);
    if (!condition.m_strModPath.empty()) {
        check_selection(file, "fixmod", condition, report);
        check_selection(file, "selectmod", condition, report);
    }
    check_conversions(file, condition, report);
}

}  // namespace tessel::check
