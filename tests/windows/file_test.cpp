// Paths and files as only Windows has them.

#include "tessel/platform/file.h"

#include <gtest/gtest.h>
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include "tessel/condition/condition.h"
#include "tessel/platform/wide_path.h"
#include "tessel/spectra/mgf_input.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

namespace fs = std::filesystem;

// What is written through a path is there under all its spellings.
void expect_usable(const std::string& path) {
    FilePtr file = open_file(path, "wb");
    ASSERT_NE(file, nullptr) << path;
    std::fputs("abc\n\x1Axyz", file.get());
    ASSERT_TRUE(close_file(std::move(file))) << path;

    std::string slashes = path;
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    for (const std::string& spelling : {path, slashes}) {
        EXPECT_TRUE(path_exists(spelling)) << spelling;
        const auto status = file_status(spelling);
        ASSERT_TRUE(status) << spelling;
        EXPECT_FALSE(status->m_bFolder) << spelling;
        EXPECT_EQ(status->m_uSize, 8u) << spelling;
        EXPECT_TRUE(same_file(path, spelling)) << spelling;
        std::ifstream stream;
        ASSERT_TRUE(open_stream(stream, spelling)) << spelling;
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "abc\n\x1Axyz");
        const FilePtr read = open_file(spelling, "rb");
        ASSERT_NE(read, nullptr) << spelling;
        EXPECT_EQ(bytes_left(read.get()), 8u) << spelling;
    }
    ASSERT_TRUE(rename_file(path, path + "2")) << path;
    EXPECT_FALSE(path_exists(path)) << path;
    ASSERT_TRUE(remove_file(path + "2")) << path;
    EXPECT_FALSE(path_exists(path + "2")) << path;
}

TEST(windows_paths, drive_letters_and_separators_of_both_kinds) {
    const test::CTempFolder folder;
    ASSERT_EQ(folder.Path()[1], ':');
    fs::create_directory(folder.Path("sub"));
    expect_usable(folder.Path() + "\\sub\\file");
    expect_usable(folder.Path() + "/sub/file");
    expect_usable(folder.Path() + "\\sub/../sub\\\\file");
    std::string drive = folder.Path();
    drive[0] = static_cast<char>(drive[0] ^ 0x20);
    expect_usable(drive + "\\file");

    const test::CWorkingFolder here(folder.Path());
    expect_usable("file");
    expect_usable("sub\\file");
    expect_usable(folder.Path().substr(0, 2) +
                  "sub\\file");  // below the working folder of the drive
    expect_usable(folder.Path().substr(2) + "\\sub\\file");  // on the working drive
}

TEST(windows_paths, roots_exist) {
    const std::string drive = working_folder().substr(0, 2);
    for (const char* root : {"\\", "/", "\\\\"}) {
        const auto status = file_status(drive + root);
        ASSERT_TRUE(status) << root;
        EXPECT_TRUE(status->m_bFolder) << root;
        EXPECT_TRUE(folder_entries(drive + root)) << root;
    }
    EXPECT_FALSE(path_exists("?:\\"));
}

TEST(windows_paths, working_folder_has_no_last_separator) {
    const test::CTempFolder folder;
    {
        const test::CWorkingFolder here(folder.Path());
        EXPECT_EQ(working_folder(), folder.Path());
    }
    const test::CWorkingFolder root(folder.Path().substr(0, 2) + "\\");
    EXPECT_EQ(working_folder(), folder.Path().substr(0, 2));
}

