// The enzyme: one definition line comes in, questions about cleavage sites are answered.

#include "tessel/space/enzyme.h"

#include <iostream>
#include <locale>
#include <utility>

#include "tessel/base/end_process.h"

namespace tessel {
namespace {

bool holds(const std::string& residues, char residue) {
    return residues.find(residue) != std::string::npos;
}

}  // namespace

bool CEnzyme::Init(const std::string& definition) {
    std::istringstream words(definition);
    CEnzyme fresh;
    fresh.m_strInfo = definition;  // before anything is cleared: it may be a part of this object
    *this = std::move(fresh);
    words.imbue(std::locale::classic());
    words >> m_strName;
    while (_Init(words)) {
    }
    return true;
}

bool CEnzyme::_Init(std::istringstream& rules) {
    std::string sites;
    std::string restriction;
    std::string side;
    rules.imbue(std::locale::classic());  // other locales know other blanks
    if (!(rules >> sites >> restriction >> side)) return false;
    if (side == "C") {
        m_strCSites = sites;
        m_strCRestrict = restriction;
        m_bCTerm = true;
    } else if (side == "N") {
        m_strNSites = sites;
        m_strNRestrict = restriction;
        m_bNTerm = true;
    } else {
        std::cerr << "Invalid enzyme format: " + m_strInfo + '\n' << std::flush;
        end_process(1);
    }
    return true;
}

bool CEnzyme::IsValidCleavage(const std::string& protein, const std::size_t& position) const {
    if (position == 0 || position == protein.size()) return true;
    if (position > protein.size()) return false;
    if (position == 1 && protein.front() == 'M') return true;
    const bool before = m_bNTerm && holds(m_strNSites, protein[position]);
    if (!m_bCTerm || !holds(m_strCSites, protein[position - 1])) return before;
    return before || !holds(m_strCRestrict, protein[position]);
}

bool CEnzyme::IsValidPosition(const std::string& protein, const std::size_t& position,
                              const std::size_t& begin) const {
    if (position <= begin || position == protein.size()) return true;
    if (position > protein.size()) return false;
    if (m_bCTerm && holds(m_strCSites, protein[position - 1])) return true;
    return m_bNTerm && holds(m_strNSites, protein[position]);
}

}  // namespace tessel
