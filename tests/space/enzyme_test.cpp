#include "tessel/space/enzyme.h"

#include <gtest/gtest.h>

#include <locale>
#include <vector>

#include "tests/support/captured.h"

namespace tessel {
namespace {

CEnzyme enzyme(const std::string& definition) {
    CEnzyme made;
    made.Init(definition);
    return made;
}

TEST(enzyme, default_trypsin_cuts_mkpar_after_initial_m_and_after_k) {
    const CEnzyme trypsin = enzyme("Trypsin KR _ C");
    EXPECT_TRUE(trypsin.IsValidCleavage("MKPAR", 1));
    EXPECT_TRUE(trypsin.IsValidCleavage("MKPAR", 2));
    EXPECT_FALSE(trypsin.IsValidCleavage("MKPAR", 3));
    EXPECT_FALSE(trypsin.IsValidCleavage("MKPAR", 4));
}

TEST(enzyme, restriction_residue_forbids_the_cut) {
    const CEnzyme restricted = enzyme("Trypsin KR P C");
    EXPECT_FALSE(restricted.IsValidCleavage("MKPAR", 2));
    EXPECT_TRUE(restricted.IsValidCleavage("MKAAR", 2));
}

TEST(enzyme, termini_are_valid_for_every_enzyme) {
    for (const char* definition : {"Trypsin KR _ C", "None", "", "X KR _ C D _ N"}) {
        const CEnzyme any = enzyme(definition);
        EXPECT_TRUE(any.IsValidCleavage("ACDK", 0)) << definition;
        EXPECT_TRUE(any.IsValidCleavage("ACDK", 4)) << definition;
        EXPECT_TRUE(any.IsValidCleavage("", 0)) << definition;
    }
}

TEST(enzyme, without_rules_only_termini_and_initial_m_are_cut) {
    const CEnzyme none = enzyme("Nothing KR _");
    EXPECT_FALSE(none.m_bNTerm);
    EXPECT_FALSE(none.m_bCTerm);
    EXPECT_TRUE(none.IsValidCleavage("MKK", 1));
    EXPECT_FALSE(none.IsValidCleavage("MKK", 2));
    EXPECT_FALSE(none.IsValidCleavage("AKK", 1));
}

TEST(enzyme, rules_of_both_sides_cut_after_k_and_r_and_before_d) {
    const CEnzyme both = enzyme("X KR _ C D _ N");
    EXPECT_TRUE(both.IsValidCleavage("AKAADA", 2));
    EXPECT_TRUE(both.IsValidCleavage("AKAADA", 4));
    EXPECT_FALSE(both.IsValidCleavage("AKAADA", 3));
}

TEST(enzyme, restriction_of_the_n_side_is_kept_but_not_consulted) {
    const CEnzyme aspN = enzyme("AspN D K N");
    EXPECT_EQ(aspN.m_strNRestrict, "K");
    EXPECT_TRUE(aspN.IsValidCleavage("AKDA", 2));
}

TEST(enzyme, n_side_cut_stands_where_the_c_side_is_restricted) {
    const CEnzyme both = enzyme("X K D C D _ N");
    EXPECT_TRUE(both.IsValidCleavage("AKDA", 2));
}

TEST(enzyme, later_rule_of_a_side_replaces_the_earlier_one) {
    const CEnzyme twice = enzyme("X K _ C R P C");
    EXPECT_EQ(twice.m_strCSites, "R");
    EXPECT_EQ(twice.m_strCRestrict, "P");
    EXPECT_FALSE(twice.IsValidCleavage("AKAA", 2));
}

TEST(enzyme, init_forgets_the_enzyme_before) {
    CEnzyme changed = enzyme("X KR P C D E N");
    EXPECT_TRUE(changed.Init("Y"));
    EXPECT_EQ(changed.m_strName, "Y");
    EXPECT_EQ(changed.InfoString(), "Y");
    EXPECT_EQ(changed.m_strCSites + changed.m_strCRestrict, "");
    EXPECT_EQ(changed.m_strNSites + changed.m_strNRestrict, "");
    EXPECT_FALSE(changed.m_bCTerm || changed.m_bNTerm);
}

TEST(enzyme, own_definition_may_be_given_again) {
    CEnzyme again = enzyme("X KR P C");
    again.Init(again.m_strInfo);
    EXPECT_EQ(again.InfoString(), "X KR P C");
    EXPECT_EQ(again.m_strCSites, "KR");
}

TEST(enzyme, info_string_is_the_definition_as_given) {
    EXPECT_EQ(enzyme("  Trypsin\tKR  _ C  junk ").InfoString(), "  Trypsin\tKR  _ C  junk ");
    EXPECT_EQ(enzyme("  Trypsin\tKR  _ C  junk ").m_strInfo, "  Trypsin\tKR  _ C  junk ");
    EXPECT_EQ(enzyme("  Trypsin\tKR  _ C  junk ").m_strName, "Trypsin");
}

TEST(enzyme, unknown_side_word_ends_the_process) {
    EXPECT_ENDS_PROCESS(enzyme("Bad KR P X"), "", "Invalid enzyme format: Bad KR P X\n");
    EXPECT_ENDS_PROCESS(enzyme("Bad KR P c"), "", "Invalid enzyme format: Bad KR P c\n");
}

TEST(enzyme, one_rule_is_read_from_a_stream) {
    CEnzyme built;
    std::istringstream rules("KR P C D _ N rest");
    EXPECT_TRUE(built._Init(rules));
    EXPECT_TRUE(built.m_bCTerm);
    EXPECT_FALSE(built.m_bNTerm);
    EXPECT_TRUE(built._Init(rules));
    EXPECT_TRUE(built.m_bNTerm);
    EXPECT_FALSE(built._Init(rules));
}

// Characters of a locale that counts "K" among the blanks.
class COddBlanks : public std::ctype<char> {
public:
    COddBlanks() : std::ctype<char>(Table()) {}

private:
    static const mask* Table() {
        static std::vector<mask> table(classic_table(), classic_table() + table_size);
        table['K'] = space;
        return table.data();
    }
};

TEST(enzyme, blanks_of_other_locales_are_characters) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new COddBlanks));
    std::istringstream rules("RKH P C");
    const CEnzyme whole = enzyme("TrypsinK KR P C");
    CEnzyme built;
    const bool isRead = built._Init(rules);
    std::locale::global(before);
    EXPECT_TRUE(isRead);
    EXPECT_EQ(built.m_strCSites, "RKH");
    EXPECT_EQ(whole.m_strName, "TrypsinK");
    EXPECT_EQ(whole.m_strCSites, "KR");
}

