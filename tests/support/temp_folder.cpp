#include "tests/support/temp_folder.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tessel/platform/process.h"

namespace tessel::test {

std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void write_file(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << bytes << std::flush;
    if (!file) throw std::runtime_error("cannot write " + path);
}

std::string source_path(const std::string& path) {
    return TESSEL_SOURCE_FOLDER "/" + path;
}

void set_file_age(const std::string& path, int secondsAgo) {
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type::clock::now() - std::chrono::seconds(secondsAgo));
}

CTempFolder::CTempFolder() {
    static std::atomic<int> number{0};
    const std::string name =
        "tessel_test_" + std::to_string(process_id()) + '_' + std::to_string(++number);
    const auto path = std::filesystem::temp_directory_path() / name;
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
    m_strPath = path.string();
}

CTempFolder::~CTempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_strPath, ignored);
}

std::string CTempFolder::Write(const std::string& name, const std::string& bytes) const {
    write_file(Path(name), bytes);
    return Path(name);
}

bool CTempFolder::Has(const std::string& name) const {
    return std::filesystem::exists(Path(name));
}

CWorkingFolder::CWorkingFolder(const std::string& path)
    : m_strBefore(std::filesystem::current_path().string()) {
    std::filesystem::current_path(path);
}

CWorkingFolder::~CWorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(m_strBefore, ignored);
}

}  // namespace tessel::test
