#include "tests/support/german_host.h"

#include <clocale>
#include <iostream>
#include <locale>

namespace tessel::test {
namespace {

class CGermanNumbers : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return kGermanHost.m_szGrouping; }
};

}  // namespace

bool become_german() {
    std::locale::global(std::locale(std::locale::classic(), new CGermanNumbers));
    std::cout.imbue(std::locale());
    return std::setlocale(LC_ALL, kGermanHost.m_szLocale) != nullptr;
}

}  // namespace tessel::test
