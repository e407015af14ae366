#define WIN32_LEAN_AND_MEAN
#define PSAPI_VERSION 2  // in the system's main library
#include "tests/support/system.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <psapi.h>
#include <shellapi.h>
#include <stdlib.h>

#include <cstdio>

#include "tessel/platform/file.h"
#include "tessel/platform/wide_path.h"

namespace tessel::test {

// CTest reads the list of tests by single line feeds.
void prepare_process() {
    _setmode(_fileno(stdout), _O_BINARY);
}

void set_environment(const std::string& name, const std::string& value) {
    _wputenv_s(wide_text(name).c_str(), wide_text(value).c_str());
}

void unset_environment(const std::string& name) {
    set_environment(name, "");
}

const char kPathSeparator = ';';

// What main() gets is in the system's code page.
std::vector<std::string> program_arguments(int, char**) {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(narrow_text(words[i]));
    LocalFree(words);
    return arguments;
}

// The shell drops the outer pair of quotation marks and keeps those within.
int shell_status(const std::string& command) {
    return _wsystem(wide_text('"' + command + '"').c_str());
}

const bool kMemoryCanBeLimited = false;

void limit_memory(std::uint64_t) {
}

std::uint64_t peak_memory() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PeakWorkingSetSize;
}

int free_descriptor(const std::string& path) {
    const FilePtr file = open_file(path, "rb");
    return file ? _fileno(file.get()) : -1;
}

std::string stream_text(std::string bytes) {
    for (std::size_t end = 0; (end = bytes.find("\r\n", end)) != std::string::npos;)
        bytes.erase(end, 1);
    return bytes;
}

}  // namespace tessel::test
