#include "tessel/chem/mass_shifts.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/chem/tables.h"

namespace tessel {
namespace {

using test::CTables;
using test::kAll;
using test::modification;
using test::Names;

Names shift_names(double maxDelta, double centre) {
    CTables tables;
    tables.m_cCondition.m_lfMaxDelta = maxDelta;
    tables.m_cCondition.m_lfCenter = centre;
    EXPECT_EQ(tables.Select("", ""), "");
    Names names;
    for (const CMod& mod : tables.m_cCondition.m_vDeltaMods)
        names.push_back(mod.m_strName);
    return names;
}

TEST(mass_shifts, defaults_give_100001_unique_names) {
    CTables tables;
    tables.m_cCondition.m_lfMaxDelta = CCondition().m_lfMaxDelta;
    tables.Select("", "");
    const auto& shifts = tables.m_cCondition.m_vDeltaMods;
    ASSERT_EQ(shifts.size(), 100001u);
    EXPECT_EQ(shifts.front().m_strName, "TESSEL_DELTA_-500.00");
    EXPECT_EQ(shifts[50000].m_strName, "TESSEL_DELTA_-0.00");
    EXPECT_LT(shifts[50000].m_lfMass, 0.0);
    EXPECT_EQ(shifts.back().m_strName, "TESSEL_DELTA_500.00");
    EXPECT_EQ(tables.m_cCondition.m_mapMods.size(), 100002u);
    for (const CMod& mod : shifts)
        ASSERT_EQ(tables.m_cCondition.m_mapMods.at(mod.m_strName), &mod);
    EXPECT_EQ(tables.m_cCondition.m_mapMods.count("TESSEL_DELTA_0.00"), 0u);
}

TEST(mass_shifts, are_plain_modifications_of_any_residue) {
    CTables tables;
    tables.m_cCondition.m_lfMaxDelta = 0.0;
    tables.m_cCondition.m_lfCenter = 1.25;
    tables.Select("", "");
    ASSERT_EQ(tables.m_cCondition.m_vDeltaMods.size(), 1u);
    const CMod& shift = tables.m_cCondition.m_vDeltaMods[0];
    EXPECT_EQ(shift.m_lfMass, 1.25);
    EXPECT_EQ(shift.m_strSites, kAll);
    EXPECT_EQ(shift.m_eType, NORMAL);
    EXPECT_TRUE(shift.m_vLossMass.empty());
    EXPECT_EQ(shift.m_lfProb, 1.0);
    EXPECT_EQ(shift.m_strComposition, "H(300)");
    EXPECT_EQ(shift.m_nFlag, 0);
}

TEST(mass_shifts, range_of_zero_gives_the_centre_alone) {
    EXPECT_EQ(shift_names(0.0, 0.0), (Names{"TESSEL_DELTA_0.00"}));
    EXPECT_EQ(shift_names(0.0, -79.97), (Names{"TESSEL_DELTA_-79.97"}));
    EXPECT_EQ(shift_names(0.005, 0.0), (Names{"TESSEL_DELTA_-0.01", "TESSEL_DELTA_0.01"}));
}

// The running sum loses the last step of 0.03 and 0.05, and keeps that of 0.1.
TEST(mass_shifts, steps_are_added_up_and_not_multiplied) {
    EXPECT_EQ(shift_names(0.03, 0.0),
              (Names{"TESSEL_DELTA_-0.03", "TESSEL_DELTA_-0.02", "TESSEL_DELTA_-0.01",
                     "TESSEL_DELTA_0.00", "TESSEL_DELTA_0.01", "TESSEL_DELTA_0.02"}));
    EXPECT_EQ(shift_names(0.05, 10.0).size(), 10u);
    EXPECT_EQ(shift_names(0.05, 10.0).back(), "TESSEL_DELTA_10.04");
    EXPECT_EQ(shift_names(0.1, -1.0).size(), 21u);
    EXPECT_EQ(shift_names(0.1, -1.0).back(), "TESSEL_DELTA_-0.90");
}

TEST(mass_shifts, negative_range_gives_none) {
    EXPECT_EQ(shift_names(-0.01, 0.0), Names());
}

TEST(mass_shifts, number_in_the_name_has_at_most_15_characters) {
    EXPECT_EQ(shift_names(0.0, 123456789012.25), (Names{"TESSEL_DELTA_123456789012.25"}));
    EXPECT_EQ(shift_names(0.0, 12345678901234.25), (Names{"TESSEL_DELTA_12345678901234."}));
    EXPECT_EQ(shift_names(0.0, -1234567890123456.0), (Names{"TESSEL_DELTA_-12345678901234"}));
}

TEST(mass_shifts, of_equal_names_the_last_wins) {
    CTables tables({modification("TESSEL_DELTA_1e", 1.0), modification("TESSEL_DELTA_0.00", 7.0)});
    tables.m_cCondition.m_lfMaxDelta = 0.03;
    tables.m_cCondition.m_lfCenter = 1e15;
    tables.Select("", "TESSEL_DELTA_1e");
    const auto& names = tables.m_cCondition.m_mapMods;
    EXPECT_EQ(names.at("TESSEL_DELTA_100000000000000"), &tables.m_cCondition.m_vDeltaMods.back());
    EXPECT_EQ(names.size(), 4u);
    EXPECT_EQ(tables.Selected(), (Names{"TESSEL_DELTA_1e"}));

    tables.m_cCondition.m_lfMaxDelta = 0.0;
    tables.m_cCondition.m_lfCenter = 0.0;
    tables.Select("", "");
    EXPECT_EQ(names.at("TESSEL_DELTA_0.00"), &tables.m_cCondition.m_vDeltaMods.front());
}

TEST(mass_shifts, impossible_ranges_are_reported_and_give_none) {
    struct {
        double maxDelta;
        const char* shown;
    } rows[] = {{std::numeric_limits<double>::quiet_NaN(), "nan"},
                {std::numeric_limits<double>::infinity(), "inf"},
                {-std::numeric_limits<double>::infinity(), "-inf"},
                {50001.0, "50001"},
                {50000.01, "50000.01"},
                {1e300, "1e+300"}};
    for (const auto& row : rows) {
        CTables tables;
        tables.m_cCondition.m_lfMaxDelta = row.maxDelta;
        EXPECT_EQ(tables.Select("", ""), std::string("[Tessel] ALERT: Invalid_Max_Delta: ") +
                                             row.shown + ", no mass shifts are created\n");
        EXPECT_TRUE(tables.m_cCondition.m_vDeltaMods.empty());
        EXPECT_EQ(tables.m_cCondition.m_mapMods.size(), 1u);
    }
}

// The running sum has lost steps by the end of a range so wide.
TEST(mass_shifts, ten_million_are_the_most) {
    EXPECT_EQ(number_of_shifts(49999.99), 9'999'998U);
    EXPECT_EQ(number_of_shifts(50000.0), 10'000'000U);
    EXPECT_EQ(kMaxShifts, 10'000'000U);
    EXPECT_EQ(number_of_shifts(50000.01), 10'000'001U);
    EXPECT_EQ(number_of_shifts(1e300), 10'000'001U);
    EXPECT_EQ(number_of_shifts(-0.01), 0U);
}

}  // namespace
}  // namespace tessel
