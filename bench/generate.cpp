// Inputs of the benchmark: sizes come in, files are written.

#include "bench/generate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string_view>

#include "bench/records.h"

namespace tessel::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPeaks = 120;
constexpr std::size_t kCandidates = 10;
constexpr std::size_t kResultFiles = 4;
constexpr std::size_t kFastaColumns = 60;
constexpr std::string_view kResidues = "ACDEFGHIKLMNPQRSTVWY";

// Part of the folder's name: inputs of an older kind are not taken for present ones.
constexpr const char* kKind = "kind2";

fs::path g_folder;

// The standard distributions differ between libraries; these numbers do not.
class CRandom {
public:
    explicit CRandom(std::uint64_t seed) : m_uState(seed) {}

    std::uint64_t Next() {
        std::uint64_t bits = (m_uState += 0x9E3779B97F4A7C15);
        bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
        bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
        return bits ^ (bits >> 31);
    }
    /// From 0 to bound - 1.
    std::size_t Below(std::size_t bound) { return static_cast<std::size_t>(Next() % bound); }
    double Between(double low, double high) {
        return low + (high - low) * static_cast<double>(Next() >> 11) * 0x1p-53;
    }

private:
    std::uint64_t m_uState;
};

// A text file that is made when it is missing, and appears when it is complete.
std::string made_file(const std::string& name, const std::function<void(std::FILE*)>& write) {
    const fs::path path = g_folder / name;
    if (fs::exists(path)) return path.string();
    fs::create_directories(g_folder);
    const fs::path unfinished = path.string() + ".unfinished";
    write(open_or_throw(unfinished.string(), "wb").get());
    fs::rename(unfinished, path);
    return path.string();
}

std::string numbered(const char* format, std::size_t number) {
    char name[64];
    std::snprintf(name, sizeof name, format, number);
    return name;
}

double rounded(double value, double steps) {
    return std::round(value * steps) / steps;
}

// ---- Spectra ----

struct SPECTRUM {
    struct PRECURSOR {
        double m_lfMz;
        int m_nCharge;
    };
    std::array<double, kPeaks> m_lfMz;
    std::array<double, kPeaks> m_lfIntensity;
    std::vector<PRECURSOR> m_vPrecursors;  // the first is the one that MGF files give
};

SPECTRUM spectrum_of(CRandom& random) {
    SPECTRUM spectrum;
    for (double& mz : spectrum.m_lfMz)
        mz = rounded(random.Between(100.0, 1800.0), 1e5);
    std::sort(spectrum.m_lfMz.begin(), spectrum.m_lfMz.end());
    for (double& intensity : spectrum.m_lfIntensity)
        intensity = rounded(std::pow(10.0, random.Between(1.0, 5.5)), 10.0);
    const std::size_t more = random.Below(10) < 3 ? 1 + random.Below(2) : 0;
    for (std::size_t i = 0; i <= more; ++i) {
        const double mz = rounded(random.Between(400.0, 1200.0), 1e5);
        spectrum.m_vPrecursors.push_back({mz, static_cast<int>(2 + random.Below(3))});
    }
    return spectrum;
}

void write_mgf(std::FILE* file, std::size_t spectra) {
    CRandom random(1);
    for (std::size_t i = 0; i < spectra; ++i) {
        const SPECTRUM spectrum = spectrum_of(random);
        const SPECTRUM::PRECURSOR& precursor = spectrum.m_vPrecursors.front();
        std::fprintf(file, "BEGIN IONS\nTITLE=sample_run.%zu.%zu.%d.0.dta\nCHARGE=%d+\n", i + 1,
                     i + 1, precursor.m_nCharge, precursor.m_nCharge);
        std::fprintf(file, "RTINSECONDS=%.3f\nPEPMASS=%.5f\n", 0.25 * static_cast<double>(i),
                     precursor.m_lfMz);
        for (std::size_t k = 0; k < kPeaks; ++k)
            std::fprintf(file, "%.5f %.1f\n", spectrum.m_lfMz[k], spectrum.m_lfIntensity[k]);
        std::fputs("END IONS\n", file);
    }
}

template <class Number>
void put(std::FILE* file, Number number) {
    std::fwrite(&number, sizeof number, 1, file);
}

