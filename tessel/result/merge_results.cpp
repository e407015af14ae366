// Candidate lists come in sorted and leave without duplicates; the result files of all batches are
// joined into one.

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tessel/base/end_process.h"
#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tessel/result/score_key.h"

namespace tessel {
namespace {

bool same_site(const MOD_SITE& a, const MOD_SITE& b) {
    if (a.m_ucPos != b.m_ucPos) return false;
    if (a.m_pMod == nullptr || b.m_pMod == nullptr) return a.m_pMod == b.m_pMod;
    return a.m_pMod->m_strName == b.m_pMod->m_strName;
}

bool same_key(const CPepRes& a, const CPepRes& b) {
    return truncated_score(a.m_lfScore) == truncated_score(b.m_lfScore);
}

// What a duplicate adds to the candidate that stays.
void absorb(CPepRes& kept, CPepRes& duplicate) {
    kept.m_setProteins.merge(duplicate.m_setProteins);
    if (duplicate.m_bDecoy == 0) kept.m_bDecoy = 0;
    kept.m_ucAuxMax = std::max(kept.m_ucAuxMax, duplicate.m_ucAuxMax);
}

// Equal for equal candidates.
std::size_t fingerprint(const CPepRes& pep) {
    constexpr std::size_t kFactor = 1000003;
    const std::hash<std::string> hash;
    std::size_t number = hash(pep.m_strSeq);
    for (const MOD_SITE* site = pep.m_pMods; site != pep.m_pMods + pep.SiteNum(); ++site) {
        number = number * kFactor + site->m_ucPos;
        if (site->m_pMod != nullptr) number = number * kFactor + hash(site->m_pMod->m_strName);
    }
    return number;
}

// Marks the duplicates in a run of one score key; the first of each group takes over what they add.
// Only candidates of one fingerprint are compared: a run may be as long as a file.
void mark_duplicates(const CCondition& condition, std::vector<CPepRes>& peps, std::size_t first,
                     std::size_t last, std::vector<bool>& marked) {
    std::vector<std::pair<std::size_t, std::size_t>> order;  // fingerprint, position
    order.reserve(last - first);
    for (std::size_t i = first; i < last; ++i)
        order.emplace_back(fingerprint(peps[i]), i);
    std::sort(order.begin(), order.end());
    for (auto kept = order.begin(); kept != order.end(); ++kept) {
        if (marked[kept->second]) continue;
        for (auto other = kept + 1; other != order.end() && other->first == kept->first; ++other) {
            CPepRes& pep = peps[other->second];
            if (marked[other->second] || !condition._equal_res(peps[kept->second], pep)) continue;
            marked[other->second] = true;
            absorb(peps[kept->second], pep);
        }
    }
}

void erase_marked(std::vector<CPepRes>& peps, const std::vector<bool>& marked) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < peps.size(); ++i) {
        if (marked[i]) continue;
        if (kept != i) peps[kept] = std::move(peps[i]);
        ++kept;
    }
    peps.erase(peps.begin() + static_cast<std::ptrdiff_t>(kept), peps.end());
}

enum class COPY_RESULT { DONE, UNREADABLE, UNWRITABLE };

COPY_RESULT append_file(const std::string& path, std::FILE* output, std::vector<char>& block) {
    const FilePtr input = open_file(path, "rb");
    if (!input) return COPY_RESULT::UNREADABLE;
    for (;;) {
        const std::size_t count = std::fread(block.data(), 1, block.size(), input.get());
        if (std::fwrite(block.data(), 1, count, output) != count) return COPY_RESULT::UNWRITABLE;
        if (count < block.size()) break;
    }
    return std::ferror(input.get()) == 0 ? COPY_RESULT::DONE : COPY_RESULT::UNREADABLE;
}

bool names_file(const std::string& path, const std::string& file) {
    return path == file || same_file(path, file);
}

