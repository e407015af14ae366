#include <gtest/gtest.h>

#include <filesystem>

#include "tessel/platform/file.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

TEST(platform_file, backslashes_and_slashes_both_separate) {
    const test::CTempFolder folder;
    std::filesystem::create_directory(folder.Path("sub"));
    folder.Write("sub/file", "abc");
    for (const char* name : {"\\sub\\file", "/sub/file", "\\sub/file"}) {
        EXPECT_TRUE(path_exists(folder.Path() + name)) << name;
        EXPECT_NE(open_file(folder.Path() + name, "rb"), nullptr) << name;
        EXPECT_EQ(file_status(folder.Path() + name)->m_uSize, 3u) << name;
    }
}

TEST(platform_file, folder_exists_with_and_without_a_last_separator) {
    const test::CTempFolder folder;
    for (const char* end : {"", "\\", "/"}) {
        EXPECT_TRUE(path_exists(folder.Path() + end)) << end;
        EXPECT_TRUE(file_status(folder.Path() + end)->m_bFolder) << end;
        EXPECT_FALSE(path_exists(folder.Path() + "x" + end)) << end;
    }
    EXPECT_FALSE(path_exists(""));
}

TEST(platform_file, file_with_a_last_separator_does_not_exist) {
    const test::CTempFolder folder;
    const std::string file = folder.Write("file", "x");
    for (const char* end : {"\\", "/"}) {
        EXPECT_FALSE(path_exists(file + end)) << end;
        EXPECT_FALSE(file_status(file + end)) << end;
        EXPECT_EQ(open_file(file + end, "rb"), nullptr) << end;
        EXPECT_EQ(folder_entries(file + end), std::nullopt) << end;
    }
}

TEST(platform_file, folder_is_not_opened_as_a_file) {
    const test::CTempFolder folder;
    EXPECT_EQ(open_file(folder.Path(), "rb"), nullptr);
    EXPECT_EQ(open_file(folder.Path(), "wb"), nullptr);
    std::ifstream stream;
    EXPECT_FALSE(open_stream(stream, folder.Path()));
    EXPECT_FALSE(open_stream(stream, folder.Path("missing")));
    EXPECT_TRUE(open_stream(stream, folder.Write("file", "x")));
}

TEST(platform_file, time_is_in_seconds) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("file", "");
    test::set_file_age(path, 0);
    const std::int64_t now = file_status(path)->m_nTime;
    test::set_file_age(path, 1000);
    EXPECT_NEAR(static_cast<double>(now - file_status(path)->m_nTime), 1000.0, 2.0);
    EXPECT_GT(now, 1'700'000'000);
}

TEST(platform_file, rename_replaces_the_target) {
    const test::CTempFolder folder;
    folder.Write("from", "new");
    folder.Write("to", "old");
    EXPECT_TRUE(rename_file(folder.Path("from"), folder.Path("to")));
    EXPECT_EQ(folder.Read("to"), "new");
    EXPECT_FALSE(folder.Has("from"));
    EXPECT_FALSE(rename_file(folder.Path("from"), folder.Path("to")));
}

TEST(platform_file, remove_removes_files_only) {
    const test::CTempFolder folder;
    std::filesystem::create_directory(folder.Path("sub"));
    EXPECT_TRUE(remove_file(folder.Write("file", "x")));
    EXPECT_FALSE(folder.Has("file"));
    EXPECT_FALSE(remove_file(folder.Path("file")));
    EXPECT_FALSE(remove_file(folder.Path("sub")));
}

TEST(platform_file, entries_come_in_byte_order) {
    const test::CTempFolder folder;
    for (const char* name : {"b", "a", "C", ".hidden", "a.mgf"})
        folder.Write(name, "");
    const std::vector<std::string> expected{".hidden", "C", "a", "a.mgf", "b"};
    EXPECT_EQ(folder_entries(folder.Path()), expected);
    EXPECT_EQ(folder_entries(folder.Path() + "\\"), expected);
    EXPECT_EQ(folder_entries(folder.Path("missing")), std::nullopt);
    EXPECT_EQ(folder_entries(folder.Path("a")), std::nullopt);
    EXPECT_EQ(folder_entries(""), std::nullopt);
}

TEST(platform_file, same_file_by_other_names) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("file", "x");
    folder.Write("other", "x");
    EXPECT_TRUE(same_file(path, folder.Path() + "\\.\\file"));
    EXPECT_FALSE(same_file(path, folder.Path("other")));
    EXPECT_FALSE(same_file(folder.Path("missing"), folder.Path("missing")));
}

TEST(platform_file, bytes_left_are_counted_from_the_position) {
    const test::CTempFolder folder;
    const FilePtr file = open_file(folder.Write("file", "0123456789"), "rb");
    EXPECT_EQ(bytes_left(file.get()), 10u);
    std::fgetc(file.get());
    EXPECT_EQ(bytes_left(file.get()), 9u);
    std::fseek(file.get(), 0, SEEK_END);
    EXPECT_EQ(bytes_left(file.get()), 0u);
}

TEST(platform_file, closing_tells_of_a_failed_write) {
    const test::CTempFolder folder;
    FilePtr written = open_file(folder.Path("file"), "wb");
    std::fputs("abc", written.get());
    EXPECT_TRUE(close_file(std::move(written)));
    EXPECT_EQ(folder.Read("file"), "abc");
    FilePtr readOnly = open_file(folder.Path("file"), "rb");
    std::fputs("abc", readOnly.get());
    EXPECT_FALSE(close_file(std::move(readOnly)));
}

}  // namespace
}  // namespace tessel
