#include "tests/fuzz/support/plain_text.h"

#include <cstdlib>

namespace tessel::fuzz {
namespace {

bool plain_digit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t blanks_at_front(std::string_view text) {
    std::size_t count = 0;
    while (count < text.size() && plain_blank(text[count]))
        ++count;
    return count;
}

bool is_sign(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] == '+' || text[at] == '-');
}

}  // namespace

bool plain_blank(char c) {
    return std::string_view(" \t\n\v\f\r").find(c) != std::string_view::npos;
}

std::vector<std::string> plain_lines(std::string_view text, std::size_t piece) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t feed = text.find('\n');
        std::string_view line = text.substr(0, feed);
        std::size_t taken = feed == std::string_view::npos ? text.size() : feed + 1;
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.size() >= piece) {
            line = line.substr(0, piece);
            taken = piece;
        }
        lines.emplace_back(line);
        text.remove_prefix(taken);
    }
    return lines;
}

std::vector<std::string> plain_fields(std::string_view text, char delimiter) {
    std::vector<std::string> fields(1);
    for (const char c : text) {
        if (c == delimiter) {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

std::vector<std::string> plain_words(std::string_view text) {
    std::vector<std::string> words;
    bool inWord = false;
    for (const char c : text) {
        if (plain_blank(c)) {
            inWord = false;
            continue;
        }
        if (!inWord) words.emplace_back();
        inWord = true;
        words.back() += c;
    }
    return words;
}

PLAIN_NUMBER<double> plain_double(std::string_view text) {
    std::string copy(text);  // ends in a zero byte
    std::size_t at = blanks_at_front(text);
    if (is_sign(text, at)) ++at;
    if (at + 1 < copy.size() && copy[at] == '0' && (copy[at + 1] == 'x' || copy[at + 1] == 'X')) {
        copy[at + 1] = '\0';
    }
    char* end = nullptr;
    const double value = std::strtod(copy.c_str(), &end);
    return {value, static_cast<std::size_t>(end - copy.c_str())};
}

PLAIN_DIGITS plain_digits(std::string_view text) {
    PLAIN_DIGITS read;
    std::size_t at = blanks_at_front(text);
    read.negative = at < text.size() && text[at] == '-';
    if (is_sign(text, at)) ++at;
    if (at == text.size() || !plain_digit(text[at])) return {};
    for (; at < text.size() && plain_digit(text[at]); ++at) {
        if (!read.digits.empty() || text[at] != '0') read.digits += text[at];
    }
    read.length = at;
    return read;
}

}  // namespace tessel::fuzz
