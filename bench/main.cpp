// tessel_bench: the hot paths measured against a plain version and against a limit.
//   --rounds=N             rounds of every contender, 7 when left out
//   --inputs=FOLDER        where inputs lie and outputs go
//   --instructions=FILE    lines "path count" for the table's last column
//   --growth               how cost grows with size, instead of the table
//   --once=PATH            one path of the library once, small input, in this process,
//                          which ends behind the measured work
//   --once=PATH --large    the same with the table's input, to be profiled
//   --benchmark_...        options of Google Benchmark: --benchmark_filter=REGEX chooses paths,
//                          --benchmark_out=FILE keeps every round
// Exit status 1 when a Must does not hold.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "bench/generate.h"
#include "bench/paths.h"
#include "bench/table.h"

namespace tessel::bench {
namespace {

struct OPTIONS {
    std::size_t m_tRounds = 7;
    std::string m_strInputs = TESSEL_BENCH_INPUTS;
    std::string m_strInstructions;
    std::string m_strOnce;
    bool m_bGrowth = false;
    bool m_bLarge = false;
};

std::vector<HOT_PATH> all_paths() {
    return {mgf_path(30000),
            zb2_path(30000),
            target_decoy_path(100000000),
            mod_list_path(1500),
            mod_combinations_path(500),
            mod_combinations_path(1000),
            load_results_path(100000),
            write_results_path(100000),
            merge_files_path(100000)};
}

// Small enough to run under an instruction counter.
std::vector<HOT_PATH> small_paths() {
    return {mgf_path(300),
            zb2_path(300),
            target_decoy_path(1000000),
            mod_list_path(1500),
            mod_combinations_path(100),
            load_results_path(1000),
            write_results_path(1000),
            merge_files_path(1000),
            initialize_path(),
            batches_path(300, 100)};
}

// The table's, and what is profiled beside them.
std::vector<HOT_PATH> large_paths() {
    std::vector<HOT_PATH> paths = all_paths();
    paths.push_back(initialize_path());
    paths.push_back(batches_path(30000, 10000));
    return paths;
}

// Each size four times the one before, combinations apart.
std::vector<std::vector<HOT_PATH>> growing_paths() {
    return {{mgf_path(7500), mgf_path(30000), mgf_path(120000)},
            {mod_combinations_path(200), mod_combinations_path(500), mod_combinations_path(1000)},
            {load_results_path(25000), load_results_path(100000)},
            {write_results_path(25000), write_results_path(100000)},
            {merge_files_path(25000), merge_files_path(100000)}};
}

const Contender& contender_of(const HOT_PATH& path, std::size_t which) {
    return which == LIBRARY ? path.m_fnLibrary : which == PLAIN ? path.m_fnPlain : path.m_fnLimit;
}

void one_round(benchmark::State& state, const Contender& contender, std::vector<FIGURES>& rounds) {
    for ([[maybe_unused]] const auto iteration : state) {
        const auto figures = run_in_child(contender);
        if (!figures) {
            state.SkipWithError("the round failed");
            return;
        }
        state.SetIterationTime(figures->m_lfSeconds);
        state.counters["over_start"] = static_cast<double>(figures->m_uOverStart);
        state.counters["peak"] = static_cast<double>(figures->m_uPeak);
        rounds.push_back(*figures);
    }
}

// One benchmark per round, so that contenders take turns; the time is the child's CPU time.
void register_rounds(const HOT_PATH& path, Rounds& rounds, std::size_t count,
                     std::size_t contenders) {
    for (std::size_t round = 0; round < count * path.m_tTurns; ++round) {
        for (std::size_t which = 0; which < contenders; ++which) {
            const std::string name =
                path.m_strName + '/' + path.m_strInput + '/' + kContenderNames[which];
            benchmark::RegisterBenchmark(name.c_str(),
                                         [&path, &rounds, which](benchmark::State& state) {
                                             one_round(state, contender_of(path, which),
                                                       rounds[which]);
                                         })
                ->Iterations(1)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
        }
    }
}

// Progress on standard error; standard output is for the table.
class CProgress : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) m_bFailed = true;
            std::fprintf(stderr, "%-72s %10.1f ms\n", run.benchmark_name().c_str(),
                         run.GetAdjustedRealTime());
        }
    }
    bool m_bFailed = false;
};

