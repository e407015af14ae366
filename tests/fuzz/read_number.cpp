// Numbers read from texts, against strtod and a digit-by-digit integer.

#include <cmath>

#include "tessel/base/number.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

void check_double(std::string_view text) {
    double value = 12.5;
    const char* const end = read_double(text.data(), text.data() + text.size(), value);
    const auto plain = plain_double(text);
    check((end == nullptr) == (plain.length == 0), "doubles are found where strtod finds them");
    if (end == nullptr) return check(value == 12.5, "without a number the value stays");
    check(static_cast<std::size_t>(end - text.data()) == plain.length, "doubles end as strtod's");
    check(same(value, plain.value) && std::signbit(value) == std::signbit(plain.value),
          "doubles read as strtod reads them");
}

template <class Integer>
void check_integer(std::string_view text) {
    Integer value = 77;
    const char* const end = read_integer(text.data(), text.data() + text.size(), value);
    const auto plain = plain_integer<Integer>(text);
    check((end == nullptr) == (plain.length == 0), "integers are found");
    check(value == (end == nullptr ? Integer{77} : plain.value), "integers saturate");
    if (end == nullptr) return;
    check(static_cast<std::size_t>(end - text.data()) == plain.length, "integers end at no digit");
}

}  // namespace

void run(CBytes input) {
    // A copy of exactly this size, so that the sanitizer sees a step beyond its end.
    const std::vector<char> copy(input.Text().begin(), input.Text().end());
    const std::string_view text(copy.data(), copy.size());
    check_double(text);
    check_integer<int>(text);
    check_integer<unsigned>(text);
    check_integer<std::int16_t>(text);
    check_integer<std::int64_t>(text);
    check_integer<std::uint64_t>(text);
}

}  // namespace tessel::fuzz