TEST(enzyme, position_at_or_before_begin_is_a_boundary) {
    const CEnzyme trypsin = enzyme("Trypsin KR P C");
    EXPECT_TRUE(trypsin.IsValidPosition("AAAA", 2, 2));
    EXPECT_TRUE(trypsin.IsValidPosition("AAAA", 1, 2));
    EXPECT_FALSE(trypsin.IsValidPosition("AAAA", 3, 2));
    EXPECT_TRUE(trypsin.IsValidPosition("AAAA", 4, 2));
}

TEST(enzyme, positions_ignore_restrictions_and_the_initial_m) {
    const CEnzyme trypsin = enzyme("Trypsin KR P C");
    EXPECT_TRUE(trypsin.IsValidPosition("MKPA", 2, 0));
    EXPECT_FALSE(trypsin.IsValidPosition("MKPA", 1, 0));
}

TEST(enzyme, positions_of_an_n_side_enzyme_stand_before_its_sites) {
    const CEnzyme aspN = enzyme("AspN D _ N");
    EXPECT_TRUE(aspN.IsValidPosition("AADA", 2, 0));
    EXPECT_FALSE(aspN.IsValidPosition("AADA", 3, 0));
}

TEST(enzyme, beyond_the_protein_nothing_is_cut) {
    const CEnzyme both = enzyme("X KR _ C D _ N");
    EXPECT_FALSE(both.IsValidCleavage("AK", 3));
    EXPECT_FALSE(both.IsValidPosition("AK", 3, 0));
}

}  // namespace
}  // namespace tessel
