#pragma once

#include <cstdint>

namespace tessel {

/// A date and time of day as people read it; month and day count from 1.
struct CALENDAR_TIME {
    std::int64_t m_nYear = 1970;
    int m_nMonth = 1;
    int m_nDay = 1;
    int m_nHour = 0;
    int m_nMinute = 0;
    int m_nSecond = 0;
};

/// Seconds since 1970 in the time zone of the process. A time that the system cannot convert (one
/// before 1970 on Windows, say) gives the start of 1970.
CALENDAR_TIME local_time(std::int64_t seconds);

}  // namespace tessel
