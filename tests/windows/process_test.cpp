// Commands through the shell of Windows.

#include "tessel/platform/process.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tessel/condition/utilities.h"
#include "tests/support/captured.h"
#include "tests/support/system.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

// A folder that is the working folder and holds "tool.exe", which notes its arguments.
class shell : public testing::Test {
protected:
    shell()
        : m_strTool(std::filesystem::absolute(NOTE_ARGUMENTS).string()), m_cHere(m_cFolder.Path()) {
        std::filesystem::copy_file(m_strTool, "tool.exe");
        test::set_environment("TESSEL_TEST_ARGUMENTS", m_cFolder.Path("arguments"));
    }
    ~shell() override {
        for (const char* name : {"TESSEL_TEST_ARGUMENTS", "TESSEL_TEST_STATUS", "TESSEL_TEST_DELAY",
                                 "TESSEL_TEST_WAIT"})
            test::unset_environment(name);
    }

    // What the tool noted, if it does so within a minute.
    std::string Noted() const {
        for (int i = 0; i < 3000 && !m_cFolder.Has("arguments"); ++i)
            TSleep(20);
        return m_cFolder.Has("arguments") ? m_cFolder.Read("arguments") : "nothing";
    }

    std::string m_strTool;
    test::CTempFolder m_cFolder;
    test::CWorkingFolder m_cHere;
};

TEST_F(shell, foreground_command_is_waited_for) {
    test::set_environment("TESSEL_TEST_DELAY", "300");
    System("tool.exe one \"two words\"", false);
    ASSERT_TRUE(m_cFolder.Has("arguments"));
    EXPECT_EQ(m_cFolder.Read("arguments"), "one\ntwo words\n");
}

TEST_F(shell, failing_foreground_command_ends_the_process) {
    for (const char* status : {"1", "3", "255", "-1"}) {
        test::set_environment("TESSEL_TEST_STATUS", status);
        EXPECT_ENDS_PROCESS(System("tool.exe x", false), "",
                            "The Program is exited when called tool.exe\n");
    }
    EXPECT_EQ(m_cFolder.Read("arguments"), "x\n");
}

TEST_F(shell, program_that_does_not_exist_is_a_failure) {
    EXPECT_FALSE(run_command("tessel_no_such_program 2> nul"));
}

TEST_F(shell, background_command_is_started_and_not_waited_for) {
    test::set_environment("TESSEL_TEST_WAIT", m_cFolder.Path("go"));
    System("tool.exe in background", true);
    EXPECT_FALSE(m_cFolder.Has("arguments"));
    m_cFolder.Write("go", "");
    EXPECT_EQ(Noted(), "in\nbackground\n");
}

TEST_F(shell, failing_background_command_is_not_looked_at) {
    test::set_environment("TESSEL_TEST_STATUS", "3");
    System("tool.exe x", true);
    EXPECT_EQ(Noted(), "x\n");
}

TEST_F(shell, commands_are_utf_8_or_in_the_code_page) {
    System("tool.exe \xC3\xA4\xE2\x82\xAC", false);
    EXPECT_EQ(m_cFolder.Read("arguments"), "\xC3\xA4\xE2\x82\xAC\n");
    System("tool.exe \xE4", false);
    EXPECT_EQ(m_cFolder.Read("arguments"), "\xC3\xA4\n");
}

TEST_F(shell, quoted_path_has_no_active_character) {
    for (const std::string path : {"C:\\a b\\db.fasta", "a&b|c<d>e^f", "(a);b,c=d!", "it's"}) {
        ASSERT_TRUE(run_command("tool.exe " + quoted_path(path)));
        EXPECT_EQ(m_cFolder.Read("arguments"), path + '\n');
    }
}

TEST_F(shell, program_is_found_by_its_full_path_with_backslashes) {
    System(m_cFolder.Path("tool.exe") + " x", false);
    EXPECT_EQ(m_cFolder.Read("arguments"), "x\n");
}

}  // namespace
}  // namespace tessel
