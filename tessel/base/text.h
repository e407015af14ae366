#pragma once

#include <string>
#include <string_view>

namespace tessel {

// Character classes of plain ASCII: the ones of <cctype> change with the host's locale.

inline bool is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

inline bool is_printable(char c) {
    return c >= ' ' && c <= '~';
}

inline bool is_upper(char c) {
    return c >= 'A' && c <= 'Z';
}

inline char lower(char c) {
    return is_upper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Without the characters behind the last printable one; the first `kept` characters stay.
inline std::string_view without_unprintable_tail(std::string_view text, std::size_t kept = 0) {
    while (text.size() > kept && !is_printable(text.back()))
        text.remove_suffix(1);
    return text;
}

/// From `position` on; empty behind the end.
inline std::string_view text_from(std::string_view text, std::size_t position) {
    return position < text.size() ? text.substr(position) : std::string_view();
}

/// Cuts at every delimiter, empty fields kept, and hands each field to `take`.
template <class Take>
void for_each_field(std::string_view text, char delimiter, Take take) {
    for (;;) {
        const std::size_t end = text.find(delimiter);
        take(text.substr(0, end));
        if (end == std::string_view::npos) return;
        text.remove_prefix(end + 1);
    }
}

}  // namespace tessel
