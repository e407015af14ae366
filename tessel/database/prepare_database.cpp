// The database that is searched: the user's own or the target-decoy database made from it, and the
// accession and description files that the indexing tool leaves beside it. m_strFastaPath comes in,
// m_strInputFastaPath is settled; the condition's loader does the reading.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "tessel/base/end_process.h"
#include "tessel/base/line_reader.h"
#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/constants.h"
#include "tessel/condition/utilities.h"
#include "tessel/database/target_decoy_file.h"
#include "tessel/platform/file.h"
#include "tessel/platform/process.h"

namespace tessel {
namespace {

constexpr std::size_t kWriteBlock = std::size_t{1} << 20;
constexpr int kMaxAttempts = 3;
constexpr std::int64_t kSecondsOfDay = std::int64_t{24} * 60 * 60;
constexpr std::string_view kUnfinishedSuffix = ".tmp";
constexpr std::size_t kFastaSuffixLength = 6;  // ".fasta"

// ---- Target and decoy entries ----

void append_target(std::string& text, const CProtein& protein) {
    text += '>';
    text += protein.m_strAC;
    text += '\t';
    text += protein.m_strDE;
    text += "\t\n";
    text += protein.m_strSQ;
    text += '\n';
}

std::uint64_t reversed(std::uint64_t bytes) {
    bytes = (bytes & 0x00FF00FF00FF00FF) << 8 | (bytes >> 8 & 0x00FF00FF00FF00FF);
    bytes = (bytes & 0x0000FFFF0000FFFF) << 16 | (bytes >> 16 & 0x0000FFFF0000FFFF);
    return bytes << 32 | bytes >> 32;
}

// Eight characters from either end at a time: a sixth of the time of std::reverse(), which would be
// a sixth of that of the whole generation.
void reverse(std::string& text) {
    char* first = text.data();
    char* last = first + text.size();
    for (; last - first >= 16; first += 8, last -= 8) {
        std::uint64_t front;
        std::uint64_t back;
        std::memcpy(&front, first, 8);
        std::memcpy(&back, last - 8, 8);
        front = reversed(front);
        back = reversed(back);
        std::memcpy(first, &back, 8);
        std::memcpy(last - 8, &front, 8);
    }
    std::reverse(first, last);
}

void turn_into_decoy(CProtein& protein) {
    protein.m_strAC.insert(0, _REV_TAG);
    reverse(protein.m_strSQ);
}

void append_decoy(std::string& text, const CProtein& decoy, std::size_t number) {
    text += '>';
    text += decoy.m_strAC;
    text += "\t_REV";
    append_integer(text, number);
    text += '\n';
    text += decoy.m_strSQ;
    text += '\n';
}

// ---- The file while it is written ----

// A database appears under its name only when it is complete. Until then it has a name that no
// other condition object of any process uses, and goes away with this object.
class CUnfinishedFile {
public:
    explicit CUnfinishedFile(std::string path)
        : m_strPath(std::move(path)), m_pFile(open_file(m_strPath, "wb")), m_bOwned(m_pFile) {}
    ~CUnfinishedFile() {
        m_pFile.reset();
        if (m_bOwned) remove_file(m_strPath);
    }
    CUnfinishedFile(const CUnfinishedFile&) = delete;
    CUnfinishedFile& operator=(const CUnfinishedFile&) = delete;

