// Parameter files: read, written, read back.

#include "tessel/param/condition_reader.h"
#include "tessel/param/condition_writer.h"
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
