// Target-decoy generation in batches of one million residues.

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench/digest.h"
#include "bench/generate.h"
#include "bench/paths.h"
#include "bench/records.h"
#include "tessel/tessel.h"

namespace tessel::bench {
namespace {

constexpr std::size_t kBatchResidues = 1000000;

// The library's output is told apart by its own suffix, so that is where all of them write.
std::string target_of(const std::string& source) {
    std::remove((source + _TD_FASTA).c_str());
    return source + _TD_FASTA;
}

void library(CRound& round, std::size_t bytes) {
    const std::string source = fasta_file(bytes);
    const std::string target = target_of(source);
    CCondition condition;
    condition.m_strFastaPath = source;
    condition.m_tMaxProLen = kBatchResidues;
    round.Run([&] { condition.SetFastaPath(); });
    round.m_cFigures.m_uDigest = digest_of_file(target);
}

// ---- The plain way: entries counted, batches of records, each batch written at once ----

constexpr std::size_t kLineBuffer = 81920;

std::size_t plain_entries(std::FILE* file, char* line) {
    std::size_t entries = 0;
    while (std::fgets(line, kLineBuffer, file) != nullptr) {
        if (line[0] == '>') ++entries;
    }
    std::rewind(file);
    std::fgets(line, kLineBuffer, file);
    return entries;
}

// `line` holds the entry's header, and the next entry's afterwards.
CProtein plain_protein(std::FILE* file, char* line) {
    CProtein protein;
    line[std::strcspn(line, "\r\n")] = '\0';
    const std::size_t length = std::strcspn(line, " \t");
    protein.m_strAC.assign(line + 1, length - 1);
    protein.m_strDE = line + length + std::strspn(line + length, " \t");
    while (std::fgets(line, kLineBuffer, file) != nullptr && line[0] != '>') {
        for (const char* c = line; *c != '\0'; ++c) {
            if (std::isspace(*c) == 0) protein.m_strSQ.push_back(*c);
        }
    }
    return protein;
}

std::string plain_batch_text(std::vector<CProtein>& proteins, std::size_t& number) {
    std::string text;
    for (CProtein& protein : proteins) {
        text += ">" + protein.m_strAC + "\t" + protein.m_strDE + "\t\n" + protein.m_strSQ + "\n";
        protein.m_strAC = "REV_" + protein.m_strAC;
        std::reverse(protein.m_strSQ.begin(), protein.m_strSQ.end());
        char tag[32];
        std::snprintf(tag, sizeof tag, "\t_REV%zu\n", number++);
        text += ">" + protein.m_strAC + tag + protein.m_strSQ + "\n";
    }
    return text;
}

void plain_generation(const std::string& source, const std::string& target) {
    const OpenFile input = open_or_throw(source, "r");
    const OpenFile output = open_or_throw(target, "wb");
    std::vector<char> line(kLineBuffer);
    std::size_t left = plain_entries(input.get(), line.data());
    std::size_t number = 1;
    while (left > 0) {
        std::vector<CProtein> proteins;
        for (std::size_t held = 0; left > 0 && held <= kBatchResidues; --left) {
            proteins.push_back(plain_protein(input.get(), line.data()));
            held += proteins.back().m_strSQ.size();
        }
        const std::string text = plain_batch_text(proteins, number);
        std::fwrite(text.data(), 1, text.size(), output.get());
    }
}

void plain(CRound& round, std::size_t bytes) {
    const std::string source = fasta_file(bytes);
    const std::string target = target_of(source);
    round.Run([&] { plain_generation(source, target); });
    round.m_cFigures.m_uDigest = digest_of_file(target);
}

// ---- The least: one pass over the lines, no records ----

void append(std::vector<char>& text, const char* first, const char* last) {
    text.insert(text.end(), first, last);
}

void append(std::vector<char>& text, const char* constant) {
    append(text, constant, constant + std::strlen(constant));
}

// The header's line and the joined sequence, which is emptied, as a target and a decoy.
void add_entries(std::vector<char>& text, const std::string& header, std::size_t number,
                 std::vector<char>& sequence) {
    const char* const name = header.data() + 1;
    const char* const nameEnd = name + std::strcspn(name, " \t");
    const char* const rest = nameEnd + std::strspn(nameEnd, " \t");
    text.push_back('>');
    append(text, name, nameEnd);
    text.push_back('\t');
    append(text, rest, header.data() + header.size());
    append(text, "\t\n");
    append(text, sequence.data(), sequence.data() + sequence.size());
    append(text, "\n>REV_");
    append(text, name, nameEnd);
    append(text, "\t_REV");
    append(text, std::to_string(number).c_str());
    text.push_back('\n');
    const std::size_t before = text.size();
    text.resize(before + sequence.size());
    std::reverse_copy(sequence.begin(), sequence.end(), text.data() + before);
    text.push_back('\n');
    sequence.clear();
}

void stream(const std::string& source, const std::string& target) {
    CLineBlocks blocks(source);
    const OpenFile output = open_or_throw(target, "wb");
    std::setvbuf(output.get(), nullptr, _IONBF, 0);
    std::vector<char> text;
    text.reserve(2 * kBlockSize);
    std::vector<char> sequence;
    std::string header;
    std::size_t number = 1;
    const auto write = [&](std::size_t least) {
        if (text.size() < least) return;
        std::fwrite(text.data(), 1, text.size(), output.get());
        text.clear();
    };
    const char* first;
    const char* last;
    while (blocks.Next(first, last)) {
        while (first != last) {
            const auto* const end = static_cast<const char*>(
                std::memchr(first, '\n', static_cast<std::size_t>(last - first)));
            if (*first != '>') {
                append(sequence, first, end);
            } else {
                if (!header.empty()) add_entries(text, header, number++, sequence);
                header.assign(first, end);
                write(kBlockSize);
            }
            first = end + 1;
        }
    }
    add_entries(text, header, number, sequence);
    write(0);
}

void limit(CRound& round, std::size_t bytes) {
    const std::string source = fasta_file(bytes);
    const std::string target = target_of(source);
    round.Run([&] { stream(source, target); });
    round.m_cFigures.m_uDigest = digest_of_file(target);
}

}  // namespace

HOT_PATH target_decoy_path(std::size_t bytes) {
    HOT_PATH path;
    path.m_strName = "target_decoy";
    path.m_strInput = std::to_string(bytes / 1000000) + " MB of proteins";
    path.m_cMusts.m_lfLimit = 2.0;
    path.m_cMusts.m_lfLimitAim = 1.4;
    path.m_cMusts.m_lfPlain = 0.5;
    path.m_cMusts.m_lfOverStart = 16.0;
    path.m_fnLibrary = [bytes](CRound& round) { library(round, bytes); };
    path.m_fnPlain = [bytes](CRound& round) { plain(round, bytes); };
    path.m_fnLimit = [bytes](CRound& round) { limit(round, bytes); };
    return path;
}

}  // namespace tessel::bench
