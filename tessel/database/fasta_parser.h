#pragma once

#include <cstddef>
#include <fstream>
#include <string>

#include "tessel/database/protein.h"
#include "tessel/export.h"

namespace tessel {

/// Reads FASTA entries from a stream opened in binary mode. An entry starts at a line beginning
/// with ">"; text before the first is ignored. The accession ends at the first blank or tab, the
/// description is the rest without blanks and tabs at its ends. White space in sequences is
/// dropped; every other character is kept, lower case and "*" included. An entry may be empty.
class TESSEL_API CFastaParser {
public:
    /// Counts the entries of the whole stream and leaves it at the first one, or at its end when
    /// there is none. A stream that cannot be read to its end is left bad().
    std::size_t GetEntryNum(std::ifstream& stream);
    /// Replaces the three texts by the next entry's. False, and the protein empty, when there is
    /// none, or when reading it fails, which leaves the stream bad().
    bool ReadOnePrteinEntry(CProtein& protein, std::ifstream& stream);

private:
    // Kept between calls for their memory.
    std::string m_strLine;
    std::string m_strSequence;
};

}  // namespace tessel
