#include <sys/resource.h>
#include <sys/wait.h>

#include <cstdlib>

#include "tessel/platform/file.h"
#include "tests/support/system.h"

namespace tessel::test {

void prepare_process() {
}

void set_environment(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

void unset_environment(const std::string& name) {
    unsetenv(name.c_str());
}

const char kPathSeparator = ':';

std::vector<std::string> program_arguments(int argc, char** argv) {
    return {argv + 1, argv + argc};
}

int shell_status(const std::string& command) {
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

const bool kMemoryCanBeLimited = true;

void limit_memory(std::uint64_t bytes) {
    rlimit limit;
    limit.rlim_cur = limit.rlim_max = bytes;
    setrlimit(RLIMIT_AS, &limit);
}

std::uint64_t peak_memory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
}

int free_descriptor(const std::string& path) {
    const FilePtr file = open_file(path, "rb");
    return file ? fileno(file.get()) : -1;
}

std::string stream_text(std::string bytes) {
    return bytes;
}

}  // namespace tessel::test
