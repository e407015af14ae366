#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace tessel {

/// Visits the groups of an elemental composition, such as "C(2)H(-3)", in order:
/// visit(symbol, count text). These are the first two texts of a piece that "(" divides, of which
/// empty ones do not count; a piece that has only one is skipped. Text behind the last ")" is a
/// piece of its own.
template <class Visit>
void visit_composition(std::string_view composition, Visit visit) {
    while (!composition.empty()) {
        const std::size_t close = composition.find(')');
        const std::string_view piece = composition.substr(0, close);
        const std::size_t begin = std::min(piece.find_first_not_of('('), piece.size());
        const std::size_t open = piece.find('(', begin);
        const std::size_t countBegin = piece.find_first_not_of('(', open);
        if (open != std::string_view::npos && countBegin != std::string_view::npos) {
            const std::size_t countEnd = std::min(piece.find('(', countBegin), piece.size());
            visit(piece.substr(begin, open - begin),
                  piece.substr(countBegin, countEnd - countBegin));
        }
        if (close == std::string_view::npos) return;
        composition.remove_prefix(close + 1);
    }
}

using ElementMasses = std::map<std::string, double>;
/// Element symbol to the symbol that is counted in its place.
using Replacements = std::map<std::string, std::string>;

/// A composition with its replacements made.
struct WEIGHED {
    std::string m_strComposition;    ///< the groups, count texts as they were
    double m_lfMass = 0.0;           ///< Da
    bool m_bReplaced = false;        ///< a symbol was replaced, be it by itself
    bool m_bReplacedLeaves = false;  ///< one with a negative count was
};

/// Sums up a composition in the order of its groups. An unknown element is added to `masses` with
/// mass 0. Null replacements are none.
WEIGHED weigh(std::string_view composition, ElementMasses& masses,
              const Replacements* replacements = nullptr);

}  // namespace tessel
