// What several contenders have in common.

#include "bench/records.h"

#include <sys/mman.h>

#include <cstring>
#include <stdexcept>

#include "bench/digest.h"

namespace tessel::bench {
namespace {

constexpr std::size_t kFreshBytes = std::size_t{1} << 36;  // addresses, not memory

}  // namespace

OpenFile open_or_throw(const std::string& path, const char* mode) {
    OpenFile file(std::fopen(path.c_str(), mode));
    if (!file) throw std::runtime_error("Cannot open " + path);
    return file;
}

CFreshMemory::CFreshMemory() {
    void* const memory = mmap(nullptr, kFreshBytes, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    m_pNext = static_cast<char*>(memory);
}

CLineBlocks::CLineBlocks(const std::string& path)
    : m_pFile(open_or_throw(path, "rb")), m_vBuffer(kBlockSize + kSlack) {
    std::setvbuf(m_pFile.get(), nullptr, _IONBF, 0);
}

bool CLineBlocks::Next(const char*& first, const char*& last) {
    m_tHeld -= m_tTaken;
    std::memmove(m_vBuffer.data(), m_vBuffer.data() + m_tTaken, m_tHeld);
    m_tHeld += std::fread(m_vBuffer.data() + m_tHeld, 1, kBlockSize - m_tHeld, m_pFile.get());
    first = m_vBuffer.data();
    const void* const end = memrchr(first, '\n', m_tHeld);
    if (end == nullptr) return false;
    last = static_cast<const char*>(end) + 1;
    m_tTaken = static_cast<std::size_t>(last - first);
    return true;
}

void write_spectrum_bytes(CFreshMemory& memory, const std::vector<CPeak>& peaks) {
    const std::size_t peakBytes = peaks.size() * sizeof(CPeak);
    std::memcpy(memory.Take(peakBytes), peaks.data(), peakBytes);
    const auto buckets = static_cast<std::size_t>(peaks.back().m_lfMz) + 1;
    std::memset(memory.Take(buckets * sizeof(int)), 1, buckets * sizeof(int));
}

void plain_peak_index(CSpectrum& spectrum) {
    spectrum.m_vHashTable.clear();
    if (spectrum.m_vPeaks.empty()) return;
    int last = 0;
    if (spectrum.m_vPeaks[0].m_lfMz > 0) last = static_cast<int>(spectrum.m_vPeaks[0].m_lfMz);
    spectrum.m_vHashTable.reserve(static_cast<std::size_t>(spectrum.m_vPeaks.back().m_lfMz) + 1);
    for (int key = 0; key <= last; ++key)
        spectrum.m_vHashTable.push_back(0);
    for (std::size_t i = 1; i < spectrum.m_vPeaks.size(); ++i) {
        const int key = static_cast<int>(spectrum.m_vPeaks[i].m_lfMz);
        while (last < key) {
            spectrum.m_vHashTable.push_back(static_cast<int>(i));
            ++last;
        }
    }
}

std::uint64_t digest_of_spectra(const std::vector<CSpectrum>& spectra) {
    CDigest digest;
    for (const CSpectrum& spectrum : spectra) {
        digest.Add(spectrum.m_lfMH);
        digest.Add(spectrum.m_nScanNo);
        digest.Add(spectrum.m_nCharge);
        digest.Add(spectrum.m_strTitle);
        for (const CPeak& peak : spectrum.m_vPeaks) {
            digest.Add(peak.m_lfMz);
            digest.Add(peak.m_lfIntensity);
            digest.Add(peak.m_cFlag);
        }
        for (const int position : spectrum.m_vHashTable)
            digest.Add(position);
    }
    return digest.Value();
}

}  // namespace tessel::bench
