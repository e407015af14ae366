// The colours of messages, in a console screen buffer of the test's own.

#include <gtest/gtest.h>
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <functional>
#include <iostream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include "tessel/condition/condition.h"
#include "tessel/platform/console.h"
#include "tests/support/captured.h"
#include "tests/windows/pseudo_console.h"

namespace tessel {
namespace {

// A screen buffer that is this process's standard output.
class CScreen {
public:
    CScreen()
        : m_hBefore(GetStdHandle(STD_OUTPUT_HANDLE)),
          m_hScreen(CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                              CONSOLE_TEXTMODE_BUFFER, nullptr)) {
        EXPECT_NE(m_hScreen, INVALID_HANDLE_VALUE);
        SetStdHandle(STD_OUTPUT_HANDLE, m_hScreen);
    }
    ~CScreen() {
        SetStdHandle(STD_OUTPUT_HANDLE, m_hBefore);
        CloseHandle(m_hScreen);
    }
    CScreen(const CScreen&) = delete;
    CScreen& operator=(const CScreen&) = delete;

    WORD Attribute() const {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        EXPECT_NE(GetConsoleScreenBufferInfo(m_hScreen, &info), 0);
        return info.wAttributes;
    }
    void SetAttribute(WORD attribute) const { SetConsoleTextAttribute(m_hScreen, attribute); }

private:
    HANDLE m_hBefore;
    HANDLE m_hScreen;
};

// Holds what is written until it is flushed, and notes the console's attribute then.
class CNotingBuffer : public std::streambuf {
public:
    explicit CNotingBuffer(std::function<WORD()> attribute)
        : m_fAttribute(std::move(attribute)), m_pBefore(std::cout.rdbuf(this)) {}
    ~CNotingBuffer() override { std::cout.rdbuf(m_pBefore); }

    std::string m_strText;
    std::vector<WORD> m_vAttributes;  // without repetitions

private:
    std::streamsize xsputn(const char* text, std::streamsize length) override {
        m_strHeld.append(text, static_cast<std::size_t>(length));
        return length;
    }
    int_type overflow(int_type c) override {
        m_strHeld += static_cast<char>(c);
        return c;
    }
    int sync() override {
        if (m_strHeld.empty()) return 0;
        m_strText += std::exchange(m_strHeld, "");
        const WORD attribute = m_fAttribute();
        if (m_vAttributes.empty() || m_vAttributes.back() != attribute)
            m_vAttributes.push_back(attribute);
        return 0;
    }

    std::string m_strHeld;
    std::function<WORD()> m_fAttribute;
    std::streambuf* m_pBefore;
};

TEST(console, attribute_is_that_of_the_colour) {
    test::in_console([] {
        const CScreen screen;
        for (const auto& [colour, attribute] :
             {std::pair(CONSOLE_COLOUR::GREEN, WORD{10}), std::pair(CONSOLE_COLOUR::RED, WORD{12}),
              std::pair(CONSOLE_COLOUR::NORMAL, WORD{7})}) {
            set_console_colour(colour);
            EXPECT_EQ(screen.Attribute(), attribute);
        }
    });
}

TEST(console, warnings_are_bright_green_and_alerts_bright_red) {
    const struct {
        LOG_TYPE type;
        const char* text;
        WORD attribute;
    } rows[] = {{LOG_INFO, "[Tessel] text\n", 7},
                {LOG_DEBUG, "[Tessel] DEBUG: text\n", 7},
                {LOG_WARNING, "[Tessel] WARNING: text\n", 10},
                {LOG_ALERT, "[Tessel] ALERT: text\n", 12}};
    test::in_console([&rows] {
        const CScreen screen;
        CCondition condition;
        condition.m_eLogType = LOG_DEBUG;
        for (const auto& row : rows) {
            screen.SetAttribute(7);
            CNotingBuffer noted([&screen] { return screen.Attribute(); });
            condition.Message("text", row.type);
            EXPECT_EQ(noted.m_strText, row.text);
            EXPECT_EQ(noted.m_vAttributes, std::vector<WORD>{row.attribute}) << row.text;
            EXPECT_EQ(screen.Attribute(), 7) << row.text;
        }
    });
}

TEST(console, what_was_written_before_keeps_its_colour) {
    test::in_console([] {
        const CScreen screen;
        screen.SetAttribute(7);
        CNotingBuffer noted([&screen] { return screen.Attribute(); });
        std::cout << "before\n";
        CCondition().Message("text", LOG_ALERT);
        EXPECT_EQ(noted.m_strText, "before\n[Tessel] ALERT: text\n");
        EXPECT_EQ(noted.m_vAttributes, (std::vector<WORD>{7, 12}));
    });
}

TEST(console, messages_that_are_not_shown_change_no_colour) {
    test::in_console([] {
        const CScreen screen;
        screen.SetAttribute(5);
        CCondition condition;
        condition.m_eLogType = LOG_SILENT;
        condition.Message("text", LOG_WARNING);
        condition.Message("text", LOG_SILENT);
        EXPECT_EQ(screen.Attribute(), 5);
    });
}

// Standard output is a file here.
TEST(no_console, messages_hold_no_colour) {
    const CCondition condition;
    EXPECT_EQ(test::captured_output([&] { condition.Message("text", LOG_ALERT); }),
              "[Tessel] ALERT: text\n");
}

}  // namespace
}  // namespace tessel
