#include "tessel/space/ion_type.h"

#include <gtest/gtest.h>

#include "tessel/condition/condition.h"

namespace tessel {
namespace {

void expect_series(const std::vector<CIonType>& ions, std::size_t first, const std::string& name,
                   bool nTerminal, double offset, const std::string& definitionEnd) {
    for (std::size_t charge = 1; charge <= 5; ++charge) {
        const CIonType& ion = ions.at(first + charge - 1);
        EXPECT_EQ(ion.m_strName, name);
        EXPECT_EQ(ion.m_nCharge, static_cast<int>(charge));
        EXPECT_EQ(ion.m_bNTerm, nTerminal);
        EXPECT_TRUE(ion.m_bFlag);
        EXPECT_EQ(ion.m_lfOffset, offset);
        EXPECT_EQ(ion.m_strDefinition, name + ' ' + std::to_string(charge) + definitionEnd);
    }
}

TEST(ion_types, hcd_has_b_then_y_at_charges_1_to_5) {
    CCondition condition;
    EXPECT_TRUE(condition.InitHCD());
    ASSERT_EQ(condition.m_vIonTypes.size(), 10u);
    expect_series(condition.m_vIonTypes, 0, "b", true, 0.0, " 1 1 0");
    expect_series(condition.m_vIonTypes, 5, "y", false, 18.0105647, " 0 1 18.0105647");
    EXPECT_FALSE(condition.m_bETD);
}

TEST(ion_types, etd_has_twenty_five_from_c1_to_y5) {
    CCondition condition;
    EXPECT_TRUE(condition.InitETD());
    ASSERT_EQ(condition.m_vIonTypes.size(), 25u);
    expect_series(condition.m_vIonTypes, 0, "c", true, 17.026549105, " 1 1 17.026549105");
    expect_series(condition.m_vIonTypes, 5, "cm1", true, 16.01872407, " 1 1 16.01872407");
    expect_series(condition.m_vIonTypes, 10, "z", false, 1.99184063, " 0 1 1.99184063");
    expect_series(condition.m_vIonTypes, 15, "zp1", false, 2.999665665, " 0 1 2.999665665");
    expect_series(condition.m_vIonTypes, 20, "y", false, 18.0105647, " 0 1 18.0105647");
    EXPECT_TRUE(condition.m_bETD);
}

TEST(ion_types, sets_are_appended_to_what_is_there) {
    CCondition condition;
    condition.InitHCD();
    condition.InitETD();
    EXPECT_EQ(condition.m_vIonTypes.size(), 35u);
    EXPECT_TRUE(condition.m_bETD);
    condition.InitHCD();
    EXPECT_EQ(condition.m_vIonTypes.size(), 45u);
    EXPECT_FALSE(condition.m_bETD);
}

TEST(ion_types, fresh_type_is_of_no_series) {
    const CIonType fresh;
    EXPECT_EQ(fresh.m_strName + fresh.m_strDefinition, "");
    EXPECT_EQ(fresh.m_lfOffset, 0.0);
    EXPECT_EQ(fresh.m_nCharge, 0);
    EXPECT_FALSE(fresh.m_bNTerm);
    EXPECT_FALSE(fresh.m_bFlag);
}

TEST(ion_types, one_line_gives_one_type) {
    CIonType ion;
    EXPECT_TRUE(ion.Init("y 3 0 1 18.0105647"));
    EXPECT_EQ(ion.m_strName, "y");
    EXPECT_EQ(ion.m_nCharge, 3);
    EXPECT_FALSE(ion.m_bNTerm);
    EXPECT_TRUE(ion.m_bFlag);
    EXPECT_EQ(ion.m_lfOffset, 18.0105647);
    EXPECT_EQ(ion.m_strDefinition, "y 3 0 1 18.0105647");
}

TEST(ion_types, own_fields_may_be_given_as_a_line) {
    CIonType ion;
    const std::string name = "a_name_too_long_to_stand_in_the_text_object_itself";
    ion.m_strName = name + " 3 0 1 18.0105647";
    ion.Init(ion.m_strName);
    EXPECT_EQ(ion.m_strName, name);
    EXPECT_EQ(ion.m_nCharge, 3);
    EXPECT_EQ(ion.m_lfOffset, 18.0105647);
    ion.Init(ion.m_strDefinition);
    EXPECT_EQ(ion.m_strDefinition, name + " 3 0 1 18.0105647");
    EXPECT_EQ(ion.m_nCharge, 3);
}

TEST(ion_types, missing_columns_keep_their_fields_but_clear_the_flags) {
    CIonType ion;
    ion.Init("y 3 1 1 18.5");
    EXPECT_TRUE(ion.Init("z"));
    EXPECT_EQ(ion.m_strName, "z");
    EXPECT_EQ(ion.m_nCharge, 3);
    EXPECT_FALSE(ion.m_bNTerm);
    EXPECT_FALSE(ion.m_bFlag);
    EXPECT_EQ(ion.m_lfOffset, 18.5);
    EXPECT_TRUE(ion.Init(""));
    EXPECT_EQ(ion.m_strName, "z");
}

TEST(ion_types, any_integer_but_0_is_a_set_flag) {
    CIonType ion;
    ion.Init("x 1 -7 42 -1.25e1");
    EXPECT_TRUE(ion.m_bNTerm);
    EXPECT_TRUE(ion.m_bFlag);
    EXPECT_EQ(ion.m_lfOffset, -12.5);
}

TEST(ion_types, nothing_is_read_behind_a_column_that_is_no_number) {
    CIonType ion;
    ion.Init("y 3 1 1 18.5");
    ion.Init("b 2 x 1 99.0");
    EXPECT_EQ(ion.m_nCharge, 2);
    EXPECT_FALSE(ion.m_bNTerm);
    EXPECT_FALSE(ion.m_bFlag);
    EXPECT_EQ(ion.m_lfOffset, 18.5);
}

}  // namespace
}  // namespace tessel
