#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>
#include <type_traits>
#include <vector>

#include "tessel/base/line_reader.h"
#include "tessel/base/number.h"
#include "tessel/base/padded_text.h"
#include "tessel/base/text.h"
#include "tessel/result/failed_lists.h"
#include "tessel/result/pro_info.h"

namespace tessel {

// The two sources of a result record's fields. A token is a run of characters that are not blank; a
// run longer than a line piece is cut there, and what follows is the next token. What a token holds
// behind its number or hit is ignored.

/// False for a token that holds no number; `value` is then open.
template <class Value>
bool read_number(std::string_view token, Value& value) {
    const char* const last = token.data() + token.size();
    if constexpr (std::is_floating_point_v<Value>) {
        return read_double(token.data(), last, value) != nullptr;
    } else {
        return read_integer(token.data(), last, value) != nullptr;
    }
}

/// "key;site;previous;next": the two residues may be any characters, ";" included.
bool read_hit(std::string_view token, PRO_INFO& hit);

/// Whether a stream may go on for so many bytes: yes, too, where no more are known of, at the end
/// of a file or because its size cannot be told.
bool may_hold(std::FILE* file, std::uint64_t bytes);

/// A whole result file, read in large blocks. It can go back to where the current record began,
/// because what has been read since then stays in the buffer; the buffer grows only for a record
/// that is larger than it.
///
/// Nearly every field is short, stands behind one tab and ends in the buffer. Fields of this kind
/// are read where they are, eight characters at a time; all others go through Token(). That takes
/// a third off the time of loading results.
class CResultText {
public:
    /// Reads an open file from its start, behind a UTF-8 byte-order mark, and does not own it.
    explicit CResultText(std::FILE* file, std::uint64_t longList = CFailedLists::kLongList);
    CResultText(const CResultText&) = delete;
    CResultText& operator=(const CResultText&) = delete;

    /// The next token, which begins a new record. False at the end of the file.
    bool NextRecord(std::string_view& token) {
        if (!m_cFailedLists.IsEmpty() && m_bInRecord) CountRecord();
        m_bInRecord = false;
        if (!AtToken() && !SkipBlanks()) return false;
        m_bInRecord = true;
        m_pRecord = m_pNext;
        m_uRecordLine = m_uLine;
        return WordAt(m_pNext, token) || Token(token);
    }

    /// The line on which the current record began, counted from 1.
    std::uint64_t RecordLine() const { return m_uRecordLine; }

    /// Gives the current record up: goes on behind the line on which it began.
    void LeaveRecord();

    /// The next token, valid until the next call of any function. False at the end of the file.
    bool Token(std::string_view& token);

    /// The next token, as Token() gives it.
    bool Word(std::string_view& word) {
        return (*m_pNext == '\t' && WordAt(m_pNext + 1, word)) || Token(word);
    }

    /// The next token as a number. False when there is none; `value` is then open.
    template <class Value>
    bool Number(Value& value) {
        if (*m_pNext == '\t') {
            const char* const end = read_short(m_pNext + 1, value);
            if (end != nullptr && is_blank(*end)) {
                m_pNext = end;
                return true;
            }
        }
        return AnyNumber(value);
    }

    /// The next token as a protein hit, likewise.
    bool Hit(PRO_INFO& hit) { return ShortHit(hit) || AnyHit(hit); }

    /// What is left of the line without its line feed, cut to the length of a line piece; valid
    /// until the next call of any function. False at the end of the file.
    bool LinePiece(std::string_view& piece);

    /// Goes behind the line, or behind a line piece of it.
    void SkipLine() {
        if (*m_pNext == '\n') {
            ++m_pNext;
            ++m_uLine;
            return;
        }
        std::string_view piece;
        LinePiece(piece);
    }

    /// Whether so many bytes may follow. Asks for the size of the file only when it must.
    bool MayHold(std::uint64_t bytes) const {
        if (bytes <= Held()) return true;
        return !m_bFileEnded && may_hold(m_pFile, bytes - Held());
    }

