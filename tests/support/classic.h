#pragma once

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <sstream>
#include <string>

namespace tessel::test {

// Numbers in their programming form, whatever locale the tests run in: what the library's results
// are compared with.

class CClassicOut : public std::ostringstream {
public:
    CClassicOut() { imbue(std::locale::classic()); }
};

class CClassicIn : public std::istringstream {
public:
    explicit CClassicIn(const std::string& text) : std::istringstream(text) {
        imbue(std::locale::classic());
    }
};

/// While one exists, the C library reads and writes numbers with a decimal point.
class CClassicNumbers {
public:
    CClassicNumbers() : m_strBefore(std::setlocale(LC_NUMERIC, nullptr)) {
        std::setlocale(LC_NUMERIC, "C");
    }
    ~CClassicNumbers() { std::setlocale(LC_NUMERIC, m_strBefore.c_str()); }
    CClassicNumbers(const CClassicNumbers&) = delete;
    CClassicNumbers& operator=(const CClassicNumbers&) = delete;

private:
    std::string m_strBefore;
};

/// What std::printf() writes.
template <class... Values>
std::string printed(const char* format, Values... values) {
    const CClassicNumbers classic;
    char text[2500];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

inline double parsed_double(const char* text, char** end = nullptr) {
    const CClassicNumbers classic;
    return std::strtod(text, end);
}

}  // namespace tessel::test
