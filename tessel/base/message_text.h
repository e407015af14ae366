#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "tessel/base/number.h"

namespace tessel {

constexpr std::size_t kMaxMessageText = 255;

inline void append_piece(std::string& text, std::string_view piece) {
    text += piece;
}

template <class Integer>
std::enable_if_t<std::is_integral_v<Integer>> append_piece(std::string& text, Integer value) {
    append_integer(text, value);
}

/// A message with numbers: the pieces (texts, integers) one after another, cut at 255 characters.
/// Doubles come as fixed_text(). Messages of texts alone are plain strings and never cut.
template <class... Pieces>
std::string message_text(const Pieces&... pieces) {
    std::string text;
    (append_piece(text, pieces), ...);
    if (text.size() > kMaxMessageText) text.resize(kMaxMessageText);
    return text;
}

}  // namespace tessel
