#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "bench/measure.h"

namespace tessel::bench {

/// A figure that must not be exceeded; 0: there is none.
struct MUSTS {
    double m_lfLimit = 0.0;          ///< library / limit
    double m_lfLimitAim = 0.0;       ///< the same, what is aimed at
    double m_lfPlain = 0.0;          ///< library / plain
    double m_lfOverStart = 0.0;      ///< peak memory over start, MiB
    double m_lfPeakPerRecord = 0.0;  ///< peak memory / bytes of the records
};

/// One path through the library, done three ways. "plain" does the steps of the operation one by
/// one with the means of the standard library and must give the same result; "limit" does the least
/// that the records allow.
struct HOT_PATH {
    std::string m_strName;
    std::string m_strInput;
    std::size_t m_tTurns = 1;  ///< rounds for each that is asked for: short paths need more
    MUSTS m_cMusts;
    Contender m_fnLibrary;
    Contender m_fnPlain;
    Contender m_fnLimit;
};

HOT_PATH mgf_path(std::size_t spectra);
HOT_PATH zb2_path(std::size_t entries);
HOT_PATH target_decoy_path(std::size_t bytes);
HOT_PATH mod_list_path(std::size_t definitions);
HOT_PATH mod_combinations_path(std::size_t extra);
HOT_PATH load_results_path(std::size_t spectra);
HOT_PATH write_results_path(std::size_t spectra);
HOT_PATH merge_files_path(std::size_t spectra);
// Without another contender: to be profiled and to have their instructions counted.
HOT_PATH initialize_path();
HOT_PATH batches_path(std::size_t spectra, std::size_t batch);

}  // namespace tessel::bench
