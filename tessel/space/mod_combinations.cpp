// Combinations of modifications and their order.

#include "tessel/base/bucket_index.h"
#include "tessel/space/mod_comb.h"

namespace tessel {

bool CModCombInfo::Mass_Less(const CModCombInfo& a, const CModCombInfo& b) {
    return mass_less(a.m_lfMass, b.m_lfMass);
}

}  // namespace tessel