TEST(windows_paths, names_are_utf_8) {
    const test::CTempFolder folder;
    // Latin, Greek, Cyrillic, Chinese, and a character outside the basic plane.
    for (const std::string name :
         {"Gr\xC3\xB6\xC3\x9F"
          "e",
          "\xCE\xB1\xCE\xB2", "\xD0\x96", "\xE8\x9B\x8B\xE7\x99\xBD", "\xF0\x9F\xA7\xAC"}) {
        expect_usable(folder.Path() + "\\" + name);
        fs::create_directory(test::path_of(folder.Path(name)));
        EXPECT_TRUE(file_status(folder.Path(name) + "\\")->m_bFolder) << name;
        expect_usable(folder.Path() + "\\" + name + "\\" + name);
        EXPECT_EQ(folder_entries(folder.Path(name)), std::vector<std::string>{}) << name;
        const test::CWorkingFolder here(folder.Path());
        const std::vector<std::string> names = folder_entries(folder.Path()).value();
        EXPECT_EQ(names, std::vector<std::string>{name});
        fs::remove(test::path_of(folder.Path(name)));
    }
}

TEST(windows_paths, names_that_are_no_utf_8_are_in_the_code_page) {
    if (GetACP() != 1252) GTEST_SKIP() << "the code page is another one";
    const test::CTempFolder folder;
    expect_usable(folder.Path() +
                  "\\Gr\xF6\xDF"
                  "e");
    fs::create_directory(
        test::path_of(folder.Path("Gr\xC3\xB6\xC3\x9F"
                                  "e")));
    folder.Write(
        "Gr\xC3\xB6\xC3\x9F"
        "e/\xC3\xA4.mgf",
        "x");
    // The names in it go with the text of the folder, so that both together are a path.
    const std::string text = folder.Path(
        "Gr\xF6\xDF"
        "e");
    EXPECT_EQ(folder_entries(text), std::vector<std::string>{"\xE4.mgf"});
    EXPECT_TRUE(path_exists(text + "\\\xE4.mgf"));
    EXPECT_EQ(folder_entries(folder.Path("Gr\xC3\xB6\xC3\x9F"
                                         "e")),
              std::vector<std::string>{"\xC3\xA4.mgf"});
}

TEST(windows_paths, more_than_260_characters_are_no_limit) {
    const test::CTempFolder folder;
    std::string path = folder.Path();
    std::wstring wide = L"\\\\?\\" + wide_text(host_path(path));
    for (int depth = 0; depth < 12; ++depth) {
        path += "\\" + std::string(50, static_cast<char>('a' + depth));
        wide += L"\\" + std::wstring(50, static_cast<wchar_t>('a' + depth));
        ASSERT_NE(CreateDirectoryW(wide.c_str(), nullptr), 0);
        EXPECT_TRUE(file_status(path)->m_bFolder);
        EXPECT_TRUE(path_exists(path + '\\'));
        expect_usable(path + "\\file");
        expect_usable(path + "\\..\\" + path.substr(path.rfind('\\') + 1) + "/./file");
        EXPECT_EQ(folder_entries(path), std::vector<std::string>{});
    }
    EXPECT_GT(path.size(), 600u);
    const FilePtr file = open_file(path + "\\a.mgf", "wb");
    EXPECT_EQ(folder_entries(path), std::vector<std::string>{"a.mgf"});
}

// Below a working folder of nearly the greatest length a short text is a long path.
TEST(windows_paths, short_text_in_a_long_working_folder_is_usable) {
    const test::CTempFolder folder;
    std::string path = folder.Path();
    path += "\\" + std::string(std::max<std::size_t>(235, path.size() + 2) - path.size() - 1, 'x');
    fs::create_directory(path);
    const test::CWorkingFolder here(path);
    expect_usable(std::string(60, 'y'));
}

// ---- Text files ----

