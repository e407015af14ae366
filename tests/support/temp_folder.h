#pragma once

#include <filesystem>
#include <string>

namespace tessel::test {

/// The path of a UTF-8 text, which the library takes for one on every system.
std::filesystem::path path_of(const std::string& path);

std::string read_file(const std::string& path);
void write_file(const std::string& path, const std::string& bytes);

/// A file or folder of the source tree, by its path from the tree's root.
std::string source_path(const std::string& path);

/// Moves a file's modification time by some seconds from now.
void set_file_age(const std::string& path, int secondsAgo);

/// A path in the system's folder of temporary files that belongs to the present test, and is the
/// same in a child process that the test starts.
std::string temporary_path(const std::string& name);

/// A fresh folder of the test's own, removed with everything in it at the end.
class CTempFolder {
public:
    CTempFolder();
    ~CTempFolder();
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    /// The folder, without a last separator.
    const std::string& Path() const { return m_strPath; }
    std::string Path(const std::string& name) const { return m_strPath + '/' + name; }
    /// Writes a file and returns its path.
    std::string Write(const std::string& name, const std::string& bytes) const;
    std::string Read(const std::string& name) const { return read_file(Path(name)); }
    bool Has(const std::string& name) const;

private:
    std::string m_strPath;
};

/// Makes a folder the working folder until the end of the scope.
class CWorkingFolder {
public:
    explicit CWorkingFolder(const std::string& path);
    ~CWorkingFolder();
    CWorkingFolder(const CWorkingFolder&) = delete;
    CWorkingFolder& operator=(const CWorkingFolder&) = delete;

private:
    std::string m_strBefore;
};

}  // namespace tessel::test
