// An MGF file comes in, line by line; reported is what its reader takes otherwise than it stands
// there. One pass, one spectrum in memory, and of its peaks the last alone.

#include "tools/tessel_check/mgf_check.h"

#include <array>

#include "tessel/base/line_reader.h"
#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"
#include "tessel/spectra/entries.h"
#include "tessel/spectra/mgf_keys.h"
#include "tools/tessel_check/names.h"
#include "tools/tessel_check/progress.h"
#include "tools/tessel_check/spectrum_summary.h"

namespace tessel::check {
namespace {

// What a key's first letter makes of a line, and the key it stands for.
struct LETTER {
    char m_cLetter;
    std::string_view m_strKey;
    std::string_view m_strMeaning;
};
constexpr std::array kLetters = {LETTER{'C', "CHARGE=", "charge"},
                                 LETTER{'P', "PEPMASS=", "precursor m/z"},
                                 LETTER{'T', "TITLE=", "title"}};

bool follows_blanks_only(const char* end, std::string_view line) {
    return trimmed(line.substr(static_cast<std::size_t>(end - line.data()))).empty();
}

class CMgfCheck {
public:
    CMgfCheck(const std::string& path, std::size_t batchSize, CReport& report)
        : m_strPath(path), m_tBatchSize(batchSize), m_cReport(report), m_cSummary(path, report) {}

    void Run(bool progress) {
        CProgress shown(m_strPath, progress);
        CLineReader lines(m_strPath, kLinePiece);
        std::string_view line;
        for (m_tLine = 1; lines.ReadLine(line); ++m_tLine) {
            shown.Read(line.size() + 1);
            if (m_bInBlock) {
                ReadLine(line);
            } else if (line.starts_with("BEGIN")) {
                BeginBlock();
            } else {
                CheckOutside(line);
            }
        }
        if (m_bInBlock) {
            m_cReport.Warning("block-without-end", At(m_tBlockLine),
                              "the file ends inside of this block; what is there is read",
                              "Write END IONS behind it, or export the file anew.");
            EndBlock();
        }
        Finish(lines.IsOpen() && !lines.Failed());
    }

private:
    PLACE At(std::size_t line) const { return {m_strPath, line}; }

    void Warn(std::string_view code, std::string message, std::string advice) {
        m_cReport.Warning(code, At(m_tLine), std::move(message), std::move(advice));
    }

    void BeginBlock() {
        m_bInBlock = true;
        m_tBlockLine = m_tLine;
        m_bHasCharge = m_bHasMz = m_bPrecursorIsWrong = m_bUnsorted = m_bMerged = false;
        m_cSpectrum.m_strTitle.clear();
        m_tPeaks = 0;
        if (m_tBatchSize > 0 && m_tBlocks % m_tBatchSize == 0) {
            m_cSpectrum.m_nCharge = 0;
            m_lfMz = 0.0;
        }
    }

    void CheckOutside(std::string_view line) {
        for (const LETTER& letter : kLetters) {
            if (!line.starts_with(letter.m_strKey)) continue;
            Warn("line-outside-block",
                 in_quotes(line) + " stands outside of a block and is ignored",
                 "Write it into every block.");
        }
    }

    void ReadLine(std::string_view line) {
        const char key = line.empty() ? '\0' : line.front();
        if (is_digit(key)) {
            ReadPeak(line);
        } else if (key == 'E') {
            if (!line.starts_with("END")) {
                Warn("key-taken-for-another",
                     in_quotes(line) + " begins with \"E\" and ends the block",
                     "Remove the line or move it in front of the block.");
            }
            EndBlock();
        } else if (key == 'C' || key == 'P' || key == 'T') {
            ReadKey(line);
        } else if (line.starts_with("BEGIN")) {
            ++m_tNested;
            m_bMerged = true;
            m_cReport.Warning(
                "block-without-end", At(m_tBlockLine),
                joined_text("the block has no end before the next one begins on line ", m_tLine,
                            "; the two are read as one"),
                "Write END IONS between them.");
        } else if (!trimmed(line).empty() && is_number_start(trimmed(line).front())) {
            Warn("ignored-peak", in_quotes(line) + " does not begin with a digit and is ignored",
                 "Begin peaks with a digit.");
        }
    }

    static bool is_number_start(char c) { return is_digit(c) || c == '.' || c == '-' || c == '+'; }

    void ReadPeak(std::string_view line) {
        const char* const last = line.data() + line.size();
        double mz = 0.0;
        double intensity = 0.0;
        const char* end = read_double(line.data(), last, mz);
        const char* const second = end;
        end = end == nullptr ? nullptr : read_double(end, last, intensity);
        if (end == nullptr || end == last) {
            if (end == nullptr && !follows_blanks_only(second, line)) {
                Warn("half-read-peak",
                     in_quotes(line) + " has no intensity behind its m/z; 0 is taken",
                     "Write m/z, a blank and the intensity.");
            }
        } else if (!is_blank(*end)) {
            Warn("half-read-peak",
                 in_quotes(line) + " has text directly behind its numbers, which is ignored",
                 "Write m/z, a blank and the intensity.");
        }
        m_bUnsorted = m_bUnsorted || (m_tPeaks > 0 && !(mz >= m_lfLastMz));
        m_lfLastMz = mz;
        ++m_tPeaks;
    }

