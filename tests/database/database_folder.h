#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "tessel/condition/condition.h"
#include "tests/support/temp_folder.h"

namespace tessel::test {

inline constexpr int kDay = 24 * 60 * 60;

// One condition and a folder in which "db.fasta" is its database.
class CDatabaseFolder : public testing::Test {
protected:
    CDatabaseFolder() { m_cCondition.m_strFastaPath = m_cFolder.Path("db.fasta"); }

    std::string Target() const { return m_cFolder.Path("db.fasta_td.fasta"); }
    std::string CannotWrite(const std::string& reason = "") const {
        return "[Tessel] ALERT: Cannot write the target-decoy database " + Target() + reason + '\n';
    }
    std::size_t FilesInFolder() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_cFolder.Path()), {}));
    }
    bool HasUnfinishedFile() const {
        for (const auto& entry : std::filesystem::directory_iterator(m_cFolder.Path()))
            if (entry.path().extension() == ".tmp") return true;
        return false;
    }

    test::CTempFolder m_cFolder;
    CCondition m_cCondition;
};

inline std::string large_database(std::size_t proteins) {
    std::string text;
    for (std::size_t i = 0; i < proteins; ++i)
        text += ">P" + std::to_string(i) + " d\n" + std::string(1000, 'A') + '\n';
    return text;
}

}  // namespace tessel::test
