#include "tessel/condition/condition.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "tessel/condition/constants.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

TEST(condition, fresh_object_has_the_numeric_defaults) {
    const CCondition fresh;
    EXPECT_EQ(fresh.m_lfPrecursorTol, 20.0);
    EXPECT_EQ(fresh.m_lfFragmentTol, 20.0);
    EXPECT_EQ(fresh.m_tMaxModNum, 3u);
    EXPECT_EQ(fresh.m_nAux, 0);
    EXPECT_EQ(fresh.m_tTempPepNum, 100u);
    EXPECT_EQ(fresh.m_tPepNum, 10u);
    EXPECT_EQ(fresh.m_tSelectPeak, 200u);
    EXPECT_EQ(fresh.m_tMaxProLen, 60000000u);
    EXPECT_EQ(fresh.m_tThreadNum, 2u);
    EXPECT_EQ(fresh.m_tMaxClvSites, 3u);
    EXPECT_EQ(fresh.m_nMaxSpec, 10000u);
    EXPECT_EQ(fresh.m_tTotalSpec, 0u);
    EXPECT_EQ(fresh.m_tLoadedSpec, 0u);
    EXPECT_EQ(fresh.m_tBatchNo, 0u);
    EXPECT_EQ(fresh.m_tAux, 5u);
    for (const double probability : fresh.m_lfCleaveProb)
        EXPECT_EQ(probability, 1.0);
    EXPECT_EQ(fresh.m_ucDigest, 3);
    EXPECT_EQ(fresh.m_eLogType, LOG_INFO);
    EXPECT_EQ(fresh.m_nOpenTagLen, 5);
    EXPECT_EQ(fresh.m_nRestTagLen, 5);
    EXPECT_EQ(fresh.m_nRestModNum, -1);
    EXPECT_EQ(fresh.m_nSalvoModNum, 5);
    EXPECT_EQ(fresh.m_sLabelID, 0);
    EXPECT_EQ(fresh.m_lfMassUpper, 100000.0);
    EXPECT_EQ(fresh.m_lfMassLower, 600.0);
    EXPECT_EQ(fresh.m_nLenUpper, 100);
    EXPECT_EQ(fresh.m_nLenLower, 6);
    EXPECT_EQ(fresh.m_lfPsmFdr, 0.01);
    EXPECT_EQ(fresh.m_lfProFdr, 0.01);
    EXPECT_EQ(fresh.m_nPsmFdrType, 1);
    EXPECT_EQ(fresh.m_nPepPerPro, 1);
    EXPECT_EQ(fresh.m_lfBatchMassLower, 600.0);
    EXPECT_EQ(fresh.m_lfBatchMassUpper, 10000.0);
    EXPECT_EQ(fresh.m_lfMaxDelta, 500.0);
    EXPECT_EQ(fresh.m_lfCenter, 0.0);
    EXPECT_EQ(fresh.m_nOpen, 1);
    EXPECT_EQ(fresh.m_nSignalPepLen, 60);
    EXPECT_EQ(fresh.m_nMultip, 1);
    EXPECT_EQ(fresh.m_uMaxTag, 100u);
    EXPECT_EQ(fresh.m_uMaxResTag, 100u);
    EXPECT_EQ(fresh.m_ucMaxEdge, 2);
    EXPECT_EQ(fresh.m_nMaxGenModPep, 5000);
    EXPECT_EQ(fresh.m_nMaxRound, 10);
}

TEST(condition, fresh_object_has_the_default_flags) {
    const CCondition fresh;
    EXPECT_TRUE(fresh.m_bPrecursorPPM);
    EXPECT_TRUE(fresh.m_bFragmentPPM);
    EXPECT_TRUE(fresh.m_bSalvoIteration);
    EXPECT_TRUE(fresh.m_bIeqL);
    EXPECT_TRUE(fresh.m_bAutoRev);
    EXPECT_TRUE(fresh.m_bNPep);
    EXPECT_TRUE(fresh.m_bDelTmp);
    EXPECT_FALSE(fresh.m_bMSMSFolder);
    EXPECT_FALSE(fresh.m_bUseSubFasta);
    EXPECT_FALSE(fresh.m_bRestTagIteration);
    EXPECT_FALSE(fresh.m_bETD);
    EXPECT_FALSE(fresh.m_bDigestInOpen);
    EXPECT_FALSE(fresh.m_bNoProc);
}

