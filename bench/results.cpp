// Result files: read, written, joined.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "bench/decimal.h"
#include "bench/digest.h"
#include "bench/generate.h"
#include "bench/paths.h"
#include "bench/records.h"
#include "tessel/tessel.h"

namespace tessel::bench {
namespace {

constexpr std::size_t kDefinitions = 1500;
constexpr unsigned long long kMaxPeps = 100;
constexpr double kMaxFinalScore = 1e9;

// The names of the sites are looked up among the definitions and all mass shifts.
void prepare(CCondition& condition) {
    std::filesystem::current_path(TESSEL_DATA_FOLDER);
    condition.m_strAAPath = "aa.ini";
    condition.m_strModPath = mod_file(kDefinitions);
    condition.ReadElementInfo();
    condition.ReadAA();
    condition.ReadMod();
    condition.CreateModList();
}

template <class Results>
std::uint64_t digest_of_results(const Results& results) {
    CDigest digest;
    for (const auto& [title, spectrum] : results) {
        digest.Add(title);
        digest.Add(spectrum.m_nCharge);
        digest.Add(spectrum.m_lfMH);
        for (const CPepRes& pep : spectrum.m_vPeps) {
            digest.Add(pep.m_strSeq);
            for (const double number : {pep.m_lfScore, pep.m_lfFinalScore, pep.m_lfQValue,
                                        pep.m_lfPepMass, pep.m_lfMassDev})
                digest.Add(number);
            for (const double score : pep.m_lfSubScores)
                digest.Add(score);
            for (std::size_t i = 0; i < pep.m_ucModNum; ++i) {
                digest.Add(pep.m_pMods[i].m_ucPos);
                digest.Add(pep.m_pMods[i].m_pMod->m_strName);
            }
            for (const unsigned char byte :
                 {pep.m_ucAuxMax, pep.m_bDecoy, pep.m_ucAux1, pep.m_ucAux2})
                digest.Add(byte);
            for (const PRO_INFO& hit : pep.m_setProteins) {
                digest.Add(hit.m_nProID);
                digest.Add(hit.m_nSite);
                digest.Add(hit.m_cPrev);
                digest.Add(hit.m_cNext);
            }
            for (std::size_t i = 0; i < pep.m_nAuxA.size(); ++i) {
                digest.Add(pep.m_nAuxA[i]);
                digest.Add(pep.m_nAuxB[i]);
            }
        }
    }
    return digest.Value();
}

// ---- Reading ----

void load_library(CRound& round, std::size_t spectra) {
    const std::vector<std::string> paths = result_files(spectra, kDefinitions);
    CCondition condition;
    prepare(condition);
    round.Run([&] { condition.LoadResult(paths, kMaxPeps, kMaxFinalScore); });
    round.m_cFigures.m_uDigest = digest_of_results(condition.m_mapPSMRes);
}

// Plainly: token by token, every candidate a record of its own that is copied into its list.

constexpr std::size_t kLineBuffer = 81920;

// A plain record is copied, with all that it owns; it knows no moving.
class CCopiedPep : public CPepRes {
public:
    CCopiedPep() = default;
    CCopiedPep(const CCopiedPep&) = default;
    CCopiedPep& operator=(const CCopiedPep&) = default;
};

struct PLAIN_SPECTRUM {
    std::string m_strTitle;
    int m_nCharge = 0;
    double m_lfMH = 0.0;
    std::vector<CCopiedPep> m_vPeps;
};

using PlainResults = std::map<std::string, PLAIN_SPECTRUM>;

void expect(bool isRead) {
    if (!isRead) std::abort();
}

void plain_pep(CCondition& condition, CPepRes& pep, char* buffer, std::FILE* file) {
    int number = 0;
    unsigned sites = 0;
    expect(std::fscanf(file, "%s%lf%lf%lf%lf%u", buffer, &pep.m_lfPepMass, &pep.m_lfScore,
                       &pep.m_lfFinalScore, &pep.m_lfQValue, &sites) == 6);
    pep.m_strSeq = buffer;
    pep.m_ucModNum = static_cast<unsigned char>(sites);
    if (sites > 0) pep.m_pMods = new MOD_SITE[sites];
    for (unsigned i = 0; i < sites; ++i) {
        expect(std::fscanf(file, "%d%s", &number, buffer) == 2);
        pep.m_pMods[i].m_ucPos = static_cast<unsigned char>(number);
        pep.m_pMods[i].m_pMod = condition.m_mapMods[buffer];
    }
    int decoy = 0;
    int aux = 0;
    int hits = 0;
    expect(std::fscanf(file, "%d%d%d%d", &number, &decoy, &aux, &hits) == 4);
    pep.m_ucAuxMax = static_cast<unsigned char>(number);
    pep.m_bDecoy = decoy != 0 ? 1 : 0;
    pep.m_ucAux1 = static_cast<unsigned char>(aux);
    for (int i = 0; i < hits; ++i) {
        PRO_INFO hit;
        expect(std::fscanf(file, "%d;%d;%c;%c", &hit.m_nProID, &hit.m_nSite, &hit.m_cPrev,
                           &hit.m_cNext) == 4);
        pep.m_setProteins.insert(hit);
    }
    expect(std::fscanf(file, "%d", &number) == 1);
    pep.m_ucAux2 = static_cast<unsigned char>(number);
    for (double& score : pep.m_lfSubScores)
        expect(std::fscanf(file, "%lf", &score) == 1);
    for (int& value : pep.m_nAuxA)
        expect(std::fscanf(file, "%d", &value) == 1);
    for (int& value : pep.m_nAuxB)
        expect(std::fscanf(file, "%d", &value) == 1);
}

void plain_head(PLAIN_SPECTRUM& spectrum, char* buffer, std::FILE* file) {
    expect(std::fscanf(file, "%lf%d", &spectrum.m_lfMH, &spectrum.m_nCharge) == 2);
    expect(std::fgets(buffer, kLineBuffer, file) != nullptr);
    expect(std::fgets(buffer, kLineBuffer, file) != nullptr);
    for (std::size_t i = std::strlen(buffer); i-- > 0 && std::isprint(buffer[i]) == 0;)
        buffer[i] = '\0';
    spectrum.m_strTitle = buffer;
}

void plain_file(CCondition& condition, PlainResults& results, const std::string& path) {
    const OpenFile file = open_or_throw(path, "r");
    std::vector<char> line(kLineBuffer);
    char* const buffer = line.data();
    PLAIN_SPECTRUM spectrum;
    while (std::fscanf(file.get(), "%s", buffer) == 1) {
        if (std::strcmp(buffer, "S") == 0) {
            plain_head(spectrum, buffer, file.get());
            if (results.find(spectrum.m_strTitle) == results.end()) {
                results[spectrum.m_strTitle] = spectrum;
            }
            continue;
        }
        CCopiedPep pep;
        plain_pep(condition, pep, buffer, file.get());
        pep.m_lfMassDev = spectrum.m_lfMH - pep.m_lfPepMass;
        PLAIN_SPECTRUM& entry = results[spectrum.m_strTitle];
        if (entry.m_vPeps.size() >= kMaxPeps || pep.m_lfFinalScore > kMaxFinalScore) continue;
        entry.m_vPeps.push_back(pep);
        expect(std::fgets(buffer, kLineBuffer, file.get()) != nullptr);
    }
}

bool plain_equal(const CPepRes& a, const CPepRes& b) {
    if (std::fabs(a.m_lfPepMass - b.m_lfPepMass) > 0.0001) return false;
    if (a.m_strSeq != b.m_strSeq || a.m_ucModNum != b.m_ucModNum) return false;
    for (std::size_t i = 0; i < a.m_ucModNum; ++i) {
        if (a.m_pMods[i].m_ucPos != b.m_pMods[i].m_ucPos) return false;
        if (a.m_pMods[i].m_pMod->m_strName != b.m_pMods[i].m_pMod->m_strName) return false;
    }
    return true;
}

std::uint32_t plain_key(double score) {
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(score * 10000.0));
}

void plain_removal(std::vector<CCopiedPep>& peps) {
    std::vector<bool> marked(peps.size(), false);
    for (std::size_t i = 0; i < peps.size(); ++i) {
        if (marked[i]) continue;
        for (std::size_t j = i + 1; j < peps.size(); ++j) {
            if (marked[j]) continue;
            if (plain_key(peps[i].m_lfScore) != plain_key(peps[j].m_lfScore)) break;
            if (!plain_equal(peps[i], peps[j])) continue;
            marked[j] = true;
            for (const PRO_INFO& hit : peps[j].m_setProteins)
                peps[i].m_setProteins.insert(hit);
            if (peps[j].m_bDecoy == 0) peps[i].m_bDecoy = 0;
            peps[i].m_ucAuxMax = std::max(peps[i].m_ucAuxMax, peps[j].m_ucAuxMax);
        }
    }
    std::vector<CCopiedPep> kept;
    for (std::size_t i = 0; i < peps.size(); ++i) {
        if (!marked[i]) kept.push_back(peps[i]);
    }
    peps.swap(kept);
}

void load_plain(CRound& round, std::size_t spectra) {
    const std::vector<std::string> paths = result_files(spectra, kDefinitions);
    CCondition condition;
    prepare(condition);
    PlainResults results;
    round.Run([&] {
        for (const std::string& path : paths)
            plain_file(condition, results, path);
        for (auto& [title, spectrum] : results) {
            std::sort(spectrum.m_vPeps.begin(), spectrum.m_vPeps.end(), CPepRes::ScoreGreater);
            plain_removal(spectrum.m_vPeps);
        }
    });
    round.m_cFigures.m_uDigest = digest_of_results(results);
}

// The least: every token found, every number read into arrays that are used again for each block.

struct TOKENS {
    std::vector<double> m_vReals;
    std::vector<int> m_vIntegers;
    std::vector<const char*> m_vTexts;
};

class CTokenScan {
public:
    CTokenScan(const char* next, const char* last, TOKENS& tokens)
        : m_pNext(next), m_pLast(last), m_cTokens(tokens) {}

