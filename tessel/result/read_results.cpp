// Result files come in, one block per spectrum: a head line, a title line, and a line for each
// candidate peptide. The result map is filled, by spectrum title.

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/word_reader.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tessel/result/result_text.h"

namespace tessel {
namespace {

// A spectrum has about so many candidates; growing a list of them one by one would cost as much as
// reading them.
constexpr std::size_t kUsualPeps = 10;

// "key;site;previous;next": the two residues may be any characters, ";" included.
bool parse_hit(std::string_view token, PRO_INFO& hit) {
    const char* const last = token.data() + token.size();
    const char* next = read_integer(token.data(), last, hit.m_nProID);
    if (next == nullptr || next == last || *next != ';') return false;
    next = read_integer(next + 1, last, hit.m_nSite);
    if (next == nullptr || last - next < 4 || next[0] != ';' || next[2] != ';') return false;
    hit.m_cPrev = next[1];
    hit.m_cNext = next[3];
    return true;
}

// Reads the fields of a candidate behind its rank, in the order of the file. Every function is
// false when a field cannot be read as its kind.
template <class Tokens>
class CPepFields {
public:
    CPepFields(CCondition& condition, Tokens& tokens)
        : m_cCondition(condition), m_cTokens(tokens) {}

    bool Read(const CPSMRes& psm, CPepRes& pep) {
        std::string_view sequence;
        if (!m_cTokens.Token(sequence)) return false;
        pep.m_strSeq = sequence;
        return Measure(pep.m_lfPepMass) && Measure(pep.m_lfScore) && Measure(pep.m_lfFinalScore) &&
               Number(pep.m_lfQValue) && Sites(pep) && Byte(pep.m_ucAuxMax) && Flag(pep.m_bDecoy) &&
               Byte(pep.m_ucAux1) && Hits(psm.m_strTitle, pep) && Byte(pep.m_ucAux2) &&
               Numbers(pep.m_lfSubScores) && Numbers(pep.m_nAuxA) && Numbers(pep.m_nAuxB);
    }

private:
    template <class Value>
    bool Number(Value& value) {
        std::string_view token;
        if (!m_cTokens.Token(token)) return false;
        const char* const last = token.data() + token.size();
        if constexpr (std::is_floating_point_v<Value>) {
            return read_double(token.data(), last, value) != nullptr;
        } else {
            return read_integer(token.data(), last, value) != nullptr;
        }
    }

    template <class List>
    bool Numbers(List& values) {
        for (auto& value : values) {
            if (!Number(value)) return false;
        }
        return true;
    }

    // The numbers by which candidates are compared and selected.
    bool Measure(double& value) { return Number(value) && !std::isnan(value); }

    bool Byte(unsigned char& byte) {
        int value = 0;
        if (!Number(value)) return false;
        byte = static_cast<unsigned char>(value);
        return true;
    }

    bool Flag(unsigned char& flag) {
        int value = 0;
        if (!Number(value)) return false;
        flag = value != 0 ? 1 : 0;
        return true;
    }

    bool Sites(CPepRes& pep) {
        unsigned count = 0;
        if (!Number(count) || count > std::numeric_limits<unsigned char>::max()) return false;
        pep.Clean();
        pep.m_ucModNum = static_cast<unsigned char>(count);
        if (count > 0) pep.m_pMods = new MOD_SITE[count];
        return std::all_of(pep.m_pMods, pep.m_pMods + count,
                           [this](MOD_SITE& site) { return Site(site); });
    }

    bool Site(MOD_SITE& site) {
        std::string_view name;
        if (!Byte(site.m_ucPos) || !m_cTokens.Token(name)) return false;
        site.m_pMod = Modification(name);
        return true;
    }

    // A file names the same few modifications again and again, out of a hundred thousand.
    const CMod* Modification(std::string_view name) {
        if (const auto known = m_mapKnown.find(name); known != m_mapKnown.end()) {
            return known->second;
        }
        const auto [entry, isNew] = m_cCondition.m_mapMods.try_emplace(std::string(name), nullptr);
        return m_mapKnown.emplace(entry->first, entry->second).first->second;
    }

