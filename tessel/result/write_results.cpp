// The result map comes in, cleaned and sorted; a result file with the best ranks of every spectrum
// goes out.

#include <charconv>
#include <cstdint>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "tessel/base/end_process.h"
#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tessel/result/score_key.h"

namespace tessel {
namespace {

// The text on its way into the file, in blocks. Fields are formatted where they leave from; going
// through strings takes a quarter more time. A failure stays in the stream's error indicator.
class CBlockWriter {
public:
    explicit CBlockWriter(std::FILE* file) : m_pFile(file), m_vBlock(kBlockSize) {}

    void Text(std::string_view text) {
        if (text.size() > Room()) Flush();
        if (text.size() > Room()) {
            std::fwrite(text.data(), 1, text.size(), m_pFile);
            return;
        }
        m_tUsed += text.copy(m_vBlock.data() + m_tUsed, text.size());
    }
    void Char(char c) {
        *Space(1) = c;
        ++m_tUsed;
    }
    template <class Integer>
    void Number(Integer value) {
        EndAt(Written(Space(kMaxNumberText), value));
    }

    // Each of these stands behind a tab.
    void TextField(std::string_view text) {
        Char('\t');
        Text(text);
    }
    template <class Integer>
    void NumberField(Integer value) {
        EndAt(Written(FieldSpace(), value));
    }
    void FixedField(double value) { EndAt(write_fixed(FieldSpace(), value, 6)); }
    void GeneralField(double value) { EndAt(write_general(FieldSpace(), value)); }

    void Flush() {
        std::fwrite(m_vBlock.data(), 1, m_tUsed, m_pFile);
        m_tUsed = 0;
    }

private:
    static constexpr std::size_t kBlockSize = std::size_t{1} << 20;

    std::size_t Room() const { return m_vBlock.size() - m_tUsed; }
    char* Space(std::size_t size) {
        if (size > Room()) Flush();
        return m_vBlock.data() + m_tUsed;
    }
    char* FieldSpace() {
        char* const space = Space(1 + kMaxNumberText);
        *space = '\t';
        return space + 1;
    }
    // Most integers of a result have one digit: asking for it saves a thirtieth of the
    // instructions.
    template <class Integer>
    static char* Written(char* text, Integer value) {
        if (static_cast<std::uint64_t>(value) > 9) {
            return std::to_chars(text, text + kMaxNumberText, value).ptr;
        }
        *text = static_cast<char>('0' + value);
        return text + 1;
    }
    void EndAt(const char* end) { m_tUsed = static_cast<std::size_t>(end - m_vBlock.data()); }

    std::FILE* m_pFile;
    std::vector<char> m_vBlock;
    std::size_t m_tUsed = 0;
};

void write_head(CBlockWriter& out, const CPSMRes& spectrum) {
    out.Char('S');
    out.FixedField(spectrum.m_lfMH);
    out.NumberField(spectrum.m_nCharge);
    out.Char('\n');
    out.Text(spectrum.m_strTitle);
    out.Char('\n');
}

void write_sites(CBlockWriter& out, const CPepRes& pep) {
    const std::size_t count = pep.SiteNum();
    out.NumberField(count);
    for (std::size_t i = 0; i < count; ++i) {
        const MOD_SITE& site = pep.m_pMods[i];
        out.NumberField(unsigned{site.m_ucPos});
        out.TextField(site.m_pMod == nullptr ? std::string_view("NULL") : site.m_pMod->m_strName);
    }
}

void write_hits(CBlockWriter& out, const std::set<PRO_INFO>& hits) {
    out.NumberField(hits.size());
    for (const PRO_INFO& hit : hits) {
        out.NumberField(hit.m_nProID);
        out.Char(';');
        out.Number(hit.m_nSite);
        const char neighbours[] = {';', hit.m_cPrev, ';', hit.m_cNext};
        out.Text({neighbours, sizeof neighbours});
    }
}

void write_pep(CBlockWriter& out, std::size_t rank, const CPepRes& pep) {
    out.Number(rank);
    out.TextField(pep.m_strSeq);
    out.FixedField(pep.m_lfPepMass);
    out.FixedField(pep.m_lfScore);
    out.GeneralField(pep.m_lfFinalScore);
    out.GeneralField(pep.m_lfQValue);
    write_sites(out, pep);
    out.NumberField(unsigned{pep.m_ucAuxMax});
    out.NumberField(unsigned{pep.m_bDecoy});
    out.NumberField(unsigned{pep.m_ucAux1});
    write_hits(out, pep.m_setProteins);
    out.NumberField(unsigned{pep.m_ucAux2});
    for (const double score : pep.m_lfSubScores)
        out.FixedField(score);
    for (const int number : pep.m_nAuxA)
        out.NumberField(number);
    for (const int number : pep.m_nAuxB)
        out.NumberField(number);
    out.Char('\n');
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
        remove_incomplete(path);
        Message("Failed to write the result file: " + path, LOG_ALERT);
    }
}

void CCondition::OutputRes(std::FILE* file) const {
    CBlockWriter out(file);
    for (const auto& [title, spectrum] : m_mapPSMRes) {
        write_head(out, spectrum);
        std::size_t rank = 0;
        double previous = 1000000.0;
        for (const CPepRes& pep : spectrum.m_vPeps) {
            if (rounded_score(pep.m_lfScore) != rounded_score(previous)) {
                ++rank;
                previous = pep.m_lfScore;
            }
            if (rank > m_tPepNum) break;
            write_pep(out, rank, pep);
        }
    }
    out.Flush();
}

}  // namespace tessel
