// Spectrum titles: a title comes in, its stem, its scan number or both are filled.

#include <string_view>

#include "tessel/base/text.h"
#include "tessel/spectra/spectrum.h"

namespace tessel {
namespace {

constexpr std::size_t kFullTitle = 6;  // pieces of stem.scan.scan.charge.index.dta

std::vector<std::string_view> pieces_of(const std::string& title) {
    std::vector<std::string_view> pieces;
    for_each_field(title, '.', [&pieces](std::string_view piece) { pieces.push_back(piece); });
    return pieces;
}

// The front of the title without its dots: all but the last `tail` pieces of a full title, the
// first two of a shorter one.
std::string joined_front(const std::string& title, std::size_t tail) {
    const std::vector<std::string_view> pieces = pieces_of(title);
    const std::size_t shortFront = pieces.size() < 2 ? 1 : 2;
    const std::size_t front = pieces.size() < kFullTitle ? shortFront : pieces.size() - tail;
    std::string joined;
    for (std::size_t i = 0; i < front; ++i)
        joined += pieces[i];
    return joined;
}

}  // namespace

// `out` may be the title itself, so it is assigned last.

void _get_title(const std::string& title, std::string& out) {
    out = joined_front(title, 5);
}

void _get_scanno(const std::string& title, std::string& out) {
    const std::vector<std::string_view> pieces = pieces_of(title);
    const std::size_t second = pieces.size() < 2 ? 0 : 1;
    const std::size_t scan = pieces.size() < kFullTitle ? second : pieces.size() - 4;
    out = std::string(pieces[scan]);
}

void _get_title_scanno(const std::string& title, std::string& out) {
    out = joined_front(title, 4);
}

}  // namespace tessel
