#include "tessel/platform/calendar.h"

#include <gtest/gtest.h>
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <array>

namespace tessel {
namespace {

using Fields = std::array<std::int64_t, 6>;

Fields fields_of(const CALENDAR_TIME& time) {
    return {time.m_nYear, time.m_nMonth, time.m_nDay, time.m_nHour, time.m_nMinute, time.m_nSecond};
}

// By the system's own clock and time zone.
Fields system_fields(std::int64_t seconds) {
    const std::int64_t ticks = (seconds + 11'644'473'600) * 10'000'000;
    const FILETIME file{static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME universal;
    SYSTEMTIME local;
    FileTimeToSystemTime(&file, &universal);
    SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local);
    return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

TEST(calendar, local_time_is_that_of_the_system) {
    for (const std::int64_t seconds : {std::int64_t{100'000}, std::int64_t{1'394'183'130},
                                       std::int64_t{1'627'772'399}, std::int64_t{4'102'444'799}})
        EXPECT_EQ(fields_of(local_time(seconds)), system_fields(seconds)) << seconds;
}

TEST(calendar, time_that_the_system_cannot_convert_is_the_start_of_1970) {
    for (const std::int64_t seconds : {std::int64_t{-1'000'000}, INT64_MIN, INT64_MAX})
        EXPECT_EQ(fields_of(local_time(seconds)), (Fields{1970, 1, 1, 0, 0, 0})) << seconds;
}

}  // namespace
}  // namespace tessel
