// The command line comes in; what the checks found goes to standard output, and how bad it is into
// the exit status.

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "tessel/platform/console.h"
#include "tools/tessel_check/report.h"
#include "tools/tessel_check/run_checks.h"

namespace {

constexpr int kUsage = 3;
constexpr std::string_view kHelp =
    "tessel-check [--json] PARAMETER_FILE\n"
    "\n"
    "Reads a parameter file and the files it names as a search would, and tells what in them is\n"
    "not what it seems. Nothing is written to disk. Run it where the search is run.\n"
    "\n"
    "  --json      one JSON document instead of one line for each finding\n"
    "  -h, --help  this text\n"
    "\n"
    "Exit status: 0 nothing worse than notes, 1 warnings, 2 errors, 3 usage.\n";

struct OPTIONS {
    bool m_bJson = false;
    bool m_bHelp = false;
    std::vector<std::string> m_vPaths;
    std::string m_strUnknown;
};

OPTIONS read_options(int count, char** arguments) {
    OPTIONS options;
    bool namesOnly = false;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (namesOnly || !argument.starts_with('-')) {
            options.m_vPaths.emplace_back(argument);
        } else if (argument == "--") {
            namesOnly = true;
        } else if (argument == "--json") {
            options.m_bJson = true;
        } else if (argument == "-h" || argument == "--help") {
            options.m_bHelp = true;
        } else {
            options.m_strUnknown = argument;
        }
    }
    return options;
}

void print(std::FILE* file, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), file);
}

}  // namespace

int main(int count, char** arguments) {
    const OPTIONS options = read_options(count, arguments);
    if (options.m_bHelp) {
        print(stdout, kHelp);
        return 0;
    }
    if (options.m_vPaths.size() != 1 || !options.m_strUnknown.empty()) {
        if (!options.m_strUnknown.empty()) {
            print(stderr, "tessel-check: unknown option " + options.m_strUnknown + "\n\n");
        }
        print(stderr, kHelp);
        return kUsage;
    }
    tessel::check::CReport report;
    const std::string& path = options.m_vPaths.front();
    tessel::check::run_checks(path, tessel::error_output_is_terminal(), report);
    print(stdout, options.m_bJson ? tessel::check::findings_as_json(report, path)
                                  : tessel::check::findings_as_text(report));
    if (std::fflush(stdout) != 0) {
        print(stderr, "tessel-check: standard output cannot be written\n");
        return kUsage;
    }
    return tessel::check::exit_status(report);
}
