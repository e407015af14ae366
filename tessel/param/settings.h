#pragma once

#include <cstddef>
#include <iterator>
#include <limits>
#include <string_view>

namespace tessel {

// The keys of a parameter file. Reading, writing and describing parameter files take names, missing
// values and ranges from here.

enum class VALUE_KIND {
    TEXT,
    PATH,     ///< of a file or folder that has to exist
    INTEGER,  ///< decimal digits with a sign, read as atoi does
    REAL,     ///< read as atof does
    SWITCH,   ///< 0 or 1
};

inline constexpr int kNoLimit = std::numeric_limits<int>::max();

/// The values of an integer that are taken as they are, and what the others become.
struct VALUE_RANGE {
    const char* m_szName = nullptr;  ///< in the alert "Invalid_<name>: ..."; null: without limits
    int m_nHighest = kNoLimit;       ///< the lowest is 0
    int m_nIfBelow = 0;
    int m_nIfAbove = 0;
};

/// More threads than this are taken with a warning.
inline constexpr std::size_t kManyThreads = 100;

struct SETTING {
    std::string_view m_strSection;
    const char* m_szKey;
    VALUE_KIND m_eKind;
    const char* m_szMissing;  ///< stands for a key that is not there
    VALUE_RANGE m_cRange{};
};

/// The entries of the data list are keys of this stem, numbered from 1.
inline constexpr std::string_view kEntryStem = "msmspath";
/// Stands for an entry that is not there.
inline constexpr const char* kMissingEntry = "NULL";

/// No key stands in two sections.
inline constexpr SETTING kSettings[] = {
    {"param", "multip", VALUE_KIND::INTEGER, "1"},
    {"param", "thread", VALUE_KIND::INTEGER, "2", {"Thread_Num", kNoLimit, 2, 2}},
    {"param", "activation_type", VALUE_KIND::TEXT, "HCD-FTMS"},
    {"param", "mstol", VALUE_KIND::REAL, "20"},
    {"param", "msmstol", VALUE_KIND::REAL, "20"},
    {"param", "mstolppm", VALUE_KIND::SWITCH, "1"},
    {"param", "msmstolppm", VALUE_KIND::SWITCH, "1"},
    {"param", "maxmod", VALUE_KIND::INTEGER, "3", {"Max_Mod", 20, 0, 20}},
    {"param", "enzyme", VALUE_KIND::TEXT, "Trypsin KR _ C"},
    {"param", "digest", VALUE_KIND::INTEGER, "3", {"Digest", 3, 3, 3}},
    {"param", "temppepnum", VALUE_KIND::INTEGER, "50", {"Temp_Res_Num", kNoLimit, 50, 50}},
    {"param", "pepnum", VALUE_KIND::INTEGER, "10", {"Res_Num", kNoLimit, 10, 10}},
    {"param", "selectpeak", VALUE_KIND::INTEGER, "200", {"Sel_Peaks", 5000, 5000, 5000}},
    {"param", "noproc", VALUE_KIND::SWITCH, "0"},
    {"param", "maxprolen", VALUE_KIND::INTEGER, "1000000"},
    {"param", "maxspec", VALUE_KIND::INTEGER, "10000"},
    {"param", "max_clv_sites", VALUE_KIND::INTEGER, "2"},
    {"param", "selectmod", VALUE_KIND::TEXT, ""},
    {"param", "fixmod", VALUE_KIND::TEXT, ""},
    {"param", "IeqL", VALUE_KIND::SWITCH, "1"},
    {"param", "npep", VALUE_KIND::SWITCH, "1"},
    {"param", "maxdelta", VALUE_KIND::REAL, "500.0"},
    {"param", "center", VALUE_KIND::REAL, "0.0"},

    {"file", "fastapath", VALUE_KIND::PATH, ""},
    {"file", "auto_rev", VALUE_KIND::SWITCH, "1"},
    {"file", "msmspath", VALUE_KIND::TEXT, ""},
    {"file", "outputpath", VALUE_KIND::PATH, ""},
    {"file", "outputname", VALUE_KIND::TEXT, "test"},
    {"file", "modpath", VALUE_KIND::PATH, ""},
    {"file", "aapath", VALUE_KIND::PATH, ""},

    {"datalist", "msmsfolder", VALUE_KIND::SWITCH, "0"},
    {"datalist", "msmsnum", VALUE_KIND::INTEGER, "0"},
    {"datalist", "msmstype", VALUE_KIND::TEXT, "MGF"},

    {"engine", "open", VALUE_KIND::INTEGER, "1"},
    {"engine", "rest_tag_iteration", VALUE_KIND::SWITCH, "0"},
    {"engine", "salvo_iteration", VALUE_KIND::SWITCH, "0"},
    {"engine", "open_tag_len", VALUE_KIND::INTEGER, "5"},
    {"engine", "rest_tag_len", VALUE_KIND::INTEGER, "4"},
    {"engine", "max_tag", VALUE_KIND::INTEGER, "100"},
    {"engine", "max_res_tag", VALUE_KIND::INTEGER, "100"},
    {"engine", "digest_in_open", VALUE_KIND::SWITCH, "0"},
    {"engine", "max_edge", VALUE_KIND::INTEGER, "2"},
    {"engine", "max_gen_mod_pep", VALUE_KIND::INTEGER, "5000"},
    {"engine", "max_round", VALUE_KIND::INTEGER, "10"},
    {"engine", "rest_mod_num", VALUE_KIND::INTEGER, "10"},
    {"engine", "salvo_mod_num", VALUE_KIND::INTEGER, "5"},

    {"filter", "psm_fdr", VALUE_KIND::REAL, "0.01"},
    {"filter", "psm_fdr_type", VALUE_KIND::INTEGER, "1"},
    {"filter", "pro_fdr", VALUE_KIND::REAL, "0.01"},
    {"filter", "mass_lower", VALUE_KIND::REAL, "600"},
    {"filter", "mass_upper", VALUE_KIND::REAL, "100000"},
    {"filter", "len_lower", VALUE_KIND::INTEGER, "6"},
    {"filter", "len_upper", VALUE_KIND::INTEGER, "100"},
    {"filter", "pep_per_pro", VALUE_KIND::INTEGER, "1"},

    {"quant", "quant", VALUE_KIND::TEXT, "1|None"},
    {"quant", "label_name", VALUE_KIND::TEXT, "None"},
    {"quant", "label_id", VALUE_KIND::INTEGER, "0"},
    {"quant", "lumen_path", VALUE_KIND::TEXT, ""},
    {"quant", "lumen_cfg_path", VALUE_KIND::TEXT, ""},

    {"system", "log", VALUE_KIND::TEXT, "LOG_INFO"},
    {"system", "del_tmp_files", VALUE_KIND::SWITCH, "1"},
};

/// The index of a key in the table; behind its end for an unknown key.
constexpr std::size_t setting_index(std::string_view key) {
    std::size_t index = 0;
    while (index < std::size(kSettings) && kSettings[index].m_szKey != key)
        ++index;
    return index;
}

/// Null for an unknown key.
inline const SETTING* find_setting(std::string_view key) {
    const std::size_t index = setting_index(key);
    return index < std::size(kSettings) ? &kSettings[index] : nullptr;
}

/// A key written in the code: one that is not in the table does not compile.
class CKnownKey {
public:
    consteval CKnownKey(const char* key) : m_tIndex(setting_index(key)) {
        if (m_tIndex == std::size(kSettings)) throw "no such key in a parameter file";
    }
    constexpr const SETTING& operator*() const { return kSettings[m_tIndex]; }
    constexpr const SETTING* operator->() const { return &kSettings[m_tIndex]; }

private:
    std::size_t m_tIndex;
};

/// One whose values have limits: any other does not compile.
class CRangedKey : public CKnownKey {
public:
    consteval CRangedKey(const char* key) : CKnownKey(key) {
        if ((*this)->m_cRange.m_szName == nullptr) throw "no limits of this key's values";
    }
};

}  // namespace tessel
