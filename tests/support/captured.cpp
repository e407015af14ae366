#include "tests/support/captured.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "tests/support/system.h"
#include "tests/support/temp_folder.h"

namespace tessel::test {

int run_program(const std::string& program, const std::string& words, const std::string& folder) {
    std::filesystem::path path = std::filesystem::absolute(program);
    const CWorkingFolder here(folder);
    return shell_status('"' + path.make_preferred().string() + "\" " + words +
                        " >output.txt 2>errors.txt");
}

CEndedProcess::CEndedProcess(int line) : m_strBase(temporary_path(std::to_string(line))) {
}

CEndedProcess::~CEndedProcess() {
    std::error_code ignored;
    std::filesystem::remove(m_strBase + ".out", ignored);
    std::filesystem::remove(m_strBase + ".err", ignored);
}

void CEndedProcess::RedirectStreams() const {
    if (std::freopen((m_strBase + ".out").c_str(), "wb", stdout) == nullptr ||
        std::freopen((m_strBase + ".err").c_str(), "wb", stderr) == nullptr) {
        std::abort();
    }
}

std::string CEndedProcess::Output() const {
    return read_file(m_strBase + ".out");
}

std::string CEndedProcess::Errors() const {
    return read_file(m_strBase + ".err");
}

}  // namespace tessel::test
