// Proteins of the searched database, batch by batch. The database's path and the limit of residues
// come from the condition; the batch and its counters are filled.

#include "tessel/database/fasta_loader.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"

namespace tessel {
namespace {

// Room for the proteins that a batch can hold if none of them is empty. Memory that cannot be had
// in one piece is no fault: the batch may turn out small.
void reserve_batch(std::vector<CProtein>& proteins, std::size_t remaining, std::size_t residues) {
    const std::size_t wanted = residues < remaining ? residues + 1 : remaining;
    try {
        proteins.reserve(wanted);
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
}

}  // namespace

CFastaLoader::CFastaLoader(const CCondition* condition) : m_pCondition(condition) {
}

void CFastaLoader::Reset() {
    if (m_ifsFasta.is_open()) m_ifsFasta.close();
    m_ifsFasta.clear();
    m_vProteins.clear();
    m_tEntryNum = 0;
    m_tReadNum = 0;
    m_tBatchStart = 0;
    m_tBatchNum = 0;
    m_bEnd = false;
}

bool CFastaLoader::ReadNextBatch() {
    if (!m_ifsFasta.is_open()) {
        const std::string& path = m_pCondition->m_strInputFastaPath;
        if (!open_stream(m_ifsFasta, path)) {
            m_ifsFasta.clear();
            throw std::runtime_error("Database " + path + " not exists.");
        }
        m_tEntryNum = m_cParser.GetEntryNum(m_ifsFasta);
    }
    const std::size_t maxResidues = m_pCondition->m_tMaxProLen;
    m_tResidueNum = 0;
    m_tBatchStart = m_tReadNum;
    m_vProteins.clear();
    reserve_batch(m_vProteins, m_tEntryNum - std::min(m_tReadNum, m_tEntryNum), maxResidues);

    bool cutOff = false;
    while (m_tReadNum < m_tEntryNum && m_tResidueNum <= maxResidues) {
        CProtein& protein = m_vProteins.emplace_back();
        if (!m_cParser.ReadOnePrteinEntry(protein, m_ifsFasta)) {
            // Fewer entries than were counted: the file has changed, or cannot be read.
            m_vProteins.pop_back();
            cutOff = true;
            break;
        }
        ++m_tReadNum;
        m_tResidueNum += protein.m_strSQ.size();
    }
    ++m_tBatchNum;
    m_bEnd = cutOff || m_tReadNum >= m_tEntryNum;
    return !m_bEnd;
}

}  // namespace tessel
