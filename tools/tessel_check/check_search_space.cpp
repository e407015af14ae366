// The tables and the selection come in; reported is how many combinations of modifications and mass
// shifts the search will hold in memory, before it tries.

#include "tessel/base/message_text.h"
#include "tessel/platform/memory.h"
#include "tessel/space/combination_count.h"
#include "tools/tessel_check/checks.h"

namespace tessel::check {
namespace {

std::string size_text(std::uint64_t bytes) {
    constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;
    return bytes < kMebibyte ? joined_text(bytes, " bytes")
                             : joined_text(bytes / kMebibyte, " MiB");
}

}  // namespace

void check_search_space(const CParameterFile& file, const CCondition& condition, CReport& report) {
    const PLACE place = file.PlaceOf(*CKnownKey("selectmod"));
    report.Note("mass-shifts", file.PlaceOf(*CKnownKey("maxdelta")),
                joined_text(condition.m_vDeltaMods.size(), " mass shifts are made"));

    std::vector<const CMod*> selected = condition.m_vSelMods;
    const COMBINATION_COUNT now = count_combinations(selected, condition.m_vMods);
    CMod oneMore;
    selected.push_back(&oneMore);
    const COMBINATION_COUNT then = count_combinations(selected, condition.m_vMods);
    const std::string figures =
        joined_text(now.m_uNumber, " combinations of ", condition.m_vSelMods.size(),
                    " selected modifications with the table take ", size_text(now.m_uBytes),
                    "; with one more selected they would take ", size_text(then.m_uBytes));
    const std::string advice =
        "Select fewer modifications or use a shorter table; \"maxmod\" does not bound this.";
    if (now.m_uBytes > available_memory()) {
        report.Error("too-many-combinations", place,
                     figures + "; that memory is not here, the run ends", advice);
    } else if (now.m_uBytes > kLargeSize) {
        report.Warning("many-combinations", place, figures, advice);
    } else {
        report.Note("combinations", place, figures);
    }
}

}  // namespace tessel::check
