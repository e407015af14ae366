#include "tests/param/parameter_file.h"
#include "tests/support/classic.h"

#include <sstream>

namespace tessel::test {
namespace {

template <class Value>
std::string shown(const Value& value) {
    CClassicOut text;
    text.precision(17);
    text << value;
    return text.str();
}

}  // namespace

CParameterFile::CParameterFile() {
    for (const char* section :
         {"param", "file", "datalist", "engine", "filter", "quant", "system"}) {
        m_mapLines[section];
    }
    Set("file", "fastapath=" + m_cFolder.Write("proteins.fasta", ">A\nK\n") + "\noutputpath=" +
                    m_cFolder.Path() + "\nmodpath=" + m_cFolder.Write("modification.ini", "") +
                    "\naapath=" + m_cFolder.Write("aa.ini", "") + '\n');
}

CParameterFile& CParameterFile::Set(const std::string& section, const std::string& lines) {
    std::string& all = m_mapLines.at(section);
    all = lines + all;
    return *this;
}

std::string CParameterFile::Write() const {
    std::string text;
    for (const auto& [section, lines] : m_mapLines)
        text += '[' + section + "]\n" + lines;
    return m_cFolder.Write("search.ini", text);
}

std::map<std::string, std::string> settings_of(const CCondition& condition) {
    std::string files;
    for (const std::string& file : condition.m_vMSMSFiles)
        files += '<' + file + '>';
    return {
        {"multip", shown(condition.m_nMultip)},
        {"thread", shown(condition.m_tThreadNum)},
        {"activation_type", condition.m_strActivationType},
        {"mstol", shown(condition.m_lfPrecursorTol)},
        {"msmstol", shown(condition.m_lfFragmentTol)},
        {"mstolppm", shown(condition.m_bPrecursorPPM)},
        {"msmstolppm", shown(condition.m_bFragmentPPM)},
        {"maxmod", shown(condition.m_tMaxModNum)},
        {"enzyme", condition.m_cEnzyme.InfoString()},
        {"digest", shown(int{condition.m_ucDigest})},
        {"temppepnum", shown(condition.m_tTempPepNum)},
        {"pepnum", shown(condition.m_tPepNum)},
        {"selectpeak", shown(condition.m_tSelectPeak)},
        {"noproc", shown(condition.m_bNoProc)},
        {"maxprolen", shown(condition.m_tMaxProLen)},
        {"maxspec", shown(condition.m_nMaxSpec)},
        {"max_clv_sites", shown(condition.m_tMaxClvSites)},
        {"selectmod", condition.m_strSelectMod},
        {"fixmod", condition.m_strFixMod},
        {"IeqL", shown(condition.m_bIeqL)},
        {"npep", shown(condition.m_bNPep) + '/' + shown(condition.m_nSignalPepLen)},
        {"maxdelta", shown(condition.m_lfMaxDelta)},
        {"center", shown(condition.m_lfCenter)},
        {"fastapath", condition.m_strFastaPath + '/' + condition.m_strInputFastaPath},
        {"auto_rev", shown(condition.m_bAutoRev)},
        {"msmspath", condition.m_strMSMSPath},
        {"outputpath", condition.m_strOutputPath},
        {"outputname", condition.m_strOutputName},
        {"modpath", condition.m_strModPath},
        {"aapath", condition.m_strAAPath},
        {"msmsfolder", shown(condition.m_bMSMSFolder)},
        {"msmspath1", files},
        {"msmstype", condition.m_strMSMSType},
        {"open", shown(condition.m_nOpen)},
        {"rest_tag_iteration", shown(condition.m_bRestTagIteration)},
        {"salvo_iteration", shown(condition.m_bSalvoIteration)},
        {"open_tag_len", shown(condition.m_nOpenTagLen)},
        {"rest_tag_len", shown(condition.m_nRestTagLen)},
        {"rest_mod_num", shown(condition.m_nRestModNum)},
        {"salvo_mod_num", shown(condition.m_nSalvoModNum)},
        {"max_tag", shown(condition.m_uMaxTag)},
        {"max_res_tag", shown(condition.m_uMaxResTag)},
        {"digest_in_open", shown(condition.m_bDigestInOpen)},
        {"max_edge", shown(int{condition.m_ucMaxEdge})},
        {"max_gen_mod_pep", shown(condition.m_nMaxGenModPep)},
        {"max_round", shown(condition.m_nMaxRound)},
        {"psm_fdr", shown(condition.m_lfPsmFdr)},
        {"psm_fdr_type", shown(condition.m_nPsmFdrType)},
        {"pro_fdr", shown(condition.m_lfProFdr)},
        {"mass_lower", shown(condition.m_lfMassLower)},
        {"mass_upper", shown(condition.m_lfMassUpper)},
        {"len_lower", shown(condition.m_nLenLower)},
        {"len_upper", shown(condition.m_nLenUpper)},
        {"pep_per_pro", shown(condition.m_nPepPerPro)},
        {"quant", condition.m_strQuant},
        {"label_name", condition.m_strLabelName},
        {"label_id", shown(condition.m_sLabelID)},
        {"lumen_path", condition.m_strLumenPath},
        {"lumen_cfg_path", condition.m_strLumenCfgPath},
        {"log", shown(static_cast<int>(condition.m_eLogType))},
        {"del_tmp_files", shown(condition.m_bDelTmp)},
    };
}

}  // namespace tessel::test
