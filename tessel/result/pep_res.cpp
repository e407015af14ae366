// Candidate peptides: copying, hashing and the orders by which they are ranked.

#include "tessel/result/pep_res.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>
#include <utility>

#include "tessel/space/godel_code.h"

namespace tessel {
namespace {

MOD_SITE* copied_sites(const CPepRes& other) {
    const std::size_t count = other.SiteNum();
    if (count == 0) return nullptr;
    auto* sites = new MOD_SITE[count];
    std::copy_n(other.m_pMods, count, sites);
    return sites;
}

// Every field but the sites, whose array needs more than a copy.
template <class Pep>
auto fields_but_sites(Pep& pep) {
    return std::tie(pep.m_lfScore, pep.m_lfSubScores, pep.m_lfFinalScore, pep.m_lfQValue,
                    pep.m_lfPepMass, pep.m_lfMassDev, pep.m_strSeq, pep.m_ucModNum, pep.m_ucAux0,
                    pep.m_ucAuxMax, pep.m_bDecoy, pep.m_ucAux1, pep.m_setProteins, pep.m_vstrExtra,
                    pep.m_ucAux2, pep.m_nAuxA, pep.m_nAuxB);
}

// Negative when a goes before b, positive when b does, 0 when the scores tie. A NaN goes last.
int by_smaller(double a, double b) {
    if (a < b) return -1;
    if (a > b) return 1;
    return static_cast<int>(std::isnan(a)) - static_cast<int>(std::isnan(b));
}

int by_larger(double a, double b) {
    if (a > b) return -1;
    if (a < b) return 1;
    return static_cast<int>(std::isnan(a)) - static_cast<int>(std::isnan(b));
}

// Targets first, then sequences in ascending byte order.
bool tie_break(const CPepRes& a, const CPepRes& b) {
    if (a.m_bDecoy != b.m_bDecoy) return a.m_bDecoy < b.m_bDecoy;
    return a.m_strSeq < b.m_strSeq;
}

}  // namespace

CPepRes::CPepRes(const CPepRes& other) : CPepRes() {
    fields_but_sites(*this) = fields_but_sites(other);
    m_pMods = copied_sites(other);
}

CPepRes::CPepRes(CPepRes&& other) noexcept : CPepRes() {
    *this = std::move(other);
}

CPepRes& CPepRes::operator=(const CPepRes& other) {
    if (this != &other) *this = CPepRes(other);
    return *this;
}

// What was here goes with the other one.
CPepRes& CPepRes::operator=(CPepRes&& other) noexcept {
    auto mine = fields_but_sites(*this);
    auto theirs = fields_but_sites(other);
    mine.swap(theirs);
    std::swap(m_pMods, other.m_pMods);
    return *this;
}

CPepRes::~CPepRes() {
    delete[] m_pMods;
}

int CPepRes::Assign(const CPepRes& other) {
    *this = other;
    return 1;
}

int CPepRes::Clean() {
    delete[] m_pMods;
    m_pMods = nullptr;
    return 1;
}

double CPepRes::GetHash(const GodelCode& code) const {
    std::string bytes = m_strSeq;
    for (std::size_t i = 0; i < SiteNum(); ++i) {
        char address[sizeof(void*)];
        std::memcpy(address, &m_pMods[i].m_pMod, sizeof address);
        bytes += static_cast<char>(m_pMods[i].m_ucPos);
        bytes.append(address, sizeof address);
    }
    return code.GetGodel(bytes.data(), bytes.size());
}

bool CPepRes::ScoreGreater(const CPepRes& a, const CPepRes& b) {
    const int order = by_larger(a.m_lfScore, b.m_lfScore);
    return order != 0 ? order < 0 : tie_break(a, b);
}

bool CPepRes::ScoreLess(const CPepRes& a, const CPepRes& b) {
    return ScoreGreater(b, a);
}

bool CPepRes::FinalScoreGreater(const CPepRes& a, const CPepRes& b) {
    const int order = by_smaller(a.m_lfFinalScore, b.m_lfFinalScore);
    return order != 0 ? order < 0 : ScoreGreater(a, b);
}

bool CPepRes::ConfidentByQV(const CPepRes& a, const CPepRes& b) {
    const int order = by_smaller(a.m_lfQValue, b.m_lfQValue);
    return order != 0 ? order < 0 : FinalScoreGreater(a, b);
}

bool CPepRes::Score_Less_Ext(const CPepRes& a, const CPepRes& b) {
    if (a.m_lfScore == b.m_lfScore) return a.m_ucModNum != 0;
    return a.m_lfScore < b.m_lfScore;
}

bool CPepRes::Score_Greater_Ext(const CPepRes& a, const CPepRes& b) {
    if (a.m_lfScore == b.m_lfScore) return b.m_ucModNum != 0;
    return a.m_lfScore > b.m_lfScore;
}

}  // namespace tessel
