#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include "tessel/platform/console.h"

namespace tessel {

void set_console_colour(CONSOLE_COLOUR colour) {
    SetConsoleTextAttribute(GetStdHandle(STD_OUTPUT_HANDLE), static_cast<WORD>(colour));
}

}  // namespace tessel
