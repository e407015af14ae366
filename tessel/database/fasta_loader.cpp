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

// A protein of the batch before, to be read into: its short texts keep their memory, which saves a
// tenth of the time of generating a target-decoy database. Sequences differ too much in length.
CProtein& renewed(CProtein& protein) {
    std::string().swap(protein.m_strSQ);
    return protein;
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
    reserve_batch(m_vProteins, m_tEntryNum - std::min(m_tReadNum, m_tEntryNum), maxResidues);

    std::size_t held = 0;
    bool cutOff = false;
    while (m_tReadNum < m_tEntryNum && m_tResidueNum <= maxResidues) {
        CProtein& protein =
            held < m_vProteins.size() ? renewed(m_vProteins[held]) : m_vProteins.emplace_back();
        if (!m_cParser.ReadOnePrteinEntry(protein, m_ifsFasta)) {
            // Fewer entries than were counted: the file has changed, or cannot be read.
            cutOff = true;
            break;
        }
        ++held;
        ++m_tReadNum;
        m_tResidueNum += protein.m_strSQ.size();
    }
    m_vProteins.resize(held);
    ++m_tBatchNum;
    m_bEnd = cutOff || m_tReadNum >= m_tEntryNum;
    return !m_bEnd;
}

}  // namespace tessel
