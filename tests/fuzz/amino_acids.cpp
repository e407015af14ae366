// Amino-acid tables: read, weighed by a plain sum, written, read back.

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

const std::map<std::string, double> kElements = {{"C", 12.0},    {"13C", 13.0034}, {"H", 1.0078},
                                                 {"N", 14.0031}, {"O", 15.9949},   {"S", 31.9721}};

// Stored compositions are groups of symbol, "(", count text, ")" only.
double plain_mass(const std::string& composition) {
    double mass = 0.0;
    std::vector<std::string> groups = plain_fields(composition, ')');
    check(groups.back().empty(), "compositions end with a group");
    groups.pop_back();
    for (const std::string& group : groups) {
        const std::vector<std::string> parts = plain_fields(group, '(');
        check(parts.size() == 2 && !parts[0].empty() && !parts[1].empty(), "groups are whole");
        const auto element = kElements.find(parts[0]);
        mass += (element == kElements.end() ? 0.0 : element->second) *
                plain_integer<int>(parts[1]).value;
    }
    return mass;
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
    for (std::size_t i = 0; i < kResidueLetters; ++i) {
        check(read.m_lfMass[i] == plain_mass(read.m_strComposition[i]),
              "masses are sums over compositions");
    }

    condition.m_strOutputPath = scratch_path("");
    condition.WriteAA(0);
    read_residues_of(condition, condition.GetTmpAAPath(0));
    check(condition.m_cAlphaBet.m_strComposition == read.m_strComposition &&
              condition.m_cAlphaBet.m_lfMass == read.m_lfMass,
          "tables read back as written");
    check_scratch_files("1.aa aa.ini");
}

}  // namespace tessel::fuzz
