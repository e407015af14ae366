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

// ---- As described: number by number ----

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

void limit(CRound& round, std::size_t entries) {
    const std::string path = zb2_file(entries);
    CFreshMemory memory;
    round.Run([&] {
        const OpenFile file = open_or_throw(path, "rb");
        std::vector<char> block(kBlockSize);
        std::setvbuf(file.get(), block.data(), _IOFBF, block.size());
        const auto count = get<std::uint32_t>(file.get());
        std::vector<char> skipped(static_cast<std::size_t>(get<std::int32_t>(file.get())));
        if (std::fread(skipped.data(), skipped.size(), 1, file.get()) != 1) std::abort();
        std::vector<CPeak> peaks;
        for (std::uint32_t i = 0; i < count; ++i) {
            get<std::uint32_t>(file.get());
            const auto number = static_cast<std::size_t>(get<std::int32_t>(file.get()));
            peaks.resize(number);
            skipped.resize(number * 2 * sizeof(double));
            if (std::fread(skipped.data(), skipped.size(), 1, file.get()) != 1) std::abort();
            std::memcpy(&peaks.back().m_lfMz, skipped.data() + skipped.size() - 16, sizeof(double));
            const auto precursors = static_cast<std::size_t>(get<std::int32_t>(file.get()));
            skipped.resize(precursors * 12);
            if (std::fread(skipped.data(), skipped.size(), 1, file.get()) != 1) std::abort();
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
