// In come the spectra that the condition has loaded and, batch by batch, the proteins of its
// database; the best candidates of each spectrum are filled. Peptides are not stored: each one is
// made, looked up among the precursor masses, scored and forgotten, so that the memory needed does
// not grow with the database.

#include "search.h"

#include <algorithm>
#include <cmath>

namespace closed_search {

using tessel::CCondition;
using tessel::CPepRes;
using tessel::CSpectrum;
using tessel::MOD_SITE;

// ---- Precursors by mass ----

CPrecursorIndex::CPrecursorIndex(const std::vector<CSpectrum>& spectra) {
    for (std::size_t i = 0; i < spectra.size(); ++i) {
        // Without a charge the mass is unknown.
        if (spectra[i].m_nCharge > 0) m_vEntries.push_back({spectra[i].m_lfMH, i});
    }
    std::sort(m_vEntries.begin(), m_vEntries.end(), [](const ENTRY& a, const ENTRY& b) {
        return std::pair(a.m_lfMH, a.m_tSpectrum) < std::pair(b.m_lfMH, b.m_tSpectrum);
    });
    for (std::size_t i = 0; i < m_vEntries.size(); ++i) {
        const auto dalton = static_cast<std::size_t>(m_vEntries[i].m_lfMH);
        if (dalton >= m_vFirst.size()) m_vFirst.resize(dalton + 1, i);
    }
}

const CPrecursorIndex::ENTRY* CPrecursorIndex::FirstFrom(double mass) const {
    // False for a NaN, too, which a tolerance that is none would give.
    const bool isCovered = mass < static_cast<double>(m_vFirst.size());
    if (!isCovered) return End();
    const auto dalton = static_cast<std::size_t>(std::max(mass, 0.0));
    const ENTRY* entry = m_vEntries.data() + m_vFirst[dalton];
    while (entry != End() && entry->m_lfMH < mass)
        ++entry;
    return entry;
}

std::pair<const CPrecursorIndex::ENTRY*, const CPrecursorIndex::ENTRY*> CPrecursorIndex::Between(
    double low, double high) const {
    const ENTRY* const first = FirstFrom(low);
    const ENTRY* last = first;
    while (last != End() && last->m_lfMH <= high)
        ++last;
    return {first, last};
}

bool CPrecursorIndex::AnyBetween(double low, double high) const {
    const ENTRY* const first = FirstFrom(low);
    return first != End() && first->m_lfMH <= high;
}

// ---- The search ----

struct CSearch::ORIGIN {
    const std::string& m_strSequence;
    int m_nKey;  // the protein's number in the searched database, from 0
    bool m_bDecoy;
};

CSearch::CSearch(CCondition& condition, CProgress& progress)
    : m_cCondition(condition),
      m_cProgress(progress),
      m_cDigest(condition),
      m_cForms(condition),
      m_cScorer(condition) {
}

std::vector<CCandidates> CSearch::SearchBatch() {
    for (CSpectrum& spectrum : m_cCondition.m_vSpectra)
        m_cScorer.PreparePeaks(spectrum);
    const CPrecursorIndex index(m_cCondition.m_vSpectra);
    std::vector<CCandidates> candidates(m_cCondition.m_vSpectra.size());

    //! [proteins]
    tessel::CFastaLoader& loader = m_cCondition.m_cFastaLoader;
    loader.Reset();
    bool more = true;
    while (more) {
        more = loader.ReadNextBatch();
        for (std::size_t i = 0; i < loader.m_vProteins.size(); ++i) {
            const tessel::CProtein& protein = loader.m_vProteins[i];
            const std::size_t number = loader.m_tBatchStart + i;
            SearchProtein({protein.m_strSQ, static_cast<int>(number),
                           protein.m_strAC.starts_with(tessel::_REV_TAG)},
                          index, candidates);
            m_cProgress.Show(number + 1, loader.m_tEntryNum);
        }
    }
    //! [proteins]
    return candidates;
}

void CSearch::SearchProtein(const ORIGIN& protein, const CPrecursorIndex& index,
                            std::vector<CCandidates>& candidates) {
    for (const PEPTIDE& peptide : m_cDigest.Peptides(protein.m_strSequence)) {
        const std::string_view sequence =
            std::string_view(protein.m_strSequence).substr(peptide.m_tBegin, peptide.m_tLength);
        m_cForms.SetPeptide(sequence, peptide);
        if (!MayMatch(index)) continue;
        m_cForms.ForEach([&](double mass, const std::vector<MOD_SITE>& sites) {
            if (mass < m_cCondition.m_lfMassLower || mass > m_cCondition.m_lfMassUpper) return;
            const double tolerance = m_cCondition._CalcMaxDeviation(mass, true);
            const auto [first, last] = index.Between(mass - tolerance, mass + tolerance);
            if (first == last) return;

            SetResidues(sequence, sites);
            for (const auto* entry = first; entry != last; ++entry) {
                const std::size_t spectrum = entry->m_tSpectrum;
                const MATCH match = m_cScorer.Score(m_cCondition.m_vSpectra[spectrum], m_vResidues);
                ++m_uScored;
                if (match.m_lfScore <= 0.0) continue;
                if (!candidates[spectrum].Admits(match.m_lfScore, m_cCondition)) continue;
                candidates[spectrum].Offer(MakeCandidate(protein, peptide, mass, sites, match),
                                           m_cCondition);
            }
        });
    }
}

// Few spectra need few of the forms; a look at the range of their masses spares most peptides.
bool CSearch::MayMatch(const CPrecursorIndex& index) const {
    constexpr double kRounding = 1e-6;
    const double tolerance = m_cCondition._CalcMaxDeviation(m_cForms.HeaviestMass(), true);
    return index.AnyBetween(m_cForms.LightestMass() - tolerance - kRounding,
                            m_cForms.HeaviestMass() + tolerance + kRounding);
}

// A modified terminus makes the residue beside it heavier.
void CSearch::SetResidues(std::string_view sequence, const std::vector<MOD_SITE>& sites) {
    m_vResidues.clear();
    for (const char residue : sequence)
        m_vResidues.push_back(
            m_cCondition.m_cAlphaBet.m_lfMass[static_cast<std::size_t>(residue - 'A')]);
    for (const MOD_SITE& site : sites) {
        const auto position = std::clamp<std::size_t>(site.m_ucPos, 1, m_vResidues.size());
        m_vResidues[position - 1] += site.m_pMod->m_lfMass;
    }
}

CPepRes CSearch::MakeCandidate(const ORIGIN& protein, const PEPTIDE& peptide, double mass,
                               const std::vector<MOD_SITE>& sites, const MATCH& match) const {
    const std::string& sequence = protein.m_strSequence;
    CPepRes pep;
    pep.m_strSeq = sequence.substr(peptide.m_tBegin, peptide.m_tLength);
    pep.m_lfPepMass = mass;
    pep.m_lfScore = match.m_lfScore;
    pep.m_lfFinalScore = -match.m_lfScore;
    pep.m_lfSubScores = {static_cast<double>(match.m_nNTermIons),
                         static_cast<double>(match.m_nCTermIons), match.m_lfExplained, 0.0, 0.0};
    pep.m_bDecoy = protein.m_bDecoy ? 1 : 0;
    if (!sites.empty()) {
        pep.m_ucModNum = static_cast<unsigned char>(sites.size());
        pep.m_pMods = new MOD_SITE[sites.size()];
        std::copy(sites.begin(), sites.end(), pep.m_pMods);
    }
    const std::size_t end = peptide.m_tBegin + peptide.m_tLength;
    tessel::PRO_INFO hit;
    hit.m_nProID = protein.m_nKey;
    hit.m_nSite = static_cast<int>(peptide.m_tBegin);
    if (peptide.m_tBegin > 0) hit.m_cPrev = sequence[peptide.m_tBegin - 1];
    if (end < sequence.size()) hit.m_cNext = sequence[end];
    pep.m_setProteins.insert(hit);
    return pep;
}

}  // namespace closed_search
