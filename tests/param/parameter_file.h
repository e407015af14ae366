#pragma once

#include <map>
#include <string>

#include "tessel/condition/condition.h"
#include "tests/support/temp_folder.h"

namespace tessel::test {

/// A parameter file in a folder of its own, beside the database, tables and output folder that it
/// names: a search that can start.
class CParameterFile {
public:
    CParameterFile();

    const CTempFolder& Folder() const { return m_cFolder; }
    std::string Path() const { return m_cFolder.Path("search.ini"); }
    /// Adds lines at the top of a section, where they precede and so override others.
    CParameterFile& Set(const std::string& section, const std::string& lines);
    /// Writes the file, every section in it, and returns its path.
    std::string Write() const;

private:
    CTempFolder m_cFolder;
    std::map<std::string, std::string> m_mapLines;
};

/// The settings that a parameter file holds, as texts by their keys ("msmspath1" stands for the
/// whole list; "fastapath" and "npep" show the field derived from them, too).
std::map<std::string, std::string> settings_of(const CCondition& condition);

}  // namespace tessel::test
