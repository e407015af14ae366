// Files far larger than memory should be asked to hold: writes them, or takes them through the
// library and prints what that took. One job a process, because peak memory is that of a process.
//
//   scale write-mgf|write-zb2|write-fasta|write-results PATH BYTES
//   scale spectra MGF|ZB2 PATH BATCH ENTRIES
//   scale decoys PATH RESIDUES PROTEINS
//   scale merge OUTPUT INPUT...

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tests/scale/large_files.h"

namespace tessel::test {
namespace {

using Words = std::vector<std::string>;

void require(bool holds, const std::string& what) {
    if (!holds) throw std::runtime_error(what);
}

std::uint64_t size_of(const std::string& path) {
    const auto status = file_status(path);
    require(status.has_value(), "missing: " + path);
    return status->m_uSize;
}

void print_use(std::chrono::steady_clock::time_point begin) {
    rusage use;
    getrusage(RUSAGE_SELF, &use);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    std::printf("%.1f s, peak memory %.1f MiB\n", time.count(),
                static_cast<double>(use.ru_maxrss) / 1024.0);
}

// What the spectra of the batch hold, without what the allocator adds.
std::size_t bytes_of(const std::vector<CSpectrum>& spectra) {
    std::size_t bytes = spectra.capacity() * sizeof(CSpectrum);
    for (const CSpectrum& spectrum : spectra) {
        bytes += spectrum.m_vPeaks.capacity() * sizeof(CPeak) + spectrum.m_strTitle.capacity() +
                 spectrum.m_vHashTable.capacity() * sizeof(int);
    }
    return bytes;
}

void load_spectra(const std::string& type, const std::string& path, std::size_t batch,
                  std::uint64_t entries) {
    const auto begin = std::chrono::steady_clock::now();
    CCondition condition;
    condition.m_strMSMSType = type;
    condition.m_strMSMSPath = path;
    condition.m_nMaxSpec = batch;
    std::uint64_t loaded = 0;
    std::size_t largest = 0;
    for (bool more = true; more;) {
        more = condition.LoadSpectra(false);
        for (const CSpectrum& spectrum : condition.m_vSpectra) {
            require(spectrum.m_nScanNo == ++loaded,
                    "a spectrum is missing before " + spectrum.m_strTitle);
            require(spectrum.m_vPeaks.size() == 100, "peaks are missing in " + spectrum.m_strTitle);
        }
        largest = std::max(largest, bytes_of(condition.m_vSpectra));
    }
    require(loaded == entries, "only so many spectra: " + std::to_string(loaded));
    std::printf("%s of %.2f GB, %llu spectra, batches of %zu spectra, %.1f MiB: ", type.c_str(),
                static_cast<double>(size_of(path)) / 1e9, static_cast<unsigned long long>(loaded),
                batch, static_cast<double>(largest) / 1048576.0);
    print_use(begin);
}

void make_decoys(const std::string& path, std::size_t residues, std::uint64_t proteins) {
    const auto begin = std::chrono::steady_clock::now();
    CCondition condition;
    condition.m_strFastaPath = path;
    condition.m_tMaxProLen = residues;
    remove_file(path + "_td.fasta");
    condition.SetFastaPath();
    require(size_of(condition.m_strInputFastaPath) == target_decoy_size(proteins),
            "the target-decoy database is not of its size");
    CFastaLoader& loader = condition.m_cFastaLoader;
    loader.Reset();
    std::uint64_t read = 0;
    while (loader.ReadNextBatch())
        read += loader.m_vProteins.size();
    read += loader.m_vProteins.size();
    require(read == 2 * proteins, "only so many entries: " + std::to_string(read));
    require(loader.m_vProteins.back().m_strAC == "REV_P" + std::to_string(proteins),
            "the last entry is " + loader.m_vProteins.back().m_strAC);
    std::printf("FASTA of %.2f GB, %llu proteins, batches of %zu residues: ",
                static_cast<double>(size_of(path)) / 1e9, static_cast<unsigned long long>(proteins),
                residues);
    print_use(begin);
}

void merge(const std::string& output, const Words& inputs) {
    const auto begin = std::chrono::steady_clock::now();
    std::uint64_t size = 0;
    for (const std::string& input : inputs)
        size += size_of(input);
    CCondition condition;
    require(!condition.MergeFiles(inputs, output, true), "merging failed");
    require(size_of(output) == size, "the merged file is not of the size of its inputs");
    condition.LoadResult({output}, 1, 1.0);
    require(condition.m_mapPSMRes.size() == 1000, "titles are missing");
    std::printf("results of %.2f GB from %zu files, merged and read: ",
                static_cast<double>(size) / 1e9, inputs.size());
    print_use(begin);
}

void run(const Words& words) {
    const std::string& job = words.at(0);
    const auto number = [&words](std::size_t index) { return std::stoull(words.at(index)); };
    const std::map<std::string, std::uint64_t (*)(const std::string&, std::uint64_t)> writers = {
        {"write-mgf", write_large_mgf},
        {"write-zb2", write_large_zb2},
        {"write-fasta", write_large_fasta},
        {"write-results", write_large_results},
    };
    if (const auto writer = writers.find(job); writer != writers.end()) {
        const std::uint64_t written = writer->second(words.at(1), number(2));
        std::printf("%llu\n", static_cast<unsigned long long>(written));
    } else if (job == "spectra") {
        load_spectra(words.at(1), words.at(2), number(3), number(4));
    } else if (job == "decoys") {
        make_decoys(words.at(1), number(2), number(3));
    } else if (job == "merge") {
        merge(words.at(1), Words(words.begin() + 2, words.end()));
    } else {
        throw std::runtime_error("unknown job: " + job);
    }
}

}  // namespace
}  // namespace tessel::test

int main(int argc, char** argv) {
    try {
        tessel::test::run({argv + 1, argv + argc});
        return 0;
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "scale: %s\n", fault.what());
        return 1;
    }
}
