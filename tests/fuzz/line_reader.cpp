// Lines of a file, whole and in pieces, against a plain cutting of the text.

#include "tessel/base/line_reader.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

std::vector<std::string> lines_of(CLineReader reader) {
    std::vector<std::string> lines;
    for (std::string_view line; reader.ReadLine(line);)
        lines.emplace_back(line);
    check(!reader.Failed(), "reading ends at the end of the file");
    return lines;
}

}  // namespace

void run(CBytes input) {
    const std::size_t piece = input.Byte();
    write_scratch("text", input.Text());
    const FilePtr file = open_file(scratch_path("text"), "rb");
    const std::size_t length = piece == 0 ? kAnyLength : piece;
    check(lines_of(CLineReader(file.get(), length)) == plain_lines(input.Text(), length),
          "lines are cut at line feeds and by length");
}

}  // namespace tessel::fuzz
