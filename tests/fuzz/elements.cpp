// "element.ini", against a plain reading field by field.

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

std::vector<std::string> numbers_of(const std::string& list) {
    std::vector<std::string> numbers = plain_fields(list, ',');
    std::erase(numbers, "");
    return numbers;
}

std::map<std::string, double> plain_elements(std::string_view text) {
    std::map<std::string, double> elements;
    for (const std::string& line : plain_lines(text)) {
        const std::size_t sign = line.find('=');
        if (!line.starts_with('E') || sign == std::string::npos) continue;
        std::vector<std::string> fields = plain_fields(line.substr(sign + 1), '|');
        fields.resize(3);
        const std::vector<std::string> masses = numbers_of(fields[1]);
        std::size_t best = 0;
        double maximum = 0.0;
        std::size_t isotope = 0;
        for (const std::string& abundance : numbers_of(fields[2])) {
            const double value = plain_double(abundance).value;
            if (value > maximum) {
                maximum = value;
                best = isotope;
            }
            ++isotope;
        }
        if (best < masses.size()) elements[fields[0]] = plain_double(masses[best]).value;
    }
    return elements;
}

}  // namespace

void run(CBytes input) {
    write_scratch("element.ini", input.Text());
    static CCondition condition;
    condition.m_mapElementMass = {{"old", 1.0}};
    condition.ReadElementInfo();
    const std::map<std::string, double> expected = plain_elements(input.Text());
    check(condition.m_mapElementMass.size() == expected.size(), "every element is read");
    for (const auto& [symbol, mass] : expected) {
        const auto found = condition.m_mapElementMass.find(symbol);
        check(found != condition.m_mapElementMass.end() && same(found->second, mass),
              "the most abundant isotope counts");
    }
}

}  // namespace tessel::fuzz
