#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "tessel/platform/file.h"

namespace tessel {

std::string host_path(std::string_view path) {
    std::string host(path);
    std::replace(host.begin(), host.end(), '\\', '/');
    return host;
}

bool path_exists(const std::string& path) {
    struct stat status;
    return stat(host_path(path).c_str(), &status) == 0;
}

std::optional<FILE_STATUS> file_status(const std::string& path) {
    struct stat status;
    if (stat(host_path(path).c_str(), &status) != 0) return std::nullopt;
    return FILE_STATUS{S_ISDIR(status.st_mode),
                       S_ISREG(status.st_mode),
                       static_cast<std::uint64_t>(status.st_size),
                       static_cast<std::int64_t>(status.st_mtim.tv_sec),
                       static_cast<std::int64_t>(status.st_mtim.tv_nsec),
                       static_cast<std::uint64_t>(status.st_ino)};
}

bool same_file(const std::string& a, const std::string& b) {
    struct stat statusA;
    struct stat statusB;
    return stat(host_path(a).c_str(), &statusA) == 0 && stat(host_path(b).c_str(), &statusB) == 0 &&
           statusA.st_dev == statusB.st_dev && statusA.st_ino == statusB.st_ino;
}

FilePtr open_file(const std::string& path, const char* mode) {
    FilePtr file(std::fopen(host_path(path).c_str(), mode));
    // Opening a folder for reading succeeds here; only reading it would fail.
    struct stat status;
    if (file && (fstat(fileno(file.get()), &status) != 0 || S_ISDIR(status.st_mode))) file.reset();
    return file;
}

bool open_stream(std::ifstream& stream, const std::string& path) {
    const auto status = file_status(path);
    if (status && status->m_bFolder) return false;
    stream.clear();
    stream.open(host_path(path), std::ios::in | std::ios::binary);
    return stream.is_open();
}

std::uint64_t bytes_left(std::FILE* file) {
    struct stat status;
    const off_t position = ftello(file);
    if (position < 0 || fstat(fileno(file), &status) != 0 || status.st_size < position) return 0;
    return static_cast<std::uint64_t>(status.st_size - position);
}

bool remove_file(const std::string& path) {
    return unlink(host_path(path).c_str()) == 0;
}

bool rename_file(const std::string& from, const std::string& to) {
    return std::rename(host_path(from).c_str(), host_path(to).c_str()) == 0;
}

std::optional<std::vector<std::string>> folder_entries(const std::string& path) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(host_path(path).c_str()), closedir);
    if (!folder) return std::nullopt;
    std::vector<std::string> names;
    const auto next = [&folder] {
        errno = 0;  // the end of a folder leaves it alone, an error does not
        return readdir(folder.get());
    };
    while (const dirent* entry = next()) {
        std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(std::move(name));
    }
    if (errno != 0) return std::nullopt;
    std::sort(names.begin(), names.end());
    return names;
}

std::string working_folder() {
    const std::unique_ptr<char, void (*)(void*)> folder(getcwd(nullptr, 0), std::free);
    return folder ? folder.get() : ".";
}

}  // namespace tessel