TEST(windows_files, lines_of_windows_are_read_and_single_line_feeds_written) {
    const test::CTempFolder folder;
    const std::string text =
        "BEGIN IONS\r\nTITLE=a.7.7.2.0.dta\r\nCHARGE=2+\r\nPEPMASS=500.5\r\n"
        "100.25 20\r\nEND IONS\r\n";
    CMGFInput reader;
    ASSERT_EQ(reader.Count(folder.Write("a.mgf", text)), 1u);
    std::vector<CSpectrum> spectra;
    reader.Browse(spectra, 1);
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_EQ(spectra[0].m_strTitle, "a.7.7.2.0.dta");
    reader.Close();

    CCondition condition;
    condition.m_strFastaPath = folder.Write("db.fasta", ">P1 x\r\nAC\r\nDE\r\n");
    condition.SetFastaPath();
    EXPECT_EQ(folder.Read("db.fasta_td.fasta"), ">P1\tx\t\nACDE\n>REV_P1\t_REV1\nEDCA\n");
    condition.m_mapPSMRes["t"].m_strTitle = "t";
    condition.WriteFinalResult(folder.Path("final.txt"), 0.0);
    EXPECT_EQ(folder.Read("final.txt").find('\r'), std::string::npos);
}

// ---- Sharing ----

// Holds a file for itself alone, as one does that replaces or examines it.
class CHolder {
public:
    explicit CHolder(const std::string& path)
        : m_hFile(CreateFileW(wide_path(host_path(path)).c_str(), GENERIC_READ, 0, nullptr,
                              OPEN_EXISTING, 0, nullptr)) {}
    bool Holds() const { return m_hFile != INVALID_HANDLE_VALUE; }
    void EndAfter(DWORD milliseconds) {
        m_cEnd = std::thread([this, milliseconds] {
            Sleep(milliseconds);
            CloseHandle(m_hFile);
        });
    }
    ~CHolder() {
        if (m_cEnd.joinable())
            m_cEnd.join();
        else
            CloseHandle(m_hFile);
    }

private:
    HANDLE m_hFile;
    std::thread m_cEnd;
};

TEST(windows_files, file_that_another_holds_for_a_moment_is_waited_for) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("a", "old");
    const auto held_for_a_moment = [&](auto operation) {
        CHolder holder(path);
        ASSERT_TRUE(holder.Holds());
        holder.EndAfter(60);
        operation();
    };
    held_for_a_moment([&] { EXPECT_NE(open_file(path, "rb"), nullptr); });
    std::ifstream stream;
    held_for_a_moment([&] { EXPECT_TRUE(open_stream(stream, path)); });
    stream.close();
    const std::string source = folder.Write("b", "new");
    held_for_a_moment([&] { EXPECT_TRUE(rename_file(source, path)); });
    EXPECT_EQ(folder.Read("a"), "new");
    held_for_a_moment([&] { EXPECT_TRUE(remove_file(path)); });
    EXPECT_FALSE(folder.Has("a"));
}

TEST(windows_files, file_that_another_keeps_is_given_up) {
    const test::CTempFolder folder;
    const std::string path = folder.Write("a", "old");
    const std::string source = folder.Write("b", "new");
    const CHolder holder(path);
    ASSERT_TRUE(holder.Holds());
    EXPECT_EQ(open_file(path, "rb"), nullptr);
    std::ifstream stream;
    EXPECT_FALSE(open_stream(stream, path));
    EXPECT_FALSE(rename_file(source, path));
    EXPECT_FALSE(remove_file(path));
    EXPECT_EQ(folder.Read("b"), "new");
}

TEST(windows_files, folder_is_no_file_that_is_waited_for) {
    const test::CTempFolder folder;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(open_file(folder.Path(), "rb"), nullptr);
    std::ifstream stream;
    EXPECT_FALSE(open_stream(stream, folder.Path()));
    // Waiting twice would take 400 ms.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(350));
}

TEST(windows_files, input_that_another_reader_holds_is_merged_and_stays_with_a_warning) {
    const test::CTempFolder folder;
    const std::string input = folder.Write("one", "1");
    const FilePtr reader = open_file(input, "rb");
    EXPECT_EQ(test::captured_output([&] {
                  EXPECT_FALSE(CCondition().MergeFiles({input}, folder.Path("merged"), true));
              }),
              "[Tessel] WARNING: Cannot remove the merged file: " + input + "\n");
    EXPECT_EQ(folder.Read("merged"), "1");
    EXPECT_EQ(folder.Read("one"), "1");
}

}  // namespace
}  // namespace tessel
