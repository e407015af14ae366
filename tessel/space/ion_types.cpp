// Fragment ion types: single definition lines, and the two sets that an activation method selects,
// appended to the condition's m_vIonTypes.

#include <string>
#include <utility>
#include <vector>

#include "tessel/base/word_reader.h"
#include "tessel/condition/condition.h"
#include "tessel/space/ion_type.h"

namespace tessel {
namespace {

constexpr int kMaxIonCharge = 5;

// One series at charges 1 to 5; the rest of its definition line stands behind the charge.
void append_series(std::vector<CIonType>& ions, const std::string& name, const std::string& rest) {
    for (int charge = 1; charge <= kMaxIonCharge; ++charge) {
        CIonType ion;
        ion.Init(name + ' ' + static_cast<char>('0' + charge) + ' ' + rest);
        ions.push_back(std::move(ion));
    }
}

}  // namespace

bool CIonType::Init(const std::string& definition) {
    m_strDefinition = definition;
    int nTerminal = 0;
    int flag = 0;
    CWordReader columns(m_strDefinition);  // the argument may be one of the fields below
    columns.Word(m_strName);
    columns.Read(m_nCharge);
    columns.Read(nTerminal);
    columns.Read(flag);
    columns.Read(m_lfOffset);
    m_bNTerm = nTerminal != 0;
    m_bFlag = flag != 0;
    return true;
}

// Offsets in Da, from H 1.007825035, O 15.99491463 and N 14.003074: y is H2O, c is NH3, cm1 is c
// without H, zp1 is z with H, z is y without NH2.

bool CCondition::InitHCD() {
    append_series(m_vIonTypes, "b", "1 1 0");
    append_series(m_vIonTypes, "y", "0 1 18.0105647");
    m_bETD = false;
    return true;
}

bool CCondition::InitETD() {
    append_series(m_vIonTypes, "c", "1 1 17.026549105");
    append_series(m_vIonTypes, "cm1", "1 1 16.01872407");
    append_series(m_vIonTypes, "z", "0 1 1.99184063");
    append_series(m_vIonTypes, "zp1", "0 1 2.999665665");
    append_series(m_vIonTypes, "y", "0 1 18.0105647");
    m_bETD = true;
    return true;
}

}  // namespace tessel
