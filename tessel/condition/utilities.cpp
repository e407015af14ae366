// Free helpers for the engine's programs. Some have no caller in the library.

#include "tessel/condition/utilities.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <iostream>
#include <string_view>

#include "tessel/base/end_process.h"
#include "tessel/base/text.h"
#include "tessel/platform/file.h"
#include "tessel/platform/process.h"

namespace tessel {

void _str_split(const std::string& text, std::vector<std::string>& out, char delimiter) {
    for_each_field(text, delimiter, [&out](std::string_view field) { out.emplace_back(field); });
}

int _get_line(std::FILE* stream, char** buffer, std::size_t& size) {
    const std::size_t step = size;
    if (step < 2) return 0;
    std::size_t filled = 0;
    for (;;) {
        const std::size_t room = std::min<std::size_t>(size - filled, INT_MAX);
        if (std::fgets(*buffer + filled, static_cast<int>(room), stream) == nullptr) return 0;
        filled += std::strlen(*buffer + filled);
        if (filled == size - 1) {
            char* larger = new char[size + step];
            std::memcpy(larger, *buffer, size);
            delete[] * buffer;
            *buffer = larger;
            size += step;
        } else {
            filled = 0;
        }
    }
}

void AddSlash(std::string& path) {
    if (!path.empty() && path.back() != '\\') path += '\\';
}

void System(const std::string& command, bool inBackground) {
    std::cout << std::flush;
    std::fflush(stdout);
    if (inBackground) {
        start_command(command);
        return;
    }
    if (run_command(command)) return;
    std::cerr << "The Program is exited when called " + command.substr(0, command.find(' ')) + '\n'
              << std::flush;
    end_process(1);
}

void TSleep(int milliseconds) {
    sleep_milliseconds(milliseconds);
}

bool _IsValidFileTime(const std::string& target, const std::string& source) {
    const auto targetStatus = file_status(target);
    const auto sourceStatus = file_status(source);
    return targetStatus && sourceStatus && targetStatus->m_nTime >= sourceStatus->m_nTime;
}

}  // namespace tessel
