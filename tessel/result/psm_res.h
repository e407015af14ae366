#pragma once

#include <string>
#include <vector>

#include "tessel/result/pep_res.h"

namespace tessel {

/// One spectrum with its candidate peptides.
class CPSMRes {
public:
    std::string m_strTitle;        ///< spectrum title
    int m_nCharge = 0;             ///< precursor charge
    double m_lfMH = 0.0;           ///< precursor mass as the singly protonated ion, Da
    std::vector<CPepRes> m_vPeps;  ///< candidates, in rank order once sorted
};

}  // namespace tessel
