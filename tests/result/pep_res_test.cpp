#include "tessel/result/pep_res.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <tuple>
#include <utility>

#include "tessel/chem/mod.h"
#include "tessel/result/psm_res.h"
#include "tessel/result/score_to_pep.h"
#include "tessel/space/godel_code.h"
#include "tests/result/result_records.h"

namespace tessel {
namespace {

using test::set_sites;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Order = bool (*)(const CPepRes&, const CPepRes&);

CPepRes scored(double score, unsigned char decoy = 0, const std::string& sequence = "PEPTIDE") {
    CPepRes pep;
    pep.m_lfScore = score;
    pep.m_bDecoy = decoy;
    pep.m_strSeq = sequence;
    return pep;
}

// Every field away from its default.
CPepRes full(const CMod* mod) {
    CPepRes pep;
    pep.m_lfScore = 1.5;
    pep.m_lfSubScores = {1, 2, 3, 4, 5};
    pep.m_lfFinalScore = 0.25;
    pep.m_lfQValue = 0.125;
    pep.m_lfPepMass = 1000.5;
    pep.m_lfMassDev = -0.5;
    pep.m_strSeq = "MPEPTIDEWITHALONGSEQUENCEK";
    set_sites(pep, {{0, mod}, {7, nullptr}});
    pep.m_ucAux0 = 10;
    pep.m_ucAuxMax = 11;
    pep.m_bDecoy = 0;
    pep.m_ucAux1 = 12;
    pep.m_setProteins = {{3, 4, 'K', 'A'}, {1, 2, '-', 'R'}};
    pep.m_vstrExtra = {"a", "b"};
    pep.m_ucAux2 = 13;
    pep.m_nAuxA = {1, -2, 3, -4};
    pep.m_nAuxB = {5, -6, 7, -8};
    return pep;
}

void expect_full(const CPepRes& pep, const CMod* mod) {
    EXPECT_EQ(pep.m_lfScore, 1.5);
    EXPECT_EQ(pep.m_lfSubScores, (std::array<double, 5>{1, 2, 3, 4, 5}));
    EXPECT_EQ(pep.m_lfFinalScore, 0.25);
    EXPECT_EQ(pep.m_lfQValue, 0.125);
    EXPECT_EQ(pep.m_lfPepMass, 1000.5);
    EXPECT_EQ(pep.m_lfMassDev, -0.5);
    EXPECT_EQ(pep.m_strSeq, "MPEPTIDEWITHALONGSEQUENCEK");
    ASSERT_EQ(pep.m_ucModNum, 2);
    ASSERT_NE(pep.m_pMods, nullptr);
    EXPECT_EQ(pep.m_pMods[0].m_ucPos, 0);
    EXPECT_EQ(pep.m_pMods[0].m_pMod, mod);
    EXPECT_EQ(pep.m_pMods[1].m_ucPos, 7);
    EXPECT_EQ(pep.m_pMods[1].m_pMod, nullptr);
    EXPECT_EQ(pep.m_ucAux0, 10);
    EXPECT_EQ(pep.m_ucAuxMax, 11);
    EXPECT_EQ(pep.m_bDecoy, 0);
    EXPECT_EQ(pep.m_ucAux1, 12);
    ASSERT_EQ(pep.m_setProteins.size(), 2U);
    const PRO_INFO& first = *pep.m_setProteins.begin();
    EXPECT_EQ(std::tie(first.m_nProID, first.m_nSite), std::make_tuple(1, 2));
    EXPECT_EQ(std::tie(first.m_cPrev, first.m_cNext), std::make_tuple('-', 'R'));
    EXPECT_EQ(pep.m_vstrExtra, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(pep.m_ucAux2, 13);
    EXPECT_EQ(pep.m_nAuxA, (std::array<int, 4>{1, -2, 3, -4}));
    EXPECT_EQ(pep.m_nAuxB, (std::array<int, 4>{5, -6, 7, -8}));
}

TEST(pro_info, fresh_hit_is_of_no_protein_and_has_unknown_neighbours) {
    const PRO_INFO fresh;
    EXPECT_EQ(fresh.m_nProID, 0);
    EXPECT_EQ(fresh.m_nSite, 0);
    EXPECT_EQ(fresh.m_cPrev, '-');
    EXPECT_EQ(fresh.m_cNext, '-');
}

TEST(pep_res, fresh_record_has_the_default_values) {
    const CPepRes fresh;
    EXPECT_EQ(fresh.m_lfScore, 0.0);
    EXPECT_EQ(fresh.m_lfFinalScore, 0.0);
    EXPECT_EQ(fresh.m_lfQValue, 1024.0);
    EXPECT_EQ(fresh.m_lfPepMass, 0.0);
    EXPECT_EQ(fresh.m_lfMassDev, 0.0);
    EXPECT_EQ(fresh.m_strSeq, "");
    EXPECT_EQ(fresh.m_pMods, nullptr);
    EXPECT_EQ(fresh.m_ucModNum, 0);
    EXPECT_EQ(fresh.m_ucAux0, 0);
    EXPECT_EQ(fresh.m_ucAuxMax, 0);
    EXPECT_EQ(fresh.m_bDecoy, 1);
    EXPECT_EQ(fresh.m_ucAux1, 0);
    EXPECT_EQ(fresh.m_ucAux2, 0);
    EXPECT_TRUE(fresh.m_setProteins.empty());
    EXPECT_TRUE(fresh.m_vstrExtra.empty());
}

TEST(pep_res, protein_hits_compare_by_key_alone_and_the_first_stays) {
    const PRO_INFO small{1, 9, 'Z', 'Z'};
    const PRO_INFO large{2, 0, 'A', 'A'};
    EXPECT_TRUE(small < large);
    EXPECT_FALSE(small > large);
    EXPECT_TRUE(large > small);
    EXPECT_FALSE(small == large);
    EXPECT_TRUE(small == (PRO_INFO{1, 0, 'A', 'A'}));
    const PRO_INFO unknown;
    EXPECT_EQ(unknown.m_cPrev, '-');
    EXPECT_EQ(unknown.m_cNext, '-');

    std::set<PRO_INFO> hits{small};
    EXPECT_FALSE(hits.insert({1, 0, 'A', 'A'}).second);
    EXPECT_EQ(hits.begin()->m_nSite, 9);
}

TEST(pep_res, every_way_of_copying_is_deep_and_complete) {
    const CMod mod;
    const CPepRes source = full(&mod);
    const CPepRes constructed(source);
    CPepRes assigned = scored(1);
    set_sites(assigned, {{1, &mod}, {2, &mod}, {3, &mod}});
    assigned = source;
    CPepRes byCall;
    EXPECT_EQ(byCall.Assign(source), 1);
    for (const CPepRes* copy : {&constructed, &std::as_const(assigned), &std::as_const(byCall)}) {
        expect_full(*copy, &mod);
        EXPECT_NE(copy->m_pMods, source.m_pMods);
    }
    expect_full(source, &mod);
}

TEST(pep_res, assign_onto_a_record_with_sites_frees_them) {
    const CMod mod;
    CPepRes target = full(&mod);
    target.Assign(full(&mod));
    expect_full(target, &mod);
    target.Assign(scored(2));
    EXPECT_EQ(target.m_pMods, nullptr);
    EXPECT_EQ(target.m_ucModNum, 0);
}

TEST(pep_res, moving_hands_the_sites_over_and_keeps_both_records_whole) {
    const CMod mod;
    CPepRes source = full(&mod);
    const MOD_SITE* const sites = source.m_pMods;
    CPepRes constructed(std::move(source));
    EXPECT_EQ(constructed.m_pMods, sites);
    CPepRes target = full(nullptr);
    target = std::move(constructed);
    EXPECT_EQ(target.m_pMods, sites);
    expect_full(constructed, nullptr);
    expect_full(target, &mod);
}

TEST(pep_res, record_without_sites_copies_to_a_null_array) {
    const CPepRes none;
    EXPECT_EQ(CPepRes(none).m_pMods, nullptr);
    CPepRes emptyArray;
    emptyArray.m_pMods = new MOD_SITE[0];
    EXPECT_EQ(CPepRes(emptyArray).m_pMods, nullptr);
}

TEST(pep_res, record_assigned_to_itself_keeps_its_proteins_and_sites) {
    const CMod mod;
    CPepRes pep = full(&mod);
    const CPepRes& same = pep;
    pep = same;
    expect_full(pep, &mod);
    pep.Assign(same);
    expect_full(pep, &mod);
    CPepRes& sameAgain = pep;
    pep = std::move(sameAgain);
    expect_full(pep, &mod);
}

TEST(pep_res, clean_frees_the_sites_and_keeps_their_count) {
    const CMod mod;
    CPepRes pep = full(&mod);
    EXPECT_EQ(pep.Clean(), 1);
    EXPECT_EQ(pep.m_pMods, nullptr);
    EXPECT_EQ(pep.m_ucModNum, 2);
    EXPECT_EQ(pep.Clean(), 1);

    const CPepRes copy(pep);
    EXPECT_EQ(copy.m_pMods, nullptr);
    EXPECT_EQ(copy.m_ucModNum, 2);
    pep.Assign(full(&mod));
    expect_full(pep, &mod);
}

TEST(pep_res, hash_sums_the_bytes_of_sequence_positions_and_addresses) {
    const GodelCode code;
    const CMod mods[2];
    CPepRes pep = scored(0, 0, "PEPTIDE");
    set_sites(pep, {{3, &mods[0]}, {200, &mods[1]}, {5, nullptr}});

    std::vector<unsigned char> bytes{'P', 'E', 'P', 'T', 'I', 'D', 'E'};
    for (std::size_t i = 0; i < 3; ++i) {
        bytes.push_back(pep.m_pMods[i].m_ucPos);
        unsigned char address[sizeof(void*)];
        std::memcpy(address, &pep.m_pMods[i].m_pMod, sizeof address);
        bytes.insert(bytes.end(), std::begin(address), std::end(address));
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        sum += code.m_lfTable[std::size_t{bytes[i]} * 500 + i];
    EXPECT_EQ(pep.GetHash(code), sum);
    EXPECT_GT(sum, 0.0);
}

TEST(pep_res, hash_of_nothing_is_0_and_a_site_changes_it) {
    const GodelCode code;
    const CMod mod;
    CPepRes pep;
    EXPECT_EQ(pep.GetHash(code), 0.0);
    pep.m_strSeq = "AK";
    const double bare = pep.GetHash(code);
    set_sites(pep, {{1, &mod}});
    EXPECT_NE(pep.GetHash(code), bare);
    pep.Clean();
    EXPECT_EQ(pep.GetHash(code), bare);
}

TEST(pep_res, hash_stops_at_500_bytes) {
    const GodelCode code;
    CPepRes pep;
    pep.m_strSeq = std::string(500, 'K');
    const double whole = pep.GetHash(code);
    pep.m_strSeq += std::string(1000, 'R');
    EXPECT_EQ(pep.GetHash(code), whole);
}

TEST(pep_res, equal_scores_put_targets_first_except_in_score_less) {
    const CPepRes target = scored(5, 0);
    const CPepRes decoy = scored(5, 1);
    for (const Order order :
         {CPepRes::ScoreGreater, CPepRes::FinalScoreGreater, CPepRes::ConfidentByQV}) {
        EXPECT_TRUE(order(target, decoy));
        EXPECT_FALSE(order(decoy, target));
    }
    EXPECT_TRUE(CPepRes::ScoreLess(decoy, target));
    EXPECT_FALSE(CPepRes::ScoreLess(target, decoy));
}

TEST(pep_res, prefix_goes_before_the_longer_sequence) {
    const CPepRes shorter = scored(5, 0, "PEPTIDE");
    const CPepRes longer = scored(5, 0, "PEPTIDEK");
    EXPECT_TRUE(CPepRes::ScoreGreater(shorter, longer));
    EXPECT_FALSE(CPepRes::ScoreGreater(longer, shorter));
    EXPECT_FALSE(CPepRes::ScoreGreater(shorter, shorter));
    EXPECT_TRUE(CPepRes::ScoreLess(longer, shorter));
    // By byte value: what is not ASCII goes last.
    EXPECT_TRUE(CPepRes::ScoreGreater(scored(5, 0, "z"), scored(5, 0, "\xC3")));
}

TEST(pep_res, score_orders_compare_exactly) {
    EXPECT_TRUE(CPepRes::ScoreGreater(scored(5.0000000001, 1), scored(5, 0)));
    EXPECT_TRUE(CPepRes::ScoreLess(scored(5, 0), scored(5.0000000001, 1)));
}

TEST(pep_res, smaller_final_score_goes_first_then_larger_score) {
    CPepRes a = scored(1);
    CPepRes b = scored(2);
    a.m_lfFinalScore = 0.1;
    b.m_lfFinalScore = 0.2;
    EXPECT_TRUE(CPepRes::FinalScoreGreater(a, b));
    EXPECT_FALSE(CPepRes::FinalScoreGreater(b, a));
    a.m_lfFinalScore = 0.2;
    EXPECT_TRUE(CPepRes::FinalScoreGreater(b, a));
    a.m_lfScore = 2;
    a.m_strSeq = "PEPTIDEK";
    EXPECT_TRUE(CPepRes::FinalScoreGreater(b, a));
    EXPECT_FALSE(CPepRes::FinalScoreGreater(a, b));
}

TEST(pep_res, smaller_q_value_goes_first_then_final_score_then_score) {
    CPepRes a = scored(1);
    CPepRes b = scored(2);
    a.m_lfQValue = 0.01;
    b.m_lfQValue = 0.02;
    a.m_lfFinalScore = 2;
    b.m_lfFinalScore = 1;
    EXPECT_TRUE(CPepRes::ConfidentByQV(a, b));
    a.m_lfQValue = 0.02;
    EXPECT_TRUE(CPepRes::ConfidentByQV(b, a));
    a.m_lfFinalScore = 0.5;
    EXPECT_TRUE(CPepRes::ConfidentByQV(a, b));  // although its score is smaller
    a.m_lfFinalScore = 1;
    EXPECT_TRUE(CPepRes::ConfidentByQV(b, a));
    EXPECT_FALSE(CPepRes::ConfidentByQV(a, b));
    a.m_lfScore = 2;
    EXPECT_FALSE(CPepRes::ConfidentByQV(a, b));
    EXPECT_FALSE(CPepRes::ConfidentByQV(b, a));
}

TEST(pep_res, nan_goes_last_and_first_in_score_less) {
    CPepRes number = scored(-1, 1, "Z");
    CPepRes nan = scored(kNaN, 0, "A");
    EXPECT_TRUE(CPepRes::ScoreGreater(number, nan));
    EXPECT_FALSE(CPepRes::ScoreGreater(nan, number));
    EXPECT_TRUE(CPepRes::ScoreLess(nan, number));
    EXPECT_FALSE(CPepRes::ScoreLess(number, nan));
    number.m_lfFinalScore = 1e300;
    nan.m_lfFinalScore = kNaN;
    EXPECT_TRUE(CPepRes::FinalScoreGreater(number, nan));
    EXPECT_FALSE(CPepRes::FinalScoreGreater(nan, number));
    nan.m_lfQValue = kNaN;
    EXPECT_TRUE(CPepRes::ConfidentByQV(number, nan));
    EXPECT_FALSE(CPepRes::ConfidentByQV(nan, number));
    // Two of them tie, so that the next criterion decides.
    const CPepRes decoy = scored(kNaN, 1, "A");
    const CPepRes target = scored(kNaN, 0, "B");
    EXPECT_TRUE(CPepRes::ScoreGreater(target, decoy));
}

TEST(pep_res, orders_are_strict_and_weak_even_with_nan) {
    std::mt19937 random(7);
    const double values[] = {kNaN, 0.0, -0.0, 1.0, std::numeric_limits<double>::infinity()};
    const char* sequences[] = {"", "A", "AK"};
    std::vector<CPepRes> peps;
    for (int i = 0; i < 40; ++i) {
        CPepRes pep = scored(values[random() % 5], static_cast<unsigned char>(random() % 2),
                             sequences[random() % 3]);
        pep.m_lfFinalScore = values[random() % 5];
        pep.m_lfQValue = values[random() % 5];
        peps.push_back(pep);
    }
    for (const Order less : {CPepRes::ScoreGreater, CPepRes::ScoreLess, CPepRes::FinalScoreGreater,
                             CPepRes::ConfidentByQV}) {
        const auto tied = [less](const CPepRes& a, const CPepRes& b) {
            return !less(a, b) && !less(b, a);
        };
        for (const CPepRes& a : peps) {
            ASSERT_FALSE(less(a, a));
            for (const CPepRes& b : peps) {
                ASSERT_FALSE(less(a, b) && less(b, a));
                ASSERT_EQ(CPepRes::ScoreLess(a, b), CPepRes::ScoreGreater(b, a));
                for (const CPepRes& c : peps) {
                    ASSERT_TRUE(!(less(a, b) && less(b, c)) || less(a, c));
                    ASSERT_TRUE(!(tied(a, b) && tied(b, c)) || tied(a, c));
                }
            }
        }
    }
}

TEST(pep_res, searches_by_score_look_at_modifications_of_one_side) {
    CPepRes bare = scored(5);
    CPepRes modified = scored(5);
    set_sites(modified, {{1, nullptr}});
    EXPECT_TRUE(CPepRes::Score_Less_Ext(modified, bare));
    EXPECT_TRUE(CPepRes::Score_Less_Ext(modified, modified));
    EXPECT_FALSE(CPepRes::Score_Less_Ext(bare, modified));
    EXPECT_TRUE(CPepRes::Score_Greater_Ext(bare, modified));
    EXPECT_FALSE(CPepRes::Score_Greater_Ext(modified, bare));
    bare.m_lfScore = 6;
    EXPECT_TRUE(CPepRes::Score_Less_Ext(modified, bare));
    EXPECT_FALSE(CPepRes::Score_Less_Ext(bare, modified));
    EXPECT_TRUE(CPepRes::Score_Greater_Ext(bare, modified));
    EXPECT_FALSE(CPepRes::Score_Greater_Ext(modified, bare));
}

TEST(pep_res, searches_by_score_ask_for_the_count_alone) {
    const CPepRes bare = scored(5);
    CPepRes counted = scored(5);
    counted.m_ucModNum = 1;
    CPepRes cleaned = scored(5);
    set_sites(cleaned, {{1, nullptr}});
    cleaned.Clean();
    for (const CPepRes& modified : {counted, cleaned}) {
        EXPECT_TRUE(CPepRes::Score_Less_Ext(modified, bare));
        EXPECT_FALSE(CPepRes::Score_Less_Ext(bare, modified));
        EXPECT_TRUE(CPepRes::Score_Greater_Ext(bare, modified));
        EXPECT_FALSE(CPepRes::Score_Greater_Ext(modified, bare));
    }
}

TEST(psm_res, fresh_spectrum_is_empty) {
    const CPSMRes psm;
    EXPECT_EQ(psm.m_strTitle, "");
    EXPECT_EQ(psm.m_nCharge, 0);
    EXPECT_EQ(psm.m_lfMH, 0.0);
    EXPECT_TRUE(psm.m_vPeps.empty());
}

TEST(score_to_pep, orders_look_at_the_unsigned_key_only) {
    CPepRes pep;
    const CScore2Pep low{1, &pep};
    const CScore2Pep high{0xFFFFFFFFU, nullptr};
    EXPECT_TRUE(CScore2Pep::ScoreLess(low, high));
    EXPECT_FALSE(CScore2Pep::ScoreLess(high, low));
    EXPECT_FALSE(CScore2Pep::ScoreLess(low, low));
    EXPECT_TRUE(CScore2Pep::ScoreGreater(high, low));
    EXPECT_FALSE(CScore2Pep::ScoreGreater(low, high));
    EXPECT_FALSE(CScore2Pep::ScoreGreater(low, low));
    EXPECT_EQ(CScore2Pep().m_uScore, 0U);
    EXPECT_EQ(CScore2Pep().m_pPep, nullptr);
}

}  // namespace
}  // namespace tessel
