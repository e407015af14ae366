#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "tessel/base/number.h"

namespace tessel {

constexpr std::size_t kMaxMessageText = 255;

inline void append_piece(std::string& text, std::string_view piece) {
    text += piece;
}

inline void append_piece(std::string& text, char piece) {
    text += piece;
}

template <class Integer>
std::enable_if_t<std::is_integral_v<Integer>> append_piece(std::string& text, Integer value) {
    append_integer(text, value);
}

/// Pieces (texts, characters, integers) one after another. Doubles come as fixed_text().
template <class... Pieces>
std::string joined_text(const Pieces&... pieces) {
    std::string text;
    (append_piece(text, pieces), ...);
    return text;
}

/// The same as a message of fixed wording with numbers, which is cut at 255 characters. Messages
/// that name a file are not cut: joined_text().
template <class... Pieces>
std::string message_text(const Pieces&... pieces) {
    std::string text = joined_text(pieces...);
    if (text.size() > kMaxMessageText) text.resize(kMaxMessageText);
    return text;
}

/// Faults of one kind in one file, which are told once: how many, and the line of the first.
struct FAULT_COUNT {
    void Add(std::uint64_t line) {
        if (m_uFaults++ == 0) m_uFirstLine = line;
    }

    std::uint64_t m_uFaults = 0;
    std::uint64_t m_uFirstLine = 0;
};

}  // namespace tessel
