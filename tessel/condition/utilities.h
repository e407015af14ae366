#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "tessel/export.h"

namespace tessel {

/// Appends every field of `text` to `out`, empty ones included: "a;;b;" has four, the empty text
/// has one. `out` is not cleared. The spectrum titles count on the positions of the fields;
/// CCondition::StringSplit is the splitter that drops empty fields.
TESSEL_API void _str_split(const std::string& text, std::vector<std::string>& out, char delimiter);

/// Reads the stream to its end through one buffer, and returns 0. Each line replaces the one before
/// it in the buffer, line feed included; only a line that fills the buffer exactly stays, and the
/// next one is appended. An empty stream leaves the buffer as it is.
/// `*buffer` is an array from new[] with room for `size` characters, at least 2 (otherwise nothing
/// is read). A longer line replaces it by a larger one, `size` on entry larger each time; the
/// caller owns the array left in `*buffer`, of the length left in `size`, and frees it with
/// delete[].
TESSEL_API int _get_line(std::FILE* stream, char** buffer, std::size_t& size);

/// Makes a folder path end with a backslash. An empty path stays empty.
TESSEL_API void AddSlash(std::string& path);

/// Runs a command through the system shell. In the foreground, any exit status but 0 ends the
/// process with status 1, after "The Program is exited when called " and the command's first word
/// on standard error. In the background the call returns at once and no result is looked at; on
/// Windows its first word must not be quoted then, because the shell would take it for a title.
/// Standard output is flushed before.
TESSEL_API void System(const std::string& command, bool inBackground);

/// Suspends the calling thread for that many milliseconds; not at all for 0 or less.
TESSEL_API void TSleep(int milliseconds);

/// True when both files exist and the target was last modified in the same second as the source or
/// later, so that a generated file can be reused.
TESSEL_API bool _IsValidFileTime(const std::string& target, const std::string& source);

}  // namespace tessel
