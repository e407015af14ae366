// Where the fuzzer enters: an input comes in, the target runs on it. All files lie in one folder
// for each process, in memory where the folder for temporary files is.

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "tessel/platform/file.h"
#include "tessel/platform/process.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

// Removed at the end of a run without findings.
class CScratchFolder {
public:
    CScratchFolder()
        : m_strPath((std::filesystem::temp_directory_path() /
                     ("tessel_fuzz_" + std::to_string(process_id())))
                        .string()) {
        std::filesystem::create_directories(m_strPath);
        std::filesystem::current_path(m_strPath);
    }
    ~CScratchFolder() {
        std::error_code ignored;
        std::filesystem::current_path("/", ignored);
        std::filesystem::remove_all(m_strPath, ignored);
    }
    CScratchFolder(const CScratchFolder&) = delete;
    CScratchFolder& operator=(const CScratchFolder&) = delete;

    const std::string& Path() const { return m_strPath; }

private:
    std::string m_strPath;
};

const CScratchFolder& scratch_folder() {
    static const CScratchFolder folder;
    return folder;
}

}  // namespace

void check(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "Broken: %s\n", promise);
    std::abort();
}

std::string scratch_path(const std::string& name) {
    return scratch_folder().Path() + '/' + name;
}

void write_scratch(const std::string& name, std::string_view bytes) {
    FilePtr file = open_file(scratch_path(name), "wb");
    // The bytes of an empty text may stand nowhere.
    const bool written = file && (bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(),
                                                               file.get()) == bytes.size());
    check(written && close_file(std::move(file)), "scratch files can be written");
}

std::string read_scratch(const std::string& name) {
    const FilePtr file = open_file(scratch_path(name), "rb");
    check(file != nullptr, "the file to read is there");
    std::string bytes(bytes_left(file.get()), '\0');
    check(std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size(),
          "scratch files can be read");
    return bytes;
}

void check_scratch_files(const std::string& names) {
    std::string found;
    const auto entries = folder_entries(scratch_folder().Path());
    for (const std::string& name : *entries)
        found += (found.empty() ? "" : " ") + name;
    if (found != names) std::fprintf(stderr, "Files: %s\n", found.c_str());
    check(found == names, "no files are left behind");
}

}  // namespace tessel::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    tessel::fuzz::scratch_path("");
    // Messages are still put together, but go nowhere.
    std::cout.setstate(std::ios::badbit);
    std::cerr.setstate(std::ios::badbit);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tessel::fuzz::run(
        tessel::fuzz::CBytes(std::string_view(reinterpret_cast<const char*>(data), size)));
    return 0;
}
