#pragma once

#include <array>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "tessel/export.h"
#include "tessel/result/pro_info.h"

namespace tessel {

class CMod;
class GodelCode;

/// One modification of a peptide.
struct MOD_SITE {
    unsigned char m_ucPos = 0;     ///< position in the peptide; the engine's convention
    const CMod* m_pMod = nullptr;  ///< into the condition's tables, not owned; null: unknown name
};

/// One candidate peptide of a spectrum.
class TESSEL_API CPepRes {
public:
    double m_lfScore = 0.0;                 ///< search score; larger is better
    std::array<double, 5> m_lfSubScores{};  ///< for the engine; carried, read and written
    double m_lfFinalScore = 0.0;            ///< final score; smaller is better
    double m_lfQValue = 1024.0;             ///< q-value; smaller is better
    double m_lfPepMass = 0.0;               ///< calculated mass of the peptide, Da
    double m_lfMassDev = 0.0;               ///< spectrum's MH+ - m_lfPepMass, Da; never written
    std::string m_strSeq;                   ///< peptide sequence
    /// The modification sites, m_ucModNum of them from new[], owned; null when there are none.
    /// After Clean() the pointer, not the count, says that there are none.
    MOD_SITE* m_pMods = nullptr;
    unsigned char m_ucModNum = 0;          ///< number of modification sites
    unsigned char m_ucAux0 = 0;            ///< for the engine; carried and copied only
    unsigned char m_ucAuxMax = 0;          ///< for the engine; merging keeps the larger value
    unsigned char m_bDecoy = 1;            ///< 0 or 1; merging keeps 1 only if all copies have it
    unsigned char m_ucAux1 = 0;            ///< for the engine; carried, read and written
    std::set<PRO_INFO> m_setProteins;      ///< protein hits, one per protein
    std::vector<std::string> m_vstrExtra;  ///< for the engine; in no file
    unsigned char m_ucAux2 = 0;            ///< for the engine; carried, read and written
    std::array<int, 4> m_nAuxA{};          ///< for the engine; carried, read and written
    std::array<int, 4> m_nAuxB{};          ///< for the engine; carried, read and written

    CPepRes() = default;
    /// Copies are deep: a site array of its own with the same modifications.
    CPepRes(const CPepRes& other);
    /// Takes the sites over; `other` is left as a fresh candidate.
    CPepRes(CPepRes&& other) noexcept;
    /// A deep copy, too; frees the sites that were here.
    CPepRes& operator=(const CPepRes& other);
    /// Exchanges the two candidates.
    CPepRes& operator=(CPepRes&& other) noexcept;
    ~CPepRes();

    /// As the copy assignment; returns 1.
    int Assign(const CPepRes& other);
    /// Frees the sites and leaves their count as it is; returns 1.
    int Clean();
    /// How many sites there are: m_ucModNum, or 0 without an array.
    std::size_t SiteNum() const { return m_pMods == nullptr ? 0 : m_ucModNum; }

    /// Hash of the sequence and its modifications. It takes in the addresses of the CMod records,
    /// so it holds within one loaded modification table only. At most 500 bytes count: one per
    /// residue, nine per site.
    double GetHash(const GodelCode& code) const;

    // Orders, each telling whether a goes before b. Scores compare exactly; a NaN goes last, except
    // in ScoreLess, where it goes first. Targets go before decoys at equal scores, then sequences
    // ascend byte by byte.

    static bool ScoreGreater(const CPepRes& a, const CPepRes& b);  ///< larger score first
    static bool ScoreLess(const CPepRes& a, const CPepRes& b);     ///< the exact reverse
    /// Smaller final score first, whatever the name says; then larger score.
    static bool FinalScoreGreater(const CPepRes& a, const CPepRes& b);
    /// Smaller q-value first; then smaller final score; then larger score.
    static bool ConfidentByQV(const CPepRes& a, const CPepRes& b);
    /// For searches by score, no orders to sort by: at equal scores true when a's m_ucModNum is not
    /// 0. They ask for the count alone, so that a record that stands for "modified" needs no array;
    /// Clean() leaves their answers as they were.
    static bool Score_Less_Ext(const CPepRes& a, const CPepRes& b);
    /// Likewise: at equal scores true when b's m_ucModNum is not 0.
    static bool Score_Greater_Ext(const CPepRes& a, const CPepRes& b);
};

}  // namespace tessel