TEST(condition, fresh_object_has_the_default_texts_and_empty_tables) {
    const CCondition fresh;
    EXPECT_EQ(fresh.m_strOutputName, "Test");
    EXPECT_EQ(fresh.m_strMSMSType, "ZB2");
    EXPECT_EQ(fresh.m_strQuant, "1|None|");
    EXPECT_EQ(fresh.m_strActivationType, "HCD-FTMS");
    for (const std::string* text :
         {&fresh.m_strFastaPath, &fresh.m_strInputFastaPath, &fresh.m_strMSMSPath,
          &fresh.m_strOutputPath, &fresh.m_strModPath, &fresh.m_strAAPath, &fresh.m_strAux,
          &fresh.m_strSelectMod, &fresh.m_strFixMod, &fresh.m_strLabelName, &fresh.m_strLumenPath,
          &fresh.m_strLumenCfgPath}) {
        EXPECT_EQ(*text, "");
    }
    EXPECT_TRUE(fresh.m_vMSMSFiles.empty() && fresh.m_vSpectra.empty() && fresh.m_vMods.empty());
    EXPECT_TRUE(fresh.m_vSelMods.empty() && fresh.m_setFixMods.empty());
    EXPECT_EQ(fresh.m_vSelModMap.size(), 92u);
    for (const auto& slot : fresh.m_vSelModMap)
        EXPECT_TRUE(slot.empty());
    EXPECT_TRUE(fresh.m_vModComb.empty() && fresh.m_vModCombHash.empty());
    EXPECT_TRUE(fresh.m_vModMassIndex.empty() && fresh.m_vIonTypes.empty());
    EXPECT_TRUE(fresh.m_mapMods.empty() && fresh.m_vDeltaMods.empty());
    EXPECT_TRUE(fresh.m_mapPSMRes.empty() && fresh.m_vLabels.empty());
    EXPECT_TRUE(fresh.m_mapElementMass.empty() && fresh.m_mapAALabel.empty());
    EXPECT_TRUE(fresh.m_mapModLabel.empty() && fresh.m_vExtendedAA.empty());
    EXPECT_TRUE(fresh.m_vEAAMassIndex.empty());
    EXPECT_EQ(fresh.m_pSpecReader, nullptr);
    const CAlphaBet& residues = fresh.m_cAlphaBet;
    for (const double mass : residues.m_lfMass)
        EXPECT_EQ(mass, 0.0);
    for (const std::string& composition : residues.m_strComposition)
        EXPECT_EQ(composition, "");
}

TEST(condition, fresh_object_cuts_by_trypsin_and_owns_its_loader) {
    const CCondition fresh;
    EXPECT_EQ(fresh.m_cEnzyme.InfoString(), "Trypsin KR _ C");
    EXPECT_EQ(fresh.m_cEnzyme.m_strCSites, "KR");
    EXPECT_EQ(fresh.m_cFastaLoader.m_pCondition, &fresh);
}

TEST(condition, is_neither_copied_nor_moved) {
    EXPECT_FALSE(std::is_copy_constructible_v<CCondition>);
    EXPECT_FALSE(std::is_move_constructible_v<CCondition>);
    EXPECT_FALSE(std::is_copy_assignable_v<CCondition>);
}

TEST(constants, have_their_texts) {
    EXPECT_EQ(_STR_SUBFASTA, "_tessel_open_");
    EXPECT_EQ(_TD_FASTA, "_td.fasta");
    EXPECT_EQ(_REV_TAG, "REV_");
    EXPECT_EQ(_BLIND_PREFIX, "TESSEL_DELTA_");
    EXPECT_EQ(strEVCoeffSign, "[EVCoeff]");
}

std::string shown(LOG_TYPE level, LOG_TYPE type) {
    CCondition condition;
    condition.m_eLogType = level;
    return test::captured_output([&] { condition.Message("text", type); });
}

