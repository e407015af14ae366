#pragma once

#include <gtest/gtest.h>

#include <string>

namespace tessel::test {

/// What `action` writes to standard output.
template <class Action>
std::string captured_output(Action action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

/// Starts a program in a folder with these words behind its name; its standard output and errors go
/// to "output.txt" and "errors.txt" there. Returns its exit status.
int run_program(const std::string& program, const std::string& words, const std::string& folder);

/// The streams of a child process that ends itself; see EXPECT_ENDS_PROCESS.
class CEndedProcess {
public:
    explicit CEndedProcess(int line);
    ~CEndedProcess();

    /// In the child: sends both streams to files.
    void RedirectStreams() const;
    std::string Output() const;
    std::string Errors() const;

private:
    std::string m_strBase;
};

}  // namespace tessel::test

/// Runs the statement in a child process, which it must end with exit status 1 and exactly these
/// texts on standard output and standard error.
#define EXPECT_ENDS_PROCESS(statement, output, errors)                                          \
    do {                                                                                        \
        const tessel::test::CEndedProcess ended(__LINE__);                                      \
        EXPECT_EXIT(                                                                            \
            {                                                                                   \
                ended.RedirectStreams();                                                        \
                statement;                                                                      \
            },                                                                                  \
            testing::ExitedWithCode(1), "");                                                    \
        /* A child that starts the program anew passes here on its way to its own statement. */ \
        if (!testing::internal::InDeathTestChild()) {                                           \
            EXPECT_EQ(ended.Output(), output);                                                  \
            EXPECT_EQ(ended.Errors(), errors);                                                  \
        }                                                                                       \
    } while (false)
