// ZB2: everything counted and read.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench/generate.h"
#include "bench/paths.h"
#include "bench/records.h"
#include "tessel/tessel.h"

namespace tessel::bench {
namespace {

constexpr double kProton = 1.00727647012;

void library(CRound& round, std::size_t entries) {
    const std::string path = zb2_file(entries);
    std::vector<CSpectrum> spectra;
    CZBInput reader;
    round.Run([&] {
        reader.Count(path);
        reader.Browse(spectra, kAllEntries);
    });
    round.m_cFigures.m_uDigest = digest_of_spectra(spectra);
}

// ---- The plain way: number by number ----

template <class Number>
Number get(std::FILE* file) {
    Number number{};
    if (std::fread(&number, sizeof number, 1, file) != 1) std::abort();
    return number;
}

void plain_entry(std::FILE* file, const std::string& stem, std::vector<CSpectrum>& out) {
    const auto scan = get<std::uint32_t>(file);
    const auto peaks = get<std::int32_t>(file);
    CSpectrum spectrum;
    for (std::int32_t i = 0; i < peaks; ++i) {
        CPeak peak;
        peak.m_lfMz = get<double>(file);
        peak.m_lfIntensity = get<double>(file);
        spectrum.m_vPeaks.push_back(peak);
    }
    spectrum.m_nScanNo = scan;
    const auto precursors = get<std::int32_t>(file);
    for (std::int32_t j = 0; j < precursors; ++j) {
        const auto mz = get<double>(file);
        const auto charge = get<std::int32_t>(file);
        spectrum.m_nCharge = charge;
        spectrum.m_lfMH = charge * mz - (charge - 1) * kProton;
        char title[1024];
        std::snprintf(title, sizeof title, "%s.%d.%d.%d.%d.dta", stem.c_str(),
                      static_cast<int>(scan), static_cast<int>(scan), charge, j);
        spectrum.m_strTitle = title;
        plain_peak_index(spectrum);
        out.push_back(spectrum);
    }
}

void plain(CRound& round, std::size_t entries) {
    const std::string path = zb2_file(entries);
    std::vector<CSpectrum> spectra;
    round.Run([&] {
        const OpenFile file = open_or_throw(path, "rb");
        const auto count = get<std::uint32_t>(file.get());
        std::string stem(static_cast<std::size_t>(get<std::int32_t>(file.get())), '\0');
        if (std::fread(stem.data(), 1, stem.size(), file.get()) != stem.size()) std::abort();
        for (std::uint32_t i = 0; i < count; ++i)
            plain_entry(file.get(), stem, spectra);
    });
    round.m_cFigures.m_uDigest = digest_of_spectra(spectra);
}

// ---- The least: the file read, every record byte written ----

constexpr std::size_t kStoredPeak = 2 * sizeof(double);
constexpr std::size_t kStoredPrecursor = sizeof(double) + sizeof(std::int32_t);

// A binary file, read through one buffer.
class CBytes {
public:
    explicit CBytes(const std::string& path)
        : m_pFile(open_or_throw(path, "rb")), m_vBuffer(kBlockSize) {
        std::setvbuf(m_pFile.get(), nullptr, _IONBF, 0);
    }

    // The next bytes, far fewer than the buffer holds, valid until the next call.
    const char* Take(std::size_t count) {
        if (count > m_tHeld - m_tTaken) Refill();
        if (count > m_tHeld - m_tTaken) std::abort();
        m_tTaken += count;
        return m_vBuffer.data() + m_tTaken - count;
    }
    std::int32_t Number() {
        std::int32_t number;
        std::memcpy(&number, Take(sizeof number), sizeof number);
        return number;
    }

private:
    void Refill() {
        m_tHeld -= m_tTaken;
        std::memmove(m_vBuffer.data(), m_vBuffer.data() + m_tTaken, m_tHeld);
        m_tTaken = 0;
        m_tHeld += std::fread(m_vBuffer.data() + m_tHeld, 1, kBlockSize - m_tHeld, m_pFile.get());
    }

    OpenFile m_pFile;
    std::vector<char> m_vBuffer;
    std::size_t m_tHeld = 0;   // bytes in the buffer
    std::size_t m_tTaken = 0;  // of these, handed out
};

void limit(CRound& round, std::size_t entries) {
    const std::string path = zb2_file(entries);
    CFreshMemory memory;
    round.Run([&] {
        CBytes bytes(path);
        const std::int32_t count = bytes.Number();
        bytes.Take(static_cast<std::size_t>(bytes.Number()));
        std::vector<CPeak> peaks;
        for (std::int32_t i = 0; i < count; ++i) {
            bytes.Number();  // the scan
            peaks.resize(static_cast<std::size_t>(bytes.Number()));
            const char* const stored = bytes.Take(peaks.size() * kStoredPeak);
            const char* const last = stored + (peaks.size() - 1) * kStoredPeak;
            std::memcpy(&peaks.back().m_lfMz, last, sizeof(double));
            const auto precursors = static_cast<std::size_t>(bytes.Number());
            bytes.Take(precursors * kStoredPrecursor);
            for (std::size_t j = 0; j < precursors; ++j)
                write_spectrum_bytes(memory, peaks);
        }
    });
}

}  // namespace

HOT_PATH zb2_path(std::size_t entries) {
    HOT_PATH path;
    path.m_strName = "zb2";
    path.m_strInput = std::to_string(entries) + " entries";
    path.m_cMusts.m_lfLimit = 1.6;
    path.m_cMusts.m_lfLimitAim = 1.3;
    path.m_cMusts.m_lfPlain = 0.65;
    path.m_fnLibrary = [entries](CRound& round) { library(round, entries); };
    path.m_fnPlain = [entries](CRound& round) { plain(round, entries); };
    path.m_fnLimit = [entries](CRound& round) { limit(round, entries); };
    return path;
}

}  // namespace tessel::bench
