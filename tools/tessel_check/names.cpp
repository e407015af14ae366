// A name that nothing knows comes in; the known names that may have been meant go out.

#include "tools/tessel_check/names.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "tessel/base/text.h"

namespace tessel::check {
namespace {

constexpr std::size_t kMostNames = 3;

// Levenshtein's distance, row by row; a value above `most` is returned as most + 1.
std::size_t distance(std::string_view a, std::string_view b, std::size_t most) {
    const std::size_t difference = a.size() < b.size() ? b.size() - a.size() : a.size() - b.size();
    if (difference > most) return most + 1;
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : a) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (lower(letter) == lower(b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return std::min(row.back(), most + 1);
}

}  // namespace

std::vector<std::string> nearest(std::string_view name,
                                 const std::vector<std::string>& candidates) {
    std::vector<std::string> names;
    std::size_t most = std::max<std::size_t>(name.size() / 3, 1);
    for (const std::string& candidate : candidates) {
        const std::size_t far = distance(name, candidate, most);
        if (far > most) continue;
        if (far < most) names.clear();
        most = far;
        if (names.size() < kMostNames) names.push_back(candidate);
    }
    return names;
}

std::string did_you_mean(std::string_view name, const std::vector<std::string>& candidates,
                         const std::string& otherwise) {
    const std::vector<std::string> names = nearest(name, candidates);
    if (names.empty()) return otherwise;
    std::string question = "Did you mean ";
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) question += i + 1 < names.size() ? ", " : " or ";
        question += in_quotes(names[i]);
    }
    return question + '?';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string in_quotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

}  // namespace tessel::check
