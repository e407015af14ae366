#include <time.h>

#include "tessel/platform/calendar.h"

namespace tessel {

CALENDAR_TIME local_time(std::int64_t seconds) {
    const __time64_t time = seconds;
    struct tm parts;
    if (_localtime64_s(&parts, &time) != 0) return {};
    return {std::int64_t{parts.tm_year} + 1900,
            parts.tm_mon + 1,
            parts.tm_mday,
            parts.tm_hour,
            parts.tm_min,
            parts.tm_sec};
}

}  // namespace tessel
