// Result files come in, one block per spectrum: a head line, a title line, and a line for each
// candidate peptide. The result map is filled, by spectrum title.

#include <algorithm>
#include <cmath>
#include <concepts>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessel/base/little_endian.h"
#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/word_reader.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tessel/result/failed_lists.h"
#include "tessel/result/load_results.h"
#include "tessel/result/result_text.h"

namespace tessel {
namespace {

// The modifications that files name: the same few again and again, out of a hundred thousand.
// A hash map of them still took an eighth of the time of loading. Here every name has its slot,
// which the next name that belongs there takes over.
class CKnownMods {
public:
    // A power of two as the number of slots, at most kSlots.
    CKnownMods(std::map<std::string, CMod*>& mods, std::size_t slots)
        : m_mapMods(mods), m_vSlots(slots) {}

    // A name that is not in the map enters it with null.
    const CMod* Find(std::string_view name) {
        SLOT& slot = m_vSlots[hash_of(name) & (m_vSlots.size() - 1)];
        if (slot.m_strName != name) {
            const auto [entry, isNew] = m_mapMods.try_emplace(std::string(name), nullptr);
            slot = {entry->first, entry->second};
        }
        return slot.m_pMod;
    }

    static constexpr std::size_t kSlots = std::size_t{1} << 13;

private:
    struct SLOT {
        std::string_view m_strName;  // lies in the map
        const CMod* m_pMod = nullptr;
    };

    static std::size_t hash_of(std::string_view name) {
        std::uint64_t hash = name.size();
        const auto add = [&hash](std::uint64_t part) { hash = (hash ^ part) * 0x9E3779B97F4A7C15; };
        if (name.size() < 8) {
            for (const char c : name)
                add(static_cast<unsigned char>(c));
        } else {
            for (std::size_t i = 0; i + 8 < name.size(); i += 8)
                add(little_endian_64(name.data() + i));
            add(little_endian_64(name.data() + name.size() - 8));
        }
        return static_cast<std::size_t>(hash >> 51);  // the high bits depend on all characters
    }

    std::map<std::string, CMod*>& m_mapMods;
    std::vector<SLOT> m_vSlots;
};

// A source of fields: each function takes the next token and is false when it is not of this kind.
template <class Tokens>
concept TokenSource = requires(Tokens tokens, std::string_view word, unsigned count, double number,
                               PRO_INFO hit, std::uint64_t bytes) {
    { tokens.Word(word) } -> std::same_as<bool>;
    { tokens.Number(count) } -> std::same_as<bool>;
    { tokens.Number(number) } -> std::same_as<bool>;
    { tokens.Hit(hit) } -> std::same_as<bool>;
    { tokens.MayHold(bytes) } -> std::same_as<bool>;
};

// Reads the fields of a candidate behind its rank, in the order of the file. Every function is
// false when a field cannot be read as its kind.
template <TokenSource Tokens>
class CPepFields {
public:
    CPepFields(const CCondition& condition, CKnownMods& mods, Tokens& tokens,
               CFailedLists& failedLists)
        : m_cCondition(condition), m_cMods(mods), m_cTokens(tokens), m_cFailedLists(failedLists) {}

    bool Read(const CPSMRes& psm, CPepRes& pep) {
        std::string_view sequence;
        if (!m_cTokens.Word(sequence)) return false;
        pep.m_strSeq = sequence;
        return Measure(pep.m_lfPepMass) && Measure(pep.m_lfScore) && Measure(pep.m_lfFinalScore) &&
               m_cTokens.Number(pep.m_lfQValue) && Sites(pep) && Byte(pep.m_ucAuxMax) &&
               Flag(pep.m_bDecoy) && Byte(pep.m_ucAux1) && Hits(psm.m_strTitle, pep) &&
               FieldsBehindHits(pep);
    }

private:
    // Where a list begins, counted in tokens of the record; each site adds two.
    static constexpr std::uint64_t kFieldsBeforeHits = 11;

    static std::uint64_t HitsAt(const CPepRes& pep) {
        return kFieldsBeforeHits + 2 * std::uint64_t{pep.m_ucModNum};
    }

