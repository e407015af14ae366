// Modification tables: read, written, read back, and selected from.

#include <algorithm>
#include <cmath>

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/chemistry.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

// Written with six decimals.
bool close(double written, double read) {
    return same(written, read) || std::fabs(written - read) <= 1e-6 + std::fabs(written) * 1e-15;
}

void check_written(CCondition& condition) {
    const std::vector<CMod> mods = condition.m_vMods;
    // Words are found by the blanks between them, so an empty one does not read back.
    const bool complete = std::none_of(mods.begin(), mods.end(),
                                       [](const CMod& mod) { return mod.m_strSites.empty(); });
    condition.WriteMod(0);
    condition.m_strModPath = condition.GetTmpModPath(0);
    condition.ReadMod();
    check(condition.m_vMods.size() == mods.size(), "every modification reads back");
    for (std::size_t i = 0; complete && i < mods.size(); ++i) {
        const CMod& read = condition.m_vMods[i];
        check(read.m_strName == mods[i].m_strName && read.m_strSites == mods[i].m_strSites &&
                  read.m_strComposition == mods[i].m_strComposition &&
                  read.m_eType == mods[i].m_eType,
              "texts read back");
        check(close(mods[i].m_lfMass, read.m_lfMass), "masses read back");
        check(std::equal(mods[i].m_vLossMass.begin(), mods[i].m_vLossMass.end(),
                         read.m_vLossMass.begin(), read.m_vLossMass.end(), close),
              "losses read back");
        check(mods[i].m_nFlag < 0 || mods[i].m_nFlag > 99 || read.m_nFlag == mods[i].m_nFlag,
              "flags read back");
    }
}

// Long lookups take long to check, and their lengths change little.
bool has_long_lookup(const CCondition& condition) {
    constexpr double kFarMass = 50.0;
    constexpr double kRefusedMass = 1e5;
    return std::any_of(condition.m_vMods.begin(), condition.m_vMods.end(), [](const CMod& mod) {
        return std::fabs(mod.m_lfMass) > kFarMass && std::fabs(mod.m_lfMass) < kRefusedMass;
    });
}

}  // namespace

void run(CBytes input) {
    write_chemistry();
    const std::uint8_t fixed = input.Byte();
    const std::uint8_t selected = input.Byte();
    write_scratch("table.ini", input.Text());

    CCondition condition;
    use_chemistry(condition);
    condition.m_strModPath = scratch_path("table.ini");
    condition.ReadElementInfo();
    condition.ReadAA();
    condition.ReadMod();
    for (std::size_t i = 0; i < condition.m_vMods.size() && i < 8; ++i) {
        const std::string name = condition.m_vMods[i].m_strName + ';';
        if ((fixed >> i & 1) != 0) condition.m_strFixMod += name;
        if ((selected >> i & 1) != 0) condition.m_strSelectMod += name;
    }
    check_written(condition);
    if (has_long_lookup(condition)) return;
    condition.CreateModList();
    check_mod_tables(condition);
    check_scratch_files("1.mod aa.ini element.ini modification.ini table.ini");
}

}  // namespace tessel::fuzz