    bool Write(std::string_view text) {
        return m_pFile && std::fwrite(text.data(), 1, text.size(), m_pFile.get()) == text.size();
    }
    bool Close() { return m_pFile && close_file(std::move(m_pFile)); }
    bool Rename(const std::string& target) {
        if (!rename_file(m_strPath, target)) return false;
        m_bOwned = false;
        return true;
    }

private:
    std::string m_strPath;
    FilePtr m_pFile;
    bool m_bOwned;  // the file was created and is not yet renamed
};

std::string unfinished_path(const std::string& target, const void* owner) {
    std::string path = target + '.';
    append_integer(path, process_id());
    path += '.';
    append_integer(path, reinterpret_cast<std::uintptr_t>(owner));
    path += kUnfinishedSuffix;
    return path;
}

bool is_unfinished_name(std::string_view name, std::string_view targetName) {
    if (name.size() < targetName.size() + kUnfinishedSuffix.size()) return false;
    if (!name.starts_with(targetName) || !name.ends_with(kUnfinishedSuffix)) return false;
    name.remove_prefix(targetName.size());
    name.remove_suffix(kUnfinishedSuffix.size());
    return name.starts_with('.') && name.find_first_not_of("0123456789.") == name.npos;
}

// What killed runs have left behind. A younger file may belong to a run that is still at work.
void remove_leftovers(const std::string& target) {
    const std::size_t nameBegin = target.find_last_of("/\\") + 1;  // 0 without a folder
    const std::string folder = target.substr(0, nameBegin);
    const auto names = folder_entries(folder.empty() ? "." : folder);
    if (!names) return;
    const std::int64_t now = std::chrono::duration_cast<std::chrono::seconds>(
                                 std::chrono::system_clock::now().time_since_epoch())
                                 .count();
    for (const std::string& name : *names) {
        if (!is_unfinished_name(name, std::string_view(target).substr(nameBegin))) continue;
        const auto status = file_status(folder + name);
        if (status && now - status->m_nTime > kSecondsOfDay) remove_file(folder + name);
    }
}

// ---- Generation ----

bool is_unchanged(const std::optional<FILE_STATUS>& before, const std::string& source) {
    const auto after = file_status(source);
    return before && after && before->m_uSize == after->m_uSize &&
           before->m_nTime == after->m_nTime && before->m_nNanoseconds == after->m_nNanoseconds &&
           before->m_uIdentity == after->m_uIdentity;
}

// Writes the batch that the loader holds and all later ones, each protein followed by its decoy.
bool write_batches(CFastaLoader& loader, CUnfinishedFile& file) {
    std::string text;
    std::size_t number = 1;
    for (;;) {
        for (CProtein& protein : loader.m_vProteins) {
            append_target(text, protein);
            turn_into_decoy(protein);
            append_decoy(text, protein, number++);
            if (text.size() < kWriteBlock) continue;
            if (!file.Write(text)) return false;
            text.clear();
        }
        if (loader.m_bEnd) return file.Write(text) && file.Close();
        loader.ReadNextBatch();
    }
}

bool read_to_end(const CFastaLoader& loader) {
    return loader.m_tReadNum == loader.m_tEntryNum && !loader.m_ifsFasta.bad();
}

// Writes the target-decoy database. Returns an empty text, or what went wrong. Throws what the
// loader throws; no unfinished file is left in any case.
std::string generate_target_decoy(CFastaLoader& loader, const std::string& source,
                                  const std::string& target) {
    const std::string failed = "Cannot write the target-decoy database " + target;
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        const auto statusBefore = file_status(source);
        loader.Reset();
        loader.ReadNextBatch();
        CUnfinishedFile file(unfinished_path(target, &loader));
        if (!write_batches(loader, file)) return failed;
        if (!is_unchanged(statusBefore, source)) continue;
        if (!read_to_end(loader)) return failed + ": " + source + " cannot be read to its end";
        // Another process may have been faster, and its result may be in use already.
        return file.Rename(target) || is_fresh_target_decoy(target, source) ? "" : failed;
    }
    return failed + ": " + source + " keeps changing";
}

// A database that does not exist leaves an empty file where there is none.
void leave_empty_file(const std::string& target) {
    if (!path_exists(target)) open_file(target, "ab");
}

std::string index_path(const std::string& database, const char* extension) {
    const std::size_t length = database.size();
    const std::size_t kept = length < kFastaSuffixLength ? length : length - kFastaSuffixLength;
    return database.substr(0, kept) + extension;
}

}  // namespace

bool is_fresh_target_decoy(const std::string& target, const std::string& source) {
    const auto targetStatus = file_status(target);
    const auto sourceStatus = file_status(source);
    if (!targetStatus || !sourceStatus) return false;
    if (targetStatus->m_bFolder || sourceStatus->m_bFolder) return false;
    // An empty one is what a failed run leaves of a database that could not be opened.
    if (targetStatus->m_uSize == 0 && sourceStatus->m_uSize > 0) return false;
    return targetStatus->m_nTime >= sourceStatus->m_nTime;
}

void CCondition::SetFastaPath() {
    m_strInputFastaPath = m_strFastaPath;
    if (!m_bAutoRev) return;
    const std::string target = m_strInputFastaPath + _TD_FASTA;
    if (!is_fresh_target_decoy(target, m_strInputFastaPath)) {
        remove_leftovers(target);
        std::string fault;
        try {
            fault = generate_target_decoy(m_cFastaLoader, m_strInputFastaPath, target);
        } catch (const std::runtime_error&) {
            leave_empty_file(target);
            throw;
        }
        if (!fault.empty()) {
            Message(fault, LOG_ALERT);
            end_process(1);
        }
    }
    m_strInputFastaPath = target;
}

int CCondition::SetSubFasta() {
    m_strFastaPath = m_strOutputPath + m_strOutputName + ".sub.fasta";
    m_bUseSubFasta = true;
    SetFastaPath();
    return 1;
}

std::string CCondition::GetACPath() const {
    return index_path(m_strInputFastaPath, ".pac");
}

std::string CCondition::GetDEPath() const {
    return index_path(m_strInputFastaPath, ".pde");
}

void CCondition::ReadProteinAC(std::vector<std::string>& acs) const {
    acs.clear();
    CLineReader reader(GetACPath());
    std::string_view line;
    while (reader.ReadLine(line) && !line.empty())
        acs.emplace_back(line);
}

void CCondition::ReadProteinDE(std::vector<std::string>& des) const {
    des.clear();
    CLineReader reader(GetDEPath());
    std::string_view line;
    while (reader.ReadLine(line))
        des.emplace_back(line);
}

void CCondition::UpdateProteinAC(const std::string& database) const {
    if (_IsValidFileTime(GetACPath(), m_strInputFastaPath) &&
        _IsValidFileTime(GetDEPath(), m_strInputFastaPath)) {
        return;
    }
    System("Vantor.exe " + quoted_path(database), false);
}

}  // namespace tessel
