#include "tessel/base/line_reader.h"

#include <algorithm>
#include <cstring>

namespace tessel {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 17;  // more than a piece and its line end

}  // namespace

CLineReader::CLineReader(const std::string& path, std::size_t piece)
    : m_pOwned(open_file(path, "rb")), m_pFile(m_pOwned.get()), m_tPiece(piece) {
}

CLineReader::CLineReader(std::FILE* file, std::size_t piece) : m_pFile(file), m_tPiece(piece) {
}

bool CLineReader::ReadSlowly(std::string_view& line) {
    if (m_bAtStart) SkipByteOrderMark();
    const std::size_t end = FindLineEnd();
    const std::size_t held = m_tEnd - m_tBegin;
    if (held == 0) return false;
    const char* const begin = m_vBuffer.data() + m_tBegin;  // valid after the last refill
    std::size_t length = std::min(end, held);
    std::size_t taken = end < held ? length + 1 : length;
    if (length > 0 && begin[length - 1] == '\r') --length;
    if (length >= m_tPiece) length = taken = m_tPiece;
    line = std::string_view(begin, length);
    m_tBegin += taken;
    return true;
}

bool CLineReader::SkipThrough(std::string_view beginning) {
    std::string_view line;
    do {
        SkipLinesWithout(beginning.front());
        if (!ReadLine(line)) return false;
    } while (!line.starts_with(beginning));
    return true;
}

// Of the lines that are held whole, leaves out those before the first one with the character.
void CLineReader::SkipLinesWithout(char c) {
    const std::string_view held = Held();
    const std::size_t found = held.substr(0, held.find(c)).rfind('\n');
    if (found != std::string_view::npos) m_tBegin += found + 1;
}

// Where the next line feed stands in what is held, after reading on for it; kAnyLength when a whole
// piece without one is held, or all that is left of the file.
std::size_t CLineReader::FindLineEnd() {
    // Two more bytes tell whether the piece is followed by its line end alone.
    const std::size_t enough = m_tPiece == kAnyLength ? kAnyLength : m_tPiece + 2;
    std::size_t searched = 0;
    for (;;) {
        const std::string_view held = Held();
        const std::size_t found = held.find('\n', searched);
        if (found != std::string_view::npos) return found;
        searched = held.size();
        if (searched >= enough || !Refill()) return kAnyLength;
    }
}

// Moves what is held to the front of the buffer, enlarges a full one, and reads on. False at the
// end of the file.
bool CLineReader::Refill() {
    if (m_pFile == nullptr) return false;
    const std::size_t held = m_tEnd - m_tBegin;
    if (m_tBegin > 0) std::memmove(m_vBuffer.data(), m_vBuffer.data() + m_tBegin, held);
    if (m_vBuffer.empty()) m_vBuffer.resize(kBufferSize);
    if (held == m_vBuffer.size()) m_vBuffer.resize(2 * held);
    m_tBegin = 0;
    m_tEnd = held + std::fread(m_vBuffer.data() + held, 1, m_vBuffer.size() - held, m_pFile);
    return m_tEnd > held;
}

void CLineReader::SkipByteOrderMark() {
    m_bAtStart = false;
    while (m_tEnd < 3 && Refill()) {
    }
    if (m_tEnd >= 3 && std::memcmp(m_vBuffer.data(), "\xEF\xBB\xBF", 3) == 0) m_tBegin = 3;
}

}  // namespace tessel
