#include "tessel/platform/process.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace tessel {

bool run_command(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

void start_command(const std::string& command) {
    // The subshell takes the command off the waiting shell, which returns at once.
    const std::string background = "( " + command + " ) &";
    if (std::system(background.c_str()) != 0) return;  // nobody waits for the result
}

std::string quoted_path(const std::string& path) {
    std::string quoted = "\"";
    for (const char c : path) {
        if (c == '"' || c == '\\' || c == '$' || c == '`') quoted += '\\';
        quoted += c;
    }
    return quoted += '"';
}

void sleep_milliseconds(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

unsigned long process_id() {
    return static_cast<unsigned long>(getpid());
}

}  // namespace tessel
