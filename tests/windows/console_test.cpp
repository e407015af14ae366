// The colours of messages, in a console screen buffer of the test's own.

#include <gtest/gtest.h>
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <functional>
#include <iostream>
#include <streambuf>
#include <string>
#include <vector>

#include "tessel/condition/condition.h"
#include "tessel/platform/console.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

// A console whose active output is a fresh screen buffer, also of this process.
class console : public testing::Test {
protected:
    console() : m_bAllocated(AllocConsole() != 0), m_hBefore(GetStdHandle(STD_OUTPUT_HANDLE)) {
        m_hScreen = CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                              CONSOLE_TEXTMODE_BUFFER, nullptr);
        SetStdHandle(STD_OUTPUT_HANDLE, m_hScreen);
    }
    ~console() override {
        SetStdHandle(STD_OUTPUT_HANDLE, m_hBefore);
        CloseHandle(m_hScreen);
        if (m_bAllocated) FreeConsole();
    }

    WORD Attribute() const {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        EXPECT_NE(GetConsoleScreenBufferInfo(m_hScreen, &info), 0);
        return info.wAttributes;
    }

    bool m_bAllocated;
    HANDLE m_hBefore;
    HANDLE m_hScreen;
};

// Notes the console's attribute at every piece that is written.
class CNotingBuffer : public std::streambuf {
public:
    explicit CNotingBuffer(std::function<WORD()> attribute)
        : m_fAttribute(std::move(attribute)), m_pBefore(std::cout.rdbuf(this)) {}
    ~CNotingBuffer() override { std::cout.rdbuf(m_pBefore); }

    std::string m_strText;
    std::vector<WORD> m_vAttributes;  // without repetitions

private:
    std::streamsize xsputn(const char* text, std::streamsize length) override {
        Note();
        m_strText.append(text, static_cast<std::size_t>(length));
        return length;
    }
    int_type overflow(int_type c) override {
        Note();
        m_strText += static_cast<char>(c);
        return c;
    }
    void Note() {
        const WORD attribute = m_fAttribute();
        if (m_vAttributes.empty() || m_vAttributes.back() != attribute)
            m_vAttributes.push_back(attribute);
    }

    std::function<WORD()> m_fAttribute;
    std::streambuf* m_pBefore;
};

TEST_F(console, attribute_is_that_of_the_colour) {
    ASSERT_NE(m_hScreen, INVALID_HANDLE_VALUE);
    for (const auto& [colour, attribute] :
         {std::pair(CONSOLE_COLOUR::GREEN, WORD{10}), std::pair(CONSOLE_COLOUR::RED, WORD{12}),
          std::pair(CONSOLE_COLOUR::NORMAL, WORD{7})}) {
        set_console_colour(colour);
        EXPECT_EQ(Attribute(), attribute);
    }
}

TEST_F(console, warnings_are_bright_green_and_alerts_bright_red) {
    ASSERT_NE(m_hScreen, INVALID_HANDLE_VALUE);
    CCondition condition;
    condition.m_eLogType = LOG_DEBUG;
    const struct {
        LOG_TYPE type;
        const char* text;
        WORD attribute;
    } rows[] = {{LOG_INFO, "[Tessel] text\n", 7},
                {LOG_DEBUG, "[Tessel] DEBUG: text\n", 7},
                {LOG_WARNING, "[Tessel] WARNING: text\n", 10},
                {LOG_ALERT, "[Tessel] ALERT: text\n", 12}};
    for (const auto& row : rows) {
        set_console_colour(CONSOLE_COLOUR::NORMAL);
        CNotingBuffer noted([this] { return Attribute(); });
        condition.Message("text", row.type);
        EXPECT_EQ(noted.m_strText, row.text);
        EXPECT_EQ(noted.m_vAttributes, std::vector<WORD>{row.attribute}) << row.text;
        EXPECT_EQ(Attribute(), 7) << row.text;
    }
}

TEST_F(console, messages_that_are_not_shown_change_no_colour) {
    ASSERT_NE(m_hScreen, INVALID_HANDLE_VALUE);
    SetConsoleTextAttribute(m_hScreen, 5);
    CCondition condition;
    condition.m_eLogType = LOG_SILENT;
    condition.Message("text", LOG_WARNING);
    condition.Message("text", LOG_SILENT);
    EXPECT_EQ(Attribute(), 5);
}

// Standard output is a file here.
TEST(no_console, messages_hold_no_colour) {
    const CCondition condition;
    EXPECT_EQ(test::captured_output([&] { condition.Message("text", LOG_ALERT); }),
              "[Tessel] ALERT: text\n");
}

}  // namespace
}  // namespace tessel
