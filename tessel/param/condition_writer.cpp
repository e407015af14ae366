// The settings of a condition come in; a parameter file goes out, with a comment before most keys
// and the version of the search program at its end.

#include "tessel/param/condition_writer.h"

#include <cstdio>
#include <string_view>
#include <type_traits>
#include <utility>

#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tessel/param/settings.h"
#include "tessel/platform/calendar.h"
#include "tessel/platform/file.h"

namespace tessel {
namespace {

// The lines of one section, which begin with its header.
class CSectionText {
public:
    CSectionText(std::string& text, std::string_view name) : m_strText(text) {
        m_strText += '[';
        m_strText += name;
        m_strText += "]\n";
    }

    void Comment(std::string_view comment) {
        m_strText += "\n##";
        m_strText += comment;
        m_strText += '\n';
    }

    template <class Value>
    void Line(CKnownKey key, const Value& value) {
        Assignment(key->m_szKey, value);
    }

    void Entry(std::size_t number, const std::string& path) {
        std::string key(kEntryStem);
        append_integer(key, number);
        Assignment(key, path);
    }

private:
    template <class Value>
    void Assignment(std::string_view key, const Value& value) {
        m_strText += key;
        m_strText += '=';
        if constexpr (std::is_same_v<Value, double>) {
            append_general(m_strText, value);
        } else if constexpr (std::is_same_v<Value, bool>) {
            m_strText += value ? '1' : '0';
        } else if constexpr (std::is_integral_v<Value>) {
            append_integer(m_strText, value);
        } else {
            m_strText += value;
        }
        m_strText += '\n';
    }

