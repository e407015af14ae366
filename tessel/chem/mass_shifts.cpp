// The mass shifts of the open search: range and centre come in, a modification for each step of
// 0.01 Da is filled in, together with its name.

#include "tessel/chem/mass_shifts.h"

#include <algorithm>
#include <cmath>

#include "tessel/base/number.h"
#include "tessel/chem/residues.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/constants.h"
#include "tessel/platform/memory.h"

namespace tessel {
namespace {

constexpr double kShiftStep = 0.01;

// Visits the shifts from -maxDelta to maxDelta until visit(shift) is false. The rounding errors of
// the running sum are part of the shifts and of their names.
template <class Visit>
void visit_shifts(double maxDelta, Visit visit) {
    for (double shift = -maxDelta; shift <= maxDelta && visit(shift); shift += kShiftStep) {
    }
}

// Takes no more memory than the name needs, unlike a text that grows.
std::string shift_name(double mass) {
    constexpr std::ptrdiff_t kNumberLength = 15;
    char text[32 + kMaxNumberText];
    char* const number = std::copy(_BLIND_PREFIX.begin(), _BLIND_PREFIX.end(), text);
    return std::string(text, std::min(write_hundredths(number, mass), number + kNumberLength));
}

}  // namespace

std::size_t number_of_shifts(double maxDelta) {
    std::size_t number = 0;
    visit_shifts(maxDelta, [&number](double) { return ++number <= kMaxShifts; });
    return number;
}

// Each name is added while it is still in the cache.
void create_shifts(const CCondition& condition, std::vector<CMod>& shifts,
                   std::map<std::string, CMod*>& names) {
    shifts.clear();
    const double maxDelta = condition.m_lfMaxDelta;
    const std::size_t number = number_of_shifts(maxDelta);
    if (!std::isfinite(maxDelta) || number > kMaxShifts) {
        condition.Message(
            "Invalid_Max_Delta: " + shortest_text(maxDelta) + ", no mass shifts are created",
            LOG_ALERT);
        return;
    }
    CMod unnamed;
    unnamed.m_strSites = kAnyResidue;
    shifts.reserve(number);
    CFreshPages pages(shifts.data(), number * sizeof(CMod));  // saves 5 % of CreateModList()
    auto place = names.end();
    visit_shifts(maxDelta, [&](double shift) {
        pages.Reach(shifts.data() + shifts.size());
        CMod& mod = shifts.emplace_back(unnamed);
        mod.m_lfMass = condition.m_lfCenter + shift;
        mod.m_strName = shift_name(mod.m_lfMass);
        // Names move away from 0 as their numbers do, unless these gain or lose a digit.
        if (place != names.end() && mod.m_lfMass > 0.0) ++place;
        place = names.emplace_hint(place, mod.m_strName, &mod);
        place->second = &mod;
        return true;
    });
}

}  // namespace tessel
