// Runs a target on every file of its corpus folder, whole and cut off at up to 64 places. Exit
// status 1 for a folder without files; a broken promise ends the program.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kCuts = 64;

std::vector<std::uint8_t> bytes_of(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: PROGRAM CORPUS-FOLDER\n", stderr);
        return 1;
    }
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1], error))
        files.push_back(std::filesystem::absolute(entry.path()));
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        std::fprintf(stderr, "no files in %s\n", argv[1]);
        return 1;
    }
    LLVMFuzzerInitialize(&argc, &argv);
    for (const auto& file : files) {
        std::printf("%s\n", file.filename().string().c_str());
        std::fflush(stdout);
        const std::vector<std::uint8_t> bytes = bytes_of(file);
        const std::size_t step = 1 + bytes.size() / kCuts;
        for (std::size_t cut = 0; cut < bytes.size() + step; cut += step) {
            const std::size_t size = std::min(cut, bytes.size());
            // Of exactly this size, so that a sanitizer sees a step beyond its end.
            const std::vector<std::uint8_t> front(
                bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
            LLVMFuzzerTestOneInput(front.data(), front.size());
        }
    }
    return 0;
}