    std::string& m_strText;
};

void write_file_section(const CCondition& condition, std::string& text) {
    CSectionText file(text, "file");
    file.Comment("Fasta File Path[IMPORTANT!]");
    file.Line("fastapath", condition.m_strFastaPath);
    file.Comment("If 1 Then the Program will Generate a Decoy Database Automatically");
    file.Line("auto_rev", condition.m_bAutoRev);
    file.Comment("MSMSPath, Set as a null String");
    file.Line("msmspath", condition.m_strMSMSPath);
    file.Comment("Output Path[IMPORTANT!]");
    file.Line("outputpath", condition.m_strOutputPath);
    file.Comment("Output ID");
    file.Line("outputname", condition.m_strOutputName);
    file.Comment("The Path of modification.ini and aa.ini");
    file.Line("modpath", condition.m_strModPath);
    file.Line("aapath", condition.m_strAAPath);
}

void write_data_list(const CCondition& condition, std::string& text) {
    CSectionText list(text, "datalist");
    list.Comment("Number of MSMS Files[IMPORTANT!]");
    list.Line("msmsfolder", condition.m_bMSMSFolder);
    list.Line("msmsnum", condition.m_vMSMSFiles.size());
    list.Comment("MSMS Files");
    std::size_t number = 0;
    for (const std::string& file : condition.m_vMSMSFiles)
        list.Entry(++number, file);
    if (condition.m_vMSMSFiles.empty()) {
        // Lines for the user to fill in.
        list.Entry(1, "");
        list.Entry(2, "");
    }
    list.Comment("MGF or MS2 or ZB2");
    list.Line("msmstype", condition.m_strMSMSType);
}

void write_version(std::string& text) {
    const auto program = file_status(working_folder() + "\\Corvid.exe");
    const CALENDAR_TIME time = local_time(program ? program->m_nTime : 0);
    text += "\n[Version Info]\n";
    append_integer(text, time.m_nYear);
    for (const int part :
         {time.m_nMonth, time.m_nDay, time.m_nHour, time.m_nMinute, time.m_nSecond}) {
        text += '.';
        append_integer(text, part);
    }
    text += '\n';
}

}  // namespace

CConditionWriter::CConditionWriter(const std::string& path, const CCondition* condition)
    : m_strPath(path), m_pCondition(condition) {
}

void CConditionWriter::Write() const {
    FilePtr file = open_file(m_strPath, "wb");
    if (!file) return;
    std::string text;
    _WriteParam(text);
    _WriteEngine(text);
    _WriteFilter(text);
    _WriteData(text);
    _WriteQuant(text);
    _WriteSystem(text);
    write_version(text);
    std::fwrite(text.data(), 1, text.size(), file.get());
    if (!close_file(std::move(file))) {
        remove_incomplete(m_strPath);
        m_pCondition->Message("Write_Failed: [" + m_strPath + "]", LOG_ALERT);
    }
}

void CConditionWriter::_WriteParam(std::string& text) const {
    const CCondition& condition = *m_pCondition;
    CSectionText param(text, "param");
    param.Comment("Number of Processor");
    param.Line("multip", condition.m_nMultip);
    param.Comment("Number of Threads");
    param.Line("thread", condition.m_tThreadNum);
    param.Line("activation_type", condition.m_strActivationType);
    param.Comment("Tolerance");
    param.Line("mstol", condition.m_lfPrecursorTol);
    param.Line("msmstol", condition.m_lfFragmentTol);
    param.Comment("Tolerance Types");
    param.Line("mstolppm", condition.m_bPrecursorPPM);
    param.Line("msmstolppm", condition.m_bFragmentPPM);
    param.Comment("Maximum Modifications Per Peptide");
    param.Line("maxmod", condition.m_tMaxModNum);
    param.Comment("Enzyme");
    param.Line("enzyme", condition.m_cEnzyme.InfoString());
    param.Comment("Specificity, 0:Non-Specific;1:Semi-Specific;3:Fully-Specific");
    param.Line("digest", condition.m_ucDigest);
    param.Comment("Number of Peptide Candidates");
    param.Line("temppepnum", condition.m_tTempPepNum);
    param.Comment("Number of Final Peptides");
    param.Line("pepnum", condition.m_tPepNum);
    param.Comment("Number of Selected Peaks");
    param.Line("selectpeak", condition.m_tSelectPeak);
    param.Line("noproc", condition.m_bNoProc);
    param.Comment("Maximum Protein Length");
    param.Line("maxprolen", condition.m_tMaxProLen);
    param.Comment("Maximum Number of Spectra");
    param.Line("maxspec", condition.m_nMaxSpec);
    param.Comment("Maximum Cleavage Sites");
    param.Line("max_clv_sites", condition.m_tMaxClvSites);
    param.Comment("Var Modifications (Separated by ';')");
    param.Line("selectmod", condition.m_strSelectMod);
    param.Comment("Fix Modifications (Separated by ';')");
    param.Line("fixmod", condition.m_strFixMod);
    param.Comment("Consider I and L as the same AA");
    param.Line("IeqL", condition.m_bIeqL);
    param.Comment("The Length of the Possible Signal Peptides");
    param.Line("npep", condition.m_bNPep);
    param.Line("maxdelta", condition.m_lfMaxDelta);
    param.Line("center", condition.m_lfCenter);
}

void CConditionWriter::_WriteEngine(std::string& text) const {
    const CCondition& condition = *m_pCondition;
    CSectionText engine(text, "engine");
    engine.Comment("Open Search or Not");
    engine.Line("open", condition.m_nOpen);
    engine.Comment("Iterative Tag Search or Not");
    engine.Line("rest_tag_iteration", condition.m_bRestTagIteration);
    engine.Comment("Iterative Salvo Search or Not");
    engine.Line("salvo_iteration", condition.m_bSalvoIteration);
    engine.Comment("Tag Length in Open Search");
    engine.Line("open_tag_len", condition.m_nOpenTagLen);
    engine.Line("rest_tag_len", condition.m_nRestTagLen);
    engine.Line("rest_mod_num", condition.m_nRestModNum);
    engine.Line("salvo_mod_num", condition.m_nSalvoModNum);
    engine.Line("max_tag", condition.m_uMaxTag);
    engine.Line("max_res_tag", condition.m_uMaxResTag);
    engine.Line("digest_in_open", condition.m_bDigestInOpen);
    engine.Line("max_edge", condition.m_ucMaxEdge);
    engine.Line("max_gen_mod_pep", condition.m_nMaxGenModPep);
    engine.Line("max_round", condition.m_nMaxRound);
}

void CConditionWriter::_WriteFilter(std::string& text) const {
    const CCondition& condition = *m_pCondition;
    CSectionText filter(text, "filter");
    filter.Comment("The FDR Threshold, Usually 0.01");
    filter.Line("psm_fdr", condition.m_lfPsmFdr);
    filter.Comment("0: PSM Level;1: Peptide Level");
    filter.Line("psm_fdr_type", condition.m_nPsmFdrType);
    filter.Line("mass_lower", condition.m_lfMassLower);
    filter.Line("mass_upper", condition.m_lfMassUpper);
    filter.Line("len_lower", condition.m_nLenLower);
    filter.Line("len_upper", condition.m_nLenUpper);
    filter.Comment("Minimum Peptides per Protein");
    filter.Line("pep_per_pro", condition.m_nPepPerPro);
    filter.Comment("The FDR Threshold of Protein, Usually 0.01");
    filter.Line("pro_fdr", condition.m_lfProFdr);
}

void CConditionWriter::_WriteData(std::string& text) const {
    write_file_section(*m_pCondition, text);
    write_data_list(*m_pCondition, text);
}

void CConditionWriter::_WriteQuant(std::string& text) const {
    CSectionText quant(text, "quant");
    quant.Comment("Quantification Method");
    quant.Line("quant", m_pCondition->m_strQuant);
    quant.Line("label_name", m_pCondition->m_strLabelName);
    quant.Line("label_id", m_pCondition->m_sLabelID);
    quant.Line("lumen_path", m_pCondition->m_strLumenPath);
    quant.Line("lumen_cfg_path", m_pCondition->m_strLumenCfgPath);
}

void CConditionWriter::_WriteSystem(std::string& text) const {
    CSectionText system(text, "system");
    system.Line("log", m_pCondition->LogType2String(m_pCondition->m_eLogType));
    system.Comment("Delete Temporary Files or Not");
    system.Line("del_tmp_files", m_pCondition->m_bDelTmp);
}

}  // namespace tessel
