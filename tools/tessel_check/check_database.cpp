// The protein database comes in, line by line; reported is what its reader takes otherwise than its
// maker may have meant, and what will become of the target-decoy database.

#include <array>
#include <cstdint>
#include <unordered_set>

#include "tessel/base/line_reader.h"
#include "tessel/base/message_text.h"
#include "tessel/base/text.h"
#include "tessel/condition/constants.h"
#include "tessel/database/target_decoy_file.h"
#include "tools/tessel_check/checks.h"
#include "tools/tessel_check/names.h"
#include "tools/tessel_check/progress.h"

namespace tessel::check {
namespace {

constexpr std::array<std::string_view, 4> kDecoyTags = {"REV_", "rev_", "DECOY_", "XXX_"};

// How often something was met, and where first.
struct SEEN {
    std::size_t m_tNumber = 0;
    std::size_t m_tFirstLine = 0;

    void Add(std::size_t line) {
        if (m_tNumber++ == 0) m_tFirstLine = line;
    }
};

bool looks_like_decoy(std::string_view accession) {
    for (const std::string_view tag : kDecoyTags) {
        if (accession.starts_with(tag)) return true;
    }
    return false;
}

class CDatabaseCheck {
public:
    CDatabaseCheck(const CCondition& condition, CReport& report)
        : m_cCondition(condition), m_cReport(report), m_strPath(condition.m_strFastaPath) {}

    void Run(bool progress) {
        CProgress shown(m_strPath, progress);
        CLineReader lines(m_strPath);
        std::string_view line;
        for (m_tLine = 1; lines.ReadLine(line); ++m_tLine) {
            shown.Read(line.size() + 1);
            if (line.starts_with('>')) {
                EndEntry();
                BeginEntry(line.substr(1));
            } else if (m_tEntries > 0) {
                AddResidues(line);
            } else if (!trimmed(line).empty()) {
                m_cBeforeEntries.Add(m_tLine);
            }
        }
        EndEntry();
        Report(lines.IsOpen() && !lines.Failed());
    }

private:
    PLACE At(std::size_t line) const { return {m_strPath, line}; }

    void BeginEntry(std::string_view header) {
        ++m_tEntries;
        m_tHeaderLine = m_tLine;
        m_tResiduesOfEntry = 0;
        const std::string_view accession = header.substr(0, header.find_first_of(" \t"));
        if (accession.empty()) {
            m_cReport.Warning("missing-accession", At(m_tLine),
                              "the entry has no accession; its proteins cannot be told in results",
                              "Write the accession directly behind \">\".");
        } else if (!m_setAccessions.insert(std::hash<std::string_view>()(accession)).second) {
            m_cReport.Warning("duplicate-accession", At(m_tLine),
                              in_quotes(accession) +
                                  " is the accession of an earlier entry, too; "
                                  "results cannot tell them apart",
                              "Remove or rename one of the two.");
        }
        if (looks_like_decoy(accession)) m_cDecoys.Add(m_tLine);
    }

    void AddResidues(std::string_view line) {
        std::array<bool, 256> unusual{};
        bool anyUnusual = false;
        for (const char c : line) {
            const auto byte = static_cast<unsigned char>(c);
            if (m_vUsual[byte]) {
                ++m_tResiduesOfEntry;
            } else if (!is_blank(c)) {
                ++m_tResiduesOfEntry;
                unusual[byte] = anyUnusual = true;
            }
        }
        if (!anyUnusual) return;
        for (std::size_t byte = 0; byte < unusual.size(); ++byte) {
            if (unusual[byte]) m_vUnusual[byte].Add(m_tLine);
        }
    }

    void EndEntry() {
        if (m_tEntries == 0) return;
        m_tResidues += m_tResiduesOfEntry;
        if (m_tResiduesOfEntry > 0) return;
        m_cReport.Warning("empty-sequence", At(m_tHeaderLine),
                          "the entry has no residues; it is a protein without peptides",
                          "Remove it or add its sequence.");
    }