bool run_benchmarks() {
    CProgress progress;
    benchmark::RunSpecifiedBenchmarks(&progress);
    return !progress.m_bFailed;
}

std::map<std::string, std::uint64_t> instruction_counts(const std::string& file) {
    std::map<std::string, std::uint64_t> counts;
    std::ifstream stream(file);
    std::string path;
    for (std::uint64_t count = 0; stream >> path >> count;)
        counts[path] = count;
    return counts;
}

int measure_table(const OPTIONS& options) {
    const std::vector<HOT_PATH> paths = all_paths();
    std::vector<Rounds> rounds(paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i)
        register_rounds(paths[i], rounds[i], options.m_tRounds, kContenders);
    const bool complete = run_benchmarks();
    CTable table(instruction_counts(options.m_strInstructions));
    table.PrintHeading();
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (!rounds[i][LIBRARY].empty()) table.PrintPath(paths[i], rounds[i]);
    }
    if (!complete) std::puts("Rounds failed.");
    return table.PrintResult() && complete ? EXIT_SUCCESS : EXIT_FAILURE;
}

int measure_growth(const OPTIONS& options) {
    const std::vector<std::vector<HOT_PATH>> groups = growing_paths();
    std::vector<std::vector<Rounds>> rounds;
    for (const auto& group : groups)
        rounds.emplace_back(group.size());
    for (std::size_t g = 0; g < groups.size(); ++g) {
        for (std::size_t i = 0; i < groups[g].size(); ++i)
            register_rounds(groups[g][i], rounds[g][i], options.m_tRounds, 1);
    }
    const bool complete = run_benchmarks();
    for (std::size_t g = 0; g < groups.size(); ++g) {
        if (!rounds[g][0][LIBRARY].empty()) print_growth(groups[g], rounds[g]);
    }
    return complete ? EXIT_SUCCESS : EXIT_FAILURE;
}

int run_once(const OPTIONS& options) {
    for (const HOT_PATH& path : options.m_bLarge ? large_paths() : small_paths()) {
        if (path.m_strName != options.m_strOnce) continue;
        CRound round(true);
        path.m_fnLibrary(round);
        return EXIT_SUCCESS;
    }
    std::fprintf(stderr, "No path is named %s\n", options.m_strOnce.c_str());
    return EXIT_FAILURE;
}

bool take(std::string_view argument, std::string_view key, std::string& value) {
    if (!argument.starts_with(key)) return false;
    value = argument.substr(key.size());
    return true;
}

bool take_options(int count, char** arguments, OPTIONS& options) {
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        std::string number;
        if (argument == "--growth") {
            options.m_bGrowth = true;
        } else if (argument == "--large") {
            options.m_bLarge = true;
        } else if (take(argument, "--rounds=", number)) {
            options.m_tRounds = std::strtoul(number.c_str(), nullptr, 10);
        } else if (!take(argument, "--inputs=", options.m_strInputs) &&
                   !take(argument, "--instructions=", options.m_strInstructions) &&
                   !take(argument, "--once=", options.m_strOnce)) {
            std::fprintf(stderr, "Unknown option: %s\n", arguments[i]);
            return false;
        }
    }
    return true;
}

}  // namespace
}  // namespace tessel::bench

int main(int count, char** arguments) {
    using namespace tessel::bench;
    OPTIONS options;
    benchmark::Initialize(&count, arguments);
    if (!take_options(count, arguments, options)) return EXIT_FAILURE;
    set_input_folder(options.m_strInputs);
    if (!options.m_strOnce.empty()) return run_once(options);
    return options.m_bGrowth ? measure_growth(options) : measure_table(options);
}
