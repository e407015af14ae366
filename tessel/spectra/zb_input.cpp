// ZB2 binary files: stored scans come in, a spectrum for each of their precursors is filled.

#include "tessel/spectra/zb_input.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "tessel/base/little_endian.h"
#include "tessel/platform/file.h"
#include "tessel/platform/memory.h"
#include "tessel/spectra/entries.h"

namespace tessel {
namespace {

// Widths in bytes. A count is a signed 32-bit number.
constexpr std::size_t kCount = 4;
constexpr std::size_t kHeaderStart = 2 * kCount;  // number of entries, length of the stem
constexpr std::size_t kEntryStart = 2 * kCount;   // scan number, number of peaks
constexpr std::size_t kMz = 8;
constexpr std::size_t kPeak = kMz + 8;
constexpr std::size_t kPrecursor = kMz + 4;
constexpr std::size_t kSmallestEntry = kEntryStart + kCount;

constexpr std::int32_t kStemEnd = 81920;  // no stem is as long

constexpr std::size_t kBufferSize = std::size_t{1} << 17;  // many usual entries

std::int32_t count_at(const char* bytes) {
    return static_cast<std::int32_t>(little_endian_32(bytes));
}

std::vector<CPeak> peaks_at(const char* bytes, std::size_t count) {
    std::vector<CPeak> peaks(count);
    for (CPeak& peak : peaks) {
        peak.m_lfMz = little_endian_double(bytes);
        peak.m_lfIntensity = little_endian_double(bytes + kMz);
        bytes += kPeak;
    }
    return peaks;
}

// The spectra of an entry share its peaks in the file, but in memory each has its own: a small file
// may ask for any amount. Usual entries are far below the size from which on the system is asked.
bool has_room(const CSpectrum& spectrum, std::uint64_t precursors) {
    constexpr std::uint64_t kLarge = std::uint64_t{1} << 28;  // bytes
    // A list that grows holds so many records for each of its own while it moves.
    constexpr std::uint64_t kOfList = 3;
    const std::uint64_t each = kOfList * sizeof(CSpectrum) +
                               spectrum.m_vPeaks.size() * sizeof(CPeak) +
                               spectrum.m_vHashTable.size() * sizeof(int);
    return precursors <= kLarge / each || precursors <= available_memory() / each;
}

// Replaces `title`.
void write_title(std::string& title, const std::string& stem, std::uint32_t scan, int charge,
                 int index) {
    title = stem;
    title += '.';
    append_title_number(title, scan);
    append_title_number(title, scan);
    append_title_number(title, static_cast<std::uint64_t>(charge));
    append_title_number(title, static_cast<std::uint64_t>(index));
    title += "dta";
}

}  // namespace

CZBInput::CZBInput() = default;

CZBInput::~CZBInput() {
    Close();
}

std::size_t CZBInput::Count(const std::string& path) {
    Close();
    m_strPath = path;
    m_strStem.clear();
    m_tSpecNum = 0;
    m_tCurIdx = 0;
    m_tBegin = m_tEnd = 0;
    m_fp = open_file(path, "rb").release();
    if (m_fp == nullptr) {
        m_vFaults.push_back("cannot open " + path);
        return 0;
    }
    m_uLeft = bytes_left(m_fp);
    if (!ReadHeader()) {
        const char* const fault = std::ferror(m_fp) != 0 ? "cannot read " : "no ZB2 header in ";
        m_vFaults.push_back(fault + path);
        Close();
        return 0;
    }
    const std::uint64_t most = m_uLeft / kSmallestEntry;
    if (m_tSpecNum > most) {
        m_vFaults.push_back(
            joined_text(m_tSpecNum, " entries announced, at most ", most, " fit into ", path));
    }
    return m_tSpecNum;
}

bool CZBInput::ReadHeader() {
    const char* bytes = ReadBytes(kHeaderStart);
    if (bytes == nullptr) return false;
    const std::uint32_t entries = little_endian_32(bytes);
    const std::int32_t length = count_at(bytes + kCount);
    bytes = length < kStemEnd ? ReadList(length, 1, 0) : nullptr;
    if (bytes == nullptr) return false;
    const std::string_view stem(bytes, static_cast<std::size_t>(length));
    m_strStem = stem.substr(0, stem.find('\0'));
    m_tSpecNum = entries;
    return true;
}

std::size_t CZBInput::Browse(std::vector<CSpectrum>& out, std::size_t num) {
    if (m_fp == nullptr) return 0;
    const std::size_t first = m_tCurIdx;
    const std::size_t limit = entry_limit(m_tSpecNum, m_tCurIdx, num);
    make_room(out, std::min<std::uint64_t>(limit - first, m_uLeft / kSmallestEntry));
    // Counting reads no more than the header: there may be many files to count.
    if (m_vBuffer.size() < kBufferSize) m_vBuffer.resize(kBufferSize);
    while (m_tCurIdx < m_tSpecNum) {
        if (!ReadEntry(out)) {
            if (std::ferror(m_fp) != 0) m_vFaults.push_back("cannot read " + m_strPath);
            m_vFaults.push_back(entries_missing(m_strPath, m_tSpecNum, m_tCurIdx));
            Close();
            break;
        }
        if (++m_tCurIdx >= limit) break;
    }
    return m_tCurIdx - first;
}

// Appends the spectra of the next entry; nothing and false when it is cut off or impossible.
bool CZBInput::ReadEntry(std::vector<CSpectrum>& out) {
    const char* bytes = ReadBytes(kEntryStart);
    if (bytes == nullptr) return false;
    CSpectrum spectrum;
    spectrum.m_nScanNo = little_endian_32(bytes);
    const std::int32_t peaks = count_at(bytes + kCount);
    bytes = ReadList(peaks, kPeak, kCount);
    if (bytes == nullptr) return false;
    const auto peakNum = static_cast<std::size_t>(peaks);
    spectrum.m_vPeaks = peaks_at(bytes, peakNum);
    const std::int32_t precursors = count_at(bytes + peakNum * kPeak);
    bytes = ReadList(precursors, kPrecursor, 0);
    if (bytes == nullptr) return false;

    spectrum.Create_Hash_Table();
    if (!has_room(spectrum, static_cast<std::uint64_t>(precursors))) return false;
    for (std::int32_t i = 0; i < precursors; ++i) {
        // NOLINTNEXTLINE(bugprone-use-after-move): the last one alone is moved
        spectrum.m_nCharge = count_at(bytes + kMz);
        spectrum.m_lfMH = protonated_mass(little_endian_double(bytes), spectrum.m_nCharge);
        write_title(m_strTitle, m_strStem, spectrum.m_nScanNo, spectrum.m_nCharge, i);
        spectrum.m_strTitle = m_strTitle;
        bytes += kPrecursor;
        if (i + 1 < precursors) {
            out.push_back(spectrum);
        } else {
            out.push_back(std::move(spectrum));
        }
    }
    return true;
}

// A list of so many elements and what follows it; null for a negative count, too.
const char* CZBInput::ReadList(std::int32_t count, std::size_t width, std::size_t behind) {
    if (count < 0) return nullptr;
    return ReadBytes(static_cast<std::uint64_t>(count) * width + behind);
}

// The next bytes, valid until the next call; null when the file does not hold them.
const char* CZBInput::ReadBytes(std::uint64_t count) {
    if (count > m_uLeft) return nullptr;
    const auto size = static_cast<std::size_t>(count);
    if (size > m_tEnd - m_tBegin && !Refill(size)) return nullptr;
    const char* const bytes = m_vBuffer.data() + m_tBegin;
    m_tBegin += size;
    m_uLeft -= count;
    return bytes;
}

// Moves what is held to the front of the buffer and fills it, at least up to `size` bytes.
bool CZBInput::Refill(std::size_t size) {
    const std::size_t held = m_tEnd - m_tBegin;
    if (held > 0) std::memmove(m_vBuffer.data(), m_vBuffer.data() + m_tBegin, held);
    if (size > m_vBuffer.size()) m_vBuffer.resize(size);
    m_tBegin = 0;
    m_tEnd = held + std::fread(m_vBuffer.data() + held, 1, m_vBuffer.size() - held, m_fp);
    return m_tEnd >= size;
}

bool CZBInput::Close() {
    const FilePtr closing(std::exchange(m_fp, nullptr));
    return true;
}

std::vector<std::string> CZBInput::TakeFaults() {
    return std::exchange(m_vFaults, {});
}

}  // namespace tessel
