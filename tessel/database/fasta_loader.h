#pragma once

#include <cstddef>
#include <fstream>
#include <vector>

#include "tessel/database/fasta_parser.h"
#include "tessel/database/protein.h"
#include "tessel/export.h"

namespace tessel {

class CCondition;

/// Reads the searched database in batches bounded by their number of residues. The condition's
/// m_cFastaLoader is the one that database preparation and the engine share.
class TESSEL_API CFastaLoader {
public:
    /// The condition supplies the database's path (m_strInputFastaPath) and the limit of residues
    /// (m_tMaxProLen); it is not owned and must outlive the loader.
    explicit CFastaLoader(const CCondition* condition);

    /// Closes the database and forgets the batch and all counters except m_tResidueNum; the next
    /// batch is the first one again.
    void Reset();

    /// Replaces the batch by the next one: proteins are added until their residues exceed the
    /// limit, so the one that crosses it belongs to the batch and a batch is never empty while
    /// proteins remain. True when entries remain behind it.
    /// Throws std::runtime_error("Database <path> not exists.") when the database cannot be opened
    /// or is a folder; the loader is unchanged then and a later call tries again. A database that
    /// ends before its counted entries sets m_bEnd and returns false, m_tReadNum below m_tEntryNum.
    bool ReadNextBatch();

    CFastaParser m_cParser;             ///< reads single entries
    std::ifstream m_ifsFasta;           ///< the open database
    std::size_t m_tEntryNum = 0;        ///< entries in the database
    std::size_t m_tResidueNum = 0;      ///< residues in the batch
    std::size_t m_tReadNum = 0;         ///< entries read so far
    std::size_t m_tBatchStart = 0;      ///< entries read before the batch
    std::vector<CProtein> m_vProteins;  ///< the batch
    bool m_bEnd = false;                ///< all entries have been read
    std::size_t m_tBatchNum = 0;        ///< batches read since the last reset
    const CCondition* m_pCondition;     ///< not owned
};

}  // namespace tessel
