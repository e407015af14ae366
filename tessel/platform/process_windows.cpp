#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include "tessel/platform/process.h"

#include <process.h>
#include <windows.h>

#include "tessel/platform/wide_path.h"

namespace tessel {

bool run_command(const std::string& command) {
    return _wsystem(wide_text(command).c_str()) == 0;
}

void start_command(const std::string& command) {
    _wsystem(wide_text("start /b " + command).c_str());
}

std::string quoted_path(const std::string& path) {
    return '"' + path + '"';
}

void sleep_milliseconds(int milliseconds) {
    if (milliseconds > 0) Sleep(static_cast<DWORD>(milliseconds));
}

unsigned long process_id() {
    return GetCurrentProcessId();
}

}  // namespace tessel
