// Numbers written as texts, against snprintf in the "C" locale. The number comes by its bits or as
// a text.

#include <cstdio>
#include <cstdlib>

#include "tessel/base/number.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {

void run(CBytes input) {
    constexpr int kMostDecimals = 20;
    const auto decimals = static_cast<int>(input.Choice(kMostDecimals + 1));
    const bool byBits = input.Flag();
    const double value =
        byBits ? input.Double() : std::strtod(std::string(input.Text()).c_str(), nullptr);

    char written[kMaxNumberText];
    char printed[512];
    std::string_view text(
        written, static_cast<std::size_t>(write_fixed(written, value, decimals) - written));
    std::snprintf(printed, sizeof printed, "%.*f", decimals, value);
    check(text == printed, "fixed numbers are written as by %.Nf");

    text = {written, static_cast<std::size_t>(write_general(written, value) - written)};
    std::snprintf(printed, sizeof printed, "%g", value);
    check(text == printed, "general numbers are written as by %g");

    const std::string shortest = shortest_text(value);
    check(same(std::strtod(shortest.c_str(), nullptr), value), "shortest texts read back");
    std::snprintf(printed, sizeof printed, "%.17g", value);
    check(shortest.size() <= std::string_view(printed).size(), "shortest texts are short");
}

}  // namespace tessel::fuzz
