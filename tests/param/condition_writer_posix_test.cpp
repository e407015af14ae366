// The version line in time zones of the process's own, and before 1970, which only POSIX systems
// have.

#include <gtest/gtest.h>

#include "tessel/condition/condition.h"
#include "tests/param/version_line.h"

namespace tessel {
namespace {

using test::CTimeZone;
using test::kJuly;
using test::kMarch;
using test::version_line;
using test::version_line_at;

TEST(condition_writer_posix, version_is_in_local_time) {
    EXPECT_EQ(version_line_at(kMarch, "XYZ-5:30"), "2014.3.7.14.35.30\n");
    EXPECT_EQ(version_line_at(kMarch, "XYZ10"), "2014.3.6.23.5.30\n");
    EXPECT_EQ(version_line_at(kMarch, "CET-1CEST,M3.5.0,M10.5.0/3"), "2014.3.7.10.5.30\n");
    EXPECT_EQ(version_line_at(kJuly, "CET-1CEST,M3.5.0,M10.5.0/3"), "2021.8.1.0.59.59\n");
}

TEST(condition_writer_posix, program_older_than_1970_has_a_version) {
    EXPECT_EQ(version_line_at(-1, "UTC0"), "1969.12.31.23.59.59\n");
}

TEST(condition_writer_posix, without_the_program_the_version_is_time_zero) {
    const test::CTempFolder folder;
    const test::CWorkingFolder working(folder.Path());
    const CCondition condition;
    const CConditionWriter writer(folder.Path("search.ini"), &condition);
    const struct {
        const char* zone;
        const char* line;
    } rows[] = {{"XYZ-1", "1970.1.1.1.0.0\n"}, {"XYZ5", "1969.12.31.19.0.0\n"}};
    for (const auto& row : rows) {
        const CTimeZone local(row.zone);
        writer.Write();
        EXPECT_EQ(version_line(folder.Read("search.ini")), row.line) << row.zone;
    }
}

}  // namespace
}  // namespace tessel