    bool FieldsBehindHits(CPepRes& pep) {
        if (UnsignedByte(pep.m_ucAux2) && Numbers(pep.m_lfSubScores) && Numbers(pep.m_nAuxA) &&
            Numbers(pep.m_nAuxB)) {
            return true;
        }
        m_cFailedLists.AddBadEnd(HitsAt(pep), static_cast<std::uint64_t>(m_nHits));
        return false;
    }

    template <class List>
    bool Numbers(List& values) {
        for (auto& value : values) {
            if (!m_cTokens.Number(value)) return false;
        }
        return true;
    }

    // The numbers by which candidates are compared and selected.
    bool Measure(double& value) { return m_cTokens.Number(value) && !std::isnan(value); }

    bool Byte(unsigned char& byte) {
        int value = 0;
        if (!m_cTokens.Number(value)) return false;
        byte = static_cast<unsigned char>(value);
        return true;
    }

    // Its low 8 bits, too, but an int would saturate at half the range; negative ones are taken as
    // in any other byte.
    bool UnsignedByte(unsigned char& byte) {
        std::int64_t value = 0;
        if (!m_cTokens.Number(value)) return false;
        value = std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                         std::numeric_limits<unsigned>::max());
        byte = static_cast<unsigned char>(value);
        return true;
    }

    bool Flag(unsigned char& flag) {
        int value = 0;
        if (!m_cTokens.Number(value)) return false;
        flag = value != 0 ? 1 : 0;
        return true;
    }

    bool Sites(CPepRes& pep) {
        unsigned count = 0;
        if (!m_cTokens.Number(count)) return false;
        if (count > std::numeric_limits<unsigned char>::max()) return false;
        pep.Clean();
        pep.m_ucModNum = static_cast<unsigned char>(count);
        if (count > 0) pep.m_pMods = new MOD_SITE[count];
        return std::all_of(pep.m_pMods, pep.m_pMods + count,
                           [this](MOD_SITE& site) { return Site(site); });
    }

    bool Site(MOD_SITE& site) {
        std::string_view name;
        if (!Byte(site.m_ucPos) || !m_cTokens.Word(name)) return false;
        site.m_pMod = m_cMods.Find(name);
        return true;
    }

    // A count that the file cannot hold is refused at once: reading up to the end of the file for
    // each of many such records would take for ever.
    bool Hits(const std::string& title, CPepRes& pep) {
        constexpr std::uint64_t kShortestHit = 8;  // a blank and "0;0;A;B"
        int count = 0;
        if (!m_cTokens.Number(count) || count < 0) return false;
        if (!m_cTokens.MayHold(static_cast<std::uint64_t>(count) * kShortestHit)) return false;
        if (m_cFailedLists.Holds(HitsAt(pep), static_cast<std::uint64_t>(count))) return false;
        for (m_nHits = 0; m_nHits < count; ++m_nHits) {
            PRO_INFO hit;
            if (!m_cTokens.Hit(hit)) return BadHit(pep);
            pep.m_setProteins.insert(pep.m_setProteins.end(), hit);
        }
        if (pep.m_setProteins.size() != static_cast<std::size_t>(count)) {
            m_cCondition.Message("Invalid format: " + title + '\n', LOG_ALERT);
        }
        return true;
    }

    bool BadHit(const CPepRes& pep) {
        m_cFailedLists.AddBadHit(HitsAt(pep), static_cast<std::uint64_t>(m_nHits));
        return false;
    }

