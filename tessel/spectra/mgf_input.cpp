// MGF text files: lines come in, one spectrum for each block between "BEGIN" and "E" is filled.

#include "tessel/spectra/mgf_input.h"

#include <string_view>
#include <utility>

#include "tessel/base/line_reader.h"
#include "tessel/base/number.h"
#include "tessel/base/plain_decimal.h"
#include "tessel/base/text.h"
#include "tessel/platform/file.h"
#include "tessel/spectra/entries.h"
#include "tessel/spectra/mgf_keys.h"

namespace tessel {
namespace {

bool skip_to_block(CLineReader& lines) {
    return lines.SkipThrough("BEGIN");
}

// Reads the peaks that stand ready in the reader's buffer and are written plainly: "100.25 20.5".
// Any other line is left to be read as lines are. Without looking for line ends and asking at every
// character whether the text goes on, a peak takes half the time.
void read_plain_peaks(CLineReader& lines, std::vector<CPeak>& peaks) {
    constexpr std::ptrdiff_t kReach = 2 * kPlainDecimalReach + 3;  // blank, carriage return, end
    const std::string_view held = lines.Held();
    const char* const last = held.data() + held.size();
    const char* line = held.data();
    CPeak peak;
    while (last - line >= kReach) {
        const char* next = read_plain_decimal(line, peak.m_lfMz);
        if (next == nullptr || (*next != ' ' && *next != '\t')) break;
        next = read_plain_decimal(next + 1, peak.m_lfIntensity);
        if (next == nullptr) break;
        if (*next == '\r') ++next;
        if (*next != '\n') break;
        peaks.push_back(peak);
        line = next + 1;
    }
    lines.Take(static_cast<std::size_t>(line - held.data()));
}

CPeak peak_of(std::string_view line) {
    CPeak peak;
    const char* const last = line.data() + line.size();
    const char* const end = read_double(line.data(), last, peak.m_lfMz);
    if (end != nullptr) read_double(end, last, peak.m_lfIntensity);
    return peak;
}

void set_title(CSpectrum& spectrum, std::string_view line) {
    spectrum.m_strTitle = text_from(without_unprintable_tail(line), kTitleAt);
    spectrum._ExtractScanNo();
}

// Reads the lines of a block up to its end. Charge and m/z stay as they are where the block does
// not name them.
void read_block(CLineReader& lines, CSpectrum& spectrum, double& mz) {
    for (std::string_view line;;) {
        read_plain_peaks(lines, spectrum.m_vPeaks);
        if (!lines.ReadLine(line)) return;
        const char key = line.empty() ? '\0' : line.front();
        if (is_digit(key)) {
            spectrum.m_vPeaks.push_back(peak_of(line));
        } else if (key == 'E') {
            return;
        } else if (key == 'C') {
            spectrum.m_nCharge = to_int(text_from(line, kChargeAt));
        } else if (key == 'P') {
            mz = to_double(text_from(line, kMzAt));
        } else if (key == 'T') {
            set_title(spectrum, line);
        }
    }
}

std::string default_title(std::size_t total, std::size_t index, int charge) {
    std::string title;
    append_title_number(title, total);
    append_title_number(title, index);
    append_title_number(title, index);
    append_title_number(title, static_cast<std::uint64_t>(charge));
    return title + "dta";
}

}  // namespace

CMGFInput::CMGFInput() = default;

CMGFInput::~CMGFInput() {
    Close();
}

std::size_t CMGFInput::Count(const std::string& path) {
    Close();
    m_strPath = path;
    m_tSpecNum = 0;
    m_tCurIdx = 0;
    FilePtr file = open_file(path, "rb");
    if (!file) {
        m_vFaults.push_back("cannot open " + path);
        return 0;
    }
    const bool empty = bytes_left(file.get()) == 0;
    CLineReader lines(file.get(), kLinePiece);
    std::size_t blocks = 0;
    while (skip_to_block(lines))
        ++blocks;
    const bool failed = lines.Failed();
    file = open_file(path, "rb");
    if (failed || !file) {
        m_vFaults.push_back("cannot read " + path);
        return 0;
    }
    if (blocks == 0 && !empty) m_vFaults.push_back("no line begins with BEGIN in " + path);
    m_fp = file.release();
    m_pLines = std::make_unique<CLineReader>(m_fp, kLinePiece);
    m_tSpecNum = blocks;
    return m_tSpecNum;
}

std::size_t CMGFInput::Browse(std::vector<CSpectrum>& out, std::size_t num) {
    if (m_fp == nullptr) return 0;
    const std::size_t first = m_tCurIdx;
    const std::size_t limit = entry_limit(m_tSpecNum, m_tCurIdx, num);
    make_room(out, limit - first);
    CSpectrum spectrum;  // keeps its memory from block to block; what goes out is a copy
    double mz = 0.0;
    bool ended = false;
    while (m_tCurIdx < m_tSpecNum) {
        ended = !skip_to_block(*m_pLines);
        if (ended) break;
        spectrum.m_vPeaks.clear();
        spectrum.m_strTitle.clear();
        read_block(*m_pLines, spectrum, mz);
        spectrum.m_lfMH = protonated_mass(mz, spectrum.m_nCharge);
        if (spectrum.m_strTitle.empty()) {
            spectrum.m_nScanNo = static_cast<std::uint32_t>(m_tCurIdx);
            spectrum.m_strTitle = default_title(m_tSpecNum, m_tCurIdx, spectrum.m_nCharge);
        }
        out.push_back(spectrum);
        out.back().Create_Hash_Table();
        if (++m_tCurIdx == limit) break;
    }
    // The block at which reading fails has been taken for the last one, cut off.
    const bool failed = m_pLines->Failed();
    if (failed) m_vFaults.push_back("cannot read " + m_strPath);
    if (ended || (failed && m_tCurIdx < m_tSpecNum)) {
        m_vFaults.push_back(entries_missing(m_strPath, m_tSpecNum, m_tCurIdx));
    }
    if (ended || failed) Close();
    return m_tCurIdx - first;
}

bool CMGFInput::Close() {
    m_pLines.reset();
    const FilePtr closing(std::exchange(m_fp, nullptr));
    return true;
}

std::vector<std::string> CMGFInput::TakeFaults() {
    return std::exchange(m_vFaults, {});
}

}  // namespace tessel
