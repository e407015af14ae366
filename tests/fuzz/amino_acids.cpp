// Amino-acid tables: read, against a plain reading, written, read back.

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

const std::map<std::string, double> kElements = {{"C", 12.0},    {"13C", 13.0034}, {"H", 1.0078},
                                                 {"N", 14.0031}, {"O", 15.9949},   {"S", 31.9721}};

// Groups end at ")"; one without a symbol or a count is left out.
void plain_weigh(const std::string& composition, std::string& groups, double& mass) {
    groups = "";
    mass = 0.0;
    for (const std::string& piece : plain_fields(composition, ')')) {
        const std::vector<std::string> parts = plain_fields(piece, '(');
        std::string count;  // the first that is not empty
        for (std::size_t i = 1; i < parts.size() && count.empty(); ++i)
            count = parts[i];
        if (parts[0].empty() || count.empty()) continue;
        groups += parts[0] + '(' + count + ')';
        const auto element = kElements.find(parts[0]);
        mass +=
            (element == kElements.end() ? 0.0 : element->second) * plain_integer<int>(count).value;
    }
}

CAlphaBet plain_alphabet(std::string_view text) {
    CAlphaBet alphabet;
    for (const std::string& line : plain_lines(text)) {
        const std::size_t sign = line.find('=');
        if (!line.starts_with('R') || sign == std::string::npos) continue;
        std::vector<std::string> fields = plain_fields(line.substr(sign + 1), '|');
        fields.resize(2);
        const char letter = fields[0].empty() ? '\0' : fields[0][0];
        if (letter < 'A' || letter > 'Z') continue;
        const auto index = static_cast<std::size_t>(letter - 'A');
        plain_weigh(fields[1], alphabet.m_strComposition[index], alphabet.m_lfMass[index]);
    }
    return alphabet;
}

bool same_alphabets(const CAlphaBet& a, const CAlphaBet& b) {
    return a.m_strComposition == b.m_strComposition && a.m_lfMass == b.m_lfMass;
}

void read_residues_of(CCondition& condition, const std::string& path) {
    condition.m_mapElementMass = kElements;
    condition.m_cAlphaBet = {};
    condition.m_strAAPath = path;
    condition.ReadAA();
}

}  // namespace

void run(CBytes input) {
    write_scratch("aa.ini", input.Text());
    static CCondition condition;
    read_residues_of(condition, scratch_path("aa.ini"));
    const CAlphaBet read = condition.m_cAlphaBet;
    check(same_alphabets(read, plain_alphabet(input.Text())), "residues are read and weighed");

    condition.m_strOutputPath = scratch_path("");
    condition.WriteAA(0);
    read_residues_of(condition, condition.GetTmpAAPath(0));
    check(same_alphabets(condition.m_cAlphaBet, read), "tables read back as written");
    check_scratch_files("1.aa aa.ini");
}

}  // namespace tessel::fuzz
