// Parameter files: read, single keys of every kind against a plain lookup, written, read back.

#include <algorithm>

#include "tessel/param/condition_reader.h"
#include "tessel/param/condition_writer.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

// One round; false when the settings end the process.
bool rewrite(const std::string& from, const std::string& to) {
    return !ends_process([&] {
        CConditionReader reader(scratch_path(from));
        reader.Read();
        CConditionWriter(scratch_path(to), &reader.m_cCondition).Write();
    });
}

// What stands behind "key=" on the first such line behind the section's header.
std::string plain_value(const std::vector<std::string>& lines, const std::string& section,
                        const std::string& key, const std::string& missing) {
    bool inSection = false;
    for (const std::string& line : lines) {
        if (inSection && line.starts_with(key + '=')) {
            std::string value = line.substr(key.size() + 1);
            while (!value.empty() && value.back() == '\r')
                value.pop_back();
            return value;
        }
        inSection = inSection || line.starts_with('[' + section + ']');
    }
    return missing;
}

void check_values(const CCondition& condition, const std::vector<std::string>& lines) {
    const auto value = [&lines](const char* section, const char* key, const char* missing) {
        return plain_value(lines, section, key, missing);
    };
    check(condition.m_strSelectMod == value("param", "selectmod", "") &&
              condition.m_strQuant == value("quant", "quant", "1|None"),
          "texts are read");
    check(same(condition.m_lfCenter, plain_double(value("param", "center", "0.0")).value),
          "doubles are read");
    const std::string open = value("engine", "open", "1");
    check(condition.m_nOpen == (open.empty() ? 1 : plain_integer<int>(open).value),
          "integers are read, an empty one as if it were missing");
    check(condition.m_nLenUpper == plain_integer<int>(value("filter", "len_upper", "100")).value,
          "an empty number of a text is 0");
    check(condition.m_bIeqL == (value("param", "IeqL", "1") != "0"), "0 alone switches off");
}

void check_files(const CCondition& condition, const std::vector<std::string>& lines) {
    if (condition.m_bMSMSFolder) return;
    const std::string stated = plain_value(lines, "datalist", "msmsnum", "0");
    const auto most = static_cast<int>(lines.size());
    const std::size_t count =
        static_cast<std::size_t>(std::clamp(plain_integer<int>(stated).value, 0, most));
    check(condition.m_vMSMSFiles.size() == count, "as many files are read as are there");
    for (std::size_t i = 0; i < count && i < 8; ++i) {
        const std::string key = "msmspath" + std::to_string(i + 1);
        check(condition.m_vMSMSFiles[i] == plain_value(lines, "datalist", key, "NULL"),
              "files are read by their number");
    }
}

void check_ranges(const CCondition& condition) {
    check(condition.m_tMaxModNum <= 20 && condition.m_tSelectPeak <= 5000, "counts are in range");
    check(condition.m_ucDigest <= 3 && condition.m_nOpenTagLen <= 6 && condition.m_nRestTagLen <= 6,
          "choices are in range");
    check(condition.m_strOutputPath.ends_with('\\'), "the output path ends with a separator");
}

}  // namespace

void run(CBytes input) {
    static const bool prepared = [] {
        for (const char* name : {"modification.ini", "aa.ini", "a.fasta", "a.mgf"})
            write_scratch(name, "");
        return true;
    }();
    check(prepared, "the files that settings name are written once");
    const bool writes = input.Flag();  // three more readings take most of the time
    write_scratch("given.param", input.Text());
    bool folders = false;
    if (ends_process([&] {
            CConditionReader reader(scratch_path("given.param"));
            reader.Read();
            check_ranges(reader.m_cCondition);
            check_values(reader.m_cCondition, plain_lines(input.Text()));
            check_files(reader.m_cCondition, plain_lines(input.Text()));
            folders = reader.m_cCondition.m_bMSMSFolder;
            CConditionWriter(scratch_path("first.param"), &reader.m_cCondition).Write();
        })) {
        return;
    }
    // What a folder holds is written in its place, and is no folder then; an output path that is a
    // file is none behind a separator.
    if (!writes || folders || !rewrite("first.param", "second.param")) return;
    check(rewrite("second.param", "third.param"), "settings that were written read back");
    check(read_scratch("second.param") == read_scratch("third.param"), "and are written alike");
    check_scratch_files(
        "a.fasta a.mgf aa.ini first.param given.param modification.ini second.param third.param");
}

}  // namespace tessel::fuzz
