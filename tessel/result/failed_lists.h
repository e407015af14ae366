#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tessel {

/// The lists of hits of a file that are known to fail. A record whose list is too long swallows the
/// records behind it before it fails, and the next record may do the same: reading would take the
/// square of the file's length. What a long list failed at is therefore kept, and lists that would
/// come to it fail at once.
///
/// Every failure has one token that is neither a hit nor a number, or the end of the file. No list
/// passes it, and the numbers behind a list reach it from few places. So few failures are kept at a
/// time, those that records from the current one on may come to.
///
/// Positions count the tokens from the first one of the current record.
class CFailedLists {
public:
    /// A list that fails later than this has cost enough to be kept.
    static constexpr std::uint64_t kLongList = 100;

    explicit CFailedLists(std::uint64_t longList = kLongList) : m_uLongList(longList) {}

    bool IsEmpty() const { return !m_bAny; }

    /// Whether a list that begins at a position is known to fail, or the fields behind it.
    bool Holds(std::uint64_t first, std::uint64_t count) const {
        return m_bAny && IsKept(m_uRecordAt + first, m_uRecordAt + first + count);
    }

    /// So many hits stood from a position on; the next token is none.
    void AddBadHit(std::uint64_t first, std::uint64_t hits) { Add(m_vBadHits, first, hits); }
    /// The fields behind so many hits, a whole list, cannot be read.
    void AddBadEnd(std::uint64_t first, std::uint64_t hits) { Add(m_vBadEnds, first, hits); }

    /// The current record has so many tokens; the next one is the current one from now on.
    void PassRecord(std::uint64_t tokens) {
        m_uRecordAt += tokens;
        // What is gone lies before the lists of all records to come.
        const auto isPassed = [this](std::uint64_t at) { return at < m_uRecordAt; };
        std::erase_if(m_vBadHits, isPassed);
        std::erase_if(m_vBadEnds, isPassed);
        m_bAny = !m_vBadHits.empty() || !m_vBadEnds.empty();
    }

    /// Forgets all; the current record's first token is the first position again.
    void Clear() { *this = CFailedLists(m_uLongList); }

private:
    bool IsKept(std::uint64_t begin, std::uint64_t end) const {
        const auto isInList = [&](std::uint64_t at) { return begin <= at && at < end; };
        return std::any_of(m_vBadHits.begin(), m_vBadHits.end(), isInList) ||
               std::find(m_vBadEnds.begin(), m_vBadEnds.end(), end) != m_vBadEnds.end();
    }
    void Add(std::vector<std::uint64_t>& kept, std::uint64_t first, std::uint64_t hits) {
        if (hits <= m_uLongList) return;
        kept.push_back(m_uRecordAt + first + hits);
        m_bAny = true;
    }

    std::uint64_t m_uLongList;
    bool m_bAny = false;
    // Positions from here on count from the first record since all was forgotten.
    std::uint64_t m_uRecordAt = 0;  // of the current record
    std::vector<std::uint64_t> m_vBadHits;
    std::vector<std::uint64_t> m_vBadEnds;
};

}  // namespace tessel
