// A user of the installed library, started in the folder of the default tables: its settings, a
// message, the tables, and nothing that must not be there.

#include <tessel/tessel.h>

int main() {
    tessel::CCondition condition;
    condition.Message(condition.m_cEnzyme.InfoString(), tessel::LOG_INFO);
    condition.m_strAAPath = "aa.ini";
    condition.m_strModPath = "modification.ini";
    condition.ReadElementInfo();
    condition.ReadAA();
    condition.ReadMod();
    const double glycine = condition.m_cAlphaBet.m_lfMass['G' - 'A'];
    const bool tables = glycine > 57.0214 && glycine < 57.0215 && condition.m_vMods.size() > 100;
    return tables && condition.m_cEnzyme.IsValidCleavage("MKPAR", 2) ? 0 : 1;
}
