#pragma once

#include <string>

#include "tessel/export.h"

namespace tessel {

class CCondition;

/// Writes the settings of a condition as a parameter file, which CConditionReader reads back.
/// Doubles are written with six significant digits. Texts are written as they are: one that holds a
/// line feed, ends in a carriage return or makes a line longer than 81919 characters does not read
/// back, and neither does a count above 2147483647.
class TESSEL_API CConditionWriter {
public:
    /// The condition is not owned and must live until the last call of Write().
    CConditionWriter(const std::string& path, const CCondition* condition);
    virtual ~CConditionWriter() = default;

    /// Replaces the file. One that cannot be opened is left alone, without a message; one that
    /// cannot be written completely is an alert and is removed.
    /// The last line tells when "Corvid.exe" in the working folder was modified, in local time:
    /// year, month, day, hour, minute and second, "." between. Without that program it is time
    /// zero, the start of 1970 in UTC, in local time as well.
    void Write() const;

    // The steps of Write(), in its order; each appends to `text`.

    void _WriteParam(std::string& text) const;   ///< section "param"
    void _WriteEngine(std::string& text) const;  ///< section "engine"
    void _WriteFilter(std::string& text) const;  ///< section "filter"
    void _WriteData(std::string& text) const;    ///< sections "file" and "datalist"
    void _WriteQuant(std::string& text) const;   ///< section "quant"
    void _WriteSystem(std::string& text) const;  ///< section "system"

    std::string m_strPath;           ///< the file to write
    const CCondition* m_pCondition;  ///< not owned
};

}  // namespace tessel
