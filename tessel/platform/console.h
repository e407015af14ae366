#pragma once

namespace tessel {

/// Text attributes of the console, by the numbers that consoles with attributes use.
enum class CONSOLE_COLOUR { NORMAL = 7, GREEN = 10, RED = 12 };

/// Colours what is written to standard output from now on. Without effect where standard output is
/// not a console or terminal. Standard output must have been flushed.
void set_console_colour(CONSOLE_COLOUR colour);

/// Somebody may be looking at what is written to standard error.
bool error_output_is_terminal();

}  // namespace tessel