    bool AtEnd() const { return m_pNext == m_pLast; }
    char Front() const { return *m_pNext; }
    void Real() {
        m_pNext = std::from_chars(m_pNext, m_pLast, m_cTokens.m_vReals.emplace_back()).ptr + 1;
    }
    int Integer() {
        int& value = m_cTokens.m_vIntegers.emplace_back();
        m_pNext = std::from_chars(m_pNext, m_pLast, value).ptr + 1;
        return value;
    }
    void Text() {
        m_cTokens.m_vTexts.push_back(m_pNext);
        while (static_cast<unsigned char>(*m_pNext) > ' ')
            ++m_pNext;
        m_cTokens.m_vTexts.push_back(m_pNext++);
    }
    void Skip(std::size_t characters) { m_pNext += characters; }

private:
    const char* m_pNext;
    const char* m_pLast;
    TOKENS& m_cTokens;
};

// Behind the rank.
void scan_pep(CTokenScan& scan) {
    scan.Text();
    for (int i = 0; i < 4; ++i)
        scan.Real();
    for (int sites = scan.Integer(); sites > 0; --sites) {
        scan.Integer();
        scan.Text();
    }
    for (int i = 0; i < 3; ++i)
        scan.Integer();
    for (int hits = scan.Integer(); hits > 0; --hits) {
        scan.Integer();
        scan.Integer();
        scan.Skip(4);  // the residues around, with what stands between
    }
    scan.Integer();
    for (int i = 0; i < 5; ++i)
        scan.Real();
    for (int i = 0; i < 8; ++i)
        scan.Integer();
}

// A head, its title or a candidate: a block may end behind each.
void scan_line(CTokenScan& scan) {
    const char key = scan.Front();
    scan.Text();
    if (key == 'S') {
        scan.Real();
        scan.Integer();
    } else if (key >= '0' && key <= '9') {
        scan_pep(scan);
    }
}

void load_limit(CRound& round, std::size_t spectra) {
    const std::vector<std::string> paths = result_files(spectra, kDefinitions);
    CCondition condition;
    prepare(condition);
    round.Run([&] {
        TOKENS tokens;
        for (const std::string& path : paths) {
            CLineBlocks blocks(path);
            const char* first;
            const char* last;
            while (blocks.Next(first, last)) {
                CTokenScan scan(first, last, tokens);
                tokens.m_vReals.clear();
                tokens.m_vIntegers.clear();
                tokens.m_vTexts.clear();
                while (!scan.AtEnd())
                    scan_line(scan);
            }
        }
    });
}

// ---- Writing ----

void prepare_results(CCondition& condition, std::size_t spectra) {
    prepare(condition);
    condition.LoadResult(result_files(spectra, kDefinitions), kMaxPeps, kMaxFinalScore);
}

void write_library(CRound& round, std::size_t spectra) {
    CCondition condition;
    prepare_results(condition, spectra);
    const std::string path = output_file("written.res");
    round.Run([&] { condition.WriteFinalResult(path, 0.0); });
    round.m_cFigures.m_uDigest = digest_of_file(path);
    std::remove(path.c_str());
}

std::uint32_t plain_rounded(double score) {
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(score * 10000.0 + 0.5));
}

