// In come the candidates, batch by batch; out come the result files. The library's result map is
// the only store: it writes the files of the batches, reads them back and writes the final one.

#include "results.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <utility>

namespace closed_search {

using tessel::CCondition;
using tessel::CPepRes;
using tessel::CPSMRes;
using tessel::CSpectrum;

namespace {

const std::string kExtension = "res";

// The library keeps paths with backslashes and takes them to the host's form itself; only a path
// that the program uses on its own, or shows, needs this.
std::filesystem::path host_path(std::string path) {
    std::replace(path.begin(), path.end(), '\\',
                 static_cast<char>(std::filesystem::path::preferred_separator));
    return std::filesystem::path(path).lexically_normal();
}

std::string output_path(const CCondition& condition, const std::string& ending) {
    return condition.m_strOutputPath + condition.m_strOutputName + '.' + ending;
}

bool has_score_of_first(const CPSMRes& psm, const CPepRes& pep) {
    return pep.m_lfScore == psm.m_vPeps.front().m_lfScore;
}

}  // namespace

void write_batch_result(CCondition& condition, std::vector<CCandidates> candidates) {
    // Spectra that share a title share an entry, with the head of the first: just what reading
    // makes of them when they are in different batches.
    condition.m_mapPSMRes.clear();
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const CSpectrum& spectrum = condition.m_vSpectra[i];
        const auto entry = condition.m_mapPSMRes.try_emplace(
            spectrum.m_strTitle,
            CPSMRes{spectrum.m_strTitle, spectrum.m_nCharge, spectrum.m_lfMH, {}});
        std::vector<CPepRes>& peps = entry.first->second.m_vPeps;
        for (CPepRes& pep : candidates[i].m_vPeps) {
            if (peps.size() < condition.m_tTempPepNum) peps.push_back(std::move(pep));
        }
    }
    // "pepnum" limits the final result only.
    const std::size_t ranks = std::exchange(condition.m_tPepNum, condition.m_tTempPepNum);
    condition.WriteFinalResult(
        output_path(condition, std::to_string(condition.m_tBatchNo) + '.' + kExtension), 0.0);
    condition.m_tPepNum = ranks;
}

FINAL_RESULT write_final_result(CCondition& condition) {
    const std::string merged = output_path(condition, kExtension);
    //! [results]
    condition.MergeSubRes(kExtension);
    // The merged file holds the heads of all batches; those of the last one are no better.
    condition.m_vSpectra.clear();
    condition.InitialResMap();
    condition.LoadResult({merged}, condition.m_tTempPepNum, std::numeric_limits<double>::max());
    condition.RemoveRedundancy();
    set_q_values(condition);

    const std::string path = output_path(condition, "final.txt");
    condition.WriteFinalResult(path, 0.0);
    //! [results]
    std::error_code ignored;
    if (condition.m_bDelTmp) std::filesystem::remove(host_path(merged), ignored);

    FINAL_RESULT result;
    result.m_strPath = host_path(path).string();
    for (const auto& [title, psm] : condition.m_mapPSMRes) {
        if (psm.m_vPeps.empty()) continue;
        const CPepRes& first = psm.m_vPeps.front();
        if (first.m_bDecoy) result.m_bDecoys = true;
        if (!first.m_bDecoy && first.m_lfQValue <= condition.m_lfPsmFdr) ++result.m_tAccepted;
    }
    return result;
}

void set_q_values(CCondition& condition) {
    struct COUNTS {
        std::size_t m_tTargets = 0;
        std::size_t m_tDecoys = 0;
        double m_lfQValue = 1.0;
    };
    std::map<double, COUNTS, std::greater<>> byScore;
    for (const auto& [title, psm] : condition.m_mapPSMRes) {
        if (psm.m_vPeps.empty()) continue;
        COUNTS& counts = byScore[psm.m_vPeps.front().m_lfScore];
        ++(psm.m_vPeps.front().m_bDecoy ? counts.m_tDecoys : counts.m_tTargets);
    }
    COUNTS above;
    for (auto& [score, counts] : byScore) {
        above.m_tTargets += counts.m_tTargets;
        above.m_tDecoys += counts.m_tDecoys;
        if (above.m_tTargets > 0)
            counts.m_lfQValue =
                static_cast<double>(above.m_tDecoys) / static_cast<double>(above.m_tTargets);
    }
    double smallest = 1.0;
    for (auto counts = byScore.rbegin(); counts != byScore.rend(); ++counts) {
        smallest = std::min(smallest, counts->second.m_lfQValue);
        counts->second.m_lfQValue = smallest;
    }
    for (auto& [title, psm] : condition.m_mapPSMRes) {
        for (CPepRes& pep : psm.m_vPeps) {
            if (has_score_of_first(psm, pep)) pep.m_lfQValue = byScore[pep.m_lfScore].m_lfQValue;
        }
    }
}

}  // namespace closed_search
