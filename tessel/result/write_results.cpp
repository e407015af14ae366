// The result map comes in, cleaned and sorted; a result file with the best ranks of every spectrum
// goes out.

#include <string>
#include <utility>

#include "tessel/base/end_process.h"
#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tessel/result/score_key.h"

namespace tessel {
namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 20;

// Each field stands behind a tab.

template <class Integer>
void add_integer(std::string& text, Integer value) {
    text += '\t';
    append_integer(text, value);
}

void add_fixed(std::string& text, double value) {
    text += '\t';
    append_fixed(text, value, 6);
}

void add_general(std::string& text, double value) {
    text += '\t';
    append_general(text, value);
}

void add_head(std::string& text, const CPSMRes& spectrum) {
    text += 'S';
    add_fixed(text, spectrum.m_lfMH);
    add_integer(text, spectrum.m_nCharge);
    text += '\n';
    text += spectrum.m_strTitle;
    text += '\n';
}

void add_sites(std::string& text, const CPepRes& pep) {
    const std::size_t count = pep.SiteNum();
    add_integer(text, count);
    for (std::size_t i = 0; i < count; ++i) {
        const MOD_SITE& site = pep.m_pMods[i];
        add_integer(text, unsigned{site.m_ucPos});
        text += '\t';
        text += site.m_pMod == nullptr ? "NULL" : site.m_pMod->m_strName;
    }
}

void add_hits(std::string& text, const std::set<PRO_INFO>& hits) {
    add_integer(text, hits.size());
    for (const PRO_INFO& hit : hits) {
        add_integer(text, hit.m_nProID);
        text += ';';
        append_integer(text, hit.m_nSite);
        text += ';';
        text += hit.m_cPrev;
        text += ';';
        text += hit.m_cNext;
    }
}

void add_pep(std::string& text, std::size_t rank, const CPepRes& pep) {
    append_integer(text, rank);
    text += '\t';
    text += pep.m_strSeq;
    add_fixed(text, pep.m_lfPepMass);
    add_fixed(text, pep.m_lfScore);
    add_general(text, pep.m_lfFinalScore);
    add_general(text, pep.m_lfQValue);
    add_sites(text, pep);
    add_integer(text, unsigned{pep.m_ucAuxMax});
    add_integer(text, unsigned{pep.m_bDecoy});
    add_integer(text, unsigned{pep.m_ucAux1});
    add_hits(text, pep.m_setProteins);
    add_integer(text, unsigned{pep.m_ucAux2});
    for (const double score : pep.m_lfSubScores)
        add_fixed(text, score);
    for (const int number : pep.m_nAuxA)
        add_integer(text, number);
    for (const int number : pep.m_nAuxB)
        add_integer(text, number);
    text += '\n';
}

// Writes and empties the text. A failure stays in the stream's error indicator.
void flush(std::string& text, std::FILE* file) {
    std::fwrite(text.data(), 1, text.size(), file);
    text.clear();
}

}  // namespace

void CCondition::WriteFinalResult(const std::string& path, const double&) const {
    FilePtr file = open_file(path, "wb");
    if (!file) {
        Message("Cannot open the file: " + path + "!\n", LOG_ALERT);
        end_process(1);
    }
    Message("Write result files...\n", LOG_DEBUG);
    OutputRes(file.get());
    if (!close_file(std::move(file))) {
        Message("Failed to write the result file: " + path, LOG_ALERT);
    }
}

void CCondition::OutputRes(std::FILE* file) const {
    std::string text;
    for (const auto& [title, spectrum] : m_mapPSMRes) {
        add_head(text, spectrum);
        std::size_t rank = 0;
        double previous = 1000000.0;
        for (const CPepRes& pep : spectrum.m_vPeps) {
            if (rounded_score(pep.m_lfScore) != rounded_score(previous)) {
                ++rank;
                previous = pep.m_lfScore;
            }
            if (rank > m_tPepNum) break;
            add_pep(text, rank, pep);
            if (text.size() >= kBlockSize) flush(text, file);
        }
        if (text.size() >= kBlockSize) flush(text, file);
    }
    flush(text, file);
}

}  // namespace tessel
