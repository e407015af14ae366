#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tessel/export.h"

namespace tessel {

/// Looks single keys up in a sectioned text file of key=value lines.
/// A section begins at a line that starts with its name in brackets, whatever follows. A key is
/// found in a line that starts with the key and "="; blanks on either side of the key make it no
/// match. It is searched from its section to the end of the file: one that stands only in a later
/// section is found there. The value is everything behind "=", blanks included. Lines over 81919
/// characters count as several.
/// Every lookup opens and scans the file anew; parameter files are small, but for lists.
class TESSEL_API COptionTool {
public:
    /// Keeps both texts; the file is not opened before the first lookup, and may be missing.
    COptionTool(const std::string& path, const std::string& section);

    /// The key's value in m_strSection; the default when it is not found, and the empty text, not
    /// the default, when the file cannot be opened.
    std::string GetString(const char* key, const char* defaultValue) const;

    /// GetString() for the keys prefix + "1" to prefix + count, all by one scan.
    std::vector<std::string> GetStrings(std::string_view prefix, std::size_t count,
                                        const char* defaultValue) const;

    /// The key's value in a section of a file, as atoi reads it (0 for text that is no number); the
    /// default when it is not found, is empty, or the file cannot be opened.
    int _GetPrivateProfileInt(const std::string& section, const char* key, const int& defaultValue,
                              const std::string& path) const;

    std::string m_strPath;     ///< the file
    std::string m_strSection;  ///< the section that GetString() searches, without brackets
};

}  // namespace tessel
