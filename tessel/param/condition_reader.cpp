// A parameter file comes in; the settings of the reader's condition are filled, section by section
// and key by key in the order in which users see the messages.

#include "tessel/param/condition_reader.h"

#include <algorithm>
#include <cstdint>
#include <limits>
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
#include "tessel/platform/file.h"

namespace tessel {
namespace {

constexpr int kNoLimit = std::numeric_limits<int>::max();
constexpr int kMaxMods = 20;
constexpr int kMaxPeaks = 5000;
constexpr int kMaxTagLength = 6;
constexpr std::size_t kManyThreads = 100;

// The keys of one section as the kinds of value that the condition holds.
class CSection {
public:
    CSection(const std::string& path, const char* name) : m_cTool(path, name) {}

    std::string Text(const char* key, const char* missing = "") const {
        return m_cTool.GetString(key, missing);
    }
    bool IsNotZeroText(const char* key, const char* missing) const {
        return Text(key, missing) != "0";
    }
    // Through the text, so that an empty value is 0 and not the value of a missing key.
    double Real(const char* key, const char* missing) const {
        return to_double(Text(key, missing));
    }
    int TextInteger(const char* key, const char* missing) const {
        return to_int(Text(key, missing));
    }

    int Integer(const char* key, int missing) const {
        return m_cTool._GetPrivateProfileInt(m_cTool.m_strSection, key, missing, m_cTool.m_strPath);
    }
    bool IsNotZero(const char* key, int missing) const { return Integer(key, missing) != 0; }
    // Narrower fields keep the low bits, wider ones extend the sign: -1 is the largest count.
    template <class Field>
    Field As(const char* key, int missing) const {
        return static_cast<Field>(Integer(key, missing));
    }

private:
    COptionTool m_cTool;
};

// The value, or the replacement and an alert when it is not from 0 to `highest`.
int in_range(const CCondition& condition, const char* name, int value, int highest,
             int replacement) {
    if (value >= 0 && value <= highest) return value;
    condition.Message(message_text("Invalid_", name, ": ", value, ", change it to ", replacement),
                      LOG_ALERT);
    return replacement;
}

std::size_t count_in_range(const CCondition& condition, const char* name, int value, int highest,
                           int replacement) {
    return static_cast<std::size_t>(in_range(condition, name, value, highest, replacement));
}

void read_thread_number(const CSection& param, CCondition& condition) {
    condition.m_tThreadNum =
        count_in_range(condition, "Thread_Num", param.Integer("thread", 2), kNoLimit, 2);
    if (condition.m_tThreadNum > kManyThreads) {
        condition.Message("The number of threads is too large.", LOG_WARNING);
    }
}

bool is_strange(double tolerance) {
    return tolerance < 1e-5 || tolerance > 10000.0;
}

void read_tolerances(const CSection& param, CCondition& condition) {
    condition.m_lfPrecursorTol = param.Real("mstol", "20");
    condition.m_lfFragmentTol = param.Real("msmstol", "20");
    condition.m_bPrecursorPPM = param.IsNotZero("mstolppm", 1);
    condition.m_bFragmentPPM = param.IsNotZero("msmstolppm", 1);
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
    condition.m_bAutoRev = file.IsNotZero("auto_rev", 1);
    condition.m_strMSMSPath = file.Text("msmspath");
    condition.m_strOutputPath = existing_path(condition, file.Text("outputpath"), "outputpath");
    AddSlash(condition.m_strOutputPath);
    condition.m_strOutputName = file.Text("outputname", "test");
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

// No file holds more entries than lines; a larger number is not worth a search for each.
std::size_t entry_count(const CSection& list, const std::string& path,
                        const CCondition& condition) {
    const int stated = list.Integer("msmsnum", 0);
    if (stated <= 0) return 0;
    const int lines = line_count(path);
    return count_in_range(condition, "MSMS_Num", stated, lines, lines);
}

std::string entry_key(std::size_t number) {
    return message_text("msmspath", number);
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
    condition.m_bMSMSFolder = list.IsNotZero("msmsfolder", 0);
    const std::size_t count = entry_count(list, path, condition);
    std::vector<std::string> entries;
    for (std::size_t number = 1; number <= count; ++number) {
        const std::string key = entry_key(number);
        entries.push_back(list.Text(key.c_str(), "NULL"));
        if (!condition.m_bMSMSFolder) {
            CConditionReader::Validation_Path(condition, entries.back(), key);
        }
    }
    condition.m_strMSMSType = list.Text("msmstype", "MGF");
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
    condition.m_nMultip = param.Integer("multip", 1);
    read_thread_number(param, condition);
    condition.m_strActivationType = param.Text("activation_type", "HCD-FTMS");
    read_tolerances(param, condition);
    const int maxMods = param.Integer("maxmod", 3);
    condition.m_tMaxModNum =
        count_in_range(condition, "Max_Mod", maxMods, kMaxMods, maxMods < 0 ? 0 : kMaxMods);
    condition.m_cEnzyme.Init(param.Text("enzyme", "Trypsin KR _ C"));
    const auto digest = param.As<unsigned char>("digest", 3);
    condition.m_ucDigest = static_cast<unsigned char>(in_range(condition, "Digest", digest, 3, 3));
    condition.m_tTempPepNum =
        count_in_range(condition, "Temp_Res_Num", param.Integer("temppepnum", 50), kNoLimit, 50);
    condition.m_tPepNum =
        count_in_range(condition, "Res_Num", param.Integer("pepnum", 10), kNoLimit, 10);
    condition.m_tSelectPeak = count_in_range(
        condition, "Sel_Peaks", param.Integer("selectpeak", 200), kMaxPeaks, kMaxPeaks);
    condition.m_bNoProc = param.Integer("noproc", 0) == 1;
    condition.m_tMaxProLen = param.As<std::size_t>("maxprolen", 1000000);
    condition.m_nMaxSpec = param.As<std::size_t>("maxspec", 10000);
    condition.m_tMaxClvSites = param.As<std::size_t>("max_clv_sites", 2);
    condition.m_strSelectMod = param.Text("selectmod");
    condition.m_strFixMod = param.Text("fixmod");
    condition.m_bIeqL = param.IsNotZeroText("IeqL", "1");
    condition.m_bNPep = param.IsNotZeroText("npep", "1");
    condition.m_nSignalPepLen = condition.m_bNPep ? 60 : 1;
    condition.m_lfMaxDelta = param.Real("maxdelta", "500.0");
    condition.m_lfCenter = param.Real("center", "0.0");
}

void CConditionReader::_LoadData() {
    load_file(CSection(m_strPath, "file"), m_cCondition);
    load_data_list(CSection(m_strPath, "datalist"), m_strPath, m_cCondition);
}

void CConditionReader::_LoadEngine() {
    const CSection engine(m_strPath, "engine");
    CCondition& condition = m_cCondition;
    condition.m_nOpen = engine.Integer("open", 1);
    condition.m_bRestTagIteration = engine.IsNotZeroText("rest_tag_iteration", "0");
    condition.m_bSalvoIteration = engine.IsNotZeroText("salvo_iteration", "0");
    condition.m_nOpenTagLen = std::min(engine.Integer("open_tag_len", 5), kMaxTagLength);
    condition.m_nRestTagLen = std::min(engine.Integer("rest_tag_len", 4), kMaxTagLength);
    condition.m_uMaxTag = engine.As<std::uint32_t>("max_tag", 100);
    condition.m_uMaxResTag = engine.As<std::uint32_t>("max_res_tag", 100);
    condition.m_bDigestInOpen = engine.As<unsigned char>("digest_in_open", 0) != 0;
    condition.m_ucMaxEdge = engine.As<unsigned char>("max_edge", 2);
    condition.m_nMaxGenModPep = engine.Integer("max_gen_mod_pep", 5000);
    condition.m_nMaxRound = engine.Integer("max_round", 10);
    condition.m_nRestModNum = engine.Integer("rest_mod_num", 10);
    condition.m_nSalvoModNum = engine.Integer("salvo_mod_num", 5);
}

void CConditionReader::_LoadFilter() {
    const CSection filter(m_strPath, "filter");
    CCondition& condition = m_cCondition;
    condition.m_lfPsmFdr = filter.Real("psm_fdr", "0.01");
    condition.m_nPsmFdrType = filter.TextInteger("psm_fdr_type", "1");
    condition.m_lfProFdr = filter.Real("pro_fdr", "0.01");
    condition.m_lfMassLower = filter.Real("mass_lower", "600");
    condition.m_lfMassUpper = filter.Real("mass_upper", "100000");
    condition.m_nLenLower = filter.TextInteger("len_lower", "6");
    condition.m_nLenUpper = filter.TextInteger("len_upper", "100");
    condition.m_nPepPerPro = filter.TextInteger("pep_per_pro", "1");
}

void CConditionReader::_LoadQuant() {
    const CSection quant(m_strPath, "quant");
    CCondition& condition = m_cCondition;
    condition.m_strQuant = quant.Text("quant", "1|None");
    condition.m_strLabelName = quant.Text("label_name", "None");
    condition.m_sLabelID = quant.As<std::int16_t>("label_id", 0);
    condition.m_strLumenPath = quant.Text("lumen_path");
    condition.m_strLumenCfgPath = quant.Text("lumen_cfg_path");
}

void CConditionReader::_LoadSystem() {
    const CSection system(m_strPath, "system");
    m_cCondition.m_eLogType = log_type(m_cCondition, system.Text("log", "LOG_INFO"));
    m_cCondition.m_bDelTmp = system.Text("del_tmp_files", "1") == "1";
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
