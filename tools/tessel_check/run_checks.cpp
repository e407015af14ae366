// The path of a parameter file comes in; the groups of checks run one after another on one
// condition.

#include "tools/tessel_check/run_checks.h"

#include "tessel/platform/file.h"
#include "tools/tessel_check/checks.h"

namespace tessel::check {

void run_checks(const std::string& path, bool progress, CReport& report) {
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

int exit_status(const CReport& report) {
    if (report.Number(LEVEL::ERROR) > 0) return 2;
    return report.Number(LEVEL::WARNING) > 0 ? 1 : 0;
}

}  // namespace tessel::check
