#include "tests/support/captured.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "tests/support/temp_folder.h"

namespace tessel::test {

// The name is the same in a child that starts the program anew.
CEndedProcess::CEndedProcess(int line) {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string("tessel_ended_") + test->test_suite_name() + '_' +
                             test->name() + '_' + std::to_string(line);
    m_strBase = (std::filesystem::temp_directory_path() / name).string();
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
