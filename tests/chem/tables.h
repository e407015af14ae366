#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tessel/condition/condition.h"
#include "tests/support/captured.h"

namespace tessel::test {

using Names = std::vector<std::string>;

inline constexpr const char* kAll = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";

inline CMod modification(const std::string& name, double mass, const std::string& sites = "K",
                         MOD_TYPE type = NORMAL) {
    CMod mod;
    mod.m_strName = name;
    mod.m_lfMass = mass;
    mod.m_strSites = sites;
    mod.m_eType = type;
    return mod;
}

/// A condition without files: the tables are set by the test.
class CTables {
public:
    explicit CTables(std::vector<CMod> mods = {}) {
        m_cCondition.m_lfMaxDelta = -1.0;
        m_cCondition.m_vMods = std::move(mods);
    }
    void Residue(char letter, double mass) {
        m_cCondition.m_cAlphaBet.m_lfMass[static_cast<std::size_t>(letter - 'A')] = mass;
    }
    /// Selects and returns what was written.
    std::string Select(const std::string& fixed, const std::string& variable) {
        m_cCondition.m_strFixMod = fixed;
        m_cCondition.m_strSelectMod = variable;
        return captured_output([this] { m_cCondition.CreateModList(); });
    }
    Names Selected() const { return NamesOf(m_cCondition.m_vSelMods); }
    Names Slot(std::size_t slot) const { return NamesOf(m_cCondition.m_vSelModMap[slot]); }
    Names Fixed() const {
        Names names;
        for (const CMod& mod : m_cCondition.m_vMods) {
            if (m_cCondition.m_setFixMods.count(&mod) != 0) names.push_back(mod.m_strName);
        }
        EXPECT_EQ(names.size(), m_cCondition.m_setFixMods.size());
        return names;
    }
    /// "K" or "K+name", in the order of the alphabet.
    Names Letters() const {
        Names names;
        for (const ExtendedAA& letter : m_cCondition.m_vExtendedAA) {
            const CMod* const mod = letter.m_pMod;
            names.push_back(letter.m_cAA + (mod == nullptr ? "" : '+' + mod->m_strName));
        }
        return names;
    }

    CCondition m_cCondition;

private:
    static Names NamesOf(const std::vector<const CMod*>& mods) {
        Names names;
        for (const CMod* mod : mods)
            names.push_back(mod->m_strName);
        return names;
    }
};

inline std::string warning(const std::string& text) {
    return "[Tessel] WARNING: " + text + '\n';
}

}  // namespace tessel::test
