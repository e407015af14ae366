#pragma once

#include <string>

#include "tessel/condition/condition.h"
#include "tests/support/temp_folder.h"

namespace tessel::test {

/// Whole numbers, so that masses are added up in the head.
inline const std::string kWholeElements =
    "E1=H|1.0,|1.0,|\n"
    "E2=C|12.0,13.0,|0.99,0.01,|\n"
    "E3=N|14.0,|1.0,|\n"
    "E4=O|16.0,|1.0,|\n"
    "E5=S|32.0,|1.0,|\n"
    "E6=13C|13.0,|1.0,|\n"
    "E7=15N|15.0,|1.0,|\n"
    "E8=2H|2.0,|1.0,|\n";

/// A condition in a working folder of its own, with the chemistry tables that a test writes there.
class CChemistry {
public:
    CChemistry() : m_cWorkingFolder(m_cFolder.Path()) { m_cCondition.m_lfMaxDelta = -1.0; }

    void Elements(const std::string& text = kWholeElements) {
        m_cFolder.Write("element.ini", text);
        m_cCondition.ReadElementInfo();
    }
    void Residues(const std::string& text) {
        m_cCondition.m_strAAPath = m_cFolder.Write("aa.ini", text);
        m_cCondition.ReadAA();
    }
    void Mods(const std::string& text) {
        m_cCondition.m_strModPath = m_cFolder.Write("modification.ini", text);
        m_cCondition.ReadMod();
    }
    void Labels(const std::string& text) { m_cFolder.Write("quant.ini", text); }

    CTempFolder m_cFolder;
    CWorkingFolder m_cWorkingFolder;
    CCondition m_cCondition;  ///< without mass shifts
};

}  // namespace tessel::test
