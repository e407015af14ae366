#pragma once

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessel {

/// Closes a C stream that goes out of scope; the result of closing is lost, so a writer that must
/// know it calls close_file() instead.
struct CLOSE_FILE {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CLOSE_FILE>;

struct FILE_STATUS {
    bool m_bFolder = false;
    bool m_bRegular = false;          ///< neither a folder nor a device or pipe
    std::uint64_t m_uSize = 0;        ///< bytes
    std::int64_t m_nTime = 0;         ///< last modification, seconds since 1970
    std::int64_t m_nNanoseconds = 0;  ///< of that time, as far as the file system keeps them
    std::uint64_t m_uIdentity = 0;    ///< another one for a file renamed over this one; 0: unknown
};

/// The one place where path texts, which use backslashes, take the host's form. Every function
/// below applies it; nothing else does, so that fields and messages keep the text as given.
std::string host_path(std::string_view path);

/// Any kind of file system entry counts. A folder may be named with or without a last separator.
bool path_exists(const std::string& path);
std::optional<FILE_STATUS> file_status(const std::string& path);
bool same_file(const std::string& a, const std::string& b);

/// Opens with a binary mode of std::fopen ("rb", "wb", "ab+"). Null when the file cannot be opened
/// or is a folder.
FilePtr open_file(const std::string& path, const char* mode);
/// Opens an input stream in binary mode; false for a folder, too.
bool open_stream(std::ifstream& stream, const std::string& path);
/// Flushes and closes. True when every byte written has reached the file.
bool close_file(FilePtr file);
/// Bytes from the stream's position to the end of its file; 0 where that cannot be told (a pipe).
std::uint64_t bytes_left(std::FILE* file);

bool remove_file(const std::string& path);
/// Removes a file that was not written to its end and is closed, so that nobody takes it for a
/// whole one. A device or pipe stays.
void remove_incomplete(const std::string& path);
/// Replaces an existing target in one step.
bool rename_file(const std::string& from, const std::string& to);
/// The names in a folder in byte order, without "." and ".."; nothing when it cannot be listed.
std::optional<std::vector<std::string>> folder_entries(const std::string& path);

/// The process's current working directory, without a last separator; but "/" for the root of a
/// POSIX system, and there "." for a folder that was removed.
std::string working_folder();

}  // namespace tessel
