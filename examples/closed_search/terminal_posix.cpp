// The one question to the system that the C++ library does not answer, for POSIX systems.

#include <unistd.h>

#include "progress.h"

namespace closed_search {

bool errors_on_terminal() {
    return isatty(STDERR_FILENO) != 0;
}

}  // namespace closed_search
