// Result files, against a plain reading of all tokens.

#include <algorithm>
#include <cmath>
#include <limits>

#include "tessel/condition/condition.h"
#include "tessel/result/failed_lists.h"
#include "tessel/result/load_results.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

constexpr std::size_t kPiece = 81919;

struct PLAIN_PEP {
    CPepRes m_cPep;                                     // but for the sites
    std::vector<std::pair<int, std::string>> m_vSites;  // position and name
};

struct PLAIN_SPECTRUM {
    CPSMRes m_cHead;
    std::vector<PLAIN_PEP> m_vPeps;
};

// A file as a text that is read from the front. A field that cannot be read makes it bad.
class CPlainResults {
public:
    explicit CPlainResults(std::string_view text) : m_strRest(text) {
        if (text.starts_with("\xEF\xBB\xBF")) m_strRest.remove_prefix(3);
    }

    std::map<std::string, PLAIN_SPECTRUM> Read(std::size_t maxPeps, double maxFinalScore) {
        while (SkipBlanks()) {
            const std::string_view record = m_strRest;
            m_bGood = true;
            PLAIN_PEP pep;
            const bool isHead = Token() == "S";
            if (isHead) {
                Head();
            } else {
                Peptide(pep);
            }
            if (!m_bGood) {
                m_strRest = record;
                Line(std::string_view::npos);
                continue;
            }
            const auto [entry, isNew] = m_mapResults.try_emplace(m_cSpectrum.m_strTitle);
            if (isNew) entry->second.m_cHead = m_cSpectrum;
            if (isHead) continue;
            Line();
            std::vector<PLAIN_PEP>& peps = entry->second.m_vPeps;
            if (peps.size() < maxPeps && pep.m_cPep.m_lfFinalScore <= maxFinalScore) {
                peps.push_back(pep);
            }
        }
        return m_mapResults;
    }

private:
    bool SkipBlanks() {
        while (!m_strRest.empty() && plain_blank(m_strRest.front()))
            m_strRest.remove_prefix(1);
        return !m_strRest.empty();
    }
    std::string Token() {
        m_bGood = SkipBlanks() && m_bGood;
        std::string token;
        while (!m_strRest.empty() && !plain_blank(m_strRest.front()) && token.size() < kPiece) {
            token += m_strRest.front();
            m_strRest.remove_prefix(1);
        }
        return token;
    }
    // What is left of the line, or as much of it as a line buffer holds.
    std::string Line(std::size_t most = kPiece) {
        const std::string line(m_strRest.substr(0, std::min(m_strRest.find('\n'), most)));
        m_strRest.remove_prefix(line.size());
        if (line.size() < most && !m_strRest.empty()) m_strRest.remove_prefix(1);
        return line;
    }
    double Real() {
        const auto number = plain_double(Token());
        m_bGood = m_bGood && number.length > 0;
        return number.value;
    }
    double Measure() {
        const double value = Real();
        m_bGood = m_bGood && !std::isnan(value);
        return value;
    }
    template <class Integer = int>
    Integer Whole() {
        const auto number = plain_integer<Integer>(Token());
        m_bGood = m_bGood && number.length > 0;
        return number.value;
    }
    unsigned char Byte() { return static_cast<unsigned char>(Whole()); }
    unsigned char UnsignedByte() {
        const auto value = Whole<std::int64_t>();
        return static_cast<unsigned char>(value < -2147483648LL  ? 0
                                          : value > 4294967295LL ? 255
                                                                 : value);
    }

    void Head() {
        std::vector<std::string> words = plain_words(Line());
        words.resize(2);
        m_cSpectrum.m_lfMH = plain_double(words[0]).value;
        m_cSpectrum.m_nCharge = plain_integer<int>(words[1]).value;
        m_bGood = !m_strRest.empty();
        std::string title = Line();
        while (!title.empty() && (title.back() < ' ' || title.back() > '~'))
            title.pop_back();
        if (m_bGood) m_cSpectrum.m_strTitle = title;
    }

    void Peptide(PLAIN_PEP& plain) {
        CPepRes& pep = plain.m_cPep;
        pep.m_strSeq = Token();
        pep.m_lfPepMass = Measure();
        pep.m_lfScore = Measure();
        pep.m_lfFinalScore = Measure();
        pep.m_lfQValue = Real();
        const unsigned sites = Whole<unsigned>();
        m_bGood = m_bGood && sites < 256;
        for (unsigned i = 0; i < sites && m_bGood; ++i) {
            const unsigned char position = Byte();
            plain.m_vSites.emplace_back(position, Token());
        }
        pep.m_ucAuxMax = Byte();
        pep.m_bDecoy = Whole() != 0 ? 1 : 0;
        pep.m_ucAux1 = Byte();
        const int hits = Whole();
        m_bGood = m_bGood && hits >= 0;
        for (int i = 0; i < hits && m_bGood; ++i)
            Hit(pep);
        pep.m_ucAux2 = UnsignedByte();
        for (double& score : pep.m_lfSubScores)
            score = Real();
        for (int& number : pep.m_nAuxA)
            number = Whole();
        for (int& number : pep.m_nAuxB)
            number = Whole();
        pep.m_lfMassDev = m_cSpectrum.m_lfMH - pep.m_lfPepMass;
    }