void write_zb2(std::FILE* file, std::size_t entries) {
    constexpr std::string_view kStem = "sample_run";
    CRandom random(1);
    put(file, static_cast<std::uint32_t>(entries));
    put(file, static_cast<std::int32_t>(kStem.size()));
    std::fwrite(kStem.data(), 1, kStem.size(), file);
    for (std::size_t i = 0; i < entries; ++i) {
        const SPECTRUM spectrum = spectrum_of(random);
        put(file, static_cast<std::uint32_t>(i + 1));
        put(file, static_cast<std::int32_t>(kPeaks));
        for (std::size_t k = 0; k < kPeaks; ++k) {
            put(file, spectrum.m_lfMz[k]);
            put(file, spectrum.m_lfIntensity[k]);
        }
        put(file, static_cast<std::int32_t>(spectrum.m_vPrecursors.size()));
        for (const SPECTRUM::PRECURSOR& precursor : spectrum.m_vPrecursors) {
            put(file, precursor.m_lfMz);
            put(file, static_cast<std::int32_t>(precursor.m_nCharge));
        }
    }
}

// ---- Proteins ----

std::string residues(CRandom& random, std::size_t count) {
    std::string text(count, ' ');
    for (char& residue : text)
        residue = kResidues[random.Below(kResidues.size())];
    return text;
}

void write_fasta(std::FILE* file, std::size_t bytes) {
    CRandom random(2);
    for (std::size_t number = 1, written = 0; written < bytes; ++number) {
        std::string entry = numbered(">sp|Q%06zu|", number);
        entry += numbered("PROT%zu_SAMPLE Uncharacterised protein", number);
        entry += numbered(" OS=Sample organism OX=9606 GN=GENE%zu PE=1 SV=2\n", number);
        const std::string sequence = residues(random, 50 + random.Below(951));
        for (std::size_t at = 0; at < sequence.size(); at += kFastaColumns)
            entry.append(sequence, at, kFastaColumns) += '\n';
        std::fwrite(entry.data(), 1, entry.size(), file);
        written += entry.size();
    }
}

// ---- Modifications ----

bool is_terminal(std::size_t index) {
    return index % 10 == 9;
}

std::string mod_name(std::size_t index) {
    const std::string stem = numbered("Derivative%zu", index / 3);
    if (is_terminal(index)) return stem + (index % 20 == 9 ? "[AnyN-term]" : "[ProteinC-term]");
    return stem + '[' + kResidues[(index % 3 + index / 3 * 7) % kResidues.size()] + ']';
}

void write_mods(std::FILE* file, std::size_t definitions) {
    CRandom random(3);
    std::fprintf(file, "@NUMBER_MODIFICATION=%zu\n", definitions);
    double mass = 0.0;
    for (std::size_t i = 0; i < definitions; ++i) {
        if (i % 3 == 0) mass = rounded(random.Between(-130.0, 1000.0), 1e6);
        const std::string name = mod_name(i);
        const std::string sites =
            is_terminal(i) ? "ABCDEFGHIJKLMNOPQRSTUVWXYZ" : name.substr(name.size() - 2, 1);
        const char* const type = !is_terminal(i) ? "NORMAL" : i % 20 == 9 ? "PEP_N" : "PRO_C";
        std::fprintf(file, "name%zu=%s\t%d\n%s=%s\t%s\t%.6f\t%.6f\t", i + 1, name.c_str(),
                     i % 4 == 0, name.c_str(), sites.c_str(), type, mass, mass + 0.01);
        if (i % 8 == 0) {
            std::fputs("1\t97.976896\t97.995204\tH(3)O(4)P(1)\n", file);
        } else {
            std::fputs("0\tC(2)H(2)O(1)\n", file);
        }
    }
}

// ---- Results ----

struct CANDIDATE {
    std::string m_strSequence;
    double m_lfMass;
    double m_lfScore;
    std::string m_strSites;  // with their count
};

// The next candidate of a spectrum, with a lower score than the one before.
CANDIDATE candidate_of(CRandom& random, double score, std::size_t definitions) {
    CANDIDATE candidate;
    candidate.m_strSequence = residues(random, 7 + random.Below(19));
    candidate.m_lfMass = random.Between(700.0, 3500.0);
    candidate.m_lfScore = score;
    const std::size_t sites = random.Below(3);
    candidate.m_strSites = numbered("%zu", sites);
    for (std::size_t i = 0; i < sites; ++i) {
        candidate.m_strSites += numbered("\t%zu\t", 1 + random.Below(7));
        // A few modifications make up most of what is found.
        const std::size_t kinds = random.Below(5) > 0 ? 10 : definitions;
        candidate.m_strSites += mod_name(random.Below(kinds));
    }
    return candidate;
}