    void ReadKey(std::string_view line) {
        for (const LETTER& letter : kLetters) {
            if (line.front() != letter.m_cLetter || line.starts_with(letter.m_strKey)) continue;
            Warn("key-taken-for-another",
                 in_quotes(line) + " is taken for the " + std::string(letter.m_strMeaning) +
                     ": only the first letter of a key counts",
                 "Remove the line from the block.");
        }
        if (line.front() == 'C') {
            ReadCharge(text_from(line, kChargeAt), line.starts_with("CHARGE="));
        } else if (line.front() == 'P') {
            ReadMz(text_from(line, kMzAt), line.starts_with("PEPMASS="));
        } else {
            m_cSpectrum.m_strTitle = text_from(without_unprintable_tail(line), kTitleAt);
        }
    }

    // "2", "2+" and "+2" are understood; "2-" and "2+ and 3+" are charge 2.
    void ReadCharge(std::string_view text, bool reported) {
        const char* const last = text.data() + text.size();
        m_bHasCharge = true;
        m_cSpectrum.m_nCharge = 0;
        const char* end = read_integer(text.data(), last, m_cSpectrum.m_nCharge);
        if (!reported) return;
        if (end == nullptr) {
            m_bPrecursorIsWrong = true;
            Warn("not-a-number", "the charge " + in_quotes(text) + " is no number; 0 is taken",
                 "Write CHARGE=2+.");
            return;
        }
        if (end != last && *end == '+') ++end;
        if (follows_blanks_only(end, text)) return;
        Warn("trailing-text",
             joined_text("the charge ", in_quotes(text), " is read as ", m_cSpectrum.m_nCharge),
             "Write one charge, CHARGE=2+, and a block for each.");
    }

    // Behind the m/z an intensity may follow.
    void ReadMz(std::string_view text, bool reported) {
        const char* const last = text.data() + text.size();
        m_bHasMz = true;
        m_lfMz = 0.0;
        const char* const end = read_double(text.data(), last, m_lfMz);
        if (!reported) return;
        if (end == nullptr) {
            m_bPrecursorIsWrong = true;
            Warn("not-a-number",
                 "the precursor m/z " + in_quotes(text) + " is no number; 0 is taken",
                 "Write PEPMASS=500.25.");
        } else if (end != last && !is_blank(*end)) {
            Warn("trailing-text",
                 in_quotes(text) + " has text directly behind the precursor m/z, which is ignored",
                 "Write PEPMASS=500.25.");
        }
    }

    void EndBlock() {
        m_bInBlock = false;
        const std::size_t index = m_tBlocks++;
        const PLACE place = At(m_tBlockLine);
        ReportMissing(place);
        if (m_cSpectrum.m_strTitle.empty()) {
            // The reader's own titles differ from each other.
            m_cSpectrum.m_strTitle = joined_text("spectrum ", index, " without a title");
        }
        m_cSpectrum.m_lfMH = protonated_mass(m_lfMz, m_cSpectrum.m_nCharge);
        m_cSummary.Add(m_cSpectrum, place, m_bPrecursorIsWrong || !m_bHasCharge || !m_bHasMz);
        if (m_tPeaks == 0) m_cSummary.AddWithoutPeaks(m_cSpectrum, place);
        if (m_bUnsorted && !m_bMerged) m_cSummary.AddUnsortedPeaks(m_cSpectrum, place);
    }

    void ReportMissing(const PLACE& place) {
        if (m_cSpectrum.m_strTitle.empty()) {
            m_cReport.Warning("missing-title", place,
                              "the block has no title; one is made of its position in the file",
                              "Add TITLE=NAME.");
        }
        const std::string behind = ", that of the block before it (0 where a batch begins)";
        if (!m_bHasCharge) {
            m_cReport.Warning(
                "inherited-charge", place,
                joined_text("the block has no charge; it takes ", m_cSpectrum.m_nCharge, behind),
                "Add CHARGE=2+.");
        }
        if (!m_bHasMz) {
            m_cReport.Warning(
                "inherited-mass", place,
                "the block has no precursor m/z; it takes " + fixed_text(m_lfMz, 4) + behind,
                "Add PEPMASS=500.25.");
        }
    }

    void Finish(bool readable) {
        if (!readable) {
            m_cReport.Error("unreadable-file", At(0), "the file cannot be read to its end",
                            "Check its permissions and its disk.");
        } else if (m_tBlocks == 0) {
            m_cReport.Error("type-does-not-fit", At(0),
                            "no line begins with BEGIN: this is no MGF file; nothing is searched",
                            "Correct \"msmstype\" or the path.");
        }
        if (m_tNested > 0) {
            m_cReport.Note("spectra-missing", At(0),
                           joined_text(m_tNested,
                                       " spectra are counted that cannot be read; an "
                                       "alert tells so at the end of the file"));
        }
        m_cSummary.Finish();
    }

    const std::string m_strPath;
    const std::size_t m_tBatchSize;
    CReport& m_cReport;
    CSpectrumSummary m_cSummary;

    std::size_t m_tLine = 0;
    std::size_t m_tBlocks = 0;  // complete ones
    std::size_t m_tNested = 0;  // begins inside of a block

    // The present block.
    bool m_bInBlock = false;
    std::size_t m_tBlockLine = 0;
    CSpectrum m_cSpectrum;
    double m_lfMz = 0.0;
    bool m_bHasCharge = false;
    bool m_bHasMz = false;
    bool m_bPrecursorIsWrong = false;  // and that is reported
    std::size_t m_tPeaks = 0;
    double m_lfLastMz = 0.0;
    bool m_bUnsorted = false;
    bool m_bMerged = false;  // with the next one, for want of an end
};

}  // namespace

void check_mgf(const std::string& path, std::size_t batchSize, bool progress, CReport& report) {
    CMgfCheck(path, batchSize, report).Run(progress);
}

}  // namespace tessel::check
