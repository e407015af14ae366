// The database that is searched: the user's own or the target-decoy database made from it.
// m_strFastaPath comes in, m_strInputFastaPath is settled; the condition's loader does the reading.

#include <stdexcept>

#include "tessel/condition/condition.h"
#include "tessel/condition/constants.h"
#include "tessel/database/target_decoy_file.h"
#include "tessel/platform/file.h"

namespace tessel {
namespace {

// A database that does not exist leaves an empty file where there is none.
void leave_empty_file(const std::string& target) {
    if (!path_exists(target)) open_file(target, "ab");
}

}  // namespace

void CCondition::SetFastaPath() {
    m_strInputFastaPath = m_strFastaPath;
    if (!m_bAutoRev) return;
    const std::string target = m_strInputFastaPath + _TD_FASTA;
    if (!is_fresh_target_decoy(target, m_strInputFastaPath)) {
        remove_leftovers(target);
        try {
            write_target_decoy(*this, m_strInputFastaPath, target);
        } catch (const std::runtime_error&) {
            leave_empty_file(target);
            throw;
        }
    }
    m_strInputFastaPath = target;
}

int CCondition::SetSubFasta() {
    m_strFastaPath = m_strOutputPath + m_strOutputName + ".sub.fasta";
    m_bUseSubFasta = true;
    SetFastaPath();
    return 1;
}

}  // namespace tessel
