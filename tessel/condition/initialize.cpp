// The start-up of a search. Settings come in; every table that the search reads is filled. The
// order matters: labels feed the modification selection, elements feed residues and modifications.

#include "tessel/condition/condition.h"

namespace tessel {

int CCondition::Initialize() {
    ParseQuantMethod();
    ReadElementInfo();
    ReadAA();
    ReadMod();
    CreateModList();
    // Only the beginning counts: mixed activation such as "HCD-ETD" is searched by b and y.
    if (m_strActivationType.starts_with("ETD") || m_strActivationType.starts_with("ECD")) {
        InitETD();
    } else {
        InitHCD();
    }
    SetFastaPath();
    return 1;
}

}  // namespace tessel
