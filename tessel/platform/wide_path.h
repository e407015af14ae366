#pragma once

#include <string>

namespace tessel {

// Windows only: between the library's texts and the system's wide ones.

/// Texts are UTF-8 where they are valid UTF-8, otherwise in the system's code page.
std::wstring wide_text(const std::string& text);
/// The same for a path; a long one gets the prefix that lifts the limit of 260 characters.
std::wstring wide_path(const std::string& path);
/// A wide name as UTF-8 text.
std::string narrow_text(const std::wstring& wide);

}  // namespace tessel
