#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

#include "tessel/base/line_reader.h"
#include "tessel/base/text.h"
#include "tessel/platform/file.h"

namespace tessel {

// The two sources of a result record's fields. A token is a run of characters that are not blank; a
// run longer than a line piece is cut there, and what follows is the next token.

/// Whether a stream may go on for so many bytes; always for one whose size cannot be told.
inline bool may_hold(std::FILE* file, std::uint64_t bytes) {
    const std::uint64_t left = bytes_left(file);
    return left == 0 || bytes <= left;
}

/// A whole result file, read in large blocks. It can go back to where the current record began,
/// because what has been read since then stays in the buffer; the buffer grows only for a record
/// that is larger than it.
class CResultText {
public:
    /// Reads an open file from its start, behind a UTF-8 byte-order mark, and does not own it.
    explicit CResultText(std::FILE* file) : m_pFile(file), m_vBuffer(std::size_t{1} << 18) {
        Hold();
        if (m_tEnd >= 3 && std::memcmp(m_vBuffer.data(), "\xEF\xBB\xBF", 3) == 0) m_tNext = 3;
    }

    /// The next token, which begins a new record. False at the end of the file.
    bool NextRecord(std::string_view& token) {
        m_bInRecord = false;
        if (!SkipBlanks()) return false;
        m_bInRecord = true;
        m_tRecord = m_tNext;
        m_uRecordLine = m_uLine;
        return Token(token);
    }

    /// The line on which the current record began, counted from 1.
    std::uint64_t RecordLine() const { return m_uRecordLine; }

    /// Gives the current record up: goes on behind the line on which it began.
    void LeaveRecord() {
        m_bInRecord = false;
        m_tNext = m_tRecord;
        m_uLine = m_uRecordLine;
        while (Hold()) {
            if (TakeLine(m_tEnd - m_tNext)) return;
        }
    }

    /// The next token, valid until the next call of any function. False at the end of the file.
    bool Token(std::string_view& token) {
        if (!SkipBlanks()) return false;
        Hold();
        const char* const first = m_vBuffer.data() + m_tNext;
        const char* const limit = first + std::min(m_tEnd - m_tNext, kLinePiece);
        const char* last = first;
        while (last != limit && !is_blank(*last))
            ++last;
        token = std::string_view(first, static_cast<std::size_t>(last - first));
        m_tNext += token.size();
        return true;
    }

    /// What is left of the line without its line feed, cut to the length of a line piece; valid
    /// until the next call of any function. False at the end of the file.
    bool LinePiece(std::string_view& piece) {
        if (!Hold()) return false;
        const std::size_t begin = m_tNext;
        const bool complete = TakeLine(std::min(m_tEnd - m_tNext, kLinePiece));
        const std::size_t length = m_tNext - begin - (complete ? 1 : 0);
        piece = std::string_view(m_vBuffer.data() + begin, length);
        return true;
    }

    /// Whether so many bytes may follow. Asks for the size of the file only when it must.
    bool MayHold(std::uint64_t bytes) const {
        const std::uint64_t held = m_tEnd - m_tNext;
        if (bytes <= held) return true;
        return !m_bFileEnded && may_hold(m_pFile, bytes - held);
    }

    /// Reading stopped at an error of the file, not at its end.
    bool Failed() const { return std::ferror(m_pFile) != 0; }

private:
    bool SkipBlanks() {
        do {
            const char* const last = m_vBuffer.data() + m_tEnd;
            const char* next = m_vBuffer.data() + m_tNext;
            for (; next != last && is_blank(*next); ++next)
                m_uLine += *next == '\n' ? 1 : 0;
            m_tNext = m_tEnd - static_cast<std::size_t>(last - next);
        } while (m_tNext == m_tEnd && Refill());
        return m_tNext != m_tEnd;
    }

    // Goes behind the next line feed, but at most `limit` characters on. True behind a line feed.
    bool TakeLine(std::size_t limit) {
        const char* const first = m_vBuffer.data() + m_tNext;
        const void* const found = std::memchr(first, '\n', limit);
        if (found == nullptr) {
            m_tNext += limit;
            return false;
        }
        m_tNext += static_cast<std::size_t>(static_cast<const char*>(found) - first) + 1;
        ++m_uLine;
        return true;
    }

    // Has a line piece in the buffer, or all that is left of the file. False when that is nothing.
    bool Hold() {
        while (m_tEnd - m_tNext < kLinePiece && Refill()) {
        }
        return m_tNext != m_tEnd;
    }

    // Moves what must stay to the front, enlarges a buffer with little room, and reads on.
    bool Refill() {
        if (m_bFileEnded) return false;
        const std::size_t kept = m_bInRecord ? m_tRecord : m_tNext;
        const std::size_t held = m_tEnd - kept;
        std::memmove(m_vBuffer.data(), m_vBuffer.data() + kept, held);
        if (held > m_vBuffer.size() / 2) m_vBuffer.resize(2 * m_vBuffer.size());
        const std::size_t room = m_vBuffer.size() - held;
        const std::size_t count = std::fread(m_vBuffer.data() + held, 1, room, m_pFile);
        m_bFileEnded = count < room;
        m_tRecord = 0;
        m_tNext -= kept;
        m_tEnd = held + count;
        return count > 0;
    }

    std::FILE* m_pFile;
    std::vector<char> m_vBuffer;
    std::size_t m_tNext = 0;  // what is read and not yet handed out: [m_tNext, m_tEnd)
    std::size_t m_tEnd = 0;
    std::size_t m_tRecord = 0;  // where the current record begins; it is kept from there on
    bool m_bInRecord = false;
    bool m_bFileEnded = false;
    std::uint64_t m_uLine = 1;  // of the next character
    std::uint64_t m_uRecordLine = 1;
};

/// The tokens of a stream that others read, too: it is left right behind the last token.
class CStreamTokens {
public:
    /// The caller's buffer has room for kLinePiece + 1 characters and holds the last token.
    CStreamTokens(std::FILE* file, char* buffer) : m_pFile(file), m_pBuffer(buffer) {}

    bool Token(std::string_view& token) {
        int c = std::getc(m_pFile);
        while (c != EOF && is_blank(static_cast<char>(c)))
            c = std::getc(m_pFile);
        std::size_t length = 0;
        while (c != EOF && length < kLinePiece && !is_blank(static_cast<char>(c))) {
            m_pBuffer[length++] = static_cast<char>(c);
            c = std::getc(m_pFile);
        }
        if (c != EOF) std::ungetc(c, m_pFile);
        token = std::string_view(m_pBuffer, length);
        return length > 0;
    }

    /// Whether so many bytes may follow.
    bool MayHold(std::uint64_t bytes) const { return may_hold(m_pFile, bytes); }

private:
    std::FILE* m_pFile;
    char* m_pBuffer;
};

}  // namespace tessel
