#include "tests/support/german_host.h"

namespace tessel::test {

const GERMAN_HOST kGermanHost = {"de_DE.UTF-8", "\3"};

}  // namespace tessel::test
