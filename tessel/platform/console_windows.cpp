#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <cstdio>
#include <iostream>

#include "tessel/platform/console.h"

namespace tessel {
namespace {

bool is_console(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

}  // namespace

void set_console_colour(CONSOLE_COLOUR colour) {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    if (!is_console(output)) return;
    std::cout << std::flush;
    std::fflush(stdout);
    SetConsoleTextAttribute(output, static_cast<WORD>(colour));
}

bool error_output_is_terminal() {
    return is_console(GetStdHandle(STD_ERROR_HANDLE));
}

}  // namespace tessel
