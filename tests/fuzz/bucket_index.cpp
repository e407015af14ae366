// Mass lookups against a linear scan. Every mass takes three bytes: a kind, and thousandths of a
// dalton.

#include "tessel/base/bucket_index.h"

#include <algorithm>

#include "tessel/base/mass_order.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

double mass_of(CBytes& input) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const std::size_t kind = input.Choice(16);
    const double thousandths = input.Byte() + 16.0 * input.Byte();
    switch (kind) {
        case 8:
            return std::numeric_limits<double>::quiet_NaN();
        case 9:
            return kInfinity;
        case 10:
            return -kInfinity;
        case 11:
            return thousandths * 1e300;
        case 12:
            return thousandths * -1e12;
        case 13:
            return 50000.0 + thousandths;
        case 14:
            return thousandths / 7e6;
        default:
            return (kind % 2 == 0 ? 1e-3 : -1e-3) * thousandths;
    }
}

// Thousandths of a dalton from the lightest or from 0; a double is wide enough for any mass.
double bucket_of(double mass, double lightest) {
    const double offset = lightest > 0.0 ? 0.0 : std::trunc(lightest * 1000.0);
    return std::trunc(mass * 1000.0) - offset;
}

}  // namespace

void run(CBytes input) {
    std::vector<double> masses;
    while (!input.Text().empty())
        masses.push_back(mass_of(input));
    std::stable_sort(masses.begin(), masses.end(), mass_less);

    std::vector<std::uint32_t> table{1, 2, 3};
    const bool built = fill_mass_buckets(table, masses, [](double mass) { return mass; });
    const auto firstEndless = std::find_if(masses.begin(), masses.end(),
                                           [](double mass) { return !std::isfinite(mass); });
    check(std::none_of(firstEndless, masses.end(), [](double m) { return std::isfinite(m); }),
          "masses that are not finite sort last");
    check(std::is_sorted(masses.begin(), firstEndless), "masses ascend");
    masses.erase(firstEndless, masses.end());
    if (masses.empty()) return check(built && table.empty(), "nothing has an empty table");

    const double last = bucket_of(masses.back(), masses.front());
    check(built == (last < static_cast<double>(kMaxBuckets)), "only large tables are refused");
    check(table.size() == (built ? static_cast<std::size_t>(std::max(last, 0.0)) + 1 : 0),
          "tables end at the last bucket");
    std::size_t position = 0;
    for (std::size_t bucket = 0; bucket < table.size(); ++bucket) {
        while (bucket_of(masses[position], masses.front()) < static_cast<double>(bucket))
            ++position;
        check(table[bucket] == position, "entries are the first of their bucket");
    }
}

}  // namespace tessel::fuzz
