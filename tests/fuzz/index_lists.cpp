// Accession and description files of a database: one text is both.

#include <algorithm>

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {

void run(CBytes input) {
    static CCondition condition;
    condition.m_strInputFastaPath = scratch_path("a.fasta");
    write_scratch("a.pac", input.Text());
    write_scratch("a.pde", input.Text());
    std::vector<std::string> lines = plain_lines(input.Text());
    std::vector<std::string> read{"old"};
    condition.ReadProteinDE(read);
    check(read == lines, "every line is a description");
    lines.erase(std::find(lines.begin(), lines.end(), ""), lines.end());
    condition.ReadProteinAC(read);
    check(read == lines, "lines up to the first empty one are accessions");
}

}  // namespace tessel::fuzz
