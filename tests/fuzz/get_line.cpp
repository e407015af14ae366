// A stream read through one growing buffer, against a text that does the same.

#include <cstdio>
#include <memory>

#include "tessel/condition/utilities.h"
#include "tessel/platform/file.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

struct BUFFER {
    std::string text;
    std::size_t size;
};

// What fgets would do, character by character; the text ends at a zero byte like a C string.
BUFFER plain_get_line(std::string_view stream, std::string text, std::size_t size) {
    if (size < 2) return {text, size};
    const std::size_t step = size;
    std::string kept;
    while (!stream.empty()) {
        std::string piece;
        while (!stream.empty() && piece.size() + kept.size() + 1 < size) {
            piece += stream.front();
            stream.remove_prefix(1);
            if (piece.back() == '\n') break;
        }
        text = kept + piece.c_str();
        const bool full = text.size() == size - 1;
        kept = full ? text : "";
        size += full ? step : 0;
    }
    return {text, size};
}

}  // namespace

void run(CBytes input) {
    std::size_t size = input.Byte();
    const std::string_view text = input.Text();
    const std::string old = size > 0 ? std::string(size - 1, 'o') : "";
    const BUFFER plain = plain_get_line(text, old, size);

    char* buffer = new char[size + 1];
    old.copy(buffer, size);
    buffer[old.size()] = '\0';
    const std::string copy(text);
    // An empty memory stream cannot be opened.
    const FilePtr file(text.empty() ? std::fopen("/dev/null", "rb")
                                    : fmemopen(const_cast<char*>(copy.data()), copy.size(), "rb"));
    check(_get_line(file.get(), &buffer, size) == 0, "0 is returned");
    const std::unique_ptr<char[]> owned(buffer);
    check(size == plain.size, "the buffer grows by its first size");
    check(buffer == plain.text, "the last line stays in the buffer");
}

}  // namespace tessel::fuzz
