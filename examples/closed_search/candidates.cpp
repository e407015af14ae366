// In come candidates in any order; the best "temppepnum" stay, copies merged.

#include "candidates.h"

#include <algorithm>
#include <utility>

namespace closed_search {

using tessel::CPepRes;

namespace {

int compare_sequences(const std::string& a, const std::string& b, bool leucineOnly) {
    const auto letter = [leucineOnly](char residue) {
        return leucineOnly && residue == 'I' ? 'L' : residue;
    };
    const std::size_t length = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < length; ++i) {
        if (letter(a[i]) != letter(b[i])) return letter(a[i]) < letter(b[i]) ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

int compare_sites(const CPepRes& a, const CPepRes& b) {
    if (a.m_ucModNum != b.m_ucModNum) return a.m_ucModNum < b.m_ucModNum ? -1 : 1;
    for (std::size_t i = 0; i < a.m_ucModNum; ++i) {
        const tessel::MOD_SITE& siteA = a.m_pMods[i];
        const tessel::MOD_SITE& siteB = b.m_pMods[i];
        if (siteA.m_ucPos != siteB.m_ucPos) return siteA.m_ucPos < siteB.m_ucPos ? -1 : 1;
        const int names = siteA.m_pMod->m_strName.compare(siteB.m_pMod->m_strName);
        if (names != 0) return names;
    }
    return 0;
}

// Negative when a goes before b, 0 when they are copies of one candidate.
int compare(const CPepRes& a, const CPepRes& b, bool leucineOnly) {
    if (a.m_lfScore != b.m_lfScore) return a.m_lfScore > b.m_lfScore ? -1 : 1;
    const int sequences = compare_sequences(a.m_strSeq, b.m_strSeq, leucineOnly);
    return sequences != 0 ? sequences : compare_sites(a, b);
}

// Targets go before decoys, and then the first sequence by its bytes is the one to write.
void merge_copy(CPepRes& known, const CPepRes& copy) {
    if (std::pair(copy.m_bDecoy, copy.m_strSeq) < std::pair(known.m_bDecoy, known.m_strSeq)) {
        known.m_bDecoy = copy.m_bDecoy;
        known.m_strSeq = copy.m_strSeq;
    }
    known.m_setProteins.insert(copy.m_setProteins.begin(), copy.m_setProteins.end());
}

}  // namespace

bool CCandidates::Admits(double score, const tessel::CCondition& condition) const {
    if (m_vPeps.size() < condition.m_tTempPepNum) return true;
    return !m_vPeps.empty() && score >= m_vPeps.back().m_lfScore;
}

void CCandidates::Offer(CPepRes&& pep, const tessel::CCondition& condition) {
    const bool leucineOnly = condition.m_bIeqL;
    const auto place = std::lower_bound(m_vPeps.begin(), m_vPeps.end(), pep,
                                        [leucineOnly](const CPepRes& a, const CPepRes& b) {
                                            return compare(a, b, leucineOnly) < 0;
                                        });
    if (place != m_vPeps.end() && compare(*place, pep, leucineOnly) == 0) {
        merge_copy(*place, pep);
        return;
    }
    m_vPeps.insert(place, std::move(pep));
    if (m_vPeps.size() > condition.m_tTempPepNum) m_vPeps.pop_back();
}

}  // namespace closed_search
