// FASTA entries from a stream: counted in blocks, then read line by line, straight from the
// stream's buffer. The stream itself is the only state between calls.

#include "tessel/database/fasta_parser.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <streambuf>
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

// The text that a stream's buffer holds and that is not yet read. Lines found there, and not taken
// by std::getline(), save a third of the time of generating a target-decoy database.
class CHeldText {
public:
    explicit CHeldText(std::istream& stream) : m_pBuffer(stream.rdbuf()) {}

    /// Reads on when nothing is held. Empty at the end of the file, or when it cannot be read.
    std::string_view Get() {
        if (Size() == 0 && !Fill()) return {};
        return {(m_pBuffer->*&GET_AREA::gptr)(), Size()};
    }
    void Take(std::size_t size) { (m_pBuffer->*&GET_AREA::gbump)(static_cast<int>(size)); }

    bool Failed() const { return m_bFailed; }
    void SetFailed() { m_bFailed = true; }
    /// As the stream would be left by reading on line by line.
    std::ios::iostate State() {
        if (m_bFailed) return std::ios::badbit | std::ios::failbit;
        return Get().empty() ? std::ios::eofbit | std::ios::failbit : std::ios::goodbit;
    }

private:
    // Never made: a derived class alone may name these members.
    struct GET_AREA : std::streambuf {
        using std::streambuf::egptr;
        using std::streambuf::gbump;
        using std::streambuf::gptr;
    };

    std::size_t Size() const {
        return static_cast<std::size_t>((m_pBuffer->*&GET_AREA::egptr)() -
                                        (m_pBuffer->*&GET_AREA::gptr)());
    }
    bool Fill() {
        try {
            return m_pBuffer->sgetc() != std::streambuf::traits_type::eof();
        } catch (const std::exception&) {
            m_bFailed = true;
            return false;
        }
    }

    std::streambuf* m_pBuffer;
    bool m_bFailed = false;
};

// Appends the next line without its line end. False when there is none.
bool append_line(CHeldText& held, std::string& text) {
    std::string_view piece = held.Get();
    if (piece.empty()) return false;
    for (; !piece.empty(); piece = held.Get()) {
        const std::size_t end = piece.find('\n');
        text += piece.substr(0, end);
        held.Take(std::min(end, piece.size() - 1) + 1);
        if (end != piece.npos) break;
    }
    return true;
}

// Reads on to the next header line and returns it without its ">"; false at the end.
bool read_header(std::ifstream& stream, CHeldText& held, std::string& line,
                 std::string_view& header) {
    bool marked = !held.Get().starts_with('>') && stream.tellg() == std::ifstream::pos_type(0);
    while (line.clear(), append_line(held, line)) {
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

// The least character tells; compilers turn that loop, without a branch, into vector instructions.
bool may_hold_blanks(std::string_view text) {
    unsigned char least = 0xFF;
    for (const char c : text)
        least = std::min(least, static_cast<unsigned char>(c));
    return least <= ' ';
}

void read_sequence(CHeldText& held, std::string& sequence) {
    while (!held.Get().starts_with('>') && append_line(held, sequence)) {
    }
    if (may_hold_blanks(sequence)) std::erase_if(sequence, is_blank);
}

}  // namespace

std::size_t CFastaParser::GetEntryNum(std::ifstream& stream) {
    std::array<char, kBlockSize> buffer;
    std::size_t entries = 0;
    std::streamoff position = 0;  // of the block
    std::streamoff firstEntry = 0;
    char before = '\n';  // the character in front of the block

    stream.clear();
    if (!stream.seekg(0)) {
        // A pipe, say: what can be read only once cannot be counted first. It is not empty.
        stream.setstate(std::ios::badbit);
        return 0;
    }
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
    if (!stream.good()) {
        stream.setstate(std::ios::failbit);
        return false;
    }
    CHeldText held(stream);
    std::string_view header;
    bool found = false;
    try {
        found = read_header(stream, held, m_strLine, header);
        if (found) {
            split_header(header, protein);
            // Collected apart: the protein then takes no more memory than its sequence needs.
            m_strSequence.clear();
            read_sequence(held, m_strSequence);
            protein.m_strSQ = m_strSequence;
        }
    } catch (const std::bad_alloc&) {
        held.SetFailed();  // an entry that memory cannot hold is one that cannot be read
    }
    stream.setstate(held.State());
    if (!held.Failed()) return found;
    protein = CProtein();
    return false;
}

}  // namespace tessel
