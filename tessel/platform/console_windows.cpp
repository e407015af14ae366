#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include "tessel/platform/console.h"

namespace tessel {

void set_console_colour(CONSOLE_COLOUR colour) {
    SetConsoleTextAttribute(GetStdHandle(STD_OUTPUT_HANDLE), static_cast<WORD>(colour));
}

bool error_output_is_terminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

}  // namespace tessel
