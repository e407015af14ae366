// The target-decoy database: the proteins of the condition's loader come in, a file with each of
// them and its decoy is written. It appears under its name only when it is complete.

#include "tessel/database/target_decoy_file.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

#include "tessel/base/end_process.h"
#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/constants.h"
#include "tessel/platform/file.h"
#include "tessel/platform/process.h"

namespace tessel {
namespace {

constexpr std::size_t kWriteBlock = std::size_t{1} << 20;
constexpr int kMaxAttempts = 3;
constexpr std::int64_t kSecondsOfDay = std::int64_t{24} * 60 * 60;
constexpr std::string_view kUnfinishedSuffix = ".tmp";

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

std::uint64_t bytes_reversed(std::uint64_t bytes) {
    bytes = (bytes & 0x00FF00FF00FF00FF) << 8 | (bytes >> 8 & 0x00FF00FF00FF00FF);
    bytes = (bytes & 0x0000FFFF0000FFFF) << 16 | (bytes >> 16 & 0x0000FFFF0000FFFF);
    return bytes << 32 | bytes >> 32;
}

// Eight characters from either end at a time: a sixth of the time of std::reverse(), which would be
// a sixth of that of the whole generation.
void reverse_text(std::string& text) {
    char* first = text.data();
    char* last = first + text.size();
    for (; last - first >= 16; first += 8, last -= 8) {
        std::uint64_t front;
        std::uint64_t back;
        std::memcpy(&front, first, 8);
        std::memcpy(&back, last - 8, 8);
        front = bytes_reversed(front);
        back = bytes_reversed(back);
        std::memcpy(first, &back, 8);
        std::memcpy(last - 8, &front, 8);
    }
    std::reverse(first, last);
}

void turn_into_decoy(CProtein& protein) {
    protein.m_strAC.insert(0, _REV_TAG);
    reverse_text(protein.m_strSQ);
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

// Takes a dot and the digits behind it off the front; false when there are none.
bool take_number(std::string_view& name) {
    if (!name.starts_with('.')) return false;
    const std::size_t end = std::min(name.find_first_not_of("0123456789", 1), name.size());
    name.remove_prefix(end);
    return end > 1;
}

// Nothing but what unfinished_path() makes: the user's own files may end in ".tmp", too.
bool is_unfinished_name(std::string_view name, std::string_view targetName) {
    if (!name.starts_with(targetName)) return false;
    name.remove_prefix(targetName.size());
    return take_number(name) && take_number(name) && name == kUnfinishedSuffix;
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

// Returns an empty text, or what went wrong. Throws what the loader throws; no unfinished file is
// left in any case.
std::string generate(CFastaLoader& loader, const std::string& source, const std::string& target) {
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

// A younger file may belong to a run that is still at work.
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

void write_target_decoy(CCondition& condition, const std::string& source,
                        const std::string& target) {
    const std::string fault = generate(condition.m_cFastaLoader, source, target);
    if (fault.empty()) return;
    condition.Message(fault, LOG_ALERT);
    end_process(1);
}

}  // namespace tessel
