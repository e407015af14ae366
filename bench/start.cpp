// What every run of the engine does beside the hot paths: the start, and batches of spectra.

#include <filesystem>
#include <string>

#include "bench/generate.h"
#include "bench/paths.h"
#include "tessel/tessel.h"

namespace tessel::bench {

HOT_PATH initialize_path() {
    HOT_PATH path;
    path.m_strName = "initialize";
    path.m_strInput = "default tables";
    path.m_fnLibrary = [](CRound& round) {
        std::filesystem::current_path(TESSEL_DATA_FOLDER);
        CCondition condition;
        condition.m_strAAPath = "aa.ini";
        condition.m_strModPath = "modification.ini";
        condition.m_strFixMod = "Carbamidomethyl[C];";
        condition.m_strSelectMod = "Oxidation[M];Acetyl[ProteinN-term];Phospho[S];";
        condition.m_strFastaPath = "none.fasta";
        condition.m_bAutoRev = false;
        round.Run([&] { condition.Initialize(); });
    };
    return path;
}

HOT_PATH batches_path(std::size_t spectra, std::size_t batch) {
    HOT_PATH path;
    path.m_strName = "batches";
    path.m_strInput = std::to_string(spectra) + " spectra by " + std::to_string(batch);
    path.m_fnLibrary = [=](CRound& round) {
        CCondition condition;
        condition.m_strMSMSType = "MGF";
        condition.m_strMSMSPath = mgf_file(spectra);
        condition.m_nMaxSpec = batch;
        round.Run([&] {
            while (condition.LoadSpectra(false)) {
            }
        });
    };
    return path;
}

}  // namespace tessel::bench
