#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessel/base/line_reader.h"
#include "tessel/chem/residues.h"
#include "tools/tessel_check/report.h"

namespace tessel::check {

bool is_number(std::string_view text);
bool is_integer(std::string_view text);
std::vector<std::string_view> fields_of(std::string_view text, char delimiter);

/// One file of the chemistry: its lines, and findings about them.
class CTable {
public:
    CTable(std::string path, CReport& report) : m_strPath(std::move(path)), m_cReport(report) {}

    /// visit(line) for every line; false when there is none to read. The library reads most of
    /// these tables as far as they go, without a word; here an error in the middle is a finding.
    template <class Visit>
    bool VisitLines(Visit visit) {
        CLineReader lines(m_strPath);
        std::string_view line;
        for (m_tLine = 1; lines.ReadLine(line); ++m_tLine)
            visit(line);
        m_tLine = 0;
        if (lines.Failed()) {
            Error("unreadable-file", "the table cannot be read to its end",
                  "Check its permissions and its disk.");
        }
        return lines.IsOpen();
    }

    void Warning(std::string_view code, std::string message, std::string advice) {
        m_cReport.Warning(code, Place(), std::move(message), std::move(advice));
    }
    void Error(std::string_view code, std::string message, std::string advice) {
        m_cReport.Error(code, Place(), std::move(message), std::move(advice));
    }
    /// A line that is neither a record, nor a comment, nor empty.
    void Skipped(std::string_view line, const std::string& reason);
    void HalfRead(const std::string& what) {
        Warning("half-read-record", what, "Correct the record.");
    }
    /// Tells of a name that an earlier line had; `fate` says which of the two counts.
    void Name(const std::string& name, std::string_view code, const std::string& fate);
    /// The line of a name; 0 when there is none.
    std::size_t LineOf(const std::string& name) const;
    PLACE Place() const { return {m_strPath, m_tLine}; }

private:
    std::string m_strPath;
    CReport& m_cReport;
    std::size_t m_tLine = 0;
    std::map<std::string, std::size_t> m_mapLines;  // of names
};

/// Checks the groups SYMBOL(COUNT) of a composition against the elements.
void check_composition(CTable& table, std::string_view composition, const ElementMasses& masses);

}  // namespace tessel::check
