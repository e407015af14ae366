#include <gtest/gtest.h>

#include <filesystem>

#include "tessel/condition/condition.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

TEST(merge_files_posix, input_that_cannot_be_removed_is_a_warning) {
    // Only the kernel removes this one.
    const std::string path = "/proc/self/comm";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "no such file on this system";
    const test::CTempFolder folder;
    const auto merge = [&] {
        EXPECT_FALSE(CCondition().MergeFiles({path}, folder.Path("merged"), true));
    };
    EXPECT_EQ(test::captured_output(merge),
              "[Tessel] WARNING: Cannot remove the merged file: " + path + "\n");
    EXPECT_EQ(folder.Read("merged"), test::read_file(path));
}

}  // namespace
}  // namespace tessel
