#pragma once

#include <time.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tessel/param/condition_writer.h"
#include "tests/support/system.h"
#include "tests/support/temp_folder.h"

namespace tessel::test {

// The time zone of the process, in the form of the environment variable, until the end of the test.
class CTimeZone {
public:
    explicit CTimeZone(const char* zone) {
        if (const char* before = std::getenv("TZ")) m_strBefore = before;
        test::set_environment("TZ", zone);
        tzset();
    }
    ~CTimeZone() {
        if (m_strBefore.empty()) {
            test::unset_environment("TZ");
        } else {
            test::set_environment("TZ", m_strBefore);
        }
        tzset();
    }
    CTimeZone(const CTimeZone&) = delete;
    CTimeZone& operator=(const CTimeZone&) = delete;

private:
    std::string m_strBefore;
};

inline constexpr std::int64_t kMarch = 1394183130;  // 2014-03-07 09:05:30 UTC
inline constexpr std::int64_t kJuly = 1627772399;   // 2021-07-31 22:59:59 UTC

inline std::string version_line(const std::string& text) {
    const std::string head = "\n\n[Version Info]\n";
    const std::size_t at = text.find(head);
    return at == std::string::npos ? "none" : text.substr(at + head.size());
}

// Where the search program was last modified at that time.
inline std::string version_line_at(std::int64_t seconds, const char* zone) {
    const CTimeZone local(zone);
    const test::CTempFolder folder;
    const test::CWorkingFolder working(folder.Path());
    const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
    std::filesystem::last_write_time(folder.Write("Corvid.exe", "program"),
                                     std::chrono::file_clock::from_sys(time));
    const CCondition condition;
    CConditionWriter(folder.Path("search.ini"), &condition).Write();
    return version_line(folder.Read("search.ini"));
}

}  // namespace tessel::test
