// Stands in for other programs: notes its arguments, one a line, in the file that the environment
// names, and ends with the status that it names.

#include <cstdlib>
#include <string>

#include "tests/support/system.h"
#include "tests/support/temp_folder.h"

int main(int argc, char** argv) {
    std::string notes;
    for (const std::string& argument : tessel::test::program_arguments(argc, argv))
        notes += argument + '\n';
    tessel::test::write_file(std::getenv("TESSEL_TEST_ARGUMENTS"), notes);
    const char* status = std::getenv("TESSEL_TEST_STATUS");
    return status == nullptr ? 0 : std::atoi(status);
}
