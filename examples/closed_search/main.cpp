// A small closed search: every peptide of the database, with the modifications that the parameter
// file selects, against every spectrum of its mass. It is an example of how an engine uses the
// library; read it from here, then search.cpp, and the files that those call.
//
//     closed_search PARAMETERS
//
// Start it in a folder that holds element.ini and quant.ini. Each spectrum file gives one final
// result file, output path + output name + ".final.txt"; with several spectrum files, "_1", "_2",
// ... follow the output name. A candidate's score is the hyperscore (larger is better), its final
// score the negative of it (smaller is better).

#include <cstdint>
#include <exception>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "progress.h"
#include "results.h"
#include "search.h"
#include "tessel/tessel.h"

namespace closed_search {
namespace {

struct SUMMARY {
    std::size_t m_tSpectra = 0;
    std::uint64_t m_uScored = 0;
    FINAL_RESULT m_cResult;
};

// Batches of spectra are the outer loop, because each of them has a result file.
SUMMARY search_file(tessel::CCondition& condition) {
    SUMMARY summary;
    CProgress progress;
    CSearch search(condition, progress);
    //! [batches]
    bool more = true;
    while (more) {
        const std::size_t done = summary.m_tSpectra;
        more = condition.LoadSpectra(false);
        summary.m_tSpectra += condition.m_vSpectra.size();
        progress.Begin(done, condition.m_tTotalSpec);
        std::vector<CCandidates> candidates = search.SearchBatch();
        progress.End();
        write_batch_result(condition, std::move(candidates));
    }
    //! [batches]
    summary.m_uScored = search.m_uScored;
    summary.m_cResult = write_final_result(condition);
    return summary;
}

std::vector<SUMMARY> search_files(tessel::CCondition& condition) {
    std::vector<SUMMARY> summaries;
    const std::string name = condition.m_strOutputName;
    const std::vector<std::string>& files = condition.m_vMSMSFiles;
    for (std::size_t i = 0; i < files.size(); ++i) {
        condition.m_strMSMSPath = files[i];
        if (files.size() > 1) condition.m_strOutputName = name + '_' + std::to_string(i + 1);
        condition.Message("Search " + files[i], tessel::LOG_INFO);
        summaries.push_back(search_file(condition));
    }
    condition.m_strOutputName = name;
    return summaries;
}

void report(const tessel::CCondition& condition, const std::vector<SUMMARY>& summaries) {
    std::ostringstream accepted;
    accepted << "matches at " << condition.m_lfPsmFdr * 100.0 << " % FDR";
    std::cout << std::setw(10) << "spectra" << std::setw(18) << "peptides scored" << std::setw(24)
              << accepted.str() << '\n';
    bool decoys = false;
    for (const SUMMARY& summary : summaries) {
        std::cout << std::setw(10) << summary.m_tSpectra << std::setw(18) << summary.m_uScored
                  << std::setw(24) << summary.m_cResult.m_tAccepted << '\n';
        decoys = decoys || summary.m_cResult.m_bDecoys;
    }
    if (!decoys) std::cout << "No decoy is among the matches, so the FDR is not estimated.\n";
    for (const SUMMARY& summary : summaries)
        std::cout << summary.m_cResult.m_strPath << '\n';
    std::cout << std::flush;
}

int run(const std::string& parameterFile) {
    //! [settings]
    // What the reader cannot do without ends the process with status 1.
    tessel::CConditionReader reader(parameterFile);
    reader.Read();
    // The condition is used where it is: its tables point into it.
    tessel::CCondition& condition = reader.m_cCondition;
    //! [settings]
    //! [initialisation]
    condition.Initialize();
    //! [initialisation]
    if (condition.m_vMSMSFiles.empty()) {
        condition.Message("No spectrum file is given.", tessel::LOG_ALERT);
        return 1;
    }
    report(condition, search_files(condition));
    return 0;
}

}  // namespace
}  // namespace closed_search

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: closed_search PARAMETERS\n"
                     "PARAMETERS is a parameter file; start in a folder that holds element.ini "
                     "and quant.ini.\n";
        return 2;
    }
    try {
        return closed_search::run(argv[1]);
    } catch (const std::exception& error) {
        // A missing protein database, or memory that is not to be had.
        std::cerr << error.what() << '\n';
        return 1;
    }
}