    // A count that the file cannot hold is refused at once: reading up to the end of the file for
    // each of many such records would take for ever.
    bool Hits(const std::string& title, CPepRes& pep) {
        constexpr std::uint64_t kShortestHit = 8;  // a blank and "0;0;A;B"
        int count = 0;
        if (!Number(count) || count < 0) return false;
        if (!m_cTokens.MayHold(static_cast<std::uint64_t>(count) * kShortestHit)) return false;
        for (int i = 0; i < count; ++i) {
            std::string_view token;
            PRO_INFO hit;
            if (!m_cTokens.Token(token) || !parse_hit(token, hit)) return false;
            pep.m_setProteins.insert(pep.m_setProteins.end(), hit);
        }
        if (pep.m_setProteins.size() != static_cast<std::size_t>(count)) {
            m_cCondition.Message("Invalid format: " + title + '\n', LOG_ALERT);
        }
        return true;
    }

    CCondition& m_cCondition;
    Tokens& m_cTokens;
    std::unordered_map<std::string_view, const CMod*> m_mapKnown;  // keys lie in m_mapMods
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

// The spectrum's entry in the map; one that is there already stays as it is.
CPSMRes& entry_of(std::map<std::string, CPSMRes>& results, const CPSMRes& spectrum) {
    const auto [entry, isNew] = results.try_emplace(spectrum.m_strTitle);
    if (isNew) entry->second = spectrum;
    return entry->second;
}

struct DROPPED_RECORDS {
    std::uint64_t m_uCount = 0;
    std::uint64_t m_uFirstLine = 0;
};

void report_faults(const CCondition& condition, const std::string& path, bool unreadable,
                   const DROPPED_RECORDS& dropped) {
    if (unreadable) condition.Message("Cannot read the result file: " + path, LOG_ALERT);
    if (dropped.m_uCount == 0) return;
    condition.Message(
        joined_text("Malformed records dropped: ", dropped.m_uCount, ", the first on line ",
                    dropped.m_uFirstLine, " of the result file: ", path),
        LOG_ALERT);
}

// Reads one file. keep(peps, pep) decides about a candidate of the spectrum whose list is `peps`.
template <class Keep>
void load_file(CCondition& condition, const std::string& path, Keep keep) {
    const FilePtr file = open_file(path, "rb");
    if (!file) {
        condition.Message("Cannot open the result file: " + path, LOG_ALERT);
        return;
    }
    CResultText text(file.get());
    CPepFields<CResultText> fields(condition, text);
    CPSMRes spectrum;  // as its head tells; its own list stays empty
    std::vector<CPepRes>* peps = nullptr;
    DROPPED_RECORDS dropped;
    std::string_view token;
    while (text.NextRecord(token)) {
        CPepRes pep;
        const bool isHead = token == "S";
        const bool isGood = isHead ? read_head(text, spectrum) : fields.Read(spectrum, pep);
        if (!isGood) {
            if (dropped.m_uCount++ == 0) dropped.m_uFirstLine = text.RecordLine();
            text.LeaveRecord();
            continue;
        }
        if (isHead || peps == nullptr) peps = &entry_of(condition.m_mapPSMRes, spectrum).m_vPeps;
        if (isHead) continue;
        pep.m_lfMassDev = spectrum.m_lfMH - pep.m_lfPepMass;
        keep(*peps, std::move(pep));
        text.LinePiece(token);
    }
    report_faults(condition, path, text.Failed(), dropped);
}

}  // namespace

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
    CPepFields<CStreamTokens>(*this, tokens).Read(psm, pep);
    pep.m_lfMassDev = psm.m_lfMH - pep.m_lfPepMass;
    return 1;
}

int CCondition::_LoadResult(const std::string& path, const unsigned long long& maxPeps,
                            const double& maxFinalScore) {
    load_file(*this, path, [&](std::vector<CPepRes>& peps, CPepRes&& pep) {
        if (peps.size() >= maxPeps || pep.m_lfFinalScore > maxFinalScore) return;
        if (peps.empty()) peps.reserve(std::min<std::size_t>(maxPeps, kUsualPeps));
        peps.push_back(std::move(pep));
    });
    return 1;
}

int CCondition::_LoadGroupResult(const std::string& path) {
    load_file(*this, path, [](std::vector<CPepRes>& peps, CPepRes&& pep) {
        if (peps.empty()) {
            peps.push_back(std::move(pep));
        } else if (CPepRes::ConfidentByQV(pep, peps.front())) {
            peps.front() = std::move(pep);
        }
    });
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
