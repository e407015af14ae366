// MGF: everything counted and read.

#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench/generate.h"
#include "bench/paths.h"
#include "bench/records.h"
#include "tessel/base/plain_decimal.h"
#include "tessel/tessel.h"

namespace tessel::bench {
namespace {

constexpr std::size_t kLineBuffer = 81920;
constexpr double kProton = 1.00727647012;

void library(CRound& round, std::size_t count) {
    const std::string path = mgf_file(count);
    std::vector<CSpectrum> spectra;
    CMGFInput reader;
    round.Run([&] {
        reader.Count(path);
        reader.Browse(spectra, kAllEntries);
    });
    round.m_cFigures.m_uDigest = digest_of_spectra(spectra);
}

// ---- The plain way ----

std::size_t plain_count(const std::string& path) {
    const OpenFile file = open_or_throw(path, "r");
    std::vector<char> line(kLineBuffer);
    std::size_t blocks = 0;
    while (std::fgets(line.data(), kLineBuffer, file.get()) != nullptr) {
        if (std::strncmp(line.data(), "BEGIN", 5) == 0) ++blocks;
    }
    return blocks;
}

void plain_title(CSpectrum& spectrum, char* line) {
    for (std::size_t i = std::strlen(line); i-- > 1 && std::isprint(line[i]) == 0;)
        line[i] = '\0';
    spectrum.m_strTitle = line + 6;
    spectrum._ExtractScanNo();
}

void plain_browse(const std::string& path, std::vector<CSpectrum>& out) {
    const OpenFile file = open_or_throw(path, "r");
    std::vector<char> buffer(kLineBuffer);
    char* const line = buffer.data();
    CSpectrum spectrum;
    double mz = 0.0;
    while (std::fgets(line, kLineBuffer, file.get()) != nullptr) {
        if (std::strncmp(line, "BEGIN", 5) != 0) continue;
        spectrum.m_vPeaks.clear();
        spectrum.m_strTitle.clear();
        while (std::fgets(line, kLineBuffer, file.get()) != nullptr && line[0] != 'E') {
            if (line[0] == 'C') {
                spectrum.m_nCharge = std::atoi(line + 7);
            } else if (line[0] == 'P') {
                mz = std::atof(line + 8);
            } else if (line[0] == 'T') {
                plain_title(spectrum, line);
            } else if (std::isdigit(line[0]) != 0) {
                CPeak peak;
                std::sscanf(line, "%lf%lf", &peak.m_lfMz, &peak.m_lfIntensity);
                spectrum.m_vPeaks.push_back(peak);
            }
        }
        spectrum.m_lfMH = spectrum.m_nCharge * mz - (spectrum.m_nCharge - 1) * kProton;
        plain_peak_index(spectrum);
        out.push_back(spectrum);
    }
}

void plain(CRound& round, std::size_t count) {
    const std::string path = mgf_file(count);
    std::vector<CSpectrum> spectra;
    round.Run([&] {
        plain_count(path);
        plain_browse(path, spectra);
    });
    round.m_cFigures.m_uDigest = digest_of_spectra(spectra);
}

// ---- The least: every line end found, every number read, every record byte written ----

// Sixteen characters at a time, as compilers make of it: the counts of a short block fit into
// bytes.
std::size_t line_ends(const char* first, const char* last) {
    constexpr std::ptrdiff_t kShort = 240;
    std::size_t ends = 0;
    while (first != last) {
        const char* const end = last - first < kShort ? last : first + kShort;
        std::uint8_t found = 0;
        for (; first != end; ++first)
            found = static_cast<std::uint8_t>(found + (*first == '\n' ? 1 : 0));
        ends += found;
    }
    return ends;
}

std::size_t lines_of(const std::string& path) {
    CLineBlocks blocks(path);
    const char* first;
    const char* last;
    std::size_t lines = 0;
    while (blocks.Next(first, last))
        lines += line_ends(first, last);
    return lines;
}

const char* skip_line(const char* first, const char* last) {
    const void* const end = std::memchr(first, '\n', static_cast<std::size_t>(last - first));
    return static_cast<const char*>(end) + 1;
}

// The library's own reader of plain numbers: none is known to be faster.
const char* read_number(const char* text, const char* last, double& value) {
    const char* const end = read_plain_decimal(text, value);
    return end != nullptr ? end : std::from_chars(text, last, value).ptr;
}

void read_and_write(const std::string& path, CFreshMemory& memory) {
    CLineBlocks blocks(path);
    std::vector<CPeak> peaks;
    const char* first;
    const char* last;
    while (blocks.Next(first, last)) {
        while (first != last) {
            if (static_cast<unsigned char>(*first - '0') < 10) {
                CPeak& peak = peaks.emplace_back();
                first = read_number(first, last, peak.m_lfMz) + 1;
                first = read_number(first, last, peak.m_lfIntensity) + 1;
                continue;
            }
            if (*first == 'E') {
                write_spectrum_bytes(memory, peaks);
                peaks.clear();
            }
            first = skip_line(first, last);
        }
    }
}

void limit(CRound& round, std::size_t count) {
    const std::string path = mgf_file(count);
    CFreshMemory memory;
    std::size_t lines = 0;
    round.Run([&] {
        lines = lines_of(path);
        read_and_write(path, memory);
    });
    if (lines < count) std::abort();  // the scan is not to be left out by the compiler
}

}  // namespace

HOT_PATH mgf_path(std::size_t spectra) {
    HOT_PATH path;
    path.m_strName = "mgf";
    path.m_strInput = std::to_string(spectra) + " spectra";
    path.m_cMusts.m_lfLimit = 1.35;
    path.m_cMusts.m_lfLimitAim = 1.15;
    path.m_cMusts.m_lfPlain = 0.32;
    path.m_fnLibrary = [spectra](CRound& round) { library(round, spectra); };
    path.m_fnPlain = [spectra](CRound& round) { plain(round, spectra); };
    path.m_fnLimit = [spectra](CRound& round) { limit(round, spectra); };
    return path;
}

}  // namespace tessel::bench
