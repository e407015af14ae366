#include "tests/fuzz/support/chemistry.h"

#include <algorithm>
#include <cmath>

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

// Masses are a hundredth of the usual ones: mass lookups are as much shorter, and runs faster.
constexpr std::string_view kElements =
    "E1=H|0.01007825,0.02014102,|0.9999,0.0001,|\nE2=C|0.12,0.13003355,|0.99,0.01,|\n"
    "E3=N|0.14003074,0.15000109,|0.99,0.01,|\nE4=O|0.15994915,|1.0,|\n"
    "E5=13C|0.13003355,|1.0,|\nE6=15N|0.15000109,|1.0,|\n";
constexpr std::string_view kResidues =
    "R1=A|C(3)H(5)N(1)O(1)|\nR2=K|C(6)H(12)N(2)O(1)|\nR3=M|C(5)H(9)N(1)O(1)|\n"
    "R4=N|C(4)H(6)N(2)O(2)|\nR5=S|C(3)H(5)N(1)O(2)|\n";
constexpr std::string_view kMods =
    "name1=Oxidation[M]\t1\nOxidation[M]=M NORMAL 0.159949 0.16 0 O(1)\n"
    "name2=Acetyl[ProteinN-term]\t0\nAcetyl[ProteinN-term]=AMS PRO_N 0.42 0.42 0 C(2)H(2)O(1)\n"
    "name3=Deamidated[N]\t1\nDeamidated[N]=N NORMAL 0.00984 0.01 0 H(-1)N(-1)O(1)\n"
    "name4=Ala->Ser[A]\t2\nAla->Ser[A]=A NORMAL 0.159949 0.16 0 O(1)\n"
    "name5=Loss[C-term]\t2\nLoss[C-term]=KS PEP_C -0.18 -0.18 1 0.17 0.17 H(-2)O(-1)\n";

template <class Index, class Entries, class MassOf>
void check_lookup(const std::vector<Index>& index, const Entries& entries, MassOf massOf) {
    if (index.empty()) return;
    const double lightest = massOf(entries.front());
    const double offset = lightest > 0.0 ? 0.0 : std::trunc(lightest * 1000.0);
    std::vector<Index> expected;
    Index position = 0;
    for (const auto& entry : entries) {
        const double bucket = std::trunc(massOf(entry) * 1000.0) - offset;
        if (std::isfinite(bucket)) {
            const auto size = static_cast<std::size_t>(std::max(bucket, 0.0)) + 1;
            expected.resize(std::max(expected.size(), size), position);
        }
        ++position;
    }
    check(index == expected, "mass lookups lead to the first of their bucket");
}

bool holds(const std::vector<CMod>& mods, const CMod* mod) {
    return !mods.empty() && mod >= mods.data() && mod < mods.data() + mods.size();
}

void check_selection(const CCondition& condition) {
    for (const CMod* mod : condition.m_vSelMods) {
        check(holds(condition.m_vMods, mod) || holds(condition.m_vDeltaMods, mod),
              "selected modifications lie in the tables");
        check(std::count(condition.m_vSelMods.begin(), condition.m_vSelMods.end(), mod) == 1,
              "modifications are selected once");
    }
    for (std::size_t slot = 0; slot < condition.m_vSelModMap.size(); ++slot) {
        for (const CMod* mod : condition.m_vSelModMap[slot]) {
            const bool bySite = mod->m_strSites.find(static_cast<char>(slot)) != std::string::npos;
            check(mod->m_eType == NORMAL ? bySite : static_cast<std::size_t>(mod->m_eType) == slot,
                  "slots hold the modifications of their site or type");
        }
    }
}

}  // namespace

void write_chemistry() {
    static const bool written = [] {
        write_scratch("element.ini", kElements);
        write_scratch("aa.ini", kResidues);
        write_scratch("modification.ini", kMods);
        return true;
    }();
    check(written, "tables are written once");
}

void use_chemistry(CCondition& condition) {
    condition.m_strAAPath = scratch_path("aa.ini");
    condition.m_strModPath = scratch_path("modification.ini");
    condition.m_strOutputPath = scratch_path("");
    condition.m_strOutputName = "run";
    condition.m_lfMaxDelta = 0.02;
}

void check_mod_tables(const CCondition& condition) {
    check(std::is_sorted(condition.m_vMods.begin(), condition.m_vMods.end(), CMod::Mass_Less),
          "modifications ascend");
    check_lookup(condition.m_vModMassIndex, condition.m_vMods,
                 [](const CMod& mod) { return mod.m_lfMass; });
    for (const auto& [name, mod] : condition.m_mapMods)
        check(mod == nullptr || mod->m_strName == name, "names lead to their modification");
    check(std::is_sorted(condition.m_vExtendedAA.begin(), condition.m_vExtendedAA.end(),
                         ExtendedAA::EAA_Mass_Less),
          "the extended alphabet ascends");
    check_lookup(condition.m_vEAAMassIndex, condition.m_vExtendedAA,
                 [](const ExtendedAA& letter) { return letter.m_lfMass; });
    check_selection(condition);
}

}  // namespace tessel::fuzz
