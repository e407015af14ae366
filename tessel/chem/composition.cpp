// An elemental composition and the masses of the elements come in, the mass goes out, with the
// composition after its replacements.

#include "tessel/chem/composition.h"

#include "tessel/base/number.h"

namespace tessel {

WEIGHED weigh(std::string_view composition, ElementMasses& masses,
              const Replacements* replacements) {
    WEIGHED weighed;
    visit_composition(composition, [&](std::string_view group, std::string_view countText) {
        const int count = to_int(countText);
        std::string symbol(group);
        if (replacements != nullptr) {
            if (const auto found = replacements->find(symbol); found != replacements->end()) {
                symbol = found->second;
                weighed.m_bReplaced = true;
                weighed.m_bReplacedLeaves = weighed.m_bReplacedLeaves || count < 0;
            }
        }
        weighed.m_lfMass += masses[symbol] * count;
        weighed.m_strComposition.append(symbol).append("(").append(countText).append(")");
    });
    return weighed;
}

}  // namespace tessel
