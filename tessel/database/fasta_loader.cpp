// Proteins of the searched database, batch by batch.

#include "tessel/database/fasta_loader.h"

namespace tessel {

CFastaLoader::CFastaLoader(const CCondition* condition) : m_pCondition(condition) {
}

}  // namespace tessel