    void ReportLetters() {
        for (std::size_t byte = 0; byte < m_vUnusual.size(); ++byte) {
            const SEEN& seen = m_vUnusual[byte];
            if (seen.m_tNumber == 0) continue;
            const char letter = static_cast<char>(byte);
            const std::string message = joined_text(
                in_quotes(std::string_view(&letter, 1)), " weighs nothing by the residue table; ",
                seen.m_tNumber, " lines hold it, this is the first");
            if (is_upper(letter)) {
                m_cReport.Note("residue-without-mass", At(seen.m_tFirstLine), message);
            } else {
                m_cReport.Warning("unusual-letter", At(seen.m_tFirstLine), message,
                                  "Write sequences in capitals from A to Z.");
            }
        }
    }

    void Report(bool readable) {
        if (!readable) {
            m_cReport.Error("unreadable-file", At(0), "the database cannot be read to its end",
                            "Check its permissions and its disk.");
        }
        if (m_tEntries == 0) {
            m_cReport.Error("no-entries", At(0), "no line begins with \">\"; nothing is searched",
                            "Name a FASTA file.");
            return;
        }
        if (m_cBeforeEntries.m_tNumber > 0) {
            m_cReport.Warning("text-before-entry", At(m_cBeforeEntries.m_tFirstLine),
                              joined_text(m_cBeforeEntries.m_tNumber,
                                          " lines in front of the first entry are ignored"),
                              "Begin the file with \">\".");
        }
        ReportLetters();
        if (m_cDecoys.m_tNumber > 0 && m_cCondition.m_bAutoRev) {
            m_cReport.Warning("decoys-already", At(m_cDecoys.m_tFirstLine),
                              joined_text(m_cDecoys.m_tNumber, " of ", m_tEntries,
                                          " entries look like decoys, this is the first; decoys "
                                          "of them are made, too"),
                              "Set auto_rev=0, or use the database without decoys.");
        }
        m_cReport.Note("database", At(0),
                       joined_text(m_tEntries, " entries, ", m_tResidues, " residues"));
    }

    const CCondition& m_cCondition;
    CReport& m_cReport;
    const std::string m_strPath;
    std::array<bool, 256> m_vUsual = UsualLetters(m_cCondition);
    std::array<SEEN, 256> m_vUnusual{};
    std::unordered_set<std::size_t> m_setAccessions;  // their hashes: 64 bits tell them apart
    SEEN m_cBeforeEntries;
    SEEN m_cDecoys;
    std::size_t m_tLine = 0;
    std::size_t m_tHeaderLine = 0;
    std::size_t m_tEntries = 0;
    std::size_t m_tResidues = 0;
    std::size_t m_tResiduesOfEntry = 0;

    // Those that weigh something; all capitals where there is no residue table.
    static std::array<bool, 256> UsualLetters(const CCondition& condition) {
        std::array<bool, 256> usual{};
        const auto& masses = condition.m_cAlphaBet.m_lfMass;
        const bool anyMass = masses['A' - 'A'] > 0.0;
        for (char letter = 'A'; letter <= 'Z'; ++letter) {
            const auto index = static_cast<std::size_t>(letter - 'A');
            usual[static_cast<unsigned char>(letter)] = !anyMass || masses[index] != 0.0;
        }
        return usual;
    }
};

void note_target_decoy(const CCondition& condition, CReport& report) {
    if (!condition.m_bAutoRev) return;
    const std::string target = condition.m_strFastaPath + _TD_FASTA;
    const PLACE place{target, 0};
    if (is_fresh_target_decoy(target, condition.m_strFastaPath)) {
        report.Note("target-decoy", place,
                    "the target-decoy database is not older than the database; it is used again");
    } else if (path_exists(target)) {
        report.Note(
            "target-decoy", place,
            "the target-decoy database is older than the database or empty; it is made anew");
    } else {
        report.Note("target-decoy", place, "the target-decoy database will be made");
    }
}

}  // namespace

void check_database(const CCondition& condition, bool progress, CReport& report) {
    const auto status = file_status(condition.m_strFastaPath);
    if (!status || status->m_bFolder) return;  // reported with its key
    CDatabaseCheck(condition, report).Run(progress);
    note_target_decoy(condition, report);
}

}  // namespace tessel::check
