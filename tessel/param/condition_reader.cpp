// A parameter file comes in; the settings of the reader's condition are filled, section by section
// and key by key in the order in which users see the messages.

#include "tessel/param/condition_reader.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "tessel/base/end_process.h"
#include "tessel/base/line_reader.h"
#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"
#include "tessel/condition/utilities.h"
#include "tessel/param/option_tool.h"
#include "tessel/param/settings.h"
#include "tessel/platform/file.h"

namespace tessel {
namespace {

constexpr int kMaxTagLength = 6;

// The keys of one section as the kinds of value that the condition holds.
class CSection {
public:
    CSection(const std::string& path, const char* name) : m_cTool(path, name) {}

    std::string Text(CKnownKey key) const {
        return m_cTool.GetString(key->m_szKey, key->m_szMissing);
    }
    bool IsNotZeroText(CKnownKey key) const { return Text(key) != "0"; }
    // Through the text, so that an empty value is 0 and not the value of a missing key.
    double Real(CKnownKey key) const { return to_double(Text(key)); }
    int TextInteger(CKnownKey key) const { return to_int(Text(key)); }

    int Integer(CKnownKey key) const {
        return m_cTool._GetPrivateProfileInt(m_cTool.m_strSection, key->m_szKey,
                                             to_int(key->m_szMissing), m_cTool.m_strPath);
    }
    bool IsNotZero(CKnownKey key) const { return Integer(key) != 0; }
    // Narrower fields keep the low bits, wider ones extend the sign: -1 is the largest count.
    template <class Field>
    Field As(CKnownKey key) const {
        return static_cast<Field>(Integer(key));
    }