void write_candidate(std::FILE* file, CRandom& random, std::size_t rank, const CANDIDATE& what) {
    std::fprintf(file, "%zu\t%s\t%.6f\t%.6f\t%.6g\t%.6g\t%s\t1\t%d\t0", rank,
                 what.m_strSequence.c_str(), what.m_lfMass, what.m_lfScore,
                 std::pow(10.0, random.Between(-9.0, 2.0)), random.Between(0.0, 1.0),
                 what.m_strSites.c_str(), static_cast<int>(random.Below(2)));
    const std::size_t hits = 1 + random.Below(3);
    std::fprintf(file, "\t%zu", hits);
    std::size_t protein = random.Below(50000);
    for (std::size_t i = 0; i < hits; ++i) {
        std::fprintf(file, "\t%zu;%zu;K;%c", protein, random.Below(900),
                     kResidues[random.Below(kResidues.size())]);
        protein += 1 + random.Below(1000);
    }
    std::fputs("\t1", file);
    for (int i = 0; i < 5; ++i)
        std::fprintf(file, "\t%.6f", random.Between(-3.0, 120.0));
    for (int i = 0; i < 8; ++i)
        std::fprintf(file, "\t%zu", random.Below(i < 4 ? 30 : 4));
    std::fputc('\n', file);
}

void write_results(std::FILE* file, std::size_t part, std::size_t spectra,
                   std::size_t definitions) {
    CRandom random(10 + part);
    for (std::size_t i = part * spectra; i < (part + 1) * spectra; ++i) {
        std::fprintf(file, "S\t%.6f\t%d\nsample_run.%zu.%zu.2.0.dta\n",
                     random.Between(700.0, 3500.0), static_cast<int>(2 + random.Below(3)), i, i);
        CANDIDATE candidate;
        double score = random.Between(40.0, 80.0);
        for (std::size_t rank = 1; rank <= kCandidates; ++rank) {
            const bool repeat = rank > 1 && random.Below(20) == 0;
            if (!repeat) {
                score -= random.Between(0.01, 4.0);
                candidate = candidate_of(random, score, definitions);
            }
            write_candidate(file, random, rank, candidate);
        }
    }
}

}  // namespace

void set_input_folder(const std::string& folder) {
    g_folder = fs::path(folder) / kKind;
}

std::string output_file(const std::string& name) {
    fs::create_directories(g_folder);
    const fs::path path = g_folder / name;
    fs::remove(path);
    return path.string();
}

std::string mgf_file(std::size_t spectra) {
    return made_file(numbered("%zu.mgf", spectra),
                     [=](std::FILE* file) { write_mgf(file, spectra); });
}

std::string zb2_file(std::size_t entries) {
    return made_file(numbered("%zu.zb2", entries),
                     [=](std::FILE* file) { write_zb2(file, entries); });
}

std::string fasta_file(std::size_t bytes) {
    return made_file(numbered("%zu.fasta", bytes),
                     [=](std::FILE* file) { write_fasta(file, bytes); });
}

std::string mod_file(std::size_t definitions) {
    return made_file(numbered("modification_%zu.ini", definitions),
                     [=](std::FILE* file) { write_mods(file, definitions); });
}

std::vector<std::string> mod_names(std::size_t definitions, std::size_t count) {
    std::vector<std::string> names;
    const std::size_t step = std::max<std::size_t>(definitions / count, 1);
    for (std::size_t i = 0; names.size() < count && i < definitions; i += step)
        names.push_back(mod_name(is_terminal(i) ? i - 1 : i));
    return names;
}

std::vector<std::string> result_files(std::size_t spectra, std::size_t definitions) {
    std::vector<std::string> paths;
    for (std::size_t part = 0; part < kResultFiles; ++part) {
        paths.push_back(made_file(
            numbered("%zu", spectra) + numbered("_%zu.res", part + 1), [=](std::FILE* file) {
                write_results(file, part, spectra / kResultFiles, definitions);
            }));
    }
    return paths;
}

}  // namespace tessel::bench
