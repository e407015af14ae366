#define WIN32_LEAN_AND_MEAN
#define _WIN32_WINNT 0x0A00
#define NTDDI_VERSION 0x0A000006  // the first version with pseudo consoles
#include "tests/windows/pseudo_console.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "tessel/platform/wide_path.h"
#include "tests/support/system.h"

namespace tessel::test {
namespace {

constexpr const char* kInConsole = "TESSEL_TEST_IN_CONSOLE";

// Keeps what the console shows, for the message of a failure.
class CPseudoConsole {
public:
    CPseudoConsole() {
        CreatePipe(&m_hInputEnd, &m_hInput, nullptr, 0);
        CreatePipe(&m_hOutput, &m_hOutputEnd, nullptr, 0);
        const COORD size{120, 50};
        m_bCreated = CreatePseudoConsole(size, m_hInputEnd, m_hOutputEnd, 0, &m_hConsole) == S_OK;
        m_cReader = std::thread([this] { Read(); });
    }
    ~CPseudoConsole() { Close(); }
    CPseudoConsole(const CPseudoConsole&) = delete;
    CPseudoConsole& operator=(const CPseudoConsole&) = delete;

    // The exit status of a program that runs in it, or -1.
    int Run(std::wstring commandLine) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        std::vector<char> attributes(size);
        STARTUPINFOEXW start{};
        start.StartupInfo.cb = sizeof start;
        start.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(attributes.data());
        InitializeProcThreadAttributeList(start.lpAttributeList, 1, 0, &size);
        UpdateProcThreadAttribute(start.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_PSEUDOCONSOLE,
                                  m_hConsole, sizeof m_hConsole, nullptr, nullptr);
        PROCESS_INFORMATION process{};
        if (!m_bCreated || CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE,
                                          EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                                          &start.StartupInfo, &process) == 0) {
            return -1;
        }
        DWORD status = STILL_ACTIVE;
        WaitForSingleObject(process.hProcess, 30'000);
        GetExitCodeProcess(process.hProcess, &status);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        return static_cast<int>(status);
    }

    std::string Shown() {
        Close();
        return m_strShown;
    }

private:
    void Read() {
        char block[4096];
        DWORD count = 0;
        while (ReadFile(m_hOutput, block, sizeof block, &count, nullptr) != 0 && count > 0)
            m_strShown.append(block, count);
    }
    // Without its last writer the reader's pipe ends.
    void Close() {
        if (!m_cReader.joinable()) return;
        if (m_bCreated) ClosePseudoConsole(m_hConsole);
        CloseHandle(m_hOutputEnd);
        m_cReader.join();
        for (const HANDLE end : {m_hInputEnd, m_hInput, m_hOutput})
            CloseHandle(end);
    }

    HANDLE m_hInputEnd = nullptr;
    HANDLE m_hInput = nullptr;
    HANDLE m_hOutput = nullptr;
    HANDLE m_hOutputEnd = nullptr;
    HPCON m_hConsole = nullptr;
    bool m_bCreated = false;
    std::string m_strShown;
    std::thread m_cReader;
};

std::wstring this_test_anew() {
    std::wstring program(32'768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    return L'"' + program + L"\" --gtest_filter=" + wide_text(test->test_suite_name()) + L'.' +
           wide_text(test->name());
}

}  // namespace

void in_console(const std::function<void()>& part) {
    if (std::getenv(kInConsole) != nullptr) {
        part();
        return;
    }
    set_environment(kInConsole, "1");
    CPseudoConsole console;
    EXPECT_EQ(console.Run(this_test_anew()), 0) << console.Shown();
    unset_environment(kInConsole);
}

}  // namespace tessel::test
