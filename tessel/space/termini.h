#pragma once

#include <algorithm>
#include <cstdint>

#include "tessel/chem/mod.h"

namespace tessel {

inline bool is_n_terminal(const CMod& mod) {
    return mod.m_eType == PEP_N || mod.m_eType == PRO_N;
}

inline bool is_c_terminal(const CMod& mod) {
    return mod.m_eType == PEP_C || mod.m_eType == PRO_C;
}

/// The types of the N-terminal and of the C-terminal modification of a combination, or 0: it holds
/// one of each at most.
struct TERMINI {
    std::int8_t m_nNTerm = 0;
    std::int8_t m_nCTerm = 0;

    bool Refuses(const CMod& mod) const {
        return (is_n_terminal(mod) && m_nNTerm >= 1) || (is_c_terminal(mod) && m_nCTerm >= 1);
    }
    TERMINI With(const CMod& mod) const {
        const auto type = static_cast<std::int8_t>(mod.m_eType);
        return {is_n_terminal(mod) ? std::max(m_nNTerm, type) : m_nNTerm,
                is_c_terminal(mod) ? std::max(m_nCTerm, type) : m_nCTerm};
    }
};

}  // namespace tessel
