// Enzyme definitions: one line, then a protein in which every position is asked about.

#include "tessel/space/enzyme.h"

#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

struct RULE {
    bool given = false;
    std::string sites;
    std::string restriction;

    bool Cuts(char residue) const { return given && sites.find(residue) != std::string::npos; }
};

void check_positions(const CEnzyme& enzyme, const RULE& c, const RULE& n,
                     const std::string& protein) {
    const std::size_t size = protein.size();
    for (std::size_t at = 0; at <= size + 2; ++at) {
        const bool inside = at > 0 && at < size;
        const bool afterC = inside && c.Cuts(protein[at - 1]);
        const bool beforeN = inside && n.Cuts(protein[at]);
        const bool allowed = inside && c.restriction.find(protein[at]) == std::string::npos;
        const bool afterM = inside && at == 1 && protein[0] == 'M';
        check(enzyme.IsValidCleavage(protein, at) ==
                  (at == 0 || at == size || afterM || (afterC && allowed) || beforeN),
              "cleavage follows the rules");
        check(
            enzyme.IsValidPosition(protein, at, 0) == (at == 0 || at == size || afterC || beforeN),
            "boundaries follow the rules");
        check(enzyme.IsValidPosition(protein, at, at), "a position is a boundary behind itself");
    }
}

}  // namespace

void run(CBytes input) {
    const std::string definition(input.Until('\n'));
    const std::vector<std::string> words = plain_words(definition);
    RULE c;
    RULE n;
    bool invalid = false;
    for (std::size_t i = 1; i + 2 < words.size() && !invalid; i += 3) {
        invalid = words[i + 2] != "C" && words[i + 2] != "N";
        (words[i + 2] == "C" ? c : n) = {true, words[i], words[i + 1]};
    }
    CEnzyme enzyme;
    check(ends_process([&] { enzyme.Init(definition); }) == invalid, "a wrong side ends it all");
    check(enzyme.InfoString() == definition, "the definition is kept");
    if (invalid) return;
    check(enzyme.m_strName == (words.empty() ? "" : words[0]), "the name comes first");
    check(enzyme.m_strNRestrict == n.restriction && enzyme.m_strCRestrict == c.restriction,
          "the last rule of a side stays");
    check_positions(enzyme, c, n, std::string(input.Text()));
}

}  // namespace tessel::fuzz
