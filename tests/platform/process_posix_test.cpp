// Commands through the shell of a POSIX system.

#include "tessel/platform/process.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>

#include "tessel/condition/utilities.h"
#include "tests/support/captured.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

TEST(process_posix, quoted_path_has_no_active_character) {
    const test::CTempFolder folder;
    const test::CWorkingFolder here(folder.Path());
    const std::string hostile = "a b$HOME`echo x`\"\\;&'x";
    ASSERT_TRUE(run_command("printf '%s' " + quoted_path(hostile) + " > result"));
    EXPECT_EQ(folder.Read("result"), hostile);
}

TEST(process_posix, background_command_runs_without_being_waited_for) {
    const test::CTempFolder folder;
    const test::CWorkingFolder here(folder.Path());
    System("while [ ! -e go ]; do sleep 0.02; done; echo done > result", true);
    EXPECT_FALSE(folder.Has("result"));
    folder.Write("go", "");
    for (int i = 0; i < 1000 && !folder.Has("result"); ++i)
        TSleep(20);
    EXPECT_TRUE(folder.Has("result"));
}

TEST(process_posix, standard_output_is_flushed_before_a_command_runs) {
    for (const bool inStep : {true, false}) {
        const auto end = test::run_in_child([inStep] {
            std::ios::sync_with_stdio(inStep);
            std::cout << "a";
            std::printf("b");
            System("echo c", false);
            return 0;
        });
        EXPECT_EQ(end.m_strOutput, "abc\n") << inStep;
    }
}

TEST(process_posix, failing_command_of_one_word_is_named_whole) {
    EXPECT_ENDS_PROCESS(System("false", false), "", "The Program is exited when called false\n");
}

TEST(process_posix, command_that_is_killed_has_failed) {
    EXPECT_ENDS_PROCESS(System("kill -9 $$", false), "",
                        "The Program is exited when called kill\n");
}

}  // namespace
}  // namespace tessel
