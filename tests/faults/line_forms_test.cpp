// Every text that the library reads, in the forms that editors and systems give it: line ends of
// Windows and of old Macs, a byte-order mark, zero bytes, and nothing at all.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "tessel/condition/utilities.h"
#include "tessel/param/condition_reader.h"
#include "tessel/platform/file.h"
#include "tessel/space/ion_type.h"
#include "tests/chem/chemistry.h"
#include "tests/support/captured.h"
#include "tests/support/zb2_writer.h"

namespace tessel {
namespace {

using namespace std::string_literals;

using test::CChemistry;

// Whole numbers in these tests.
std::string shown(double value) {
    return std::to_string(static_cast<long long>(value));
}

// ---- Readers: a text comes in, what was read is told in words ----

std::string read_parameters(const std::string& text) {
    CChemistry chemistry;
    chemistry.m_cFolder.Write("db.fasta", "");
    chemistry.m_cFolder.Write("aa.ini", "");
    chemistry.m_cFolder.Write("modification.ini", "");
    CConditionReader reader(chemistry.m_cFolder.Write("search.param", text));
    reader._LoadParam();
    reader._LoadQuant();
    const CCondition& condition = reader.m_cCondition;
    return condition.m_cEnzyme.m_strName + ' ' + shown(condition.m_lfPrecursorTol) + ' ' +
           shown(static_cast<double>(condition.m_tThreadNum)) + ' ' + condition.m_strSelectMod +
           ' ' + condition.m_strQuant;
}

std::string read_elements(const std::string& text) {
    CChemistry chemistry;
    chemistry.Elements(text);
    std::string read;
    for (const auto& [symbol, mass] : chemistry.m_cCondition.m_mapElementMass)
        read += symbol + shown(mass) + ' ';
    return read;
}

std::string read_residues(const std::string& text) {
    CChemistry chemistry;
    chemistry.Elements();
    chemistry.Residues(text);
    std::string read;
    for (const char letter : "GK"s)
        read +=
            shown(
                chemistry.m_cCondition.m_cAlphaBet.m_lfMass[static_cast<unsigned>(letter - 'A')]) +
            ' ';
    return read;
}

std::string read_mods(const std::string& text) {
    CChemistry chemistry;
    chemistry.Mods(text);
    std::string read;
    for (const CMod& mod : chemistry.m_cCondition.m_vMods)
        read += mod.m_strName + ' ' + shown(mod.m_lfMass) + ' ' + std::to_string(mod.m_nFlag) +
                ' ' + mod.m_strComposition + ' ';
    return read;
}

// The label is the second of the file; the process ends where it is not found.
std::string read_label(const std::string& text) {
    CChemistry chemistry;
    chemistry.Labels(text);
    chemistry.m_cCondition.ReadLabelInfo("Heavy");
    std::string read;
    for (const auto& [letter, elements] : chemistry.m_cCondition.m_mapAALabel)
        for (const auto& [element, replacement] : elements)
            read += letter + element + replacement + ' ';
    return read;
}

std::string read_learned(const std::string& text) {
    CChemistry chemistry;
    chemistry.Mods("A=K NORMAL 1 1 0 H(1)\nB=K NORMAL 2 2 0 H(2)\n");
    CCondition& condition = chemistry.m_cCondition;
    condition.m_strOutputPath = chemistry.m_cFolder.Path() + '\\';
    condition.m_strOutputName = "run";
    condition.CreateModList();
    chemistry.m_cFolder.Write("run.learn", text);
    std::string read;
    test::captured_output([&] { read = condition.SetSelMod(9) ? "" : "missing"; });
    for (const CMod* mod : condition.m_vSelMods)
        read += mod->m_strName + ' ';
    for (const double coefficient : condition.m_lfCleaveProb)
        read += shown(coefficient) + ' ';
    return read;
}

std::string read_enzyme(const std::string& text) {
    CEnzyme enzyme;
    enzyme.Init(text);
    return enzyme.m_strName + ' ' + enzyme.m_strCSites + ' ' + enzyme.m_strCRestrict;
}

std::string read_ion_type(const std::string& text) {
    CIonType type;
    type.Init(text);
    return type.m_strName + ' ' + std::to_string(type.m_nCharge) + ' ' + shown(type.m_lfOffset);
}

std::string spectra_of(CCondition& condition, const std::string& type) {
    condition.m_strMSMSType = type;
    std::string read;
    test::captured_output([&] { EXPECT_FALSE(condition.LoadSpectra(true)); });
    for (const CSpectrum& spectrum : condition.m_vSpectra)
        read += spectrum.m_strTitle + ' ' + std::to_string(spectrum.m_nCharge) + ' ' +
                std::to_string(spectrum.m_vPeaks.size()) + ' ';
    return read;
}

std::string read_mgf(const std::string& text) {
    CChemistry chemistry;
    chemistry.m_cCondition.m_strMSMSPath = chemistry.m_cFolder.Write("a.mgf", text);
    return spectra_of(chemistry.m_cCondition, "MGF");
}

// The list names ZB2 files of one spectrum each.
std::string read_zbs(const std::string& text) {
    CChemistry chemistry;
    for (const std::string name : {"a", "b"})
        chemistry.m_cFolder.Write(name + ".zb2", test::zb2_file(name, test::plain_scans(1)));
    chemistry.m_cCondition.m_strMSMSPath = chemistry.m_cFolder.Write("list.zbs", text);
    return spectra_of(chemistry.m_cCondition, "ZBS");
}

std::string read_database(const std::string& text) {
    CChemistry chemistry;
    chemistry.m_cCondition.m_strFastaPath = chemistry.m_cFolder.Write("db.fasta", text);
    chemistry.m_cCondition.SetFastaPath();
    return chemistry.m_cFolder.Read("db.fasta_td.fasta");
}

std::string read_lines(const std::string& text, const char* extension,
                       void (CCondition::*read)(std::vector<std::string>&) const) {
    CChemistry chemistry;
    chemistry.m_cFolder.Write("db"s + extension, text);
    chemistry.m_cCondition.m_strInputFastaPath = "db.fasta";
    std::vector<std::string> lines;
    (chemistry.m_cCondition.*read)(lines);
    std::string all;
    for (const std::string& line : lines)
        all += '<' + line + '>';
    return all;
}

std::string read_accessions(const std::string& text) {
    return read_lines(text, ".pac", &CCondition::ReadProteinAC);
}

std::string read_descriptions(const std::string& text) {
    return read_lines(text, ".pde", &CCondition::ReadProteinDE);
}

std::string read_results(const std::string& text) {
    CChemistry chemistry;
    const std::string path = chemistry.m_cFolder.Write("a.res", text);
    test::captured_output([&] { chemistry.m_cCondition.LoadResult({path}, 10, 1e9); });
    std::string read;
    for (const auto& [title, spectrum] : chemistry.m_cCondition.m_mapPSMRes) {
        read += '<' + title + "> " + std::to_string(spectrum.m_nCharge) + ' ';
        for (const CPepRes& pep : spectrum.m_vPeps)
            read += pep.m_strSeq + ' ' + std::to_string(pep.m_nAuxB[3]) + ' ';
    }
    return read;
}

// ---- The forms ----

struct READER {
    const char* m_szName;
    std::string (*m_fRead)(const std::string& text);
    std::string m_strText;     // with line feeds
    std::string m_strRead;     // of that text, of its other forms too
    std::string m_strOneLine;  // of the text with carriage returns in place of line feeds
    std::string m_strNothing;  // of the empty text
};

void PrintTo(const READER& reader, std::ostream* out) {
    *out << reader.m_szName;
}

const std::string kPeptide =
    "PEP\t800\t9\t0.5\t1\t0\t1\t0\t0\t0\t0\t1\t2\t3\t4\t5\t1\t2\t3\t4\t5\t6\t7\t8";

const READER kReaders[] = {
    {"parameters", read_parameters,
     "## comment\n[param]\nenzyme=Lys K _ "
     "C\nmstol=15\nthread=7\nselectmod=A;B\n[quant]\nquant=2|a|b\n",
     "Lys 15 7 A;B 2|a|b", "Trypsin 20 2  1|None", "Trypsin 20 2  1|None"},
    {"elements", read_elements, "E1=H|1.0,|1.0,|\nE2=C|12.0,|1.0,|\n", "C12 H1 ", "H1 ", ""},
    {"residues", read_residues, "R1=G|C(2)H(3)|\nR2=K|C(6)|\n", "27 72 ", "27 0 ", "0 0 "},
    // Carriage returns are white space: the second definition is more of the first one's fields.
    {"modifications", read_mods,
     "name1=A\t7\nA=K NORMAL 1 1 0 H(1)\nname2=B\t0\nB=K NORMAL 2 2 0 H(2)\n",
     "A 1 7 H(1) B 2 0 H(2) ", "", ""},
    {"learned", read_learned,
     "heading\nB 1 0.5\n[----mod prob end----]\n[----cleave prob----]\n0 3\n1 4\n2 5\n3 6\n",
     "B 3 4 5 6 ", "1 1 1 1 ", "1 1 1 1 "},
    {"spectra", read_mgf,
     "BEGIN IONS\nTITLE=a.1.1\nCHARGE=2+\nPEPMASS=500\n100 1\n200 2\nEND IONS\n"
     "BEGIN IONS\nTITLE=b.1.1\nCHARGE=3+\nPEPMASS=500\n100 1\nEND IONS\n",
     "a.1.1 2 2 b.1.1 3 1 ", "1.0.0.0.dta 0 0 ", ""},
    {"spectrum files", read_zbs, "a.zb2\nb.zb2\n", "a.1.1.2.0.dta 2 1 b.1.1.2.0.dta 2 1 ", "", ""},
    {"proteins", read_database, ">P one\nAC\nDE\n>Q\nK\n",
     ">P\tone\t\nACDE\n>REV_P\t_REV1\nEDCA\n>Q\t\t\nK\n>REV_Q\t_REV2\nK\n",
     ">P\tone\rAC\rDE\r>Q\rK\t\n\n>REV_P\t_REV1\n\n", ""},
    {"accessions", read_accessions, "P\nQ\n", "<P><Q>", "<P\rQ>", ""},
    {"descriptions", read_descriptions, "one\n\ntwo\n", "<one><><two>", "<one\r\rtwo>", ""},
    // The head's line is the whole file; it has no title.
    {"results", read_results, "S\t900\t2\nt.1.1\n1\t" + kPeptide + "\n2\t" + kPeptide + '\n',
     "<t.1.1> 2 PEP 8 ", "", ""},
};

class line_forms : public testing::TestWithParam<READER> {
protected:
    std::string Read(const std::string& text) const { return GetParam().m_fRead(text); }
    std::string WithLineEnds(const std::string& end) const {
        std::string text;
        for (const char c : GetParam().m_strText)
            text += c == '\n' ? end : std::string(1, c);
        return text;
    }
};

INSTANTIATE_TEST_SUITE_P(readers, line_forms, testing::ValuesIn(kReaders), [](const auto& reader) {
    std::string name = reader.param.m_szName;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});

TEST_P(line_forms, line_feeds_end_lines) {
    EXPECT_EQ(Read(GetParam().m_strText), GetParam().m_strRead);
}

TEST_P(line_forms, line_ends_of_windows_are_the_same) {
    EXPECT_EQ(Read(WithLineEnds("\r\n")), GetParam().m_strRead);
}

TEST_P(line_forms, carriage_returns_alone_make_one_line) {
    EXPECT_EQ(Read(WithLineEnds("\r")), GetParam().m_strOneLine);
}

TEST_P(line_forms, byte_order_mark_is_no_text) {
    EXPECT_EQ(Read("\xEF\xBB\xBF" + GetParam().m_strText), GetParam().m_strRead);
    EXPECT_EQ(Read("\xEF\xBB\xBF" + WithLineEnds("\r\n")), GetParam().m_strRead);
    EXPECT_EQ(Read("\xEF\xBB\xBF"), GetParam().m_strNothing);
}

TEST_P(line_forms, last_line_needs_no_end) {
    std::string text = GetParam().m_strText;
    text.pop_back();
    EXPECT_EQ(Read(text), GetParam().m_strRead);
}

TEST_P(line_forms, empty_file_holds_nothing) {
    EXPECT_EQ(Read(""), GetParam().m_strNothing);
}

TEST_P(line_forms, text_of_one_byte_a_million_times_is_read_to_its_end) {
    for (const char byte : {'\0', '\r', '\n', ' ', '=', '>', '\xFF', '\x1A'}) {
        SCOPED_TRACE(static_cast<int>(byte));
        Read(std::string(1'000'000, byte));
    }
}

// In lists every line counts; elsewhere one of zero bytes is a line without a meaning.
TEST_P(line_forms, line_of_zero_bytes_does_not_hide_the_others) {
    const std::string zeros = "\0\0\0\n"s;
    const std::string name = GetParam().m_szName;
    const std::string listed = name == "accessions" || name == "descriptions" ? "<\0\0\0>"s : "";
    if (name == "learned") {  // whose first line is a heading
        EXPECT_EQ(Read("heading\n" + zeros + GetParam().m_strText.substr(8)), GetParam().m_strRead);
    } else {
        EXPECT_EQ(Read(zeros + GetParam().m_strText), listed + GetParam().m_strRead);
    }
}

TEST(line_forms, label_is_found_in_every_form) {
    const std::string text = "heading\nNone=none\nHeavy=R:K{C,13C}R:R{N,15N}\n";
    const std::string read = "KC13C RN15N ";
    std::string windows;
    for (const char c : text)
        windows += c == '\n' ? "\r\n" : std::string(1, c);
    EXPECT_EQ(read_label(text), read);
    EXPECT_EQ(read_label(windows), read);
    EXPECT_EQ(read_label("\xEF\xBB\xBF" + windows), read);
    EXPECT_EQ(read_label("\xEF\xBB\xBFheading\n\0\0\n"s + text), read);
    EXPECT_EQ(read_label(text.substr(0, text.size() - 1)), read);
}

TEST(line_forms, label_is_not_found_in_an_empty_file_or_one_of_carriage_returns) {
    const std::string alert = "[Tessel] ALERT: Cannot find the label: Heavy\n";
    EXPECT_ENDS_PROCESS(read_label(""), alert, "");
    EXPECT_ENDS_PROCESS(read_label("heading\rHeavy=R:K{C,13C}\r"), alert, "");
    EXPECT_ENDS_PROCESS(read_label("\0\0\0"s), alert, "");
}

TEST(line_forms, line_ends_behind_an_enzyme_or_ion_type_are_blanks) {
    for (const std::string end : {"", "\r", "\r\n", "\n", " \t"}) {
        EXPECT_EQ(read_enzyme("Trypsin KR P C" + end), "Trypsin KR P");
        EXPECT_EQ(read_ion_type("y 2 0 1 18" + end), "y 2 18");
    }
    EXPECT_EQ(read_enzyme(""), "  ");
    EXPECT_EQ(read_ion_type(""), " 0 0");
    EXPECT_EQ(read_enzyme("Try\0psin KR P C"s), "Try\0psin KR P"s);
    EXPECT_EQ(read_ion_type("y\0 2 0 1 18"s), "y\0 2 18"s);
}

TEST(line_forms, whole_lines_come_with_their_ends) {
    for (const std::string text : {"a\nlast\r\n", "last\r\n", "\xEF\xBB\xBFlast\r\n"}) {
        const test::CTempFolder folder;
        const FilePtr file = open_file(folder.Write("lines", text), "rb");
        std::size_t size = 16;
        char* buffer = new char[size]();
        EXPECT_EQ(_get_line(file.get(), &buffer, size), 0);
        EXPECT_EQ(buffer, text.substr(text.find('\n') == 1 ? 2 : 0));
        delete[] buffer;
    }
}

}  // namespace
}  // namespace tessel
