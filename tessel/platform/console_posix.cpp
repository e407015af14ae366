#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "tessel/platform/console.h"

namespace tessel {

void set_console_colour(CONSOLE_COLOUR colour) {
    if (isatty(STDOUT_FILENO) == 0) return;
    std::cout << std::flush;
    std::fflush(stdout);
    switch (colour) {
        case CONSOLE_COLOUR::GREEN:
            std::cout << "\033[1;32m" << std::flush;
            break;
        case CONSOLE_COLOUR::RED:
            std::cout << "\033[1;31m" << std::flush;
            break;
        case CONSOLE_COLOUR::NORMAL:
            std::cout << "\033[0m" << std::flush;
            break;
    }
}

bool error_output_is_terminal() {
    return isatty(STDERR_FILENO) != 0;
}

}  // namespace tessel
