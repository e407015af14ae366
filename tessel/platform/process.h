#pragma once

#include <string>

namespace tessel {

/// Runs a command through the system shell and waits for it. True for exit status 0 alone.
bool run_command(const std::string& command);
/// Starts a command through the system shell and does not wait for it.
void start_command(const std::string& command);
/// The path in double quotes, as the text of the system shell's command line: no character of it
/// has a meaning to the shell. (That of Windows still replaces %NAME%, even in quotes, where an
/// environment variable has that name.)
std::string quoted_path(const std::string& path);

/// Nothing happens for 0 or less.
void sleep_milliseconds(int milliseconds);
unsigned long process_id();

}  // namespace tessel
