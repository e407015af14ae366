#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tessel::test {

// What tests need of the system beyond the library's own platform layer; one source file per
// system.

/// To be called first in a test program.
void prepare_process();

void set_environment(const std::string& name, const std::string& value);
void unset_environment(const std::string& name);

/// Between the folders of the environment variable PATH.
extern const char kPathSeparator;
/// The arguments of main() behind the first, as UTF-8.
std::vector<std::string> program_arguments(int argc, char** argv);

/// Runs a command through the system shell; its exit status, or -1 if it has none.
int shell_status(const std::string& command);

/// Whether limit_memory() has an effect, which is on what the process may take from then on.
extern const bool kMemoryCanBeLimited;
void limit_memory(std::uint64_t bytes);
/// The most bytes of memory that the process has held.
std::uint64_t peak_memory();

/// The number that the system would give to the next file that is opened, the lowest one that is
/// free; the path is that of any file.
int free_descriptor(const std::string& path);

/// What a program wrote to a standard stream, from the bytes of the file the stream went to: the
/// line ends of the system's text mode become single line feeds.
std::string stream_text(std::string bytes);

}  // namespace tessel::test