void plain_line(std::FILE* file, unsigned rank, const CPepRes& pep) {
    std::fprintf(file, "%u\t%s\t%.6lf\t%.6lf\t%.6g\t%.6g\t%d", rank, pep.m_strSeq.c_str(),
                 pep.m_lfPepMass, pep.m_lfScore, pep.m_lfFinalScore, pep.m_lfQValue,
                 pep.m_ucModNum);
    for (std::size_t i = 0; i < pep.m_ucModNum; ++i) {
        const MOD_SITE& site = pep.m_pMods[i];
        std::fprintf(file, "\t%d\t%s", site.m_ucPos, site.m_pMod->m_strName.c_str());
    }
    std::fprintf(file, "\t%u\t%d", unsigned{pep.m_ucAuxMax}, pep.m_bDecoy);
    std::fprintf(file, "\t%u", unsigned{pep.m_ucAux1});
    std::fprintf(file, "\t%u", static_cast<unsigned>(pep.m_setProteins.size()));
    for (const PRO_INFO& hit : pep.m_setProteins)
        std::fprintf(file, "\t%d;%d;%c;%c", hit.m_nProID, hit.m_nSite, hit.m_cPrev, hit.m_cNext);
    std::fprintf(file, "\t%d", pep.m_ucAux2);
    for (const double score : pep.m_lfSubScores)
        std::fprintf(file, "\t%.6lf", score);
    for (const int value : pep.m_nAuxA)
        std::fprintf(file, "\t%d", value);
    for (const int value : pep.m_nAuxB)
        std::fprintf(file, "\t%d", value);
    std::fprintf(file, "\n");
}

