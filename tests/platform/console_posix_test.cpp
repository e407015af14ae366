// The colours of messages, on a terminal of the test's own.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "tessel/condition/condition.h"
#include "tests/support/child_process.h"

namespace tessel {
namespace {

// What the action writes to standard output when that is a terminal, in a child process. It should
// be short, because nobody reads before the action has ended, and without "#".
template <class Action>
std::string shown_on_terminal(Action action) {
    const int screen = posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_TRUE(screen >= 0 && grantpt(screen) == 0 && unlockpt(screen) == 0);
    // Stays open until all is read, or the text would be lost.
    const int terminal = open(ptsname(screen), O_RDWR | O_NOCTTY);
    EXPECT_GE(terminal, 0);
    const auto end = test::run_in_child([&] {
        dup2(terminal, STDOUT_FILENO);
        action();
        return 0;
    });
    EXPECT_EQ(end.m_nExit, 0);
    EXPECT_EQ(write(terminal, "#", 1), 1);
    std::string text;
    for (char c; read(screen, &c, 1) == 1 && c != '#';)
        text += c;
    close(terminal);
    close(screen);
    return text;
}

std::string shown(LOG_TYPE type) {
    return shown_on_terminal([type] {
        CCondition condition;
        condition.m_eLogType = LOG_DEBUG;
        condition.Message("text", type);
    });
}

TEST(terminal, warnings_are_bright_green_and_alerts_bright_red) {
    EXPECT_EQ(shown(LOG_WARNING), "\033[1;32m[Tessel] WARNING: text\r\n\033[0m");
    EXPECT_EQ(shown(LOG_ALERT), "\033[1;31m[Tessel] ALERT: text\r\n\033[0m");
    EXPECT_EQ(shown(LOG_INFO), "[Tessel] text\r\n");
    EXPECT_EQ(shown(LOG_DEBUG), "[Tessel] DEBUG: text\r\n");
}

TEST(terminal, what_was_written_before_keeps_its_colour) {
    for (const bool inStep : {true, false}) {
        const std::string text = shown_on_terminal([inStep] {
            std::ios::sync_with_stdio(inStep);
            std::cout << "a";
            std::printf("b");
            CCondition().Message("text", LOG_ALERT);
        });
        EXPECT_EQ(text, "ab\033[1;31m[Tessel] ALERT: text\r\n\033[0m") << inStep;
    }
}

// Whoever waits at the other end, and whoever looks for the last word of a process that was killed.
TEST(pipe, has_every_message_at_once) {
    for (const bool inStep : {true, false}) {
        const auto end = test::run_in_child([inStep]() -> int {
            std::ios::sync_with_stdio(inStep);
            CCondition().Message("text", LOG_INFO);
            _exit(0);  // flushes nothing
        });
        EXPECT_EQ(end.m_strOutput, "[Tessel] text\n") << inStep;
    }
}

TEST(pipe, holds_no_colour) {
    const auto end = test::run_in_child([] {
        CCondition condition;
        condition.m_eLogType = LOG_DEBUG;
        for (const LOG_TYPE type : {LOG_ALERT, LOG_SILENT, LOG_WARNING, LOG_INFO, LOG_DEBUG})
            condition.Message("text", type);
        return 0;
    });
    EXPECT_EQ(end.m_strOutput,
              "[Tessel] ALERT: text\n[Tessel] WARNING: text\n[Tessel] text\n"
              "[Tessel] DEBUG: text\n");
}

}  // namespace
}  // namespace tessel
