#pragma once

#include <string>

namespace tessel::test {

/// Writes the files of a search into a folder and runs it, from the parameter file to the final
/// result. `folder` is the folder's name, `text` what all paths call it, with a last separator.
void search_in(const std::string& folder, const std::string& text);
inline void search_in(const std::string& folder) {
    search_in(folder, folder);
}

}  // namespace tessel::test
