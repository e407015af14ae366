#include <time.h>  // NOLINT(modernize-deprecated-headers): localtime_r() is of POSIX, not C

#include "tessel/platform/calendar.h"

namespace tessel {

CALENDAR_TIME local_time(std::int64_t seconds) {
    // The process's time zone as it was first used or last set: tzset() would write to what all
    // threads share.
    const auto time = static_cast<time_t>(seconds);
    struct tm parts;
    if (localtime_r(&time, &parts) == nullptr) return {};
    return {std::int64_t{parts.tm_year} + 1900,
            parts.tm_mon + 1,
            parts.tm_mday,
            parts.tm_hour,
            parts.tm_min,
            parts.tm_sec};
}

}  // namespace tessel
