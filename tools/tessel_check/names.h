#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessel::check {

/// Of the candidates, the ones that a slip of the finger turns into the name: those with the fewest
/// changed, missing and added characters, letter case aside, if these are not more than a third of
/// the name. At most three, in the order of the candidates.
std::vector<std::string> nearest(std::string_view name, const std::vector<std::string>& candidates);

/// `Did you mean "a" or "b"?`, or `otherwise` when no candidate is near.
std::string did_you_mean(std::string_view name, const std::vector<std::string>& candidates,
                         const std::string& otherwise);

/// Without the blanks at both ends.
std::string_view trimmed(std::string_view text);

std::string in_quotes(std::string_view text);

}  // namespace tessel::check
