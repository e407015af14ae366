#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/database/database_folder.h"
#include "tests/support/system.h"

namespace tessel::test {

/// A stand-in for the tool, first in PATH, that notes its arguments, one a line, in the folder's
/// file "arguments".
class CIndexingTool : public CDatabaseFolder {
protected:
    CIndexingTool() : m_strPathBefore(std::getenv("PATH")) {
        std::filesystem::copy_file(NOTE_ARGUMENTS, m_cFolder.Path("Vantor.exe"));
        set_environment("PATH", m_cFolder.Path() + kPathSeparator + m_strPathBefore);
        set_environment("TESSEL_TEST_ARGUMENTS", m_cFolder.Path("arguments"));
        m_cCondition.m_strInputFastaPath = m_cFolder.Write("db.fasta", ">P1\nA\n");
        set_file_age(m_cFolder.Path("db.fasta"), 50);
    }
    ~CIndexingTool() override {
        set_environment("PATH", m_strPathBefore);
        unset_environment("TESSEL_TEST_ARGUMENTS");
        unset_environment("TESSEL_TEST_STATUS");
    }

    bool Runs() const {
        std::filesystem::remove(m_cFolder.Path("arguments"));
        m_cCondition.UpdateProteinAC("the database");
        return m_cFolder.Has("arguments");
    }

private:
    std::string m_strPathBefore;
};

}  // namespace tessel::test
