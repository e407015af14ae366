#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "tessel/platform/file.h"

namespace tessel {

inline constexpr std::size_t kAnyLength = std::numeric_limits<std::size_t>::max();
/// The piece that a line buffer of 81920 bytes holds beside its terminator.
inline constexpr std::size_t kLinePiece = 81919;

/// Reads a text file line by line. A line ends at a line feed or at the end of the file; one
/// carriage return at its end is dropped, and a UTF-8 byte-order mark at the start of the file is
/// skipped. With a piece length, a longer line comes in pieces, each a line of its own.
class CLineReader {
public:
    /// Opens and owns the file; IsOpen() tells whether that worked.
    explicit CLineReader(const std::string& path, std::size_t piece = kAnyLength);
    /// Reads an open file from its current position, which must be its start, and does not own it.
    explicit CLineReader(std::FILE* file, std::size_t piece = kAnyLength);

    bool IsOpen() const { return m_pFile != nullptr; }
    /// False at the end of the file. The line is valid until the next call.
    bool ReadLine(std::string_view& line) {
        // Nearly every line is short and in the buffer; only the others are worth a call.
        const char* const begin = m_vBuffer.data() + m_tBegin;
        const std::size_t held = std::min(m_tEnd - m_tBegin, m_tPiece);
        const void* const found = held > 0 ? std::memchr(begin, '\n', held) : nullptr;
        if (found == nullptr) return ReadSlowly(line);
        auto length = static_cast<std::size_t>(static_cast<const char*>(found) - begin);
        m_tBegin += length + 1;
        if (length > 0 && begin[length - 1] == '\r') --length;
        line = std::string_view(begin, length);
        return true;
    }
    /// Reads on through the next line that begins with a text, which is not empty; false when there
    /// is none. Several times as fast as line by line where the text's first character is rare.
    bool SkipThrough(std::string_view beginning);
    /// What the buffer holds from the next line on: perhaps nothing, and cut off anywhere.
    std::string_view Held() const { return {m_vBuffer.data() + m_tBegin, m_tEnd - m_tBegin}; }
    /// Takes off the front of Held() whole lines that were read there, each shorter than a piece.
    void Take(std::size_t count) { m_tBegin += count; }
    /// Reading stopped at an error of the file, not at its end.
    bool Failed() const { return m_pFile != nullptr && std::ferror(m_pFile) != 0; }

private:
    bool ReadSlowly(std::string_view& line);
    std::size_t FindLineEnd();
    bool Refill();
    void SkipByteOrderMark();
    void SkipLinesWithout(char c);

    FilePtr m_pOwned;
    std::FILE* m_pFile;
    std::size_t m_tPiece;
    std::vector<char> m_vBuffer;
    std::size_t m_tBegin = 0;  // what is read and not yet handed out: [m_tBegin, m_tEnd)
    std::size_t m_tEnd = 0;
    bool m_bAtStart = true;
};

}  // namespace tessel
