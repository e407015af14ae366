#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "digest.h"
#include "tessel/tessel.h"

namespace closed_search {

/// Puts modifications on peptides. A site's position is 1 for the first residue, 0 for the N
/// terminus and length + 1 for the C terminus; each position carries one modification at most.
///
/// Fixed modifications are always there: where several fit a position, a protein terminus goes
/// before a peptide terminus and otherwise the one named first wins. The other selected ones are
/// variable, and the positions that no fixed one has taken carry up to "maxmod" of them together.
class CForms {
public:
    /// More forms of one peptide are not made; those with fewer modifications come first.
    static constexpr int kMaxForms = 2000;

    /// Called with the mass of a form, MH+ in Da, and its sites, ordered by position.
    using Visit = std::function<void(double mass, const std::vector<tessel::MOD_SITE>& sites)>;

    explicit CForms(const tessel::CCondition& condition) : m_cCondition(condition) {}

    /// Visits the forms of a peptide of the protein.
    void ForEach(std::string_view sequence, const PEPTIDE& peptide, const Visit& visit);

private:
    void CollectTerminus(unsigned char position, char residue, bool atProteinEnd,
                         tessel::MOD_TYPE proteinType, tessel::MOD_TYPE peptideType);
    void CollectPosition(unsigned char position, const std::vector<const tessel::CMod*>& mods);
    void Choose(std::size_t first, std::size_t number, double mass, const Visit& visit);
    void Emit(double mass, const Visit& visit);

    const tessel::CCondition& m_cCondition;
    std::vector<const tessel::CMod*> m_vFitting;  // modifications that fit the position at hand
    std::vector<tessel::MOD_SITE> m_vFixed;       // of the peptide at hand
    std::vector<tessel::MOD_SITE> m_vVariable;    // every choice, by position
    std::vector<tessel::MOD_SITE> m_vChosen;      // those of the form at hand
    std::vector<tessel::MOD_SITE> m_vSites;
    int m_nForms = 0;
};

}  // namespace closed_search
