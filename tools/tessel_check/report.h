#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::check {

enum class LEVEL { NOTE, WARNING, ERROR };

/// Where something was found. Line 0 is the file as a whole.
struct PLACE {
    std::string m_strFile;
    std::size_t m_tLine = 0;
};

struct FINDING {
    LEVEL m_eLevel;
    std::string m_strCode;  ///< names the kind of finding for programs, "unknown-key"
    PLACE m_cPlace;
    std::string m_strMessage;  ///< what is there, and what the library will do with it
    std::string m_strAdvice;   ///< what to do; empty for notes
};

/// What was found, in the order of the checks. Of findings of one kind in one file the first 20 are
/// kept and the others counted, so that a broken file of any size takes little memory.
class CReport {
public:
    void Error(std::string_view code, const PLACE& place, std::string message, std::string advice);
    void Warning(std::string_view code, const PLACE& place, std::string message,
                 std::string advice);
    void Note(std::string_view code, const PLACE& place, std::string message);

    /// The findings; of each kind that was cut off, one more that tells how many there are.
    std::vector<FINDING> Findings() const;
    std::size_t Number(LEVEL level) const;

private:
    void Add(LEVEL level, std::string_view code, const PLACE& place, std::string message,
             std::string advice);

    struct KIND {
        LEVEL m_eLevel;
        std::size_t m_tNumber;
    };
    std::vector<FINDING> m_vFindings;
    std::map<std::pair<std::string, std::string>, KIND> m_mapKinds;  // by file and code
};

/// One finding a line: level, place, message, advice, code. What is not printable is shown as \xNN.
std::string findings_as_text(const CReport& report);
/// One document, valid whatever bytes the checked files hold.
std::string findings_as_json(const CReport& report, const std::string& parameterFile);

}  // namespace tessel::check