    // By one scan: one for each would take minutes for the files of a large study.
    std::vector<std::string> Entries(std::size_t count) const {
        return m_cTool.GetStrings(kEntryStem, count, kMissingEntry);
    }

private:
    COptionTool m_cTool;
};

// A lookup gives a missing value where it cannot read, or the empty text, without a word: this is
// told once, before all of them.
void report_unreadable(const CCondition& condition, const std::string& path) {
    CLineReader lines(path, kLinePiece);
    std::string_view line;
    while (lines.ReadLine(line)) {
    }
    if ((lines.IsOpen() && !lines.Failed()) || !path_exists(path)) return;
    condition.Message("Cannot read the parameter file: " + path, LOG_ALERT);
}

// The value, or with an alert what stands for one out of range.
int in_range(const CCondition& condition, const VALUE_RANGE& range, int value) {
    if (value >= 0 && value <= range.m_nHighest) return value;
    const int replacement = value < 0 ? range.m_nIfBelow : range.m_nIfAbove;
    condition.Message(
        message_text("Invalid_", range.m_szName, ": ", value, ", change it to ", replacement),
        LOG_ALERT);
    return replacement;
}

std::size_t read_count(const CSection& section, CRangedKey key, const CCondition& condition) {
    return static_cast<std::size_t>(in_range(condition, key->m_cRange, section.Integer(key)));
}

void read_thread_number(const CSection& param, CCondition& condition) {
    condition.m_tThreadNum = read_count(param, "thread", condition);
    if (condition.m_tThreadNum > kManyThreads) {
        condition.Message("The number of threads is too large.", LOG_WARNING);
    }
}

// The field has one byte; its range is asked of what that keeps of the number.
unsigned char read_digest(const CSection& param, const CCondition& condition) {
    const CRangedKey key("digest");
    return static_cast<unsigned char>(
        in_range(condition, key->m_cRange, param.As<unsigned char>(key)));
}

bool is_strange(double tolerance) {
    return tolerance < 1e-5 || tolerance > 10000.0;
}

void read_tolerances(const CSection& param, CCondition& condition) {
    condition.m_lfPrecursorTol = param.Real("mstol");
    condition.m_lfFragmentTol = param.Real("msmstol");
    condition.m_bPrecursorPPM = param.IsNotZero("mstolppm");
    condition.m_bFragmentPPM = param.IsNotZero("msmstolppm");
    const auto warn = [&condition](const char* text, double tolerance) {
        condition.Message(message_text(text, fixed_text(tolerance, 6)), LOG_WARNING);
    };
    if (CConditionReader::_strange_precursor_tolerance(condition)) {
        warn("Abnormal Precursor: ", condition.m_lfPrecursorTol);
    }
    if (CConditionReader::_strange_fragment_tolerance(condition)) {
        warn("Abnormal Fragment: ", condition.m_lfFragmentTol);
    }
}

std::string existing_path(const CCondition& condition, const std::string& path, const char* key) {
    CConditionReader::Validation_Path(condition, path, key);
    return path;
}

std::string text_or(const std::string& text, const std::string& otherwise) {
    return text.empty() ? otherwise : text;
}

void load_file(const CSection& file, CCondition& condition) {
    const std::string folder = working_folder() + '\\';
    condition.m_strFastaPath = existing_path(condition, file.Text("fastapath"), "fastapath");
    condition.m_strInputFastaPath = condition.m_strFastaPath;
    condition.m_bAutoRev = file.IsNotZero("auto_rev");
    condition.m_strMSMSPath = file.Text("msmspath");
    condition.m_strOutputPath = existing_path(condition, file.Text("outputpath"), "outputpath");
    AddSlash(condition.m_strOutputPath);
    condition.m_strOutputName = file.Text("outputname");
    condition.m_strModPath = existing_path(
        condition, text_or(file.Text("modpath"), folder + "modification.ini"), "modpath");
    condition.m_strAAPath =
        existing_path(condition, text_or(file.Text("aapath"), folder + "aa.ini"), "aapath");
}

int line_count(const std::string& path) {
    CLineReader lines(path, kLinePiece);
    std::string_view line;
    int count = 0;
    while (count < kNoLimit && lines.ReadLine(line))
        ++count;
    return count;
}

// No file holds more entries than lines; a larger number is not worth a place for each.
std::size_t entry_count(const CSection& list, const std::string& path,
                        const CCondition& condition) {
    const int stated = list.Integer("msmsnum");
    if (stated <= 0) return 0;
    const int lines = line_count(path);
    return static_cast<std::size_t>(in_range(condition, {"MSMS_Num", lines, lines, lines}, stated));
}

std::string entry_key(std::size_t number) {
    return message_text(kEntryStem, number);
}

// The spectrum files of the given type in each folder, named as the engine expects them: folder,
// always one more backslash, file name.
std::vector<std::string> files_in_folders(const CCondition& condition,
                                          const std::vector<std::string>& folders) {
    std::string extension = "." + condition.m_strMSMSType;
    for (char& c : extension)
        c = lower(c);
    const std::string lastKey = entry_key(folders.size());

    std::vector<std::string> files;
    for (const std::string& folder : folders) {
        const auto names = folder_entries(folder);
        if (!names) {
            condition.Message("Unreadable_Folder: [" + folder + "]", LOG_ALERT);
            continue;
        }
        for (const std::string& name : *names) {
            // Letter case counts: "a.MGF" is left to other programs.
            if (!name.ends_with(extension)) continue;
            files.push_back(existing_path(condition, folder + '\\' + name, lastKey.c_str()));
        }
    }
    return files;
}

void load_data_list(const CSection& list, const std::string& path, CCondition& condition) {
    condition.m_bMSMSFolder = list.IsNotZero("msmsfolder");
    const std::size_t count = entry_count(list, path, condition);
    std::vector<std::string> entries = list.Entries(count);
    for (std::size_t i = 0; !condition.m_bMSMSFolder && i < count; ++i)
        CConditionReader::Validation_Path(condition, entries[i], entry_key(i + 1));
    condition.m_strMSMSType = list.Text("msmstype");
    condition.m_vMSMSFiles =
        condition.m_bMSMSFolder ? files_in_folders(condition, entries) : std::move(entries);
}

LOG_TYPE log_type(const CCondition& condition, const std::string& name) {
    for (const LOG_TYPE type : {LOG_ALERT, LOG_SILENT, LOG_WARNING, LOG_DEBUG}) {
        if (name == condition.LogType2String(type)) return type;
    }
    return LOG_INFO;
}

}  // namespace

CConditionReader::CConditionReader(const std::string& path) : m_strPath(path) {
    if (path_exists(path)) return;
    m_cCondition.Message("Invalid_Path: [" + path + "]", LOG_ALERT);
    end_process(1);
}

void CConditionReader::Read() {
    report_unreadable(m_cCondition, m_strPath);
    _LoadParam();
    _LoadData();
    _LoadEngine();
    _LoadFilter();
    _LoadQuant();
    _LoadSystem();
}

void CConditionReader::_LoadParam() {
    const CSection param(m_strPath, "param");
    CCondition& condition = m_cCondition;
    condition.m_nMultip = param.Integer("multip");
    read_thread_number(param, condition);
    condition.m_strActivationType = param.Text("activation_type");
    read_tolerances(param, condition);
    condition.m_tMaxModNum = read_count(param, "maxmod", condition);
    condition.m_cEnzyme.Init(param.Text("enzyme"));
    condition.m_ucDigest = read_digest(param, condition);
    condition.m_tTempPepNum = read_count(param, "temppepnum", condition);
    condition.m_tPepNum = read_count(param, "pepnum", condition);
    condition.m_tSelectPeak = read_count(param, "selectpeak", condition);
    condition.m_bNoProc = param.Integer("noproc") == 1;
    condition.m_tMaxProLen = param.As<std::size_t>("maxprolen");
    condition.m_nMaxSpec = param.As<std::size_t>("maxspec");
    condition.m_tMaxClvSites = param.As<std::size_t>("max_clv_sites");
    condition.m_strSelectMod = param.Text("selectmod");
    condition.m_strFixMod = param.Text("fixmod");
    condition.m_bIeqL = param.IsNotZeroText("IeqL");
    condition.m_bNPep = param.IsNotZeroText("npep");
    condition.m_nSignalPepLen = condition.m_bNPep ? 60 : 1;
    condition.m_lfMaxDelta = param.Real("maxdelta");
    condition.m_lfCenter = param.Real("center");
}

void CConditionReader::_LoadData() {
    load_file(CSection(m_strPath, "file"), m_cCondition);
    load_data_list(CSection(m_strPath, "datalist"), m_strPath, m_cCondition);
}

void CConditionReader::_LoadEngine() {
    const CSection engine(m_strPath, "engine");
    CCondition& condition = m_cCondition;
    condition.m_nOpen = engine.Integer("open");
    condition.m_bRestTagIteration = engine.IsNotZeroText("rest_tag_iteration");
    condition.m_bSalvoIteration = engine.IsNotZeroText("salvo_iteration");
    condition.m_nOpenTagLen = std::min(engine.Integer("open_tag_len"), kMaxTagLength);
    condition.m_nRestTagLen = std::min(engine.Integer("rest_tag_len"), kMaxTagLength);
    condition.m_uMaxTag = engine.As<std::uint32_t>("max_tag");
    condition.m_uMaxResTag = engine.As<std::uint32_t>("max_res_tag");
    condition.m_bDigestInOpen = engine.As<unsigned char>("digest_in_open") != 0;
    condition.m_ucMaxEdge = engine.As<unsigned char>("max_edge");
    condition.m_nMaxGenModPep = engine.Integer("max_gen_mod_pep");
    condition.m_nMaxRound = engine.Integer("max_round");
    condition.m_nRestModNum = engine.Integer("rest_mod_num");
    condition.m_nSalvoModNum = engine.Integer("salvo_mod_num");
}

void CConditionReader::_LoadFilter() {
    const CSection filter(m_strPath, "filter");
    CCondition& condition = m_cCondition;
    condition.m_lfPsmFdr = filter.Real("psm_fdr");
    condition.m_nPsmFdrType = filter.TextInteger("psm_fdr_type");
    condition.m_lfProFdr = filter.Real("pro_fdr");
    condition.m_lfMassLower = filter.Real("mass_lower");
    condition.m_lfMassUpper = filter.Real("mass_upper");
    condition.m_nLenLower = filter.TextInteger("len_lower");
    condition.m_nLenUpper = filter.TextInteger("len_upper");
    condition.m_nPepPerPro = filter.TextInteger("pep_per_pro");
}

void CConditionReader::_LoadQuant() {
    const CSection quant(m_strPath, "quant");
    CCondition& condition = m_cCondition;
    condition.m_strQuant = quant.Text("quant");
    condition.m_strLabelName = quant.Text("label_name");
    condition.m_sLabelID = quant.As<std::int16_t>("label_id");
    condition.m_strLumenPath = quant.Text("lumen_path");
    condition.m_strLumenCfgPath = quant.Text("lumen_cfg_path");
}

void CConditionReader::_LoadSystem() {
    const CSection system(m_strPath, "system");
    m_cCondition.m_eLogType = log_type(m_cCondition, system.Text("log"));
    m_cCondition.m_bDelTmp = system.Text("del_tmp_files") == "1";
}

void CConditionReader::Validation_Path(const CCondition& condition, const std::string& path,
                                       const std::string& key) {
    if (path_exists(path)) return;
    condition.Message("Invalid_" + key + "_Path: [" + path + "]", LOG_ALERT);
    end_process(1);
}

bool CConditionReader::_strange_precursor_tolerance(const CCondition& condition) {
    return is_strange(condition.m_lfPrecursorTol);
}

bool CConditionReader::_strange_fragment_tolerance(const CCondition& condition) {
    return is_strange(condition.m_lfFragmentTol);
}

}  // namespace tessel
