#pragma once

#include <string>
#include <string_view>

#include "tessel/base/number.h"

namespace tessel {

/// Takes words and numbers off a text from left to right, as formatted stream extraction does:
/// blanks are skipped, a number takes its longest prefix ("15.9x" leaves "x" as the next word), and
/// after the first field that cannot be read all later ones fail, too.
class CWordReader {
public:
    explicit CWordReader(std::string_view text) : m_strRest(text) {}

    bool Word(std::string_view& word) {
        if (!NextField()) return false;
        std::size_t length = 0;
        while (length < m_strRest.size() && !is_blank(m_strRest[length]))
            ++length;
        word = m_strRest.substr(0, length);
        m_strRest.remove_prefix(length);
        return true;
    }

    bool Word(std::string& word) {
        std::string_view view;
        if (!Word(view)) return false;
        word = view;
        return true;
    }

    /// A text that is no number makes the value 0; a missing field leaves it as it was.
    template <class Number>
    bool Read(Number& value) {
        if (!NextField()) return false;
        value = Number();
        const char* const last = m_strRest.data() + m_strRest.size();
        const char* end;
        if constexpr (std::is_floating_point_v<Number>) {
            end = read_double(m_strRest.data(), last, value);
        } else {
            end = read_integer(m_strRest.data(), last, value);
        }
        m_bGood = end != nullptr;
        if (m_bGood) m_strRest.remove_prefix(static_cast<std::size_t>(end - m_strRest.data()));
        return m_bGood;
    }

    bool Good() const { return m_bGood; }

private:
    bool NextField() {
        while (m_bGood && !m_strRest.empty() && is_blank(m_strRest.front())) {
            m_strRest.remove_prefix(1);
        }
        m_bGood = m_bGood && !m_strRest.empty();
        return m_bGood;
    }

    std::string_view m_strRest;
    bool m_bGood = true;
};

}  // namespace tessel
