// The accession and description files that the indexing tool leaves beside the searched database.
// m_strInputFastaPath comes in, their lines go out. Missing or stale ones have the tool run.

#include <string_view>

#include "tessel/base/line_reader.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/constants.h"
#include "tessel/condition/utilities.h"
#include "tessel/platform/file.h"
#include "tessel/platform/process.h"

namespace tessel {
namespace {

constexpr std::size_t kFastaSuffixLength = 6;  // ".fasta"

std::string index_path(const std::string& database, const char* extension) {
    const std::size_t length = database.size();
    const std::size_t kept = length < kFastaSuffixLength ? length : length - kFastaSuffixLength;
    return database.substr(0, kept) + extension;
}

// Replaces `lines` by those of a file, up to the first empty one where that ends it. One that does
// not exist has none; of one that fails, what was read before stays.
void read_lines(const CCondition& condition, const std::string& path, bool endsAtEmptyLine,
                std::vector<std::string>& lines) {
    lines.clear();
    CLineReader reader(path);
    std::string_view line;
    while (reader.ReadLine(line) && !(endsAtEmptyLine && line.empty()))
        lines.emplace_back(line);
    if (reader.Failed() || (!reader.IsOpen() && path_exists(path))) {
        condition.Message("Cannot read the index file: " + path, LOG_ALERT);
    }
}

}  // namespace

std::string CCondition::GetACPath() const {
    return index_path(m_strInputFastaPath, ".pac");
}

std::string CCondition::GetDEPath() const {
    return index_path(m_strInputFastaPath, ".pde");
}

void CCondition::ReadProteinAC(std::vector<std::string>& acs) const {
    read_lines(*this, GetACPath(), true, acs);
}

void CCondition::ReadProteinDE(std::vector<std::string>& des) const {
    read_lines(*this, GetDEPath(), false, des);
}

void CCondition::UpdateProteinAC(const std::string& database) const {
    if (_IsValidFileTime(GetACPath(), m_strInputFastaPath) &&
        _IsValidFileTime(GetDEPath(), m_strInputFastaPath)) {
        return;
    }
    System("Vantor.exe " + quoted_path(database), false);
}

}  // namespace tessel
