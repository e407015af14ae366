#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tessel/platform/process.h"
#include "tests/support/system.h"

namespace tessel::test {
namespace {

namespace fs = std::filesystem;

// The source tree by its full path, on a system with drives too; the working folder may change
// later. Tests ask for it before main(), too.
const fs::path& source_folder() {
    static const fs::path kFolder = fs::absolute(TESSEL_SOURCE_FOLDER);
    return kFolder;
}
[[maybe_unused]] const fs::path& kFromTheStart = source_folder();

// The number of the process that runs the tests. A child that starts the program anew learns it
// from the environment, so that both mean the same files.
const std::string& run_number() {
    static const std::string number = [] {
        constexpr const char* kName = "TESSEL_TEST_RUN";
        if (const char* inherited = std::getenv(kName)) return std::string(inherited);
        const std::string own = std::to_string(process_id());
        set_environment(kName, own);
        return own;
    }();
    return number;
}

// Counts the folders of the present test, for a child runs that test alone.
int next_folder_number() {
    static const testing::TestInfo* counted = nullptr;
    static int number = 0;
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    if (test != counted) number = 0;
    counted = test;
    return ++number;
}

}  // namespace

std::string temporary_path(const std::string& name) {
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::string file = "tessel_test_" + run_number();
    if (test != nullptr) file += std::string("_") + test->test_suite_name() + '_' + test->name();
    file += '_' + name;
    // Names of tests with parameters have slashes: one folder, so that none stays behind.
    std::replace(file.begin(), file.end(), '/', '_');
    return (fs::temp_directory_path() / file).string();
}

fs::path path_of(const std::string& path) {
    return std::u8string(path.begin(), path.end());
}

std::string read_file(const std::string& path) {
    std::ifstream file(path_of(path), std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void write_file(const std::string& path, const std::string& bytes) {
    std::ofstream file(path_of(path), std::ios::binary | std::ios::trunc);
    file << bytes << std::flush;
    if (!file) throw std::runtime_error("cannot write " + path);
}

std::string source_path(const std::string& path) {
    return (source_folder() / path).string();
}

void set_file_age(const std::string& path, int secondsAgo) {
    fs::last_write_time(path_of(path),
                        fs::file_time_type::clock::now() - std::chrono::seconds(secondsAgo));
}

CTempFolder::CTempFolder() : m_strPath(temporary_path(std::to_string(next_folder_number()))) {
    // In a child, the folder itself may be the working folder of its parent.
    std::error_code inUse;
    fs::remove_all(m_strPath, inUse);
    fs::create_directories(m_strPath);
}

CTempFolder::~CTempFolder() {
    std::error_code ignored;
    fs::remove_all(m_strPath, ignored);
}

std::string CTempFolder::Write(const std::string& name, const std::string& bytes) const {
    write_file(Path(name), bytes);
    return Path(name);
}

bool CTempFolder::Has(const std::string& name) const {
    return fs::exists(path_of(Path(name)));
}

CWorkingFolder::CWorkingFolder(const std::string& path) : m_strBefore(fs::current_path().string()) {
    fs::current_path(path);
}

CWorkingFolder::~CWorkingFolder() {
    std::error_code ignored;
    fs::current_path(m_strBefore, ignored);
}

}  // namespace tessel::test
