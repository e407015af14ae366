// A step of the library comes in; its messages go out. The library's fatal ends are exceptions
// here: this file brings the function by which it ends a process.

#include "tools/tessel_check/library_step.h"

#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "tessel/base/end_process.h"

namespace tessel {
namespace {

struct PROCESS_END {};

}  // namespace

void end_process(int /*status*/) {
    throw PROCESS_END();
}

}  // namespace tessel

namespace tessel::check {
namespace {

// Gives a stream another buffer until the end of the scope.
class CRedirected {
public:
    CRedirected(std::ostream& stream, std::streambuf* buffer)
        : m_cStream(stream), m_pBefore(stream.rdbuf(buffer)) {}
    ~CRedirected() { m_cStream.rdbuf(m_pBefore); }
    CRedirected(const CRedirected&) = delete;
    CRedirected& operator=(const CRedirected&) = delete;

private:
    std::ostream& m_cStream;
    std::streambuf* m_pBefore;
};

// Of a line of output, what stands behind the mark; empty for lines that only inform.
std::string_view warning_text(std::string_view line) {
    for (const std::string_view mark : {"[Tessel] WARNING: ", "[Tessel] ALERT: "}) {
        const std::size_t at = line.find(mark);  // colours may stand in front
        if (at != std::string_view::npos) return line.substr(at + mark.size());
    }
    return {};
}

}  // namespace

std::vector<std::string> STEP::MessagesBehind(const std::string& beginning) const {
    std::vector<std::string> rests;
    for (const std::string& message : m_vMessages) {
        if (message.starts_with(beginning)) rests.push_back(message.substr(beginning.size()));
    }
    return rests;
}

STEP run_step(const std::function<void()>& step) {
    STEP result;
    std::stringstream output;
    {
        const CRedirected standardOutput(std::cout, output.rdbuf());
        const CRedirected standardError(std::cerr, output.rdbuf());
        try {
            step();
        } catch (const PROCESS_END&) {
            result.m_bEnded = true;
        } catch (const std::runtime_error&) {
            result.m_bEnded = true;
        }  // memory that is not to be had is no end of the step's own; it ends the check
    }
    for (std::string line; std::getline(output, line);) {
        if (const std::string_view text = warning_text(line); !text.empty()) {
            result.m_vMessages.emplace_back(text);
        }
    }
    return result;
}

}  // namespace tessel::check
