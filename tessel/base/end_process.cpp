#include "tessel/base/end_process.h"

#include <cstdlib>

namespace tessel {

void end_process(int status) {
    std::exit(status);
}

}  // namespace tessel
