// Fields and words cut off texts, against a plain cutting character by character.

#include "tessel/base/word_reader.h"
#include "tessel/condition/condition.h"
#include "tessel/condition/utilities.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

void check_fields(const std::string& text, char delimiter) {
    static const CCondition condition;
    std::vector<std::string> expected = plain_fields(text, delimiter);
    std::vector<std::string> fields{"old"};
    _str_split(text, fields, delimiter);
    expected.insert(expected.begin(), "old");
    check(fields == expected, "_str_split keeps every field");

    fields = {"old"};
    condition.StringSplit(text, delimiter, fields);
    std::erase(expected, "");
    check(fields == expected, "StringSplit drops empty fields");
}

template <class Number>
bool take_number(CWordReader& reader, std::string_view& rest, bool& good,
                 PLAIN_NUMBER<Number> plain, bool missing) {
    Number value = 77;
    const bool read = reader.Read(value);
    good = good && plain.length > 0;
    check(read == good, "numbers are read until the first failure");
    if (read) {
        check(same(static_cast<double>(value), static_cast<double>(plain.value)),
              "numbers have their value");
        rest.remove_prefix(plain.length);
    } else {
        check(value == Number{77} || !missing, "a missing field leaves its value");
    }
    return read;
}

// The lowest two bits of `kinds` tell what is taken first, the next two what follows, and so on.
void check_words(std::string_view rest, std::uint32_t kinds) {
    CWordReader reader(rest);
    bool good = true;
    for (; kinds != 0; kinds >>= 2) {
        const std::vector<std::string> words = plain_words(rest);
        if (kinds % 4 < 2) {
            std::string word = "old";
            good = good && !words.empty();
            check(reader.Word(word) == good, "words are read until the first failure");
            check(word == (good ? words.front() : "old"), "words are runs without blanks");
            if (good) rest.remove_prefix(rest.find(words.front()) + words.front().size());
        } else if (kinds % 4 == 2) {
            take_number(reader, rest, good, plain_double(rest), words.empty());
        } else {
            take_number(reader, rest, good, plain_integer<int>(rest), words.empty());
        }
        check(reader.Good() == good, "a failure stays");
    }
}

}  // namespace

void run(CBytes input) {
    const auto delimiter = static_cast<char>(input.Byte());
    std::uint32_t kinds = input.Byte();
    kinds = kinds << 8 | input.Byte();
    check_fields(std::string(input.Text()), delimiter);
    check_words(input.Text(), kinds);
}

}  // namespace tessel::fuzz
