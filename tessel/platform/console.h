#pragma once

namespace tessel {

/// Text attributes of the console, by the numbers that consoles with attributes use.
enum class CONSOLE_COLOUR { NORMAL = 7, GREEN = 10, RED = 12 };

/// Colours what is written to standard output from now on; what std::cout and stdout still hold is
/// flushed first and keeps its colour. Without effect where standard output is not a console or
/// terminal.
void set_console_colour(CONSOLE_COLOUR colour);

/// Somebody may be looking at what is written to standard error.
bool error_output_is_terminal();

}  // namespace tessel
