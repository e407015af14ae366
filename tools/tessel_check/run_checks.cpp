// The path of a parameter file comes in; the groups of checks run one after another on one
// condition, as far as memory suffices.

#include "tools/tessel_check/run_checks.h"

#include <new>
#include <stdexcept>

#include "tessel/platform/file.h"
#include "tools/tessel_check/checks.h"

namespace tessel::check {
namespace {

void run_groups(const std::string& path, bool progress, CReport& report) {
    if (!path_exists(path)) {
        report.Error("missing-path", {path, 0}, "the parameter file does not exist; the run ends",
                     "Correct the path.");
        return;
    }
    const CParameterFile file(path);
    if (!file.m_bReadable) {
        report.Error("unreadable-file", {path, 0}, "the parameter file cannot be read to its end",
                     "Check that it is a file, its permissions and its disk.");
        return;
    }
    CConditionReader reader(path);
    check_parameters(file, reader, report);
    CCondition& condition = reader.m_cCondition;
    condition.m_eLogType = LOG_INFO;  // for the messages of the steps below
    check_chemistry(file, condition, report);
    check_search_space(file, condition, report);
    check_spectra(file, condition, progress, report);
    check_database(condition, progress, report);
}

}  // namespace

void run_checks(const std::string& path, bool progress, CReport& report) {
    bool complete = false;
    try {
        run_groups(path, progress, report);
        complete = true;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
    // What filled the memory is gone by now, so that there is some to tell of it.
    if (complete) return;
    report.Error(
        "out-of-memory", {path, 0},
        "memory does not suffice for the tables of this search; what would have been checked "
        "next is not checked",
        "Select fewer modifications or a smaller maxdelta, or check where there is more.");
}

int exit_status(const CReport& report) {
    if (report.Number(LEVEL::ERROR) > 0) return 2;
    return report.Number(LEVEL::WARNING) > 0 ? 1 : 0;
}

}  // namespace tessel::check