    const CCondition& m_cCondition;
    CKnownMods& m_cMods;
    Tokens& m_cTokens;
    CFailedLists& m_cFailedLists;
    int m_nHits = 0;  // of the current record, as far as they are read
};

// A spectrum head, its "S" already taken: mass and charge on the rest of that line, the title on
// the next one. False when the file ends before the title.
bool read_head(CResultText& text, CPSMRes& spectrum) {
    std::string_view line;
    spectrum.m_lfMH = 0.0;
    spectrum.m_nCharge = 0;
    if (text.LinePiece(line)) {
        CWordReader words(line);
        std::string_view word;
        if (words.Word(word)) spectrum.m_lfMH = to_double(word);
        if (words.Word(word)) spectrum.m_nCharge = to_int(word);
    }
    if (!text.LinePiece(line)) return false;
    spectrum.m_strTitle = without_unprintable_tail(line);
    return true;
}

using ResultMap = std::map<std::string, CPSMRes>;

// The spectrum's entry in the map; one that is there already stays as it is. Most spectra of a file
// go right behind the one before, `previous`, where no search is needed.
ResultMap::iterator entry_of(ResultMap& results, ResultMap::iterator previous,
                             const CPSMRes& spectrum) {
    const std::size_t known = results.size();
    const auto hint = previous == results.end() ? previous : std::next(previous);
    const auto entry = results.try_emplace(hint, spectrum.m_strTitle);
    if (results.size() != known) entry->second = spectrum;
    return entry;
}

// Two ways to choose among the candidates of a file. Each is read into Fresh(), whatever becomes of
// it; `peps` is the list of its spectrum, null before there is one. Then Keep() decides about it,
// or Drop() takes it back because it could not be read.

// The first candidates of every spectrum, up to a number and a final score. All but the first of a
// list are read where they stay: moving them took a fifteenth of the time of loading.
class CFirstPeps {
public:
    CFirstPeps(std::uint64_t maxPeps, double maxFinalScore)
        : m_uMaxPeps(maxPeps), m_lfMaxFinalScore(maxFinalScore) {}

    CPepRes& Fresh(std::vector<CPepRes>* peps) {
        const bool isInPlace = peps != nullptr && !peps->empty() && peps->size() < m_uMaxPeps;
        m_pInPlace = isInPlace ? peps : nullptr;
        if (isInPlace) return peps->emplace_back();
        return m_cSpare = CPepRes();
    }
    void Keep(std::vector<CPepRes>& peps) {
        if (m_pInPlace != nullptr) {
            if (peps.back().m_lfFinalScore > m_lfMaxFinalScore) peps.pop_back();
            return;
        }
        if (peps.size() >= m_uMaxPeps || m_cSpare.m_lfFinalScore > m_lfMaxFinalScore) return;
        if (peps.empty()) peps.reserve(std::min<std::size_t>(m_uMaxPeps, kUsualPeps));
        peps.push_back(std::move(m_cSpare));
    }
    void Drop() {
        if (m_pInPlace != nullptr) m_pInPlace->pop_back();
    }

private:
    // A spectrum has about so many candidates; growing a list of them one by one would cost as much
    // as reading them.
    static constexpr std::size_t kUsualPeps = 10;

    std::uint64_t m_uMaxPeps;
    double m_lfMaxFinalScore;
    std::vector<CPepRes>* m_pInPlace = nullptr;  // the list whose last record is the fresh one
    CPepRes m_cSpare;
};

// The most confident candidate of every spectrum.
class CBestPep {
public:
    CPepRes& Fresh(std::vector<CPepRes>*) { return m_cSpare = CPepRes(); }
    void Keep(std::vector<CPepRes>& peps) {
        if (peps.empty()) {
            peps.push_back(std::move(m_cSpare));
        } else if (CPepRes::ConfidentByQV(m_cSpare, peps.front())) {
            peps.front() = std::move(m_cSpare);
        }
    }
    void Drop() {}

private:
    CPepRes m_cSpare;
};

void report_faults(const CCondition& condition, const std::string& path, bool unreadable,
                   const FAULT_COUNT& dropped) {
    if (unreadable) condition.Message("Cannot read the result file: " + path, LOG_ALERT);
    if (dropped.m_uFaults == 0) return;
    condition.Message(
        joined_text("Malformed records dropped: ", dropped.m_uFaults, ", the first on line ",
                    dropped.m_uFirstLine, " of the result file: ", path),
        LOG_ALERT);
}

// The records of one file on their way into the result map.
template <class Choice>
class CFileLoader {
public:
    CFileLoader(CCondition& condition, std::FILE* file, Choice choice, std::uint64_t longList)
        : m_mapResults(condition.m_mapPSMRes),
          m_cText(file, longList),
          m_cMods(condition.m_mapMods, CKnownMods::kSlots),
          m_cFields(condition, m_cMods, m_cText, m_cText.FailedLists()),
          m_cChoice(choice),
          m_cEntry(m_mapResults.end()) {}

