// The lines of a parameter file come in; the settings of a condition are filled by the library's
// own reader. Reported is what the reader does not take as it stands, and what it takes from
// elsewhere.

#include <algorithm>
#include <set>

#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"
#include "tessel/param/condition_reader.h"
#include "tessel/param/condition_writer.h"
#include "tessel/platform/file.h"
#include "tools/tessel_check/checks.h"
#include "tools/tessel_check/library_step.h"
#include "tools/tessel_check/names.h"

namespace tessel::check {
namespace {

std::vector<std::string> known_keys() {
    std::vector<std::string> keys;
    for (const SETTING& setting : kSettings)
        keys.emplace_back(setting.m_szKey);
    return keys;
}

std::vector<std::string> known_sections() {
    std::vector<std::string> sections;
    for (const SETTING& setting : kSettings) {
        if (sections.empty() || sections.back() != setting.m_strSection) {
            sections.emplace_back(setting.m_strSection);
        }
    }
    return sections;
}

std::string in_brackets(std::string_view section) {
    return '[' + std::string(section) + ']';
}

// The number of an entry of the data list, "msmspath7"; 0 for other keys.
std::size_t entry_number(std::string_view key) {
    if (!key.starts_with(kEntryStem)) return 0;
    const std::string_view digits = key.substr(kEntryStem.size());
    if (digits.empty() || digits.size() > 9 || digits.front() == '0') return 0;
    if (!std::all_of(digits.begin(), digits.end(), is_digit)) return 0;
    return static_cast<std::size_t>(to_int(digits));
}

bool is_known(std::string_view key) {
    return find_setting(key) != nullptr || entry_number(key) > 0;
}

// ---- Lines ----

void check_headers(const CParameterFile& file, CReport& report) {
    const std::vector<std::string> sections = known_sections();
    const auto known = [&sections](std::string_view name) {
        return name == "Version Info" ||
               std::find(sections.begin(), sections.end(), name) != sections.end();
    };
    std::set<std::string> seen;
    for (const OTHER_LINE& header : file.m_vHeaders) {
        const std::string name = in_brackets(header.m_strText);
        if (!known(header.m_strText)) {
            report.Warning("unknown-section", file.At(header.m_tLine),
                           "nothing looks for a section " + name + ", its keys do not begin here",
                           did_you_mean(header.m_strText, sections, "Remove it."));
        } else if (!seen.insert(header.m_strText).second) {
            report.Note("repeated-section", file.At(header.m_tLine),
                        "the section " + name + " began further up already; it goes on");
        }
    }
    for (const OTHER_LINE& line : file.m_vStray) {
        report.Warning("no-assignment", file.At(line.m_tLine),
                       in_quotes(line.m_strText) + " is no comment and has no \"=\"; it is ignored",
                       "Write key=value, or begin a comment with \"##\".");
    }
}

void check_unknown_key(const CParameterFile& file, const ASSIGNMENT& line, CReport& report) {
    const std::string_view key = trimmed(line.m_strKey);
    if (key != line.m_strKey && is_known(key)) {
        report.Warning("blanks-around-key", file.At(line.m_tLine),
                       in_quotes(line.m_strKey) + " has blanks around the key; the line is ignored",
                       "Write " + std::string(key) + "= without blanks.");
        return;
    }
    report.Warning("unknown-key", file.At(line.m_tLine),
                   "no setting has the key " + in_quotes(key) + "; the line is ignored",
                   did_you_mean(key, known_keys(), "Remove the line."));
}

// A section without its header: none of its keys is found.
void check_sections(const CParameterFile& file, CReport& report) {
    for (const std::string& section : known_sections()) {
        if (file.HeaderLine(section) > 0) continue;
        for (const ASSIGNMENT& line : file.m_vAssignments) {
            const SETTING* const setting = find_setting(line.m_strKey);
            if (setting == nullptr || setting->m_strSection != section) continue;
            report.Warning("missing-section", file.At(line.m_tLine),
                           "there is no header " + in_brackets(section) +
                               "; this key and all others of that section are ignored",
                           "Write " + in_brackets(section) + " above them.");
            break;
        }
    }
}

// What the lines of one known key amount to.
void check_lines_of_key(const CParameterFile& file, std::string_view section, std::string_view key,
                        CReport& report) {
    if (file.HeaderLine(section) == 0) return;
    const ASSIGNMENT* const used = file.Used(section, key);
    for (const ASSIGNMENT& line : file.m_vAssignments) {
        if (line.m_strKey != key) continue;
        const std::string quotedKey = in_quotes(key);
        if (&line == used) {
            if (line.m_strSection == section) continue;
            report.Warning("key-in-other-section", file.At(line.m_tLine),
                           quotedKey + " belongs to " + in_brackets(section) + " but stands in " +
                               in_brackets(line.m_strSection) + "; its value is taken all the same",
                           "Move it to " + in_brackets(section) + '.');
        } else if (used != nullptr && line.m_tLine > used->m_tLine) {
            report.Warning("duplicate-key", file.At(line.m_tLine),
                           joined_text(quotedKey, " has a value already; that of line ",
                                       used->m_tLine, " is taken, this one is ignored"),
                           "Remove one of the two.");
        } else {
            report.Warning("key-before-section", file.At(line.m_tLine),
                           quotedKey + " stands before its section " + in_brackets(section) +
                               "; the line is ignored",
                           "Move it below the header " + in_brackets(section) + '.');
        }
    }
}

void check_lines(const CParameterFile& file, CReport& report) {
    check_headers(file, report);
    check_sections(file, report);
    for (const ASSIGNMENT& line : file.m_vAssignments) {
        if (!is_known(line.m_strKey)) check_unknown_key(file, line, report);
    }
    for (const SETTING& setting : kSettings)
        check_lines_of_key(file, setting.m_strSection, setting.m_szKey, report);
    std::set<std::string> entries;
    for (const ASSIGNMENT& line : file.m_vAssignments) {
        if (entry_number(line.m_strKey) > 0) entries.insert(line.m_strKey);
    }
    for (const std::string& entry : entries)
        check_lines_of_key(file, "datalist", entry, report);
}

// ---- Values ----

// The settings of a condition as texts, by key.
using Values = std::map<std::string, std::string, std::less<>>;

void add_values(const std::string& text, Values& values) {
    for_each_field(text, '\n', [&values](std::string_view line) {
        const std::size_t sign = line.find('=');
        if (line.starts_with('#') || sign == std::string_view::npos) return;
        values.emplace(line.substr(0, sign), line.substr(sign + 1));
    });
}

std::string number_behind_blanks(std::string_view text, const char* end) {
    return std::string(trimmed(text.substr(0, static_cast<std::size_t>(end - text.data()))));
}

// How far a text is a number of the setting's kind; null where it is none.
const char* number_end(const SETTING& setting, std::string_view text) {
    const char* const last = text.data() + text.size();
    if (setting.m_eKind == VALUE_KIND::REAL) {
        double number = 0.0;
        return read_double(text.data(), last, number);
    }
    std::int64_t number = 0;
    return read_integer(text.data(), last, number);
}

bool is_number_kind(VALUE_KIND kind) {
    return kind == VALUE_KIND::INTEGER || kind == VALUE_KIND::REAL || kind == VALUE_KIND::SWITCH;
}

// A number as the library writes it, so that equal ones have equal texts.
std::string normal_text(const SETTING& setting, std::string_view text) {
    std::string normal;
    if (setting.m_eKind == VALUE_KIND::REAL) {
        append_general(normal, to_double(text));
    } else {
        std::int64_t number = 0;
        read_integer(text.data(), text.data() + text.size(), number);
        append_integer(normal, number);
    }
    return normal;
}

std::string range_text(const SETTING& setting) {
    if (setting.m_eKind == VALUE_KIND::SWITCH) return "Write 0 or 1.";
    const VALUE_RANGE& range = setting.m_cRange;
    if (range.m_szName == nullptr || range.m_nHighest == kNoLimit) {
        return "Write a number that is taken as it is.";
    }
    return joined_text("Write a number from 0 to ", range.m_nHighest, ".");
}

// Blanks at the ends of these values are found by what they are compared with.
bool has_check_of_its_own(const SETTING& setting) {
    if (setting.m_eKind == VALUE_KIND::PATH) return true;
    const std::string_view key = setting.m_szKey;
    return key == "fixmod" || key == "selectmod" || key == "log" || key == "msmstype";
}

// How a message ends that tells what becomes of a value; `taken` is null where the library was
// ended before it had read the key.
std::string becomes(const std::string* taken) {
    return taken == nullptr ? "" : "; " + *taken + " is taken";
}

void check_empty_value(const SETTING& setting, const PLACE& place, const std::string* taken,
                       CReport& report) {
    if (setting.m_szMissing[0] == '\0') return;
    report.Warning("empty-value", place,
                   in_quotes(setting.m_szKey) + " has no value" + becomes(taken),
                   joined_text("Write a value, or remove the line for ", setting.m_szMissing, "."));
}

void check_text(const SETTING& setting, const PLACE& place, const std::string& value,
                CReport& report) {
    if (trimmed(value) == value || has_check_of_its_own(setting)) return;
    report.Warning(
        "blanks-in-value", place,
        in_quotes(setting.m_szKey) + " has blanks at the ends of its value, which are a part of it",
        "Remove the blanks.");
}

void check_number(const SETTING& setting, const PLACE& place, const std::string& value,
                  const std::string* taken, CReport& report) {
    const std::string key = in_quotes(setting.m_szKey);
    const char* const end = number_end(setting, value);
    if (end == nullptr) {
        report.Warning(
            "not-a-number", place,
            key + " is not the number it has to be: " + in_quotes(value) + becomes(taken),
            range_text(setting));
    } else if (!trimmed(value.substr(static_cast<std::size_t>(end - value.data()))).empty()) {
        report.Warning("trailing-text", place,
                       key + " is read as " + number_behind_blanks(value, end) + " only, not as " +
                           in_quotes(value) + becomes(taken),
                       "Write the number alone.");
    } else if (taken != nullptr && normal_text(setting, value) != *taken) {
        report.Warning("corrected-value", place,
                       key + " cannot be " + std::string(trimmed(value)) + becomes(taken),
                       range_text(setting));
    }
}

// One value that stands in the file, against what the library makes of it.
void check_value(const SETTING& setting, const PLACE& place, const std::string& value,
                 const std::string* taken, CReport& report) {
    if (value.empty()) {
        check_empty_value(setting, place, taken, report);
    } else if (is_number_kind(setting.m_eKind)) {
        check_number(setting, place, value, taken, report);
    } else {
        check_text(setting, place, value, report);
    }
}

void note_other_than_default(const CParameterFile& file, const SETTING& setting,
                             const ASSIGNMENT& line, CReport& report) {
    const std::string missing = setting.m_szMissing;
    if (setting.m_eKind == VALUE_KIND::PATH || line.m_strValue == missing) return;
    if (is_number_kind(setting.m_eKind) &&
        normal_text(setting, line.m_strValue) == normal_text(setting, missing)) {
        return;
    }
    report.Note("not-the-default", file.At(line.m_tLine),
                in_quotes(setting.m_szKey) + " is " + in_quotes(line.m_strValue) +
                    "; without the line it would be " + in_quotes(missing));
}

void check_values(const CParameterFile& file, const Values& taken, CReport& report) {
    for (const SETTING& setting : kSettings) {
        const ASSIGNMENT* const line = file.Used(setting);
        if (line == nullptr) continue;
        const auto found = taken.find(setting.m_szKey);
        check_value(setting, file.At(line->m_tLine), line->m_strValue,
                    found == taken.end() ? nullptr : &found->second, report);
        note_other_than_default(file, setting, *line, report);
    }
}

// ---- Meanings ----

void check_enzyme(const CParameterFile& file, CReport& report) {
    const PLACE place = file.PlaceOf(*CKnownKey("enzyme"));
    const std::string definition = file.Value("enzyme");
    const std::string advice = "Write NAME SITES RESTRICTION SIDE, such as Trypsin KR _ C.";
    CEnzyme enzyme;
    if (run_step([&] { enzyme.Init(definition); }).m_bEnded) {
        report.Error("invalid-enzyme", place,
                     in_quotes(definition) + " has a side that is neither C nor N; the run ends",
                     advice);
    } else if (!enzyme.m_bCTerm && !enzyme.m_bNTerm) {
        report.Warning("enzyme-without-rule", place,
                       in_quotes(definition) + " has no cleavage rule; nothing is cleaved", advice);
    }
}

void check_tolerances(const CParameterFile& file, const CCondition& condition, CReport& report) {
    const auto warn = [&](CKnownKey key, CKnownKey unit) {
        report.Warning("abnormal-tolerance", file.PlaceOf(*key),
                       in_quotes(key->m_szKey) + " is " + file.Value(key) +
                           ", which is taken but is no usual tolerance in any unit",
                       in_quotes(unit->m_szKey) + " is 1 for ppm and 0 for Da; write 20 or 0.5.");
    };
    if (CConditionReader::_strange_precursor_tolerance(condition)) warn("mstol", "mstolppm");
    if (CConditionReader::_strange_fragment_tolerance(condition)) warn("msmstol", "msmstolppm");
}

void check_range(const CParameterFile& file, CKnownKey lower, CKnownKey upper, CReport& report) {
    if (to_double(file.Value(lower)) <= to_double(file.Value(upper))) return;
    report.Warning("empty-range", file.PlaceOf(*lower),
                   in_quotes(lower->m_szKey) + " is above " + in_quotes(upper->m_szKey) +
                       "; no peptide is between them",
                   "Exchange the two.");
}

void check_words(const CParameterFile& file, const CCondition& condition, CReport& report) {
    const std::string log = file.Value("log");
    if (log != condition.LogType2String(condition.m_eLogType)) {
        report.Warning(
            "corrected-value", file.PlaceOf(*CKnownKey("log")),
            "\"log\" cannot be " + in_quotes(log) + "; LOG_INFO is taken",
            did_you_mean(log, {"LOG_ALERT", "LOG_SILENT", "LOG_WARNING", "LOG_INFO", "LOG_DEBUG"},
                         "Write LOG_INFO or LOG_WARNING."));
    }
    const std::string type = file.Value("msmstype");
    if (type != "MGF" && type != "ZB2" && type != "ZBS") {
        report.Warning("unknown-type", file.PlaceOf(*CKnownKey("msmstype")),
                       in_quotes(type) + " is no type of spectrum file; it is read as ZB2",
                       "Write MGF, ZB2 or ZBS, in capitals.");
    }
    if (condition.m_tThreadNum > kManyThreads) {
        report.Warning("many-threads", file.PlaceOf(*CKnownKey("thread")),
                       "more than 100 threads are asked for, and started",
                       "Write the number of the machine's cores.");
    }
}

// ---- Paths ----

void report_missing(const PLACE& place, const std::string& key, const std::string& path,
                    CReport& report) {
    if (path.empty()) {
        report.Error("missing-key", place, in_quotes(key) + " is needed; the run ends without it",
                     "Add " + key + "=PATH.");
        return;
    }
    report.Error(
        "missing-path", place,
        in_quotes(key) + " names " + in_quotes(path) + ", which does not exist; the run ends",
        trimmed(path) == path
            ? "Create it or correct the path; relative paths begin in the working folder."
            : "Remove the blanks at the ends of the path.");
}

// A file that the library looks for in the working folder when the key names none.
std::string path_or(const std::string& path, const char* name) {
    return path.empty() ? working_folder() + '\\' + name : path;
}

bool check_path(const CParameterFile& file, CKnownKey key, const std::string& path,
                CReport& report) {
    if (path_exists(path)) return true;
    report_missing(file.PlaceOf(*key), key->m_szKey, path, report);
    return false;
}

void check_kind(const CParameterFile& file, CKnownKey key, const std::string& path, bool folder,
                CReport& report) {
    const auto status = file_status(path);
    if (!status || status->m_bFolder == folder) return;
    report.Error(folder ? "not-a-folder" : "not-a-file", file.PlaceOf(*key),
                 in_quotes(key->m_szKey) + " names " + in_quotes(path) + ", which is a " +
                     (folder ? "file" : "folder"),
                 folder ? "Name the folder for the results." : "Name a file.");
}

void check_paths(const CParameterFile& file, CReport& report) {
    const auto check = [&](CKnownKey key, const std::string& path, bool folder) {
        if (check_path(file, key, path, report)) check_kind(file, key, path, folder, report);
    };
    check("fastapath", file.Value("fastapath"), false);
    check("outputpath", file.Value("outputpath"), true);
    check("modpath", path_or(file.Value("modpath"), "modification.ini"), false);
    check("aapath", path_or(file.Value("aapath"), "aa.ini"), false);
}

// The entries of the data list; those that can be read are returned.
std::vector<std::string> check_entries(const CParameterFile& file, CReport& report) {
    std::vector<std::string> readable;
    const std::size_t stated = static_cast<std::size_t>(std::max(to_int(file.Value("msmsnum")), 0));
    std::size_t present = 0;
    for (const ASSIGNMENT& line : file.m_vAssignments) {
        const std::size_t number = entry_number(line.m_strKey);
        if (number == 0 || file.Used("datalist", line.m_strKey) != &line) continue;
        if (number > stated) {
            report.Warning(
                "entry-beyond-number", file.At(line.m_tLine),
                joined_text(in_quotes(line.m_strKey), " is not read: \"msmsnum\" is ", stated),
                "Set msmsnum to the number of entries.");
        } else if (!path_exists(line.m_strValue)) {
            report_missing(file.At(line.m_tLine), line.m_strKey, line.m_strValue, report);
        } else {
            readable.push_back(line.m_strValue);
        }
        if (number <= stated) ++present;
    }
    if (present < stated) {
        report.Error("missing-entry", file.PlaceOf(*CKnownKey("msmsnum")),
                     joined_text("\"msmsnum\" is ", stated, ", but ", present,
                                 " of these entries are there; the run ends at the first other"),
                     "Set msmsnum to the number of entries.");
    }
    return readable;
}

// ---- The library's reader ----

bool ended(void (CConditionReader::*step)(), CConditionReader& reader) {
    return run_step([&] { (reader.*step)(); }).m_bEnded;
}

// What _LoadData() was ended over, without the paths that do not exist.
void fill_data(const CParameterFile& file, std::vector<std::string> entries,
               CCondition& condition) {
    const auto existing = [](const std::string& path) { return path_exists(path) ? path : ""; };
    condition.m_strFastaPath = existing(file.Value("fastapath"));
    condition.m_strInputFastaPath = condition.m_strFastaPath;
    condition.m_bAutoRev = to_int(file.Value("auto_rev")) != 0;
    condition.m_strModPath = existing(path_or(file.Value("modpath"), "modification.ini"));
    condition.m_strAAPath = existing(path_or(file.Value("aapath"), "aa.ini"));
    condition.m_strMSMSType = file.Value("msmstype");
    condition.m_bMSMSFolder = to_int(file.Value("msmsfolder")) != 0;
    if (!condition.m_bMSMSFolder) condition.m_vMSMSFiles = std::move(entries);
}

// Runs the reader's steps and collects what its settings are, section by section.
Values read_settings(CConditionReader& reader, const CParameterFile& file,
                     std::vector<std::string> entries) {
    Values values;
    const CConditionWriter writer("", &reader.m_cCondition);
    const auto add = [&](void (CConditionWriter::*write)(std::string&) const) {
        std::string text;
        (writer.*write)(text);
        add_values(text, values);
    };
    if (!ended(&CConditionReader::_LoadParam, reader)) add(&CConditionWriter::_WriteParam);
    if (!ended(&CConditionReader::_LoadEngine, reader)) add(&CConditionWriter::_WriteEngine);
    if (!ended(&CConditionReader::_LoadFilter, reader)) add(&CConditionWriter::_WriteFilter);
    if (!ended(&CConditionReader::_LoadQuant, reader)) add(&CConditionWriter::_WriteQuant);
    if (!ended(&CConditionReader::_LoadSystem, reader)) add(&CConditionWriter::_WriteSystem);
    if (ended(&CConditionReader::_LoadData, reader)) {
        fill_data(file, std::move(entries), reader.m_cCondition);
    } else {
        add(&CConditionWriter::_WriteData);
        values.erase("msmsnum");  // the number of files, not of entries
    }
    return values;
}

}  // namespace

void check_parameters(const CParameterFile& file, CConditionReader& reader, CReport& report) {
    check_lines(file, report);
    check_enzyme(file, report);
    check_paths(file, report);
    std::vector<std::string> entries = check_entries(file, report);
    const Values values = read_settings(reader, file, std::move(entries));
    check_values(file, values, report);
    check_tolerances(file, reader.m_cCondition, report);
    check_range(file, "mass_lower", "mass_upper", report);
    check_range(file, "len_lower", "len_upper", report);
    check_words(file, reader.m_cCondition, report);
}

}  // namespace tessel::check