TEST(message, every_level_has_its_mark) {
    EXPECT_EQ(shown(LOG_DEBUG, LOG_INFO), "[Tessel] text\n");
    EXPECT_EQ(shown(LOG_DEBUG, LOG_DEBUG), "[Tessel] DEBUG: text\n");
    EXPECT_EQ(shown(LOG_DEBUG, LOG_WARNING), "[Tessel] WARNING: text\n");
    EXPECT_EQ(shown(LOG_DEBUG, LOG_ALERT), "[Tessel] ALERT: text\n");
}

TEST(message, of_the_silent_level_prints_nothing) {
    EXPECT_EQ(shown(LOG_DEBUG, LOG_SILENT), "");
}

TEST(message, above_the_configured_level_prints_nothing) {
    EXPECT_EQ(shown(LOG_WARNING, LOG_INFO), "");
    EXPECT_EQ(shown(LOG_WARNING, LOG_DEBUG), "");
    EXPECT_EQ(shown(LOG_WARNING, LOG_WARNING), "[Tessel] WARNING: text\n");
    EXPECT_EQ(shown(LOG_INFO, LOG_DEBUG), "");
}

TEST(message, silent_shows_only_alerts) {
    EXPECT_EQ(shown(LOG_SILENT, LOG_WARNING), "");
    EXPECT_EQ(shown(LOG_SILENT, LOG_INFO), "");
    EXPECT_EQ(shown(LOG_SILENT, LOG_ALERT), "[Tessel] ALERT: text\n");
    EXPECT_EQ(shown(LOG_ALERT, LOG_ALERT), "[Tessel] ALERT: text\n");
}

TEST(message, text_is_written_as_given) {
    const CCondition condition;
    const std::string text = "50 %s\n\x01" + std::string(1000, 'x');
    EXPECT_EQ(test::captured_output([&] { condition.Message(text, LOG_INFO); }),
              "[Tessel] " + text + "\n");
}

TEST(message, level_names) {
    const CCondition condition;
    EXPECT_EQ(condition.LogType2String(LOG_ALERT), "LOG_ALERT");
    EXPECT_EQ(condition.LogType2String(LOG_SILENT), "LOG_SILENT");
    EXPECT_EQ(condition.LogType2String(LOG_WARNING), "LOG_WARNING");
    EXPECT_EQ(condition.LogType2String(LOG_INFO), "LOG_INFO");
    EXPECT_EQ(condition.LogType2String(LOG_DEBUG), "LOG_DEBUG");
    for (const int other : {-1, 5, 9})
        EXPECT_EQ(condition.LogType2String(static_cast<LOG_TYPE>(other)), "") << other;
}

TEST(deviation, of_1000_at_20_ppm_is_0_02) {
    CCondition condition;
    EXPECT_DOUBLE_EQ(condition._CalcMaxDeviation(1000.0, true), 0.02);
    EXPECT_DOUBLE_EQ(condition._CalcMaxDeviation(1000.0, false), 0.02);
    EXPECT_EQ(condition._CalcMaxDeviation(1234.5, true), 1234.5 * 20.0 * 1e-6);
}

TEST(deviation, in_dalton_is_the_same_at_every_mass) {
    CCondition condition;
    condition.m_bPrecursorPPM = false;
    condition.m_lfPrecursorTol = 0.5;
    EXPECT_EQ(condition._CalcMaxDeviation(1000.0, true), 0.5);
    EXPECT_EQ(condition._CalcMaxDeviation(5.0, true), 0.5);
    EXPECT_DOUBLE_EQ(condition._CalcMaxDeviation(1000.0, false), 0.02);
    condition.m_bFragmentPPM = false;
    condition.m_lfFragmentTol = 0.25;
    EXPECT_EQ(condition._CalcMaxDeviation(1000.0, false), 0.25);
}

TEST(bits, are_counted) {
    const CCondition condition;
    EXPECT_EQ(condition._GetBitsNum(0xFFFFFFFFu), 32u);
    EXPECT_EQ(condition._GetBitsNum(0), 0u);
    EXPECT_EQ(condition._GetBitsNum(0x80000001u), 2u);
    for (unsigned bit = 0; bit < 32; ++bit)
        EXPECT_EQ(condition._GetBitsNum(1u << bit), 1u);
}

}  // namespace
}  // namespace tessel
