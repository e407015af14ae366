#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "tessel/spectra/spectrum.h"

namespace tessel::bench {

// What several contenders have in common.

inline constexpr std::size_t kBlockSize = std::size_t{1} << 20;

struct CLOSE_STREAM {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CLOSE_STREAM>;
OpenFile open_or_throw(const std::string& path, const char* mode);

/// Memory that nobody has touched, handed out from front to back: what a limit writes its records
/// to. It goes back with the process.
class CFreshMemory {
public:
    CFreshMemory();
    char* Take(std::size_t bytes) {
        char* const taken = m_pNext;
        m_pNext += bytes;
        return taken;
    }

private:
    char* m_pNext;
};

/// Blocks of whole lines, read through one buffer.
class CLineBlocks {
public:
    static constexpr std::size_t kSlack = 64;

    explicit CLineBlocks(const std::string& path);
    /// False at the end of the file. The block ends with a line feed; kSlack more bytes are there.
    bool Next(const char*& first, const char*& last);

private:
    OpenFile m_pFile;
    std::vector<char> m_vBuffer;
    std::size_t m_tHeld = 0;   // bytes in the buffer
    std::size_t m_tTaken = 0;  // of these, handed out
};

/// What a spectrum's peaks and index table take, written once.
void write_spectrum_bytes(CFreshMemory& memory, const std::vector<CPeak>& peaks);

/// The index over the peaks, made plainly: position by position.
void plain_peak_index(CSpectrum& spectrum);
std::uint64_t digest_of_spectra(const std::vector<CSpectrum>& spectra);

}  // namespace tessel::bench
