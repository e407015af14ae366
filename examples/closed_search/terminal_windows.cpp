// The one question to the system that the C++ library does not answer, for Windows.

#include <io.h>

#include "progress.h"

namespace closed_search {

bool errors_on_terminal() {
    constexpr int kStandardError = 2;
    return _isatty(kStandardError) != 0;
}

}  // namespace closed_search
