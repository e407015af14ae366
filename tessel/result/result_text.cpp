// A result file comes in, cut into tokens and lines; what stands in the buffer as it nearly always
// does is read by the header.

#include "tessel/result/result_text.h"

#include <algorithm>
#include <cstring>

#include "tessel/platform/file.h"

namespace tessel {

bool read_hit(std::string_view token, PRO_INFO& hit) {
    const char* const last = token.data() + token.size();
    const char* next = read_integer(token.data(), last, hit.m_nProID);
    if (next == nullptr || next == last || *next != ';') return false;
    next = read_integer(next + 1, last, hit.m_nSite);
    if (next == nullptr || last - next < 4 || next[0] != ';' || next[2] != ';') return false;
    hit.m_cPrev = next[1];
    hit.m_cNext = next[3];
    return true;
}

bool may_hold(std::FILE* file, std::uint64_t bytes) {
    const std::uint64_t left = bytes_left(file);
    return left == 0 || bytes <= left;
}

CResultText::CResultText(std::FILE* file, std::uint64_t longList)
    : m_pFile(file),
      m_vBuffer((std::size_t{1} << 18) + kTextPadding),
      m_pNext(m_vBuffer.data()),
      m_pEnd(m_vBuffer.data()),
      m_pRecord(m_vBuffer.data()),
      m_cFailedLists(longList) {
    Refill();
    if (Held() >= 3 && std::memcmp(m_pNext, "\xEF\xBB\xBF", 3) == 0) m_pNext += 3;
}

void CResultText::LeaveRecord() {
    // Where there are failed lists, the line stays in the buffer until its tokens are counted.
    m_bInRecord = !m_cFailedLists.IsEmpty();
    m_pNext = m_pRecord;
    m_uLine = m_uRecordLine;
    while (!TakeLine(Held()) && Refill()) {
    }
}

void CResultText::CountRecord() {
    std::uint64_t tokens = 0;
    std::size_t length = 0;  // of the token
    for (const char* c = m_pRecord; c != m_pNext && length <= kLinePiece; ++c) {
        if (is_blank(*c)) {
            length = 0;
        } else if (++length == 1) {
            ++tokens;
        }
    }
    // Tokens that are cut are counted otherwise when they are read. Positions behind them are of no
    // use. The end of the buffer counts as a cut: what comes next is not known.
    const bool isBetweenTokens = length == 0 || is_blank(*m_pNext);
    if (length > kLinePiece || !isBetweenTokens) {
        m_cFailedLists.Clear();
    } else {
        m_cFailedLists.PassRecord(tokens);
    }
}

bool CResultText::Token(std::string_view& token) {
    if (!SkipBlanks()) return false;
    std::size_t length = 0;
    do {
        const std::size_t limit = std::min(Held(), kLinePiece);
        while (length != limit && !is_blank(m_pNext[length]))
            ++length;
    } while (length == Held() && length < kLinePiece && Refill());
    token = std::string_view(m_pNext, length);
    m_pNext += length;
    return true;
}

bool CResultText::LinePiece(std::string_view& piece) {
    std::size_t limit = std::min(Held(), kLinePiece);
    while (limit < kLinePiece && std::memchr(m_pNext, '\n', limit) == nullptr && Refill())
        limit = std::min(Held(), kLinePiece);
    if (limit == 0) return false;
    const char* const first = m_pNext;
    const bool complete = TakeLine(limit);
    piece = std::string_view(first, static_cast<std::size_t>(m_pNext - first) - (complete ? 1 : 0));
    return true;
}

bool CResultText::AnyNumber(double& value) {
    std::string_view token;
    return Token(token) && read_number(token, value);
}

bool CResultText::AnyNumber(int& value) {
    std::string_view token;
    return Token(token) && read_number(token, value);
}

bool CResultText::AnyNumber(unsigned& value) {
    std::string_view token;
    return Token(token) && read_number(token, value);
}

bool CResultText::AnyNumber(std::int64_t& value) {
    std::string_view token;
    return Token(token) && read_number(token, value);
}

bool CResultText::AnyHit(PRO_INFO& hit) {
    std::string_view token;
    return Token(token) && read_hit(token, hit);
}

bool CResultText::SkipBlanks() {
    do {
        for (; m_pNext != m_pEnd && is_blank(*m_pNext); ++m_pNext)
            m_uLine += *m_pNext == '\n' ? 1 : 0;
    } while (m_pNext == m_pEnd && Refill());
    return m_pNext != m_pEnd;
}

bool CResultText::TakeLine(std::size_t limit) {
    const void* const found = std::memchr(m_pNext, '\n', limit);
    if (found == nullptr) {
        m_pNext += limit;
        return false;
    }
    m_pNext = static_cast<const char*>(found) + 1;
    ++m_uLine;
    return true;
}

bool CResultText::Refill() {
    if (m_bFileEnded) return false;
    const char* const kept = m_bInRecord ? m_pRecord : m_pNext;
    const auto held = static_cast<std::size_t>(m_pEnd - kept);
    const auto next = static_cast<std::size_t>(m_pNext - kept);
    std::memmove(m_vBuffer.data(), kept, held);
    std::size_t size = m_vBuffer.size() - kTextPadding;
    if (held > size / 2) {
        size *= 2;
        m_vBuffer.resize(size + kTextPadding);
    }
    char* const text = m_vBuffer.data();
    const std::size_t count = std::fread(text + held, 1, size - held, m_pFile);
    m_bFileEnded = count < size - held;
    m_pRecord = text;
    m_pNext = text + next;
    m_pEnd = text + held + count;
    std::memset(text + held + count, '\0', kTextPadding);
    return count > 0;
}

}  // namespace tessel
