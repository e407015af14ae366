// The table of results: rounds come in, rows go out.

#include "bench/table.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace tessel::bench {
namespace {

constexpr double kMiB = 1024.0 * 1024.0;
constexpr const char* kRow =

    "%-16s %-23s | %8s %8s %8s | %-19s %-16s | %-17s %-10s | %-27s | %12s\n";

std::string text(const char* format, double a) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, a);
    return buffer;
}

std::string text_of(const SPREAD& ratio) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.2f (%.2f-%.2f)", ratio.m_lfMedian, ratio.m_lfLow,
                  ratio.m_lfHigh);
    return buffer;
}

std::string milliseconds(const std::vector<FIGURES>& rounds) {
    return text("%.1f", seconds_of(rounds).m_lfMedian * 1e3);
}

// Contenders of one round ran one after the other, so that their ratio says more than the times.
SPREAD ratio_of(const std::vector<FIGURES>& a, const std::vector<FIGURES>& b) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        ratios.push_back(a[i].m_lfSeconds / b[i].m_lfSeconds);
    return spread_of(ratios);
}

double median_of(const std::vector<FIGURES>& rounds, std::uint64_t FIGURES::*field) {
    std::vector<double> values;
    for (const FIGURES& figures : rounds)
        values.push_back(static_cast<double>(figures.*field));
    return spread_of(values).m_lfMedian;
}

// The results of all contenders that have one to compare.
bool same_results(const Rounds& rounds) {
    std::uint64_t digest = 0;
    for (const auto& contender : rounds) {
        for (const FIGURES& figures : contender) {
            if (digest == 0) digest = figures.m_uDigest;
            if (figures.m_uDigest != 0 && figures.m_uDigest != digest) return false;
        }
    }
    return true;
}

}  // namespace

SPREAD spread_of(std::vector<double> values) {
    if (values.empty()) return {};
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    const double median =
        values.size() % 2 != 0 ? values[half] : (values[half - 1] + values[half]) / 2.0;
    return {median, values.front(), values.back()};
}

SPREAD seconds_of(const std::vector<FIGURES>& rounds) {
    std::vector<double> seconds;
    for (const FIGURES& figures : rounds)
        seconds.push_back(figures.m_lfSeconds);
    return spread_of(seconds);
}

CTable::CTable(std::map<std::string, std::uint64_t> instructions)
    : m_mapInstructions(std::move(instructions)) {
}

void CTable::PrintHeading() const {
    std::printf(kRow, "path", "input", "library", "plain", "limit", "library/limit", "must, aim",
                "library/plain", "must", "library's memory, must", "instructions");
    std::printf(kRow, "", "", "CPU ms", "CPU ms", "CPU ms", "median (range)", "", "median (range)",
                "", "median", "small input");
}

std::string CTable::Judged(double value, double must, double aim) {
    if (must == 0.0) return "";
    ++m_tMusts;
    const bool held = value <= must;
    if (held) ++m_tHeld;
    std::string verdict = text("<= %.4g ", must) + (held ? "ok" : "NO");
    if (aim == 0.0) return verdict;
    ++m_tAims;
    const bool reached = value <= aim;
    if (reached) ++m_tReached;
    return verdict + text(reached ? ", %.4g ok" : ", %.4g -", aim);
}

void CTable::PrintPath(const HOT_PATH& path, const Rounds& rounds) {
    const std::vector<FIGURES>& library = rounds[LIBRARY];
    const SPREAD toLimit = ratio_of(library, rounds[LIMIT]);
    const SPREAD toPlain = ratio_of(library, rounds[PLAIN]);
    const MUSTS& musts = path.m_cMusts;
    const double overStart = median_of(library, &FIGURES::m_uOverStart) / kMiB;
    std::string memory = text("%.1f MiB over start ", overStart);
    if (musts.m_lfOverStart != 0.0) memory += Judged(overStart, musts.m_lfOverStart, 0.0);
    if (musts.m_lfPeakPerRecord != 0.0) {
        const double peak =
            median_of(library, &FIGURES::m_uPeak) / median_of(library, &FIGURES::m_uRecordBytes);
        memory = text("%.2f x records ", peak) + Judged(peak, musts.m_lfPeakPerRecord, 0.0);
    }
    const auto instructions = m_mapInstructions.find(path.m_strName);
    std::printf(kRow, path.m_strName.c_str(), path.m_strInput.c_str(),
                milliseconds(library).c_str(), milliseconds(rounds[PLAIN]).c_str(),
                milliseconds(rounds[LIMIT]).c_str(), text_of(toLimit).c_str(),
                Judged(toLimit.m_lfMedian, musts.m_lfLimit, musts.m_lfLimitAim).c_str(),
                text_of(toPlain).c_str(), Judged(toPlain.m_lfMedian, musts.m_lfPlain, 0.0).c_str(),
                memory.c_str(),
                instructions == m_mapInstructions.end()
                    ? "-"
                    : std::to_string(instructions->second).c_str());
    if (!same_results(rounds)) {
        std::printf("  The results of %s differ.\n", path.m_strName.c_str());
        m_bSound = false;
    }
    if (toLimit.m_lfMedian < 1.0) {
        std::printf("  The limit of %s is none: the library is faster.\n", path.m_strName.c_str());
    }
    std::fflush(stdout);
}

bool CTable::PrintResult() const {
    std::printf("%zu of %zu Musts hold, %zu of %zu aims are reached.\n", m_tHeld, m_tMusts,
                m_tReached, m_tAims);
    return m_bSound && m_tHeld == m_tMusts;
}

void print_growth(const std::vector<HOT_PATH>& sizes, const std::vector<Rounds>& rounds) {
    const auto cost = [&](std::size_t i) { return seconds_of(rounds[i][LIBRARY]).m_lfMedian; };
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        std::printf("%-22s %-24s %10.1f ms %8.2f x %10.1f MiB over start\n",
                    sizes[i].m_strName.c_str(), sizes[i].m_strInput.c_str(), cost(i) * 1e3,
                    cost(i) / cost(0),
                    median_of(rounds[i][LIBRARY], &FIGURES::m_uOverStart) / kMiB);
    }
    std::fflush(stdout);
}

}  // namespace tessel::bench
