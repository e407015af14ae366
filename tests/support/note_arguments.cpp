// Stands in for other programs, by the environment that the tests give it: sleeps TESSEL_TEST_DELAY
// milliseconds, waits for the file TESSEL_TEST_WAIT, opens the file TESSEL_TEST_HOLD, notes its
// arguments, one a line, in the file TESSEL_TEST_ARGUMENTS, holds the file open until the notes are
// removed, and ends with the status TESSEL_TEST_STATUS. What is not set is left out.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tessel/platform/process.h"
#include "tests/support/system.h"
#include "tests/support/temp_folder.h"

namespace {

int number_of(const char* name) {
    const char* text = std::getenv(name);
    return text == nullptr ? 0 : std::atoi(text);
}

// At most half a minute, so that no failed test leaves a process behind.
template <class Condition>
void wait_while(Condition condition) {
    for (int i = 0; i < 3000 && condition(); ++i)
        tessel::sleep_milliseconds(10);
}

}  // namespace

int main(int argc, char** argv) {
    tessel::sleep_milliseconds(number_of("TESSEL_TEST_DELAY"));
    if (const char* awaited = std::getenv("TESSEL_TEST_WAIT"))
        wait_while([awaited] { return !std::filesystem::exists(awaited); });
    std::ifstream held;
    const char* path = std::getenv("TESSEL_TEST_HOLD");
    if (path != nullptr) held.open(path);

    std::string notes;
    for (const std::string& argument : tessel::test::program_arguments(argc, argv))
        notes += argument + '\n';
    const char* const notesPath = std::getenv("TESSEL_TEST_ARGUMENTS");
    if (notesPath != nullptr) tessel::test::write_file(notesPath, notes);
    if (held.is_open() && notesPath != nullptr)
        wait_while([notesPath] { return std::filesystem::exists(notesPath); });
    return number_of("TESSEL_TEST_STATUS");
}
