// FASTA files: the target-decoy database made of one, against a plain making of it, then in
// batches.

#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

std::vector<CProtein> plain_proteins(std::string_view text) {
    std::vector<CProtein> proteins;
    for (const std::string& line : plain_lines(text)) {
        if (line.starts_with('>')) {
            const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
            proteins.push_back({line.substr(1, end - 1), trimmed(line.substr(end)), ""});
        } else if (!proteins.empty()) {
            for (const std::string& word : plain_words(line))
                proteins.back().m_strSQ += word;
        }
    }
    return proteins;
}

std::string plain_target_decoy(const std::vector<CProtein>& proteins) {
    std::string text;
    std::size_t number = 0;
    for (const CProtein& protein : proteins) {
        text += '>' + protein.m_strAC + '\t' + protein.m_strDE + "\t\n" + protein.m_strSQ + '\n';
        text += ">REV_" + protein.m_strAC + "\t_REV" + std::to_string(++number) + '\n' +
                std::string(protein.m_strSQ.rbegin(), protein.m_strSQ.rend()) + '\n';
    }
    return text;
}

void check_batches(CCondition& condition, const std::vector<CProtein>& expected) {
    CFastaLoader& loader = condition.m_cFastaLoader;
    loader.Reset();
    std::size_t read = 0;
    for (bool more = true; more;) {
        more = loader.ReadNextBatch();
        std::size_t residues = 0;
        for (const CProtein& protein : loader.m_vProteins) {
            check(residues <= condition.m_tMaxProLen, "only the last protein crosses the limit");
            residues += protein.m_strSQ.size();
            check(read < expected.size() && protein.m_strAC == expected[read].m_strAC &&
                      protein.m_strDE == expected[read].m_strDE &&
                      protein.m_strSQ == expected[read].m_strSQ,
                  "proteins are read in their order");
            ++read;
        }
        check(residues == loader.m_tResidueNum && read == loader.m_tReadNum, "totals are kept");
        check(!more || !loader.m_vProteins.empty(), "batches make progress");
    }
    check(read == expected.size() && loader.m_bEnd, "every protein is read");
}

}  // namespace

void run(CBytes input) {
    static CCondition condition;
    condition.m_strFastaPath = scratch_path("a.fasta");
    condition.m_tMaxProLen = input.Byte();
    write_scratch("a.fasta", input.Text());
    remove_file(scratch_path("a.fasta_td.fasta"));
    condition.SetFastaPath();

    const std::vector<CProtein> proteins = plain_proteins(input.Text());
    check(read_scratch("a.fasta_td.fasta") == plain_target_decoy(proteins),
          "every protein is followed by its decoy");
    check_batches(condition, plain_proteins(plain_target_decoy(proteins)));
    condition.m_strInputFastaPath = condition.m_strFastaPath;
    check_batches(condition, proteins);
    check_scratch_files("a.fasta a.fasta_td.fasta");
}

}  // namespace tessel::fuzz
