#include "tessel/param/condition_writer.h"

#include <gtest/gtest.h>
#include <time.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <locale>
#include <random>
#include <string>
#include <vector>

#include "tessel/param/condition_reader.h"
#include "tests/param/parameter_file.h"
#include "tests/param/version_line.h"
#include "tests/support/captured.h"
#include "tests/support/system.h"

namespace tessel {
namespace {

using test::CParameterFile;
using test::CTimeZone;
using test::kJuly;
using test::kMarch;
using test::settings_of;
using test::version_line;
using test::version_line_at;

// What is written in an empty working folder, in UTC.
std::string written(const CCondition& condition) {
    const CTimeZone utc("UTC0");
    const test::CTempFolder folder;
    const test::CWorkingFolder working(folder.Path());
    CConditionWriter(folder.Path("out.ini"), &condition).Write();
    return folder.Read("out.ini");
}

bool has_line(const std::string& text, const std::string& line) {
    return ('\n' + text).find('\n' + line + '\n') != std::string::npos;
}

// No two neighbouring settings of one kind are alike.
void set_every_setting(CCondition& condition) {
    condition.m_nMultip = 11;
    condition.m_tThreadNum = 12;
    condition.m_strActivationType = "ETD-IT";
    condition.m_lfPrecursorTol = 0.5;
    condition.m_lfFragmentTol = 0.02;
    condition.m_bPrecursorPPM = false;
    condition.m_bFragmentPPM = true;
    condition.m_tMaxModNum = 4;
    condition.m_cEnzyme.Init("AspN D _ N  more");
    condition.m_ucDigest = 1;
    condition.m_tTempPepNum = 51;
    condition.m_tPepNum = 13;
    condition.m_tSelectPeak = 350;
    condition.m_bNoProc = true;
    condition.m_tMaxProLen = std::numeric_limits<std::size_t>::max();
    condition.m_nMaxSpec = 4294967296;
    condition.m_tMaxClvSites = 6;
    condition.m_strSelectMod = "Oxidation[M];Phospho[S];";
    condition.m_strFixMod = "Carbamidomethyl[C];";
    condition.m_bIeqL = false;
    condition.m_bNPep = true;
    condition.m_lfMaxDelta = 123456.7;
    condition.m_lfCenter = -0.984016;
    condition.m_nOpen = -2;
    condition.m_bRestTagIteration = true;
    condition.m_bSalvoIteration = false;
    condition.m_nOpenTagLen = 4;
    condition.m_nRestTagLen = 3;
    condition.m_nRestModNum = -1;
    condition.m_nSalvoModNum = 7;
    condition.m_uMaxTag = 4294967295;
    condition.m_uMaxResTag = 150;
    condition.m_bDigestInOpen = true;
    condition.m_ucMaxEdge = 65;
    condition.m_nMaxGenModPep = 6000;
    condition.m_nMaxRound = 14;
    condition.m_lfPsmFdr = 0.015;
    condition.m_nPsmFdrType = 0;
    condition.m_lfMassLower = 650.25;
    condition.m_lfMassUpper = 1234567.0;
    condition.m_nLenLower = 7;
    condition.m_nLenUpper = 55;
    condition.m_nPepPerPro = 2;
    condition.m_lfProFdr = 1e-5;
    condition.m_strFastaPath = "D:\\db\\human.fasta";
    condition.m_strInputFastaPath = "D:\\db\\human.fasta_td.fasta";
    condition.m_bAutoRev = false;
    condition.m_strMSMSPath = "D:\\ms\\a.mgf";
    condition.m_strOutputPath = "D:\\out\\";
    condition.m_strOutputName = "run 1";
    condition.m_strModPath = "D:\\mods.ini";
    condition.m_strAAPath = "D:\\aas.ini";
    condition.m_bMSMSFolder = true;
    condition.m_vMSMSFiles = {"D:\\ms", "", "D:\\more\\"};
    condition.m_strMSMSType = "MGF";
    condition.m_strQuant = "2|None|SILAC|";
    condition.m_strLabelName = "SILAC";
    condition.m_sLabelID = -3;
    condition.m_strLumenPath = "lumen.exe";
    condition.m_strLumenCfgPath = "lumen.cfg";
    condition.m_eLogType = LOG_WARNING;
    condition.m_bDelTmp = false;
}

const char* const kEverySetting = R"([param]

##Number of Processor
multip=11

##Number of Threads
thread=12
activation_type=ETD-IT

##Tolerance
mstol=0.5
msmstol=0.02

##Tolerance Types
mstolppm=0
msmstolppm=1

##Maximum Modifications Per Peptide
maxmod=4

##Enzyme
enzyme=AspN D _ N  more

##Specificity, 0:Non-Specific;1:Semi-Specific;3:Fully-Specific
digest=1

##Number of Peptide Candidates
temppepnum=51

##Number of Final Peptides
pepnum=13

##Number of Selected Peaks
selectpeak=350
noproc=1

##Maximum Protein Length
maxprolen=18446744073709551615

##Maximum Number of Spectra
maxspec=4294967296

##Maximum Cleavage Sites
max_clv_sites=6

##Var Modifications (Separated by ';')
selectmod=Oxidation[M];Phospho[S];

##Fix Modifications (Separated by ';')
fixmod=Carbamidomethyl[C];

##Consider I and L as the same AA
IeqL=0

##The Length of the Possible Signal Peptides
npep=1
maxdelta=123457
center=-0.984016
[engine]

##Open Search or Not
open=-2

##Iterative Tag Search or Not
rest_tag_iteration=1

##Iterative Salvo Search or Not
salvo_iteration=0

##Tag Length in Open Search
open_tag_len=4
rest_tag_len=3
rest_mod_num=-1
salvo_mod_num=7
max_tag=4294967295
max_res_tag=150
digest_in_open=1
max_edge=65
max_gen_mod_pep=6000
max_round=14
[filter]

##The FDR Threshold, Usually 0.01
psm_fdr=0.015

##0: PSM Level;1: Peptide Level
psm_fdr_type=0
mass_lower=650.25
mass_upper=1.23457e+06
len_lower=7
len_upper=55

##Minimum Peptides per Protein
pep_per_pro=2

##The FDR Threshold of Protein, Usually 0.01
pro_fdr=1e-05
[file]

##Fasta File Path[IMPORTANT!]
fastapath=D:\db\human.fasta

##If 1 Then the Program will Generate a Decoy Database Automatically
auto_rev=0

##MSMSPath, Set as a null String
msmspath=D:\ms\a.mgf

##Output Path[IMPORTANT!]
outputpath=D:\out\

##Output ID
outputname=run 1

##The Path of modification.ini and aa.ini
modpath=D:\mods.ini
aapath=D:\aas.ini
[datalist]

##Number of MSMS Files[IMPORTANT!]
msmsfolder=1
msmsnum=3

##MSMS Files
msmspath1=D:\ms
msmspath2=
msmspath3=D:\more\

##MGF or MS2 or ZB2
msmstype=MGF
[quant]

##Quantification Method
quant=2|None|SILAC|
label_name=SILAC
label_id=-3
lumen_path=lumen.exe
lumen_cfg_path=lumen.cfg
[system]
log=LOG_WARNING

##Delete Temporary Files or Not
del_tmp_files=0

[Version Info]
1970.1.1.0.0.0
)";

TEST(condition_writer, every_setting_is_written_in_its_place) {
    CCondition condition;
    set_every_setting(condition);
    EXPECT_EQ(written(condition), kEverySetting);
}

TEST(condition_writer, fresh_condition_writes_the_defaults_of_the_object) {
    const std::string text = written(CCondition());
    for (const char* line : {"multip=1",           "thread=2",          "activation_type=HCD-FTMS",
                             "mstol=20",           "msmstol=20",        "enzyme=Trypsin KR _ C",
                             "digest=3",           "temppepnum=100",    "pepnum=10",
                             "maxprolen=60000000", "max_clv_sites=3",   "maxdelta=500",
                             "center=0",           "rest_tag_len=5",    "rest_mod_num=-1",
                             "psm_fdr=0.01",       "mass_upper=100000", "fastapath=",
                             "outputname=Test",    "msmstype=ZB2",      "quant=1|None|",
                             "label_id=0",         "log=LOG_INFO",      "del_tmp_files=1"}) {
        EXPECT_TRUE(has_line(text, line)) << line;
    }
}

TEST(condition_writer, empty_list_of_spectrum_files_has_two_placeholders) {
    EXPECT_NE(written(CCondition())
                  .find("\nmsmsfolder=0\nmsmsnum=0\n\n##MSMS Files\n"
                        "msmspath1=\nmsmspath2=\n\n##MGF or MS2 or ZB2\n"),
              std::string::npos);
}

TEST(condition_writer, one_spectrum_file_has_no_placeholder) {
    CCondition condition;
    condition.m_vMSMSFiles = {"a.mgf"};
    EXPECT_NE(written(condition).find("\nmsmsnum=1\n\n##MSMS Files\nmsmspath1=a.mgf\n\n##"),
              std::string::npos);
}

TEST(condition_writer, doubles_have_six_significant_digits) {
    const struct {
        double value;
        const char* text;
    } rows[] = {
        {20.0, "20"},
        {0.5, "0.5"},
        {0.01, "0.01"},
        {100000.0, "100000"},
        {999999.0, "999999"},
        {999999.5, "1e+06"},
        {1000000.0, "1e+06"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {1.0 / 3.0, "0.333333"},
        {-57.0214637, "-57.0215"},
        {-0.0, "-0"},
        {1e300, "1e+300"},
        {std::numeric_limits<double>::infinity(), "inf"},
        {-std::numeric_limits<double>::infinity(), "-inf"},
        {std::numeric_limits<double>::quiet_NaN(), "nan"},
    };
    for (const auto& row : rows) {
        CCondition condition;
        condition.m_lfPrecursorTol = row.value;
        EXPECT_TRUE(has_line(written(condition), std::string("mstol=") + row.text)) << row.text;
    }
}

TEST(condition_writer, log_levels_are_written_by_name) {
    const struct {
        LOG_TYPE level;
        const char* line;
    } rows[] = {{LOG_ALERT, "log=LOG_ALERT"},
                {LOG_SILENT, "log=LOG_SILENT"},
                {LOG_WARNING, "log=LOG_WARNING"},
                {LOG_INFO, "log=LOG_INFO"},
                {LOG_DEBUG, "log=LOG_DEBUG"}};
    for (const auto& row : rows) {
        CCondition condition;
        condition.m_eLogType = row.level;
        EXPECT_TRUE(has_line(written(condition), row.line)) << row.line;
    }
}

TEST(condition_writer, global_locale_does_not_matter) {
    class CComma : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    CCondition condition;
    set_every_setting(condition);
    const std::locale before = std::locale::global(std::locale(std::locale(), new CComma));
    const std::string text = written(condition);
    std::locale::global(before);
    EXPECT_EQ(text, kEverySetting);
}

// ---- The file ----

TEST(condition_writer, longer_file_is_replaced) {
    const CTimeZone utc("UTC0");
    const test::CTempFolder folder;
    const test::CWorkingFolder working(folder.Path());
    const std::string path = folder.Write("search.ini", std::string(100000, 'x'));
    CCondition condition;
    set_every_setting(condition);
    const CConditionWriter writer(path, &condition);
    EXPECT_EQ(test::captured_output([&writer] { writer.Write(); }), "");
    EXPECT_EQ(test::read_file(path), kEverySetting);
}

TEST(condition_writer, path_may_hold_backslashes) {
    const test::CTempFolder folder;
    const CCondition condition;
    CConditionWriter(folder.Path() + "\\search.ini", &condition).Write();
    EXPECT_TRUE(folder.Has("search.ini"));
}

TEST(condition_writer, file_that_cannot_be_opened_is_passed_over_silently) {
    const test::CTempFolder folder;
    const CCondition condition;
    for (const std::string& path :
         {folder.Path(), folder.Path("no/folder/search.ini"), std::string()}) {
        const CConditionWriter writer(path, &condition);
        EXPECT_EQ(test::captured_output([&writer] { writer.Write(); }), "") << path;
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(condition_writer, file_that_cannot_be_written_completely_is_reported) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
    const CCondition condition;
    const CConditionWriter writer("/dev/full", &condition);
    EXPECT_EQ(test::captured_output([&writer] { writer.Write(); }),
              "[Tessel] ALERT: Write_Failed: [/dev/full]\n");
}

// ---- The version line ----

TEST(condition_writer, version_is_the_time_of_the_program_without_leading_zeros) {
    EXPECT_EQ(version_line_at(kMarch, "UTC0"), "2014.3.7.9.5.30\n");
    EXPECT_EQ(version_line_at(kJuly, "UTC0"), "2021.7.31.22.59.59\n");
}

TEST(condition_writer, without_the_program_the_version_is_time_zero) {
    const CTimeZone utc("UTC0");
    const test::CTempFolder folder;
    const test::CWorkingFolder working(folder.Path());
    const CCondition condition;
    CConditionWriter(folder.Path("search.ini"), &condition).Write();
    EXPECT_EQ(version_line(folder.Read("search.ini")), "1970.1.1.0.0.0\n");
}

// ---- Reading back ----

// Settings that pass the reader's checks: within its caps, and the numbers within what an int
// holds, because that is how the reader takes them.
class CRandomSettings {
public:
    explicit CRandomSettings(unsigned seed) : m_cEngine(seed) {}

    void Fill(CCondition& condition, const CParameterFile& file) {
        FillParam(condition);
        FillEngine(condition);
        FillFilter(condition);
        FillQuant(condition);
        const std::string& folder = file.Folder().Path();
        condition.m_strFastaPath = folder + "/proteins.fasta";
        condition.m_strInputFastaPath = condition.m_strFastaPath;
        condition.m_bAutoRev = Flag();
        condition.m_strMSMSPath = Text();
        condition.m_strOutputPath = folder + '\\';
        condition.m_strOutputName = Text();
        condition.m_strModPath = folder + "\\modification.ini";
        condition.m_strAAPath = folder + "/aa.ini";
        condition.m_vMSMSFiles.resize(Count(5), folder + "\\proteins.fasta");
        condition.m_strMSMSType = Text();
        condition.m_eLogType = static_cast<LOG_TYPE>(Count(4));
        condition.m_bDelTmp = Flag();
    }

private:
    void FillParam(CCondition& condition) {
        const char* const enzymes[] = {"", "Trypsin KR _ C", " X  K P C\tD _ N ", "None"};
        condition.m_nMultip = Integer();
        condition.m_tThreadNum = Count(kMax);
        condition.m_strActivationType = Text();
        condition.m_lfPrecursorTol = Real();
        condition.m_lfFragmentTol = Real();
        condition.m_bPrecursorPPM = Flag();
        condition.m_bFragmentPPM = Flag();
        condition.m_tMaxModNum = Count(20);
        condition.m_cEnzyme.Init(enzymes[Count(3)]);
        condition.m_ucDigest = static_cast<unsigned char>(Count(3));
        condition.m_tTempPepNum = Count(kMax);
        condition.m_tPepNum = Count(kMax);
        condition.m_tSelectPeak = Count(5000);
        condition.m_bNoProc = Flag();
        condition.m_tMaxProLen = Count(kMax);
        condition.m_nMaxSpec = Count(kMax);
        condition.m_tMaxClvSites = Count(kMax);
        condition.m_strSelectMod = Text();
        condition.m_strFixMod = Text();
        condition.m_bIeqL = Flag();
        condition.m_bNPep = Flag();
        condition.m_nSignalPepLen = condition.m_bNPep ? 60 : 1;
        condition.m_lfMaxDelta = Real();
        condition.m_lfCenter = Real();
    }

    void FillEngine(CCondition& condition) {
        condition.m_nOpen = Integer();
        condition.m_bRestTagIteration = Flag();
        condition.m_bSalvoIteration = Flag();
        condition.m_nOpenTagLen = static_cast<int>(Count(6));
        condition.m_nRestTagLen = static_cast<int>(Count(6));
        condition.m_nRestModNum = Integer();
        condition.m_nSalvoModNum = Integer();
        condition.m_uMaxTag = static_cast<std::uint32_t>(Count(kMax));
        condition.m_uMaxResTag = static_cast<std::uint32_t>(Count(kMax));
        condition.m_bDigestInOpen = Flag();
        condition.m_ucMaxEdge = static_cast<unsigned char>(Count(255));
        condition.m_nMaxGenModPep = Integer();
        condition.m_nMaxRound = Integer();
    }

    void FillFilter(CCondition& condition) {
        condition.m_lfPsmFdr = Real();
        condition.m_nPsmFdrType = Integer();
        condition.m_lfMassLower = Real();
        condition.m_lfMassUpper = Real();
        condition.m_nLenLower = Integer();
        condition.m_nLenUpper = Integer();
        condition.m_nPepPerPro = Integer();
        condition.m_lfProFdr = Real();
    }

    void FillQuant(CCondition& condition) {
        condition.m_strQuant = Text();
        condition.m_strLabelName = Text();
        condition.m_sLabelID = static_cast<std::int16_t>(Integer());
        condition.m_strLumenPath = Text();
        condition.m_strLumenCfgPath = Text();
    }

    static constexpr std::size_t kMax = std::numeric_limits<int>::max();

    std::size_t Count(std::size_t largest) { return m_cEngine() % (largest + 1); }
    int Integer() { return static_cast<int>(m_cEngine()); }
    bool Flag() { return Count(1) == 1; }
    // Mostly up to six digits; half a large number is rounded when it is written.
    double Real() {
        const double digits = static_cast<double>(Count(999999));
        const double powers[] = {1.0, 2.0, 10.0, 1000.0, 1e6, 1e9};
        const double value = digits / powers[Count(5)];
        return Flag() ? value : -value;
    }
    // Blanks, "=", "[" and bytes above 127 included; line ends are not.
    std::string Text() {
        std::string text(Count(20), ' ');
        for (char& c : text)
            c = static_cast<char>(Flag() ? ' ' + Count('~' - ' ') : 0x80 + Count(0x7F));
        return text;
    }

    std::mt19937 m_cEngine;
};

std::string rewritten(const CCondition& condition, const CParameterFile& file) {
    CConditionWriter(file.Path(), &condition).Write();
    CConditionReader reader(file.Path());
    test::captured_output([&reader] { reader.Read(); });
    return written(reader.m_cCondition);
}

TEST(condition_writer, random_settings_written_read_and_written_give_the_same_bytes) {
    const CParameterFile file;
    for (unsigned seed = 1; seed <= 200; ++seed) {
        CCondition condition;
        CRandomSettings(seed).Fill(condition, file);
        ASSERT_EQ(rewritten(condition, file), written(condition)) << "seed " << seed;
    }
}

TEST(condition_writer, settings_that_six_digits_hold_are_restored) {
    const CParameterFile file;
    CCondition condition;
    CRandomSettings(0).Fill(condition, file);
    for (double* real :
         {&condition.m_lfPrecursorTol, &condition.m_lfFragmentTol, &condition.m_lfMaxDelta,
          &condition.m_lfCenter, &condition.m_lfPsmFdr, &condition.m_lfProFdr,
          &condition.m_lfMassLower, &condition.m_lfMassUpper}) {
        *real = 123.456;
    }
    CConditionWriter(file.Path(), &condition).Write();
    CConditionReader reader(file.Path());
    test::captured_output([&reader] { reader.Read(); });
    EXPECT_EQ(settings_of(reader.m_cCondition), settings_of(condition));
}

TEST(condition_writer, list_of_folders_is_read_back_as_folders) {
    const CParameterFile file;
    const std::string folder = file.Folder().Path();
    file.Folder().Write("b.mgf", "");
    CCondition condition;
    CRandomSettings(0).Fill(condition, file);
    condition.m_bMSMSFolder = true;
    condition.m_strMSMSType = "MGF";
    condition.m_vMSMSFiles = {folder};
    CConditionWriter(file.Path(), &condition).Write();
    CConditionReader reader(file.Path());
    test::captured_output([&reader] { reader.Read(); });
    EXPECT_EQ(reader.m_cCondition.m_vMSMSFiles, (std::vector<std::string>{folder + "\\b.mgf"}));
}

TEST(condition_writer, counts_beyond_an_int_are_read_back_as_the_largest) {
    const CParameterFile file;
    CCondition condition;
    CRandomSettings(0).Fill(condition, file);
    condition.m_uMaxTag = 4294967295;
    condition.m_tMaxProLen = std::numeric_limits<std::size_t>::max();
    CConditionWriter(file.Path(), &condition).Write();
    CConditionReader reader(file.Path());
    test::captured_output([&reader] { reader.Read(); });
    EXPECT_EQ(reader.m_cCondition.m_uMaxTag, 2147483647u);
    EXPECT_EQ(reader.m_cCondition.m_tMaxProLen, 2147483647u);
}

TEST(condition_writer, each_step_appends_its_section) {
    const CCondition condition;
    const CConditionWriter writer("unused", &condition);
    struct {
        void (CConditionWriter::*step)(std::string&) const;
        const char* begin;
    } rows[] = {
        {&CConditionWriter::_WriteParam, "x[param]\n\n##Number of Processor\n"},
        {&CConditionWriter::_WriteEngine, "x[engine]\n\n##Open Search or Not\n"},
        {&CConditionWriter::_WriteFilter, "x[filter]\n\n##The FDR Threshold, Usually 0.01\n"},
        {&CConditionWriter::_WriteData, "x[file]\n\n##Fasta File Path[IMPORTANT!]\n"},
        {&CConditionWriter::_WriteQuant, "x[quant]\n\n##Quantification Method\n"},
        {&CConditionWriter::_WriteSystem, "x[system]\nlog=LOG_INFO\n"},
    };
    for (const auto& row : rows) {
        std::string text = "x";
        (writer.*row.step)(text);
        EXPECT_TRUE(text.starts_with(row.begin)) << text;
    }
}

}  // namespace
}  // namespace tessel
