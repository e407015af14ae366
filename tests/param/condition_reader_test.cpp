#include "tessel/param/condition_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tessel/platform/file.h"
#include "tests/param/parameter_file.h"
#include "tests/support/captured.h"

namespace tessel {
namespace {

using test::CParameterFile;
using test::settings_of;

// What reading a file leaves: the condition and the messages.
struct READING {
    explicit READING(const CParameterFile& file) : m_cReader(file.Write()) {
        m_strOutput = test::captured_output([this] { m_cReader.Read(); });
    }
    const CCondition& Condition() const { return m_cReader.m_cCondition; }

    CConditionReader m_cReader;
    std::string m_strOutput;
};

void read(const std::string& path) {
    CConditionReader(path).Read();
}

std::string alert(const std::string& text) {
    return "[Tessel] ALERT: " + text + '\n';
}

std::string warning(const std::string& text) {
    return "[Tessel] WARNING: " + text + '\n';
}

// What a file that names only the paths sets.
std::map<std::string, std::string> defaults(const CParameterFile& file) {
    const std::string& folder = file.Folder().Path();
    const std::string fasta = folder + "/proteins.fasta";
    return {
        {"multip", "1"},
        {"thread", "2"},
        {"activation_type", "HCD-FTMS"},
        {"mstol", "20"},
        {"msmstol", "20"},
        {"mstolppm", "1"},
        {"msmstolppm", "1"},
        {"maxmod", "3"},
        {"enzyme", "Trypsin KR _ C"},
        {"digest", "3"},
        {"temppepnum", "50"},
        {"pepnum", "10"},
        {"selectpeak", "200"},
        {"noproc", "0"},
        {"maxprolen", "1000000"},
        {"maxspec", "10000"},
        {"max_clv_sites", "2"},
        {"selectmod", ""},
        {"fixmod", ""},
        {"IeqL", "1"},
        {"npep", "1/60"},
        {"maxdelta", "500"},
        {"center", "0"},
        {"fastapath", fasta + '/' + fasta},
        {"auto_rev", "1"},
        {"msmspath", ""},
        {"outputpath", folder + '\\'},
        {"outputname", "test"},
        {"modpath", folder + "/modification.ini"},
        {"aapath", folder + "/aa.ini"},
        {"msmsfolder", "0"},
        {"msmspath1", ""},
        {"msmstype", "MGF"},
        {"open", "1"},
        {"rest_tag_iteration", "0"},
        {"salvo_iteration", "0"},
        {"open_tag_len", "5"},
        {"rest_tag_len", "4"},
        {"rest_mod_num", "10"},
        {"salvo_mod_num", "5"},
        {"max_tag", "100"},
        {"max_res_tag", "100"},
        {"digest_in_open", "0"},
        {"max_edge", "2"},
        {"max_gen_mod_pep", "5000"},
        {"max_round", "10"},
        {"psm_fdr", "0.01"},
        {"psm_fdr_type", "1"},
        {"pro_fdr", "0.01"},
        {"mass_lower", "600"},
        {"mass_upper", "100000"},
        {"len_lower", "6"},
        {"len_upper", "100"},
        {"pep_per_pro", "1"},
        {"quant", "1|None"},
        {"label_name", "None"},
        {"label_id", "0"},
        {"lumen_path", ""},
        {"lumen_cfg_path", ""},
        {"log", "3"},
        {"del_tmp_files", "1"},
    };
}

struct SETTING {
    const char* m_szSection;
    const char* m_szLine;
    const char* m_szShown;              // the setting afterwards
    const char* m_szMessage = nullptr;  // if any, with its level's mark
};

// Each line alone must change the one setting, nothing else, and send the one message.
void expect_settings(const std::vector<SETTING>& rows) {
    for (const SETTING& row : rows) {
        SCOPED_TRACE(row.m_szLine);
        CParameterFile file;
        const READING reading(file.Set(row.m_szSection, std::string(row.m_szLine) + '\n'));
        auto expected = defaults(file);
        const std::string line = row.m_szLine;
        expected.at(line.substr(0, line.find('='))) = row.m_szShown;
        EXPECT_EQ(settings_of(reading.Condition()), expected);
        EXPECT_EQ(reading.m_strOutput,
                  row.m_szMessage ? std::string("[Tessel] ") + row.m_szMessage + '\n' : "");
    }
}

TEST(condition_reader, missing_keys_take_the_defaults_of_the_reader) {
    CParameterFile file;
    const READING reading(file);
    EXPECT_EQ(settings_of(reading.Condition()), defaults(file));
    EXPECT_EQ(reading.m_strOutput, "");
}

TEST(condition_reader, missing_sections_take_the_defaults_of_the_reader) {
    CParameterFile file;
    const std::string whole = test::read_file(file.Write());
    const std::size_t begin = whole.find("[file]");
    test::write_file(file.Path(), whole.substr(begin, whole.find("[filter]") - begin));
    CConditionReader reader(file.Path());
    EXPECT_EQ(test::captured_output([&reader] { reader.Read(); }), "");
    EXPECT_EQ(settings_of(reader.m_cCondition), defaults(file));
}

TEST(condition_reader, condition_before_reading_has_the_defaults_of_the_object) {
    const CConditionReader reader(CParameterFile().Folder().Path() + "/..");
    const CCondition fresh;
    EXPECT_EQ(settings_of(reader.m_cCondition), settings_of(fresh));
}

TEST(condition_reader, each_step_reads_its_sections_alone) {
    test::CParameterFile file;
    file.Set("param", "multip=7\n").Set("engine", "max_round=8\n").Set("filter", "len_lower=9\n");
    file.Set("quant", "label_id=3\n").Set("system", "log=LOG_ALERT\n");
    struct {
        void (CConditionReader::*step)();
        const char* key;
        const char* value;
    } rows[] = {
        {&CConditionReader::_LoadParam, "multip", "7"},
        {&CConditionReader::_LoadEngine, "max_round", "8"},
        {&CConditionReader::_LoadFilter, "len_lower", "9"},
        {&CConditionReader::_LoadQuant, "label_id", "3"},
        {&CConditionReader::_LoadSystem, "log", "0"},
        {&CConditionReader::_LoadData, "outputname", "test"},
    };
    const auto fresh = test::settings_of(CCondition());
    for (const auto& read : rows) {
        CConditionReader reader(file.Write());
        (reader.*read.step)();
        const auto settings = test::settings_of(reader.m_cCondition);
        for (const auto& other : rows) {
            const std::string expected =
                other.key == read.key ? std::string(read.value) : fresh.at(other.key);
            EXPECT_EQ(settings.at(other.key), expected) << read.key << " " << other.key;
        }
    }
}

TEST(condition_reader, every_key_of_param_sets_its_field) {
    expect_settings({
        {"param", "multip=4", "4"},
        {"param", "multip=-4", "-4"},
        {"param", "thread=8", "8"},
        {"param", "activation_type=ETD-IT", "ETD-IT"},
        {"param", "activation_type=", ""},
        {"param", "mstol=0.5", "0.5"},
        {"param", "msmstol=0.25", "0.25"},
        {"param", "mstolppm=0", "0"},
        {"param", "mstolppm=-1", "1"},
        {"param", "mstolppm=", "1"},
        {"param", "msmstolppm=0", "0"},
        {"param", "msmstolppm=x", "0"},
        {"param", "maxmod=5", "5"},
        {"param", "enzyme=AspN D _ N", "AspN D _ N"},
        {"param", "enzyme=", ""},
        {"param", "digest=0", "0"},
        {"param", "temppepnum=7", "7"},
        {"param", "pepnum=7", "7"},
        {"param", "selectpeak=300", "300"},
        {"param", "noproc=1", "1"},
        {"param", "noproc=2", "0"},
        {"param", "noproc=-1", "0"},
        {"param", "maxprolen=5", "5"},
        {"param", "maxprolen=-1", "18446744073709551615"},
        {"param", "maxspec=5", "5"},
        {"param", "maxspec=-1", "18446744073709551615"},
        {"param", "max_clv_sites=5", "5"},
        {"param", "max_clv_sites=-2", "18446744073709551614"},
        {"param", "selectmod=Oxidation[M]; Deamidated[N];;", "Oxidation[M]; Deamidated[N];;"},
        {"param", "fixmod=Carbamidomethyl[C]", "Carbamidomethyl[C]"},
        {"param", "IeqL=0", "0"},
        {"param", "IeqL=", "1"},
        {"param", "IeqL=00", "1"},
        {"param", "IeqL= 0", "1"},
        {"param", "maxdelta=200.5", "200.5"},
        {"param", "maxdelta=-1", "-1"},
        {"param", "maxdelta=inf", "inf"},
        {"param", "maxdelta=", "0"},
        {"param", "center=-1.5", "-1.5"},
        {"param", "center=1e400", "inf"},
        {"param", "center=abc", "0"},
        {"param", "center=", "0"},
    });
}

TEST(condition_reader, counts_out_of_range_are_replaced_and_reported) {
    expect_settings({
        {"param", "thread=-1", "2", "ALERT: Invalid_Thread_Num: -1, change it to 2"},
        {"param", "thread=0", "0"},
        {"param", "thread=100", "100"},
        {"param", "thread=101", "101", "WARNING: The number of threads is too large."},
        {"param", "thread=99999999999", "2147483647",
         "WARNING: The number of threads is too large."},
        {"param", "thread=-99999999999", "2",
         "ALERT: Invalid_Thread_Num: -2147483648, change it to 2"},
        {"param", "maxmod=20", "20"},
        {"param", "maxmod=21", "20", "ALERT: Invalid_Max_Mod: 21, change it to 20"},
        {"param", "maxmod=0", "0"},
        {"param", "maxmod=-3", "0", "ALERT: Invalid_Max_Mod: -3, change it to 0"},
        {"param", "temppepnum=0", "0"},
        {"param", "temppepnum=-1", "50", "ALERT: Invalid_Temp_Res_Num: -1, change it to 50"},
        {"param", "pepnum=0", "0"},
        {"param", "pepnum=-1", "10", "ALERT: Invalid_Res_Num: -1, change it to 10"},
        {"param", "selectpeak=0", "0"},
        {"param", "selectpeak=5000", "5000"},
        {"param", "selectpeak=5001", "5000", "ALERT: Invalid_Sel_Peaks: 5001, change it to 5000"},
        {"param", "selectpeak=-1", "5000", "ALERT: Invalid_Sel_Peaks: -1, change it to 5000"},
    });
}

TEST(condition_reader, digest_keeps_the_low_8_bits) {
    expect_settings({
        {"param", "digest=1", "1"},
        {"param", "digest=2", "2"},
        {"param", "digest=4", "3", "ALERT: Invalid_Digest: 4, change it to 3"},
        {"param", "digest=256", "0"},
        {"param", "digest=259", "3"},
        {"param", "digest=260", "3", "ALERT: Invalid_Digest: 4, change it to 3"},
        {"param", "digest=-1", "3", "ALERT: Invalid_Digest: 255, change it to 3"},
        {"param", "digest=-254", "2"},
    });
}

TEST(condition_reader, npep_of_0_alone_makes_the_signal_peptide_length_1) {
    expect_settings({
        {"param", "npep=0", "0/1"},
        {"param", "npep=1", "1/60"},
        {"param", "npep=", "1/60"},
        {"param", "npep=00", "1/60"},
        {"param", "npep=0 ", "1/60"},
        {"param", "npep=no", "1/60"},
    });
}

TEST(condition_reader, strange_tolerances_are_reported_and_kept) {
    expect_settings({
        {"param", "mstol=0", "0", "WARNING: Abnormal Precursor: 0.000000"},
        {"param", "mstol=", "0", "WARNING: Abnormal Precursor: 0.000000"},
        {"param", "mstol=wide", "0", "WARNING: Abnormal Precursor: 0.000000"},
        {"param", "mstol=-20", "-20", "WARNING: Abnormal Precursor: -20.000000"},
        {"param", "mstol=10000", "10000"},
        {"param", "mstol=10000.5", "10000.5", "WARNING: Abnormal Precursor: 10000.500000"},
        {"param", "mstol=inf", "inf", "WARNING: Abnormal Precursor: inf"},
        {"param", "mstol=-inf", "-inf", "WARNING: Abnormal Precursor: -inf"},
        {"param", "mstol=nan", "nan"},
        {"param", "msmstol=0", "0", "WARNING: Abnormal Fragment: 0.000000"},
        {"param", "msmstol=10000.5", "10000.5", "WARNING: Abnormal Fragment: 10000.500000"},
        {"param", "msmstol=1e400", "inf", "WARNING: Abnormal Fragment: inf"},
        {"param", "msmstol=nan", "nan"},
    });
}

TEST(condition_reader, bounds_of_a_strange_tolerance_are_sane_themselves) {
    CCondition condition;
    const struct {
        double tolerance;
        bool strange;
    } rows[] = {{1e-5, false},    {std::nextafter(1e-5, 0.0), true},
                {10000.0, false}, {std::nextafter(10000.0, 20000.0), true},
                {20.0, false},    {0.0, true},
                {-20.0, true}};
    for (const auto& row : rows) {
        condition.m_lfPrecursorTol = row.tolerance;
        condition.m_lfFragmentTol = 20.0;
        EXPECT_EQ(CConditionReader::_strange_precursor_tolerance(condition), row.strange);
        EXPECT_FALSE(CConditionReader::_strange_fragment_tolerance(condition));
        std::swap(condition.m_lfPrecursorTol, condition.m_lfFragmentTol);
        EXPECT_EQ(CConditionReader::_strange_fragment_tolerance(condition), row.strange);
        EXPECT_FALSE(CConditionReader::_strange_precursor_tolerance(condition));
    }
}

TEST(condition_reader, unit_of_a_tolerance_does_not_matter_to_its_check) {
    CParameterFile file;
    file.Set("param", "mstol=500\nmsmstol=20000\nmstolppm=0\nmsmstolppm=0\n");
    EXPECT_EQ(READING(file).m_strOutput, warning("Abnormal Fragment: 20000.000000"));
}

TEST(condition_reader, long_number_in_a_message_is_cut_at_255_characters) {
    CParameterFile file;
    const READING reading(file.Set("param", "mstol=1e300\n"));
    ASSERT_EQ(reading.m_strOutput.size(), warning("").size() + 255);
    const std::string start = "Abnormal Precursor: 10000000000000000525";  // the nearest double
    EXPECT_EQ(reading.m_strOutput.substr(warning("").size() - 1, start.size()), start);
}

TEST(condition_reader, messages_come_in_the_order_of_the_keys) {
    CParameterFile file;
    file.Set("system", "log=LOG_SILENT\n")
        .Set("param",
             "selectpeak=9999\npepnum=-1\ntemppepnum=-1\ndigest=9\nmaxmod=99\nmsmstol=0\n"
             "mstol=0\nthread=-5\n");
    EXPECT_EQ(READING(file).m_strOutput, alert("Invalid_Thread_Num: -5, change it to 2") +
                                             warning("Abnormal Precursor: 0.000000") +
                                             warning("Abnormal Fragment: 0.000000") +
                                             alert("Invalid_Max_Mod: 99, change it to 20") +
                                             alert("Invalid_Digest: 9, change it to 3") +
                                             alert("Invalid_Temp_Res_Num: -1, change it to 50") +
                                             alert("Invalid_Res_Num: -1, change it to 10") +
                                             alert("Invalid_Sel_Peaks: 9999, change it to 5000"));
}

TEST(condition_reader, every_key_of_engine_sets_its_field) {
    expect_settings({
        {"engine", "open=0", "0"},
        {"engine", "open=-7", "-7"},
        {"engine", "rest_tag_iteration=1", "1"},
        {"engine", "rest_tag_iteration=", "1"},
        {"engine", "rest_tag_iteration=00", "1"},
        {"engine", "salvo_iteration=1", "1"},
        {"engine", "salvo_iteration=", "1"},
        {"engine", "open_tag_len=4", "4"},
        {"engine", "open_tag_len=-3", "-3"},
        {"engine", "rest_tag_len=5", "5"},
        {"engine", "max_tag=7", "7"},
        {"engine", "max_tag=-1", "4294967295"},
        {"engine", "max_res_tag=7", "7"},
        {"engine", "max_res_tag=-2", "4294967294"},
        {"engine", "digest_in_open=1", "1"},
        {"engine", "digest_in_open=2", "1"},
        {"engine", "digest_in_open=256", "0"},
        {"engine", "digest_in_open=-1", "1"},
        {"engine", "max_edge=3", "3"},
        {"engine", "max_edge=259", "3"},
        {"engine", "max_edge=-1", "255"},
        {"engine", "max_gen_mod_pep=9", "9"},
        {"engine", "max_round=3", "3"},
        {"engine", "rest_mod_num=-1", "-1"},
        {"engine", "salvo_mod_num=4", "4"},
    });
}

TEST(condition_reader, tag_lengths_above_6_are_capped_silently) {
    expect_settings({
        {"engine", "open_tag_len=6", "6"},
        {"engine", "open_tag_len=7", "6"},
        {"engine", "open_tag_len=9", "6"},
        {"engine", "rest_tag_len=6", "6"},
        {"engine", "rest_tag_len=9", "6"},
    });
}

TEST(condition_reader, every_key_of_filter_sets_its_field) {
    expect_settings({
        {"filter", "psm_fdr=0.125", "0.125"},
        {"filter", "psm_fdr=", "0"},
        {"filter", "psm_fdr_type=0", "0"},
        {"filter", "psm_fdr_type=", "0"},
        {"filter", "pro_fdr=0.5", "0.5"},
        {"filter", "pro_fdr=", "0"},
        {"filter", "mass_lower=700.5", "700.5"},
        {"filter", "mass_lower=", "0"},
        {"filter", "mass_upper=5000", "5000"},
        {"filter", "mass_upper=inf", "inf"},
        {"filter", "len_lower=7", "7"},
        {"filter", "len_lower=", "0"},
        {"filter", "len_upper=30", "30"},
        {"filter", "len_upper=99999999999", "2147483647"},
        {"filter", "pep_per_pro=2", "2"},
        {"filter", "pep_per_pro=x", "0"},
    });
}

TEST(condition_reader, every_key_of_quant_sets_its_field) {
    expect_settings({
        {"quant", "quant=2|None|SILAC|", "2|None|SILAC|"},
        {"quant", "quant=", ""},
        {"quant", "label_name=SILAC", "SILAC"},
        {"quant", "label_name=", ""},
        {"quant", "label_id=3", "3"},
        {"quant", "label_id=-3", "-3"},
        {"quant", "label_id=32768", "-32768"},
        {"quant", "label_id=65537", "1"},
        {"quant", "lumen_path=C:\\lumen", "C:\\lumen"},
        {"quant", "lumen_cfg_path=C:\\lumen.cfg", "C:\\lumen.cfg"},
    });
}

TEST(condition_reader, log_level_is_named_exactly) {
    expect_settings({
        {"system", "log=LOG_ALERT", "0"},
        {"system", "log=LOG_SILENT", "1"},
        {"system", "log=LOG_WARNING", "2"},
        {"system", "log=LOG_INFO", "3"},
        {"system", "log=LOG_DEBUG", "4"},
        {"system", "log=log_debug", "3"},
        {"system", "log=LOG_DEBUG ", "3"},
        {"system", "log=4", "3"},
        {"system", "log=", "3"},
    });
}

TEST(condition_reader, temporary_files_are_removed_for_the_text_1_alone) {
    expect_settings({
        {"system", "del_tmp_files=1", "1"},
        {"system", "del_tmp_files=0", "0"},
        {"system", "del_tmp_files=2", "0"},
        {"system", "del_tmp_files=01", "0"},
        {"system", "del_tmp_files=1 ", "0"},
        {"system", "del_tmp_files=", "0"},
    });
}

TEST(condition_reader, keys_of_file_without_a_check_set_their_fields) {
    expect_settings({
        {"file", "auto_rev=0", "0"},
        {"file", "auto_rev=-1", "1"},
        {"file", "auto_rev=", "1"},
        {"file", "msmspath=C:\\not\\there.mgf", "C:\\not\\there.mgf"},
        {"file", "outputname=run 1", "run 1"},
        {"file", "outputname=", ""},
        {"datalist", "msmstype=ZB2", "ZB2"},
        {"datalist", "msmstype=", ""},
        {"datalist", "msmsfolder=1", "1"},
        {"datalist", "msmsfolder=-1", "1"},
    });
}

TEST(condition_reader, integer_keys_with_empty_values_take_their_defaults) {
    CParameterFile file;
    for (const char* key :
         {"multip=", "thread=", "mstolppm=", "msmstolppm=", "maxmod=", "digest=", "temppepnum=",
          "pepnum=", "selectpeak=", "noproc=", "maxprolen=", "maxspec=", "max_clv_sites="}) {
        file.Set("param", std::string(key) + '\n');
    }
    for (const char* key :
         {"open=", "open_tag_len=", "rest_tag_len=", "max_tag=", "max_res_tag=", "digest_in_open=",
          "max_edge=", "max_gen_mod_pep=", "max_round=", "rest_mod_num=", "salvo_mod_num="}) {
        file.Set("engine", std::string(key) + '\n');
    }
    file.Set("file", "auto_rev=\n").Set("datalist", "msmsfolder=\nmsmsnum=\n");
    file.Set("quant", "label_id=\n");
    const READING reading(file);
    EXPECT_EQ(settings_of(reading.Condition()), defaults(file));
    EXPECT_EQ(reading.m_strOutput, "");
}

TEST(condition_reader, key_that_stands_only_in_a_later_section_is_found) {
    CParameterFile file;
    const READING reading(file.Set("system", "multip=3\nopen=0\n").Set("datalist", "maxmod=7\n"));
    EXPECT_EQ(reading.Condition().m_nMultip, 3);
    EXPECT_EQ(reading.Condition().m_nOpen, 0);
    EXPECT_EQ(reading.Condition().m_tMaxModNum, 3u);  // "[datalist]" precedes "[param]"
}

TEST(condition_reader, byte_order_mark_and_carriage_returns_change_nothing) {
    CParameterFile file;
    file.Set("param", "enzyme=AspN D _ N\nmstol=5\nthread=6\n").Set("system", "log=LOG_DEBUG\n");
    file.Set("datalist", "msmsnum=1\nmsmspath1=" + file.Folder().Write("a.mgf", "") + '\n');
    const READING plain(file);

    std::string bytes = "\xEF\xBB\xBF";
    for (const char c : test::read_file(file.Path()))
        bytes += c == '\n' ? std::string("\r\n") : std::string(1, c);
    test::write_file(file.Path(), bytes);
    CConditionReader reader(file.Path());
    EXPECT_EQ(test::captured_output([&reader] { reader.Read(); }), plain.m_strOutput);
    EXPECT_EQ(settings_of(reader.m_cCondition), settings_of(plain.Condition()));
}

TEST(condition_reader, invalid_enzyme_ends_the_process) {
    CParameterFile file;
    const std::string path = file.Set("param", "enzyme=Bad KR P X\n").Write();
    EXPECT_ENDS_PROCESS(read(path), "", "Invalid enzyme format: Bad KR P X\n");
}

TEST(condition_reader, missing_parameter_file_ends_the_process) {
    EXPECT_ENDS_PROCESS(CConditionReader("not\\there.ini"), alert("Invalid_Path: [not\\there.ini]"),
                        "");
    EXPECT_ENDS_PROCESS(CConditionReader(""), alert("Invalid_Path: []"), "");
}

TEST(condition_reader, folder_as_parameter_file_has_only_empty_texts) {
    const test::CTempFolder folder;
    EXPECT_ENDS_PROCESS(read(folder.Path()),
                        alert("Cannot read the parameter file: " + folder.Path()) +
                            warning("Abnormal Precursor: 0.000000") +
                            warning("Abnormal Fragment: 0.000000") +
                            alert("Invalid_fastapath_Path: []"),
                        "");
}

TEST(condition_reader, file_that_has_gone_is_no_unreadable_one) {
    const test::CTempFolder folder;
    CConditionReader reader(folder.Write("run.param", ""));
    remove_file(reader.m_strPath);
    EXPECT_ENDS_PROCESS(reader.Read(),
                        warning("Abnormal Precursor: 0.000000") +
                            warning("Abnormal Fragment: 0.000000") +
                            alert("Invalid_fastapath_Path: []"),
                        "");
}

TEST(condition_reader, path_that_does_not_exist_ends_the_process) {
    for (const std::string key : {"fastapath", "outputpath", "modpath", "aapath"}) {
        SCOPED_TRACE(key);
        CParameterFile file;
        const std::string path = file.Set("file", key + "=not\\there\n").Write();
        EXPECT_ENDS_PROCESS(read(path), alert("Invalid_" + key + "_Path: [not\\there]"), "");
    }
}

TEST(condition_reader, long_path_in_a_message_is_not_cut) {
    CParameterFile file;
    const std::string longPath(1000, 'x');
    const std::string path = file.Set("file", "fastapath=" + longPath + '\n').Write();
    EXPECT_ENDS_PROCESS(read(path), alert("Invalid_fastapath_Path: [" + longPath + "]"), "");
}

TEST(condition_reader, empty_database_or_output_path_ends_the_process) {
    for (const std::string key : {"fastapath", "outputpath"}) {
        SCOPED_TRACE(key);
        CParameterFile file;
        const std::string path = file.Set("file", key + "=\n").Write();
        EXPECT_ENDS_PROCESS(read(path), alert("Invalid_" + key + "_Path: []"), "");
    }
}

TEST(condition_reader, log_level_of_the_file_does_not_silence_messages_while_reading) {
    CParameterFile file;
    file.Set("system", "log=LOG_SILENT\n").Set("param", "thread=101\n");
    const READING reading(file);
    EXPECT_EQ(reading.m_strOutput, warning("The number of threads is too large."));
    EXPECT_EQ(reading.Condition().m_eLogType, LOG_SILENT);
}

TEST(condition_reader, folder_passes_as_any_path) {
    CParameterFile file;
    const std::string& folder = file.Folder().Path();
    const READING reading(file.Set("file", "fastapath=" + folder + "\nmodpath=" + folder + '\n'));
    EXPECT_EQ(reading.Condition().m_strFastaPath, folder);
    EXPECT_EQ(reading.Condition().m_strInputFastaPath, folder);
    EXPECT_EQ(reading.Condition().m_strModPath, folder);
}

TEST(condition_reader, output_path_gets_one_backslash) {
    CParameterFile file;
    std::filesystem::create_directory(file.Folder().Path("out"));
    const std::string out = file.Folder().Path("out");
    EXPECT_EQ(READING(file.Set("file", "outputpath=" + out + '\n')).Condition().m_strOutputPath,
              out + '\\');
    EXPECT_EQ(READING(file.Set("file", "outputpath=" + out + "\\\n")).Condition().m_strOutputPath,
              out + '\\');
    EXPECT_EQ(READING(file.Set("file", "outputpath=" + out + "/\n")).Condition().m_strOutputPath,
              out + "/\\");
}

TEST(condition_reader, paths_with_backslashes_are_found_and_kept) {
    CParameterFile file;
    std::string fasta = file.Folder().Path("proteins.fasta");
    std::replace(fasta.begin(), fasta.end(), '/', '\\');
    EXPECT_EQ(READING(file.Set("file", "fastapath=" + fasta + '\n')).Condition().m_strFastaPath,
              fasta);
}

TEST(condition_reader, empty_table_paths_name_the_working_folder) {
    CParameterFile file;
    file.Set("file", "modpath=\naapath=\n");
    const test::CWorkingFolder working(file.Folder().Path());
    const std::string folder = std::filesystem::current_path().string();
    const READING reading(file);
    EXPECT_EQ(reading.Condition().m_strModPath, folder + "\\modification.ini");
    EXPECT_EQ(reading.Condition().m_strAAPath, folder + "\\aa.ini");
}

TEST(condition_reader, missing_table_in_the_working_folder_ends_the_process) {
    CParameterFile file;
    const std::string path = file.Set("file", "aapath=\n").Write();
    std::filesystem::remove(file.Folder().Path("aa.ini"));
    const test::CWorkingFolder working(file.Folder().Path());
    const std::string folder = std::filesystem::current_path().string();
    EXPECT_ENDS_PROCESS(read(path), alert("Invalid_aapath_Path: [" + folder + "\\aa.ini]"), "");
}

// ---- The data list ----

TEST(condition_reader, spectrum_files_come_in_the_order_of_their_numbers) {
    CParameterFile file;
    const std::string a = file.Folder().Write("a.mgf", "");
    const std::string b = file.Folder().Write("b.mgf", "");
    const READING reading(file.Set(
        "datalist", "msmspath2=" + a + "\nmsmspath1=" + b + "\nmsmspath3=" + b + "\nmsmsnum=2\n"));
    EXPECT_EQ(reading.Condition().m_vMSMSFiles, (std::vector<std::string>{b, a}));
    EXPECT_FALSE(reading.Condition().m_bMSMSFolder);
}

TEST(condition_reader, reading_empties_the_list_of_spectrum_files_first) {
    CParameterFile file;
    const std::string a = file.Folder().Write("a.mgf", "");
    CConditionReader reader(file.Set("datalist", "msmsnum=1\nmsmspath1=" + a + '\n').Write());
    reader.m_cCondition.m_vMSMSFiles = {"old"};
    reader.Read();
    reader.Read();
    EXPECT_EQ(reader.m_cCondition.m_vMSMSFiles, (std::vector<std::string>{a}));
}

TEST(condition_reader, number_of_spectrum_files_of_0_or_less_reads_none) {
    for (const char* number : {"0", "-1", "-99999999999", "x", ""}) {
        CParameterFile file;
        const READING reading(
            file.Set("datalist", std::string("msmspath1=not there\nmsmsnum=") + number + '\n'));
        EXPECT_TRUE(reading.Condition().m_vMSMSFiles.empty()) << number;
        EXPECT_EQ(reading.m_strOutput, "") << number;
    }
}

TEST(condition_reader, missing_spectrum_file_ends_the_process_under_its_own_key) {
    CParameterFile file;
    const std::string path =
        file.Set("datalist", "msmsnum=3\nmsmspath1=" + file.Path() + "\nmsmspath2=no\\b.mgf\n")
            .Write();
    EXPECT_ENDS_PROCESS(read(path), alert("Invalid_msmspath2_Path: [no\\b.mgf]"), "");
}

TEST(condition_reader, spectrum_file_without_a_key_is_named_null) {
    CParameterFile file;
    const std::string path =
        file.Set("datalist", "msmsnum=2\nmsmspath1=" + file.Path() + '\n').Write();
    EXPECT_ENDS_PROCESS(read(path), alert("Invalid_msmspath2_Path: [NULL]"), "");
}

// A scan of the file for each of them would take minutes.
TEST(condition_reader, list_of_a_hundred_thousand_spectrum_files_is_read_by_one_scan) {
    constexpr std::size_t kFiles = 100000;
    CParameterFile file;
    const std::string path = file.Folder().Path();
    std::string lines = "msmsnum=100000\n";
    for (std::size_t number = kFiles; number > 0; --number)
        lines += "msmspath" + std::to_string(number) + '=' + path + '\n';
    const READING reading(file.Set("datalist", lines));
    EXPECT_EQ(reading.Condition().m_vMSMSFiles, std::vector<std::string>(kFiles, path));
}

// The file of the next two tests has the seven headers, four lines of "file" and what is set.
TEST(condition_reader, more_spectrum_files_than_lines_are_reported_and_not_looked_up) {
    CParameterFile file;
    const std::string path =
        file.Set("datalist", "msmsnum=2000000000\nmsmspath1=" + file.Path() + '\n').Write();
    EXPECT_ENDS_PROCESS(read(path),
                        alert("Invalid_MSMS_Num: 2000000000, change it to 13") +
                            alert("Invalid_msmspath2_Path: [NULL]"),
                        "");
}

TEST(condition_reader, more_folders_than_lines_are_reported_and_not_looked_up) {
    CParameterFile file;
    const std::string a = file.Folder().Write("a.mgf", "");
    file.Set("datalist", "msmsfolder=1\nmsmsnum=2000000000\nmsmspath1=" + file.Folder().Path() +
                             "\nmsmspath14=" + file.Folder().Path() + '\n');
    const test::CWorkingFolder working(file.Folder().Path());
    const READING reading(file);
    std::string expected = alert("Invalid_MSMS_Num: 2000000000, change it to 15");
    for (int missing = 0; missing < 13; ++missing)
        expected += alert("Unreadable_Folder: [NULL]");
    EXPECT_EQ(reading.m_strOutput, expected);
    const std::string found = file.Folder().Path() + "\\a.mgf";
    EXPECT_EQ(reading.Condition().m_vMSMSFiles, (std::vector<std::string>{found, found}));
}

// Folder mode over one folder with these files, empty; the names found, without the folder.
std::vector<std::string> found_in_folder(const std::string& type,
                                         const std::vector<std::string>& names) {
    CParameterFile file;
    const std::string folder = file.Folder().Path("spectra");
    std::filesystem::create_directory(folder);
    for (const std::string& name : names)
        test::write_file(folder + '/' + name, "");
    const READING reading(file.Set(
        "datalist", "msmsfolder=1\nmsmsnum=1\nmsmspath1=" + folder + "\nmsmstype=" + type + '\n'));
    EXPECT_EQ(reading.m_strOutput, "");
    EXPECT_EQ(reading.Condition().m_strMSMSType, type);
    std::vector<std::string> found;
    for (const std::string& path : reading.Condition().m_vMSMSFiles) {
        EXPECT_EQ(path.substr(0, folder.size() + 1), folder + '\\');
        found.push_back(path.substr(folder.size() + 1));
    }
    return found;
}

using NAMES = std::vector<std::string>;

TEST(condition_reader, folder_gives_the_files_that_end_with_the_type) {
    EXPECT_EQ(found_in_folder("MGF", {"a.mgf", "b.mgf.bak"}), NAMES{"a.mgf"});
    EXPECT_EQ(found_in_folder("MGF", {".mgf", "c.mgf.mgf", "d.mgf.x.mgf", "mgf", "emgf", "f.zb2"}),
              (NAMES{".mgf", "c.mgf.mgf", "d.mgf.x.mgf"}));
    EXPECT_EQ(found_in_folder("zB2", {"a.zb2", "a.zB2", "a.ZB2"}), NAMES{"a.zb2"});
}

TEST(condition_reader, folder_entry_in_capital_letters_is_skipped) {
    EXPECT_EQ(found_in_folder("MGF", {"a.MGF", "b.Mgf", "c.mgf"}), NAMES{"c.mgf"});
}

TEST(condition_reader, folder_entries_come_in_byte_order) {
    EXPECT_EQ(found_in_folder("MGF", {"b.mgf", "a.mgf", "C.mgf", "a1.mgf", "\xC3\xA4.mgf"}),
              (NAMES{"C.mgf", "a.mgf", "a1.mgf", "b.mgf", "\xC3\xA4.mgf"}));
}

TEST(condition_reader, type_of_a_folder_is_lowered_in_ascii_only) {
    EXPECT_EQ(found_in_folder("\xC3\x84X", {"a.\xC3\x84x", "b.\xC3\xA4x"}), NAMES{"a.\xC3\x84x"});
}

TEST(condition_reader, empty_type_takes_folder_entries_that_end_with_a_full_stop) {
    const test::CTempFolder folder;
    folder.Write("a.", "");
    if (folder_entries(folder.Path()) != NAMES{"a."}) GTEST_SKIP() << "no such names here";
    EXPECT_EQ(found_in_folder("", {"a.", "b.mgf", "c"}), NAMES{"a."});
}

TEST(condition_reader, several_folders_are_listed_one_after_another) {
    CParameterFile file;
    for (const char* name : {"x", "y"})
        std::filesystem::create_directory(file.Folder().Path(name));
    std::filesystem::create_directory(file.Folder().Path("x/sub.mgf"));
    for (const char* name : {"x/2.mgf", "y/1.mgf"})
        file.Folder().Write(name, "");
    const std::string x = file.Folder().Path("x");
    const std::string y = file.Folder().Path("y");
    const READING reading(file.Set("datalist", "msmsfolder=1\nmsmsnum=3\nmsmspath1=" + y +
                                                   "\\\nmsmspath2=no\\folder\nmsmspath3=" + x +
                                                   '\n'));
    EXPECT_EQ(reading.Condition().m_vMSMSFiles,
              (NAMES{y + "\\\\1.mgf", x + "\\2.mgf", x + "\\sub.mgf"}));
    EXPECT_EQ(reading.m_strOutput, alert("Unreadable_Folder: [no\\folder]"));
}

TEST(condition_reader, file_in_place_of_a_folder_is_reported) {
    CParameterFile file;
    const std::string a = file.Folder().Write("a.mgf", "");
    const READING reading(
        file.Set("datalist", "msmsfolder=1\nmsmsnum=2\nmsmspath1=" + a + "\nmsmspath2=\n"));
    EXPECT_TRUE(reading.Condition().m_vMSMSFiles.empty());
    EXPECT_EQ(reading.m_strOutput,
              alert("Unreadable_Folder: [" + a + "]") + alert("Unreadable_Folder: []"));
}

TEST(condition_reader, folder_entry_that_vanished_ends_the_process_under_the_last_key) {
    CParameterFile file;
    const std::string folder = file.Folder().Path("spectra");
    std::filesystem::create_directory(folder);
    std::error_code failed;
    std::filesystem::create_symlink("nowhere", folder + "/a.mgf", failed);
    if (failed) GTEST_SKIP() << "no links to nowhere here";
    const std::string path = file.Set("datalist", "msmsfolder=1\nmsmsnum=2\nmsmspath1=" + folder +
                                                      "\nmsmspath2=" + folder + '\n')
                                 .Write();
    EXPECT_ENDS_PROCESS(read(path), alert("Invalid_msmspath2_Path: [" + folder + "\\a.mgf]"), "");
}

// ---- Checks that callers use, too ----

TEST(condition_reader, existing_file_or_folder_is_a_valid_path) {
    const CCondition condition;
    const test::CTempFolder folder;
    CConditionReader::Validation_Path(condition, folder.Path(), "any");
    CConditionReader::Validation_Path(condition, folder.Path() + '\\', "any");
    CConditionReader::Validation_Path(condition, folder.Write("a", ""), "any");
}

TEST(condition_reader, invalid_path_is_named_with_its_key_at_every_log_level) {
    CCondition condition;
    condition.m_eLogType = LOG_ALERT;
    EXPECT_ENDS_PROCESS(CConditionReader::Validation_Path(condition, "", "my"),
                        alert("Invalid_my_Path: []"), "");
    EXPECT_ENDS_PROCESS(CConditionReader::Validation_Path(condition, "a\\b", ""),
                        alert("Invalid__Path: [a\\b]"), "");
}

}  // namespace
}  // namespace tessel
