#pragma once

#include <string>

namespace tessel {

/// One entry of a protein database.
class CProtein {
public:
    std::string m_strAC;  ///< accession: the header up to its first blank or tab, without ">"
    std::string m_strDE;  ///< description: the rest of the header
    std::string m_strSQ;  ///< sequence, without line breaks and blanks
};

}  // namespace tessel
