#include "tests/support/german_host.h"

namespace tessel::test {

// Without grouping: here GoogleTest hands numbers to its child processes by way of C++ streams.
const GERMAN_HOST kGermanHost = {"German_Germany.1252", ""};

}  // namespace tessel::test
