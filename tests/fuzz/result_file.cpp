// Result files: loaded, cleaned, merged, written, read back.

#include <algorithm>
#include <cmath>
#include <limits>

#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

constexpr double kAnyScore = std::numeric_limits<double>::infinity();
constexpr unsigned long long kAllPeps = std::numeric_limits<unsigned long long>::max();

void check_list(const CCondition& condition, const std::vector<CPepRes>& peps) {
    for (std::size_t i = 0; i + 1 < peps.size(); ++i) {
        const bool tied = same(peps[i].m_lfScore, peps[i + 1].m_lfScore);
        check(!tied || !condition._equal_res(peps[i], peps[i + 1]), "duplicates are dropped");
        check(CPepRes::ScoreGreater(peps[i], peps[i + 1]) ==
                      !CPepRes::ScoreLess(peps[i], peps[i + 1]) ||
                  tied,
              "orders mirror each other");
    }
    for (const CPepRes& pep : peps)
        check(!std::isnan(pep.m_lfScore) && pep.SiteNum() == pep.m_ucModNum, "records are whole");
}

// The text as two batches, joined.
void merge(std::string_view text) {
    write_scratch("run.1.res", text.substr(0, text.size() / 2));
    write_scratch("run.2.res", text.substr(text.size() / 2));
    static CCondition condition;
    condition.m_strOutputPath = scratch_path("");
    condition.m_strOutputName = "run";
    condition.m_tBatchNo = 2;
    condition.MergeSubRes("res");
    check(read_scratch("run.res") == text, "merging joins the batches");
    check(!path_exists("run.1.res") && !path_exists("run.2.res"), "batches are removed");
}

// Loads what was written and writes it again.
void rewrite(const std::string& from, const std::string& to) {
    CCondition condition;
    condition.m_tPepNum = std::numeric_limits<std::size_t>::max();
    condition._LoadResult(scratch_path(from), kAllPeps, kAnyScore);
    condition.WriteFinalResult(scratch_path(to), 0.0);
}

}  // namespace

void run(CBytes input) {
    const unsigned long long maxPeps = input.Choice(8);
    const double maxFinalScore = input.Flag() ? 0.5 : kAnyScore;
    const bool byGroup = input.Flag();
    const bool clean = input.Flag();
    const bool merges = input.Flag();
    const bool writes = input.Flag();
    if (merges) {
        merge(input.Text());
    } else {
        write_scratch("run.res", input.Text());
    }

    CCondition condition;
    condition.m_tPepNum = std::numeric_limits<std::size_t>::max();
    const std::vector<std::string> paths(2, scratch_path("run.res"));
    if (byGroup) {
        condition.LoadGroupResult(paths, 0, 0.0);
    } else {
        condition.LoadResult(paths, maxPeps, maxFinalScore);
    }
    for (const auto& [title, spectrum] : condition.m_mapPSMRes) {
        const std::vector<CPepRes>& peps = spectrum.m_vPeps;
        check(spectrum.m_strTitle == title, "spectra stand under their title");
        check(peps.size() <= (byGroup ? 1 : maxPeps), "lists have their size");
        check_list(condition, peps);
        for (const CPepRes& pep : peps)
            check(byGroup || pep.m_lfFinalScore <= maxFinalScore, "the threshold holds");
    }
    if (clean) condition.RemoveRedundancy();
    if (!writes) return;
    condition.WriteFinalResult(scratch_path("first"), 0.0);
    rewrite("first", "second");
    rewrite("second", "third");
    check(read_scratch("second") == read_scratch("third"), "results read back as written");
}

}  // namespace tessel::fuzz
