#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <cstdlib>

#include "tessel/platform/file.h"
#include "tessel/platform/wide_path.h"

namespace tessel {
namespace {

constexpr std::size_t kPlainPathLimit = 240;  // MAX_PATH less room for a file name's ending

std::wstring widened(const std::string& text, UINT codePage, DWORD flags = 0) {
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(length, 0)), L'\0');
    MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), length);
    return wide;
}

std::string narrowed(const std::wstring& wide, UINT codePage) {
    const int size = static_cast<int>(wide.size());
    const int length =
        WideCharToMultiByte(codePage, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    WideCharToMultiByte(codePage, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
    return text;
}

UINT code_page_of(const std::string& text) {
    return text.empty() || !widened(text, CP_UTF8, MB_ERR_INVALID_CHARS).empty() ? CP_UTF8 : CP_ACP;
}

std::wstring full_path(const std::wstring& path) {
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

std::wstring with_long_prefix(const std::wstring& fullPath) {
    if (fullPath.starts_with(L"\\\\?\\")) return fullPath;
    if (fullPath.starts_with(L"\\\\")) return L"\\\\?\\UNC" + fullPath.substr(1);
    return L"\\\\?\\" + fullPath;
}

// A folder text may end in a separator; the status calls refuse that, except for a root.
std::string without_last_separator(std::string path) {
    while (path.size() > 1 && path.back() == '\\' && path[path.size() - 2] != ':')
        path.pop_back();
    return path;
}

constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kNanosecondsPerTick = 100;
constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;

std::int64_t ticks_of(const FILETIME& time) {
    return (static_cast<std::int64_t>(time.dwHighDateTime) << 32) |
           static_cast<std::int64_t>(time.dwLowDateTime);
}

std::optional<BY_HANDLE_FILE_INFORMATION> file_identity(const std::string& path) {
    const HANDLE file = CreateFileW(wide_path(without_last_separator(host_path(path))).c_str(), 0,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION identity;
    const bool known = GetFileInformationByHandle(file, &identity) != 0;
    CloseHandle(file);
    if (!known) return std::nullopt;
    return identity;
}

// ---- Files that others hold ----

// An engine that replaces a file, or a scanner that looks at what is new, holds it for a moment.
constexpr int kFurtherTries = 20;
constexpr DWORD kPause = 10;  // milliseconds

bool is_shared_wrongly(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

// Tries the operation until it succeeds or fails for a reason that will not pass.
template <typename Operation, typename MayPass>
bool with_patience(Operation operation, MayPass mayPass) {
    bool done = operation();
    for (int i = 0; i < kFurtherTries && !done && mayPass(); ++i) {
        Sleep(kPause);
        done = operation();
    }
    return done;
}

// Renaming and removing are denied while a reader has the file.
bool changing_may_pass() {
    const DWORD error = GetLastError();
    return is_shared_wrongly(error) || error == ERROR_ACCESS_DENIED;
}

// Opening is denied for good for folders and for want of rights; for a moment where the name is of
// a file that is being removed, of which nothing can be said.
template <typename Open>
bool open_with_patience(const std::string& path, Open open) {
    const std::wstring widePath = wide_path(host_path(path));
    return with_patience(
        [&] { return open(widePath.c_str()); },
        [&] {
            const DWORD error = _doserrno;  // where streams leave the system's code
            return is_shared_wrongly(error) ||
                   (error == ERROR_ACCESS_DENIED &&
                    GetFileAttributesW(widePath.c_str()) == INVALID_FILE_ATTRIBUTES);
        });
}

}  // namespace

std::wstring wide_text(const std::string& text) {
    return widened(text, code_page_of(text));
}

std::wstring wide_path(const std::string& path) {
    const std::wstring wide = wide_text(path);
    const std::wstring full =
        full_path(wide);  // a short text may stand below a long working folder
    if (full.size() >= kPlainPathLimit) return with_long_prefix(full);
    return wide.size() < kPlainPathLimit ? wide : full;
}

std::string narrow_text(const std::wstring& wide) {
    return narrowed(wide, CP_UTF8);
}

std::string host_path(std::string_view path) {
    std::string host(path);
    std::replace(host.begin(), host.end(), '/', '\\');
    return host;
}

bool path_exists(const std::string& path) {
    return file_status(path).has_value();
}

std::optional<FILE_STATUS> file_status(const std::string& path) {
    if (path.empty()) return std::nullopt;
    WIN32_FILE_ATTRIBUTE_DATA data;
    const std::wstring wide = wide_path(without_last_separator(host_path(path)));
    if (GetFileAttributesExW(wide.c_str(), GetFileExInfoStandard, &data) == 0) return std::nullopt;
    FILE_STATUS status;
    status.m_bFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!status.m_bFolder && host_path(path).ends_with('\\')) return std::nullopt;
    status.m_uSize = (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
    status.m_bRegular = !status.m_bFolder;  // devices have no attributes
    const std::int64_t ticks = ticks_of(data.ftLastWriteTime);
    status.m_nTime = ticks / kTicksPerSecond - kSecondsFrom1601To1970;
    status.m_nNanoseconds = ticks % kTicksPerSecond * kNanosecondsPerTick;
    return status;
}

bool same_file(const std::string& a, const std::string& b) {
    const auto identityA = file_identity(a);
    const auto identityB = file_identity(b);
    return identityA && identityB &&
           identityA->dwVolumeSerialNumber == identityB->dwVolumeSerialNumber &&
           identityA->nFileIndexHigh == identityB->nFileIndexHigh &&
           identityA->nFileIndexLow == identityB->nFileIndexLow;
}

FilePtr open_file(const std::string& path, const char* mode) {
    const std::wstring wideMode(mode, mode + std::char_traits<char>::length(mode));
    FilePtr file;
    open_with_patience(path, [&](const wchar_t* widePath) {
        file.reset(_wfopen(widePath, wideMode.c_str()));
        return file != nullptr;
    });
    return file;
}

bool open_stream(std::ifstream& stream, const std::string& path) {
    return open_with_patience(path, [&](const wchar_t* widePath) {
        stream.clear();
        stream.open(widePath, std::ios::in | std::ios::binary);
        return stream.is_open();
    });
}

std::uint64_t bytes_left(std::FILE* file) {
    const long long position = _ftelli64(file);
    const long long size = _filelengthi64(_fileno(file));
    return position < 0 || size < position ? 0 : static_cast<std::uint64_t>(size - position);
}

bool remove_file(const std::string& path) {
    const std::wstring widePath = wide_path(host_path(path));
    return with_patience([&] { return DeleteFileW(widePath.c_str()) != 0; }, changing_may_pass);
}

bool rename_file(const std::string& from, const std::string& to) {
    const std::wstring source = wide_path(host_path(from));
    const std::wstring target = wide_path(host_path(to));
    return with_patience(
        [&] { return MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING) != 0; },
        changing_may_pass);
}

std::optional<std::vector<std::string>> folder_entries(const std::string& path) {
    if (path.empty()) return std::nullopt;
    WIN32_FIND_DATAW data;
    const UINT codePage = code_page_of(path);  // the names are to be joined to the path
    const std::string pattern = without_last_separator(host_path(path)) + "\\*";
    const HANDLE search = FindFirstFileW(wide_path(pattern).c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return std::nullopt;
    std::vector<std::string> names;
    do {
        std::string name = narrowed(data.cFileName, codePage);
        if (name != "." && name != "..") names.push_back(std::move(name));
    } while (FindNextFileW(search, &data) != 0);
    const bool whole = GetLastError() == ERROR_NO_MORE_FILES;
    FindClose(search);
    if (!whole) return std::nullopt;
    std::sort(names.begin(), names.end());
    return names;
}

std::string working_folder() {
    std::wstring folder(GetCurrentDirectoryW(0, nullptr), L'\0');
    folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
    while (!folder.empty() && folder.back() == L'\\')
        folder.pop_back();
    return narrow_text(folder);
}

}  // namespace tessel