// Copies the inputs that are there one behind the other and lists them. Tells of one that cannot be
// read.
COPY_RESULT copy_inputs(const CCondition& condition, const std::vector<std::string>& inputs,
                        const std::string& outputPath, std::FILE* output,
                        std::vector<std::string>& copied) {
    std::vector<char> block(std::size_t{1} << 20);
    for (const std::string& input : inputs) {
        // What is the output now was not there before: another spelling of its name.
        if (!path_exists(input) || names_file(input, outputPath)) {
            condition.Message("The result file to merge does not exist: " + input, LOG_WARNING);
            continue;
        }
        const COPY_RESULT result = append_file(input, output, block);
        if (result == COPY_RESULT::UNREADABLE) {
            condition.Message("Cannot read the result file: " + input, LOG_ALERT);
        }
        if (result != COPY_RESULT::DONE) return result;
        copied.push_back(input);
    }
    return COPY_RESULT::DONE;
}

// A file named twice is gone the second time, which is no fault.
void remove_files(const CCondition& condition, const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        if (!remove_file(path) && path_exists(path)) {
            condition.Message("Cannot remove the merged file: " + path, LOG_WARNING);
        }
    }
}

}  // namespace

bool CCondition::_equal_res(const CPepRes& a, const CPepRes& b) const {
    if (std::fabs(a.m_lfPepMass - b.m_lfPepMass) > 0.0001) return false;
    if (a.m_strSeq != b.m_strSeq || a.SiteNum() != b.SiteNum()) return false;
    return std::equal(a.m_pMods, a.m_pMods + a.SiteNum(), b.m_pMods, same_site);
}

void CCondition::RemoveRedundancy(std::vector<CPepRes>& peps) const {
    // Most lists have no two neighbours of the same key, so none can be duplicates.
    if (std::adjacent_find(peps.begin(), peps.end(), same_key) == peps.end()) return;
    std::vector<bool> marked(peps.size());
    for (std::size_t first = 0, last = 0; first < peps.size(); first = last) {
        while (last < peps.size() && same_key(peps[first], peps[last]))
            ++last;
        if (last - first > 1) mark_duplicates(*this, peps, first, last, marked);
    }
    erase_marked(peps, marked);
}

void CCondition::RemoveRedundancy() {
    SortAndClean(CPepRes::FinalScoreGreater);
}

void CCondition::SortAndClean(bool (*order)(const CPepRes&, const CPepRes&)) {
    for (auto& [title, spectrum] : m_mapPSMRes) {
        std::vector<CPepRes>& peps = spectrum.m_vPeps;
        // Engines write candidates in rank order; sorting what is in order would move them twice.
        if (!std::is_sorted(peps.begin(), peps.end(), order)) {
            std::stable_sort(peps.begin(), peps.end(), order);
        }
        RemoveRedundancy(peps);
    }
}

bool CCondition::MergeFiles(const std::vector<std::string>& inputs, const std::string& output,
                            bool removeInputs) const {
    const auto isOutput = [&output](const std::string& input) { return names_file(input, output); };
    if (std::any_of(inputs.begin(), inputs.end(), isOutput)) {
        Message("The result file to write is also to be merged: " + output, LOG_ALERT);
        return true;
    }
    const std::string writeFailure = "Failed to write the result file: " + output;
    FilePtr merged = open_file(output, "wb");
    if (!merged) {
        Message(writeFailure, LOG_ALERT);
        end_process(1);
    }
    std::vector<std::string> copied;
    const COPY_RESULT result = copy_inputs(*this, inputs, output, merged.get(), copied);
    const bool isWritten = close_file(std::move(merged));
    if (result == COPY_RESULT::DONE && isWritten) {
        if (removeInputs) remove_files(*this, copied);
        return false;
    }
    remove_incomplete(output);
    if (result != COPY_RESULT::UNREADABLE) Message(writeFailure, LOG_ALERT);
    return true;
}

void CCondition::MergeSubRes(const std::string& ext) const {
    const std::string base = m_strOutputPath + m_strOutputName + '.';
    std::vector<std::string> inputs;
    for (std::size_t batch = 1; batch <= m_tBatchNo; ++batch) {
        std::string& input = inputs.emplace_back(base);
        append_integer(input, batch);
        input += '.' + ext;
    }
    MergeFiles(inputs, base + ext, true);
}

}  // namespace tessel
