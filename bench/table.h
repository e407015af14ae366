#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "bench/paths.h"

namespace tessel::bench {

enum CONTENDERS : std::size_t { LIBRARY, PLAIN, LIMIT, kContenders };
inline constexpr std::array<const char*, kContenders> kContenderNames{"library", "plain", "limit"};

/// The rounds of one path, one list per contender.
using Rounds = std::array<std::vector<FIGURES>, kContenders>;

/// Median, lowest and highest.
struct SPREAD {
    double m_lfMedian = 0.0;
    double m_lfLow = 0.0;
    double m_lfHigh = 0.0;
};
SPREAD spread_of(std::vector<double> values);
SPREAD seconds_of(const std::vector<FIGURES>& rounds);

/// Prints one row after the other and counts which Musts hold.
class CTable {
public:
    /// Instruction counts by path, shown in a column; may be empty.
    explicit CTable(std::map<std::string, std::uint64_t> instructions);

    void PrintHeading() const;
    void PrintPath(const HOT_PATH& path, const Rounds& rounds);
    /// The closing line. True when every Must holds.
    bool PrintResult() const;

private:
    std::string Judged(double value, double must, double aim);

    std::map<std::string, std::uint64_t> m_mapInstructions;
    std::size_t m_tMusts = 0;
    std::size_t m_tHeld = 0;
    std::size_t m_tAims = 0;
    std::size_t m_tReached = 0;
    bool m_bSound = true;  // equal results and limits that are limits
};

/// How the library's cost grows along sizes of one path.
void print_growth(const std::vector<HOT_PATH>& sizes, const std::vector<Rounds>& rounds);

}  // namespace tessel::bench