    void Load(const CCondition& condition, const std::string& path) {
        FAULT_COUNT dropped;
        std::string_view token;
        while (m_cText.NextRecord(token)) {
            if (token == "S" ? Head() : Pep()) continue;
            dropped.Add(m_cText.RecordLine());
            m_cText.LeaveRecord();
        }
        report_faults(condition, path, m_cText.Failed(), dropped);
    }

private:
    bool Head() {
        if (!read_head(m_cText, m_cSpectrum)) return false;
        m_cEntry = entry_of(m_mapResults, m_cEntry, m_cSpectrum);
        return true;
    }

    bool Pep() {
        const bool hasEntry = m_cEntry != m_mapResults.end();
        CPepRes& pep = m_cChoice.Fresh(hasEntry ? &m_cEntry->second.m_vPeps : nullptr);
        if (!m_cFields.Read(m_cSpectrum, pep)) {
            m_cChoice.Drop();
            return false;
        }
        pep.m_lfMassDev = m_cSpectrum.m_lfMH - pep.m_lfPepMass;
        if (!hasEntry) m_cEntry = entry_of(m_mapResults, m_cEntry, m_cSpectrum);
        m_cChoice.Keep(m_cEntry->second.m_vPeps);
        m_cText.SkipLine();
        return true;
    }

    ResultMap& m_mapResults;
    CResultText m_cText;
    CKnownMods m_cMods;
    CPepFields<CResultText> m_cFields;
    Choice m_cChoice;
    ResultMap::iterator m_cEntry;  // of the spectrum; the end before the first one
    CPSMRes m_cSpectrum;           // as its head tells; its own list stays empty
};

template <class Choice>
void load_file(CCondition& condition, const std::string& path, const Choice& choice,
               std::uint64_t longList) {
    const FilePtr file = open_file(path, "rb");
    if (!file) {
        condition.Message("Cannot open the result file: " + path, LOG_ALERT);
        return;
    }
    CFileLoader<Choice>(condition, file.get(), choice, longList).Load(condition, path);
}

}  // namespace

void load_first_peps(CCondition& condition, const std::string& path, std::uint64_t maxPeps,
                     double maxFinalScore, std::uint64_t longList) {
    load_file(condition, path, CFirstPeps(maxPeps, maxFinalScore), longList);
}

int CCondition::InitialResMap() {
    m_mapPSMRes.clear();
    std::set<std::string_view> shared;
    for (const CSpectrum& spectrum : m_vSpectra) {
        const auto [entry, isNew] = m_mapPSMRes.try_emplace(spectrum.m_strTitle);
        if (!isNew) shared.insert(spectrum.m_strTitle);
        entry->second.m_strTitle = spectrum.m_strTitle;
        entry->second.m_nCharge = spectrum.m_nCharge;
        entry->second.m_lfMH = spectrum.m_lfMH;
    }
    if (!shared.empty()) {
        Message(message_text("Titles that several spectra share, the last of which is kept: ",
                             shared.size()),
                LOG_WARNING);
    }
    return 1;
}

int CCondition::_ReadOnePep(const CPSMRes& psm, CPepRes& pep, char* buffer, std::FILE* file) {
    CStreamTokens tokens(file, buffer);
    CKnownMods mods(m_mapMods, 1);
    CFailedLists none;  // nothing is learnt from one record
    CPepFields<CStreamTokens>(*this, mods, tokens, none).Read(psm, pep);
    pep.m_lfMassDev = psm.m_lfMH - pep.m_lfPepMass;
    return 1;
}

int CCondition::_LoadResult(const std::string& path, const unsigned long long& maxPeps,
                            const double& maxFinalScore) {
    load_first_peps(*this, path, maxPeps, maxFinalScore, CFailedLists::kLongList);
    return 1;
}

int CCondition::_LoadGroupResult(const std::string& path) {
    load_file(*this, path, CBestPep(), CFailedLists::kLongList);
    return 1;
}

int CCondition::LoadResult(const std::vector<std::string>& paths, const unsigned long long& maxPeps,
                           const double& maxFinalScore) {
    for (const std::string& path : paths)
        _LoadResult(path, maxPeps, maxFinalScore);
    SortAndClean(CPepRes::ScoreGreater);
    return 1;
}

int CCondition::LoadGroupResult(const std::vector<std::string>& paths, const unsigned long long&,
                                const double&) {
    for (const std::string& path : paths)
        _LoadGroupResult(path);
    SortAndClean(CPepRes::ConfidentByQV);
    return 1;
}

}  // namespace tessel