    void Hit(CPepRes& pep) {
        const std::string token = Token();
        const auto key = plain_integer<int>(token);
        const std::string rest = token.substr(key.length);
        const auto site = plain_integer<int>(rest.empty() ? rest : rest.substr(1));
        m_bGood = m_bGood && key.length > 0 && rest.starts_with(';') && site.length > 0;
        const std::string neighbours = m_bGood ? rest.substr(1 + site.length) : "";
        m_bGood = m_bGood && neighbours.size() >= 4 && neighbours[0] == ';' && neighbours[2] == ';';
        if (m_bGood) {
            pep.m_setProteins.insert({key.value, site.value, neighbours[1], neighbours[3]});
        }
    }

    std::string_view m_strRest;
    bool m_bGood = true;
    CPSMRes m_cSpectrum;
    std::map<std::string, PLAIN_SPECTRUM> m_mapResults;
};

bool same_hits(const std::set<PRO_INFO>& a, const std::set<PRO_INFO>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const PRO_INFO& x, const PRO_INFO& y) {
                          return x.m_nProID == y.m_nProID && x.m_nSite == y.m_nSite &&
                                 x.m_cPrev == y.m_cPrev && x.m_cNext == y.m_cNext;
                      });
}

void check_sites(const PLAIN_PEP& plain, const CPepRes& pep, const CCondition& condition) {
    check(pep.SiteNum() == plain.m_vSites.size(), "every site is read");
    for (std::size_t i = 0; i < pep.SiteNum(); ++i) {
        const auto& [position, name] = plain.m_vSites[i];
        check(position == pep.m_pMods[i].m_ucPos, "positions are read");
        check(condition.m_mapMods.at(name) == pep.m_pMods[i].m_pMod, "names lead to modifications");
    }
}

void check_pep(const CPepRes& plain, const CPepRes& pep) {
    check(pep.m_strSeq == plain.m_strSeq, "sequences are read");
    check(same(pep.m_lfPepMass, plain.m_lfPepMass) && same(pep.m_lfScore, plain.m_lfScore) &&
              same(pep.m_lfFinalScore, plain.m_lfFinalScore) &&
              same(pep.m_lfQValue, plain.m_lfQValue) && same(pep.m_lfMassDev, plain.m_lfMassDev),
          "numbers are read");
    check(pep.m_ucAuxMax == plain.m_ucAuxMax && pep.m_bDecoy == plain.m_bDecoy &&
              pep.m_ucAux1 == plain.m_ucAux1 && pep.m_ucAux2 == plain.m_ucAux2,
          "flags are read");
    check(same_hits(pep.m_setProteins, plain.m_setProteins), "hits are read");
    for (std::size_t i = 0; i < pep.m_lfSubScores.size(); ++i)
        check(same(pep.m_lfSubScores[i], plain.m_lfSubScores[i]), "sub-scores are read");
    check(pep.m_nAuxA == plain.m_nAuxA && pep.m_nAuxB == plain.m_nAuxB, "integers are read");
}

void check_results(const std::map<std::string, PLAIN_SPECTRUM>& expected,
                   const CCondition& condition) {
    check(condition.m_mapPSMRes.size() == expected.size(), "every spectrum is read");
    for (const auto& [title, plain] : expected) {
        const auto found = condition.m_mapPSMRes.find(title);
        check(found != condition.m_mapPSMRes.end(), "titles are read");
        const CPSMRes& spectrum = found->second;
        check(spectrum.m_strTitle == title && spectrum.m_nCharge == plain.m_cHead.m_nCharge &&
                  same(spectrum.m_lfMH, plain.m_cHead.m_lfMH),
              "heads are read");
        check(spectrum.m_vPeps.size() == plain.m_vPeps.size(), "every candidate is read");
        for (std::size_t i = 0; i < plain.m_vPeps.size(); ++i) {
            check_pep(plain.m_vPeps[i].m_cPep, spectrum.m_vPeps[i]);
            check_sites(plain.m_vPeps[i], spectrum.m_vPeps[i], condition);
        }
    }
}

}  // namespace

void run(CBytes input) {
    const std::size_t maxPeps = 1 + input.Choice(8);
    const double maxFinalScore = input.Flag() ? 0.5 : std::numeric_limits<double>::infinity();
    write_scratch("a.res", input.Text());
    const auto expected = CPlainResults(input.Text()).Read(maxPeps, maxFinalScore);
    std::vector<CMod> mods(2);
    // With every list that fails kept, too, as small inputs have no long ones.
    for (const std::uint64_t longList : {CFailedLists::kLongList, std::uint64_t{0}}) {
        CCondition condition;
        condition.m_mapMods = {{"Oxidation[M]", &mods[0]}, {"Acetyl[N]", &mods[1]}};
        load_first_peps(condition, scratch_path("a.res"), maxPeps, maxFinalScore, longList);
        check_results(expected, condition);
    }
}

}  // namespace tessel::fuzz