void plain_output(const CCondition& condition, std::FILE* file) {
    for (const auto& [title, spectrum] : condition.m_mapPSMRes) {
        std::fprintf(file, "S\t%.6lf\t%d\n%s\n", spectrum.m_lfMH, spectrum.m_nCharge,
                     title.c_str());
        unsigned rank = 0;
        double previous = 1000000.0;
        for (const CPepRes& pep : spectrum.m_vPeps) {
            if (plain_rounded(pep.m_lfScore) != plain_rounded(previous)) {
                ++rank;
                previous = pep.m_lfScore;
            }
            if (rank > condition.m_tPepNum) break;
            plain_line(file, rank, pep);
        }
    }
}

void write_plain(CRound& round, std::size_t spectra) {
    CCondition condition;
    prepare_results(condition, spectra);
    const std::string path = output_file("written.res");
    round.Run([&] {
        const OpenFile file = open_or_throw(path, "wb");
        plain_output(condition, file.get());
    });
    round.m_cFigures.m_uDigest = digest_of_file(path);
    std::remove(path.c_str());
}

// The least: the same bytes in memory, each written once.

char* put_text(char* out, const std::string& text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

char* put_field(char* out, std::int64_t value) {
    *out++ = '\t';
    return put_signed(out, value);
}

char* put_hit(char* out, const PRO_INFO& hit) {
    out = put_field(out, hit.m_nProID);
    *out++ = ';';
    out = put_signed(out, hit.m_nSite);
    *out++ = ';';
    *out++ = hit.m_cPrev;
    *out++ = ';';
    *out++ = hit.m_cNext;
    return out;
}

char* put_measures(char* out, const CPepRes& pep) {
    *out++ = '\t';
    out = put_fixed(out, pep.m_lfPepMass);
    *out++ = '\t';
    out = put_fixed(out, pep.m_lfScore);
    *out++ = '\t';
    out = put_general(out, pep.m_lfFinalScore);
    *out++ = '\t';
    return put_general(out, pep.m_lfQValue);
}

char* put_pep(char* out, unsigned rank, const CPepRes& pep) {
    out = put_integer(out, rank);
    *out++ = '\t';
    out = put_text(out, pep.m_strSeq);
    out = put_measures(out, pep);
    out = put_field(out, pep.m_ucModNum);
    for (std::size_t i = 0; i < pep.m_ucModNum; ++i) {
        out = put_field(out, pep.m_pMods[i].m_ucPos);
        *out++ = '\t';
        out = put_text(out, pep.m_pMods[i].m_pMod->m_strName);
    }
    out = put_field(out, pep.m_ucAuxMax);
    out = put_field(out, pep.m_bDecoy);
    out = put_field(out, pep.m_ucAux1);
    out = put_field(out, static_cast<std::int64_t>(pep.m_setProteins.size()));
    for (const PRO_INFO& hit : pep.m_setProteins)
        out = put_hit(out, hit);
    out = put_field(out, pep.m_ucAux2);
    for (const double score : pep.m_lfSubScores) {
        *out++ = '\t';
        out = put_fixed(out, score);
    }
    for (const int value : pep.m_nAuxA)
        out = put_field(out, value);
    for (const int value : pep.m_nAuxB)
        out = put_field(out, value);
    *out++ = '\n';
    return out;
}

char* put_results(char* out, const CCondition& condition) {
    for (const auto& [title, spectrum] : condition.m_mapPSMRes) {
        *out++ = 'S';
        *out++ = '\t';
        out = put_fixed(out, spectrum.m_lfMH);
        out = put_field(out, spectrum.m_nCharge);
        *out++ = '\n';
        out = put_text(out, title);
        *out++ = '\n';
        unsigned rank = 0;
        double previous = 1000000.0;
        for (const CPepRes& pep : spectrum.m_vPeps) {
            if (plain_rounded(pep.m_lfScore) != plain_rounded(previous)) {
                ++rank;
                previous = pep.m_lfScore;
            }
            if (rank > condition.m_tPepNum) break;
            out = put_pep(out, rank, pep);
        }
    }
    return out;
}

void write_limit(CRound& round, std::size_t spectra) {
    CCondition condition;
    prepare_results(condition, spectra);
    CFreshMemory memory;
    char* const text = memory.Take(0);
    char* end = text;
    round.Run([&] { end = put_results(text, condition); });
    const std::string path = output_file("written.res");
    const OpenFile file = open_or_throw(path, "wb");
    std::fwrite(text, 1, static_cast<std::size_t>(end - text), file.get());
    std::fflush(file.get());
    round.m_cFigures.m_uDigest = digest_of_file(path);
    std::remove(path.c_str());
}

// ---- Joining ----

void merge_library(CRound& round, std::size_t spectra) {
    const std::vector<std::string> paths = result_files(spectra, kDefinitions);
    const CCondition condition;
    const std::string output = output_file("merged.res");
    round.Run([&] { condition.MergeFiles(paths, output, false); });
    round.m_cFigures.m_uDigest = digest_of_file(output);
    std::remove(output.c_str());
}

// Plainly: each file whole.
void merge_plain(CRound& round, std::size_t spectra) {
    const std::vector<std::string> paths = result_files(spectra, kDefinitions);
    const std::string output = output_file("merged.res");
    round.Run([&] {
        const OpenFile merged = open_or_throw(output, "ab+");
        for (const std::string& path : paths) {
            const OpenFile file = open_or_throw(path, "rb");
            std::vector<char> bytes(std::filesystem::file_size(path));
            expect(std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size());
            std::fwrite(bytes.data(), 1, bytes.size(), merged.get());
        }
    });
    round.m_cFigures.m_uDigest = digest_of_file(output);
    std::remove(output.c_str());
}

// A file of the system, without the standard library between.
class CSystemFile {
public:
    CSystemFile(const std::string& path, int flags) : m_nFile(open(path.c_str(), flags, 0666)) {
        expect(m_nFile >= 0);
    }
    ~CSystemFile() { close(m_nFile); }
    CSystemFile(const CSystemFile&) = delete;
    CSystemFile& operator=(const CSystemFile&) = delete;

    std::size_t Read(std::vector<char>& block) const {
        const ssize_t count = read(m_nFile, block.data(), block.size());
        expect(count >= 0);
        return static_cast<std::size_t>(count);
    }
    void Write(const std::vector<char>& block, std::size_t count) const {
        expect(write(m_nFile, block.data(), count) == static_cast<ssize_t>(count));
    }

private:
    int m_nFile;
};

void merge_limit(CRound& round, std::size_t spectra) {
    const std::vector<std::string> paths = result_files(spectra, kDefinitions);
    const std::string output = output_file("merged.res");
    round.Run([&] {
        std::vector<char> block(kBlockSize);
        const CSystemFile merged(output, O_WRONLY | O_CREAT | O_TRUNC);
        for (const std::string& path : paths) {
            const CSystemFile file(path, O_RDONLY);
            while (const std::size_t count = file.Read(block))
                merged.Write(block, count);
        }
    });
    round.m_cFigures.m_uDigest = digest_of_file(output);
    std::remove(output.c_str());
}

HOT_PATH results_path(const std::string& name, std::size_t spectra,
                      void (*library)(CRound&, std::size_t), void (*plain)(CRound&, std::size_t),
                      void (*limit)(CRound&, std::size_t)) {
    HOT_PATH path;
    path.m_strName = name;
    path.m_strInput = std::to_string(spectra) + " spectra";
    path.m_fnLibrary = [=](CRound& round) { library(round, spectra); };
    path.m_fnPlain = [=](CRound& round) { plain(round, spectra); };
    path.m_fnLimit = [=](CRound& round) { limit(round, spectra); };
    return path;
}

}  // namespace

HOT_PATH load_results_path(std::size_t spectra) {
    HOT_PATH path = results_path("load_results", spectra, load_library, load_plain, load_limit);
    path.m_cMusts.m_lfLimit = 2.9;
    path.m_cMusts.m_lfLimitAim = 2.2;
    path.m_cMusts.m_lfPlain = 0.25;
    return path;
}

HOT_PATH write_results_path(std::size_t spectra) {
    HOT_PATH path = results_path("write_results", spectra, write_library, write_plain, write_limit);
    path.m_cMusts.m_lfLimit = 1.2;
    path.m_cMusts.m_lfLimitAim = 1.05;
    path.m_cMusts.m_lfPlain = 0.2;
    return path;
}

HOT_PATH merge_files_path(std::size_t spectra) {
    HOT_PATH path = results_path("merge_files", spectra, merge_library, merge_plain, merge_limit);
    path.m_tTurns = 3;
    path.m_cMusts.m_lfLimit = 1.15;
    path.m_cMusts.m_lfLimitAim = 1.05;
    path.m_cMusts.m_lfOverStart = 4.0;  // of inputs that are fifty times larger
    return path;
}

}  // namespace tessel::bench
