// FASTA entries from a stream: counted in blocks, then read line by line. The stream itself is the
// only state between calls.

#include "tessel/database/fasta_parser.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "tessel/base/text.h"

namespace tessel {
namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 16;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kHeaderBlanks = " \t";

void drop_carriage_return(std::string_view& line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
}

// Reads on to the next header line and returns it without its ">"; false at the end.
bool read_header(std::ifstream& stream, std::string& line, std::string_view& header) {
    bool marked = stream.peek() != '>' && stream.tellg() == std::ifstream::pos_type(0);
    while (std::getline(stream, line)) {
        header = line;
        if (marked && header.starts_with(kByteOrderMark)) {
            header.remove_prefix(kByteOrderMark.size());
        }
        marked = false;
        if (!header.starts_with('>')) continue;
        header.remove_prefix(1);
        drop_carriage_return(header);
        return true;
    }
    return false;
}

void split_header(std::string_view header, CProtein& protein) {
    const std::size_t end = std::min(header.find_first_of(kHeaderBlanks), header.size());
    protein.m_strAC = header.substr(0, end);
    header.remove_prefix(end);
    const std::size_t begin = header.find_first_not_of(kHeaderBlanks);
    if (begin == std::string_view::npos) return;
    protein.m_strDE = header.substr(begin, header.find_last_not_of(kHeaderBlanks) + 1 - begin);
}

// Without a branch, so that compilers turn the loop into vector instructions.
bool may_hold_blanks(std::string_view line) {
    bool found = false;
    for (const char c : line)
        found |= static_cast<unsigned char>(c) <= ' ';
    return found;
}

void append_residues(std::string& sequence, std::string_view line) {
    drop_carriage_return(line);
    if (may_hold_blanks(line)) {
        std::copy_if(line.begin(), line.end(), std::back_inserter(sequence),
                     [](char c) { return !is_blank(c); });
    } else {
        sequence += line;
    }
}

}  // namespace

std::size_t CFastaParser::GetEntryNum(std::ifstream& stream) {
    std::array<char, kBlockSize> buffer;
    std::size_t entries = 0;
    std::streamoff position = 0;  // of the block
    std::streamoff firstEntry = 0;
    char before = '\n';  // the character in front of the block

    stream.clear();
    stream.seekg(0);
    while (stream.read(buffer.data(), buffer.size()), stream.gcount() > 0) {
        const std::string_view block(buffer.data(), static_cast<std::size_t>(stream.gcount()));
        const std::size_t start =
            position == 0 && block.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
        for (std::size_t at = block.find('>', start); at != std::string_view::npos;
             at = block.find('>', at + 1)) {
            const char previous = at == start ? before : block[at - 1];
            if (previous != '\n') continue;
            if (entries++ == 0) firstEntry = position + static_cast<std::streamoff>(at);
        }
        before = block.back();
        position += stream.gcount();
    }
    if (stream.bad()) return entries;
    stream.clear();
    stream.seekg(entries > 0 ? firstEntry : position);
    return entries;
}

bool CFastaParser::ReadOnePrteinEntry(CProtein& protein, std::ifstream& stream) {
    protein.m_strAC.clear();
    protein.m_strDE.clear();
    protein.m_strSQ.clear();
    std::string_view header;
    if (!read_header(stream, m_strLine, header)) return false;
    split_header(header, protein);

    // Collected apart: the protein then takes no more memory than its sequence needs.
    m_strSequence.clear();
    while (stream.peek() != '>' && std::getline(stream, m_strLine))
        append_residues(m_strSequence, m_strLine);
    if (stream.bad()) {
        protein = CProtein();
        return false;
    }
    protein.m_strSQ = m_strSequence;
    return true;
}

}  // namespace tessel