    /// The lists of the records read so far that are known to fail. While there are any, what has
    /// been passed is counted in tokens.
    CFailedLists& FailedLists() { return m_cFailedLists; }

    /// Reading stopped at an error of the file, not at its end.
    bool Failed() const { return std::ferror(m_pFile) != 0; }

private:
    std::size_t Held() const { return static_cast<std::size_t>(m_pEnd - m_pNext); }

    // Takes the word that begins at `first` when it ends in the buffer and is no longer than a
    // token may be.
    bool WordAt(const char* first, std::string_view& word) {
        const char* const last = end_of_word(first);
        const auto length = static_cast<std::size_t>(last - first);
        if (length == 0 || length > kLinePiece || !is_blank(*last)) return false;
        word = std::string_view(first, length);
        m_pNext = last;
        return true;
    }

    bool ShortHit(PRO_INFO& hit) {
        if (*m_pNext != '\t') return false;
        const char* next = read_short(m_pNext + 1, hit.m_nProID);
        if (next == nullptr || *next != ';') return false;
        next = read_short(next + 1, hit.m_nSite);
        if (next == nullptr || next[0] != ';' || is_blank(next[1])) return false;
        if (next[2] != ';' || is_blank(next[3]) || !is_blank(next[4])) return false;
        hit.m_cPrev = next[1];
        hit.m_cNext = next[3];
        m_pNext = next + 4;
        return true;
    }

    bool AnyNumber(double& value);
    bool AnyNumber(int& value);
    bool AnyNumber(unsigned& value);
    bool AnyNumber(std::int64_t& value);
    bool AnyHit(PRO_INFO& hit);

    // Tells the failed lists how many tokens the current record has, which ends at the present
    // place.
    void CountRecord();

    bool AtToken() const { return m_pNext != m_pEnd && !is_blank(*m_pNext); }
    bool SkipBlanks();
    // Goes behind the next line feed, but at most `limit` characters on. True behind a line feed.
    bool TakeLine(std::size_t limit);
    // Moves what must stay to the front, enlarges a buffer with little room, and reads on. False
    // at the end of the file.
    bool Refill();

    std::FILE* m_pFile;
    std::vector<char> m_vBuffer;
    const char* m_pNext;    // what is read and not yet handed out: [m_pNext, m_pEnd)
    const char* m_pEnd;     // kTextPadding NUL characters follow
    const char* m_pRecord;  // where the current record begins; it is kept from there on
    bool m_bInRecord = false;
    bool m_bFileEnded = false;
    std::uint64_t m_uLine = 1;  // of the next character
    std::uint64_t m_uRecordLine = 1;
    CFailedLists m_cFailedLists;
};

/// The tokens of a stream that others read, too: it is left right behind the last token.
class CStreamTokens {
public:
    /// The caller's buffer has room for kLinePiece + 1 characters and holds the last token.
    CStreamTokens(std::FILE* file, char* buffer) : m_pFile(file), m_pBuffer(buffer) {}

    bool Word(std::string_view& word) {
        int c = std::getc(m_pFile);
        while (c != EOF && is_blank(static_cast<char>(c)))
            c = std::getc(m_pFile);
        std::size_t length = 0;
        while (c != EOF && length < kLinePiece && !is_blank(static_cast<char>(c))) {
            m_pBuffer[length++] = static_cast<char>(c);
            c = std::getc(m_pFile);
        }
        if (c != EOF) std::ungetc(c, m_pFile);
        word = std::string_view(m_pBuffer, length);
        return length > 0;
    }

    template <class Value>
    bool Number(Value& value) {
        std::string_view token;
        return Word(token) && read_number(token, value);
    }

    bool Hit(PRO_INFO& hit) {
        std::string_view token;
        return Word(token) && read_hit(token, hit);
    }

    /// Whether so many bytes may follow.
    bool MayHold(std::uint64_t bytes) const { return may_hold(m_pFile, bytes); }

private:
    std::FILE* m_pFile;
    char* m_pBuffer;
};

}  // namespace tessel
