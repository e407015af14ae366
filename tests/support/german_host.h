#pragma once

namespace tessel::test {

/// How German numbers are had on the system that the tests run on.
struct GERMAN_HOST {
    const char* m_szLocale;    ///< the name that std::setlocale knows
    const char* m_szGrouping;  ///< of digits in C++ streams, in the form of std::numpunct
};
extern const GERMAN_HOST kGermanHost;

/// Gives the process a decimal comma and grouped digits, for C and for C++. False when the system
/// has no such locale.
bool become_german();

}  // namespace tessel::test
