// ZBS lists: the names of two ZB2 files and of others up to an empty line, then the two files. Read
// at once and in batches.

#include "tessel/spectra/zbs_input.h"

#include "tessel/spectra/zb_input.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/spectra.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

// Every listed file by a reader of its own.
std::size_t read_listed(const std::vector<std::string>& files, std::vector<CSpectrum>& spectra) {
    std::size_t total = 0;
    for (const std::string& file : files) {
        CZBInput reader;
        total += reader.Count(file);
        reader.Browse(spectra, kAllEntries);
    }
    return total;
}

}  // namespace

void run(CBytes input) {
    const std::size_t batch = input.Choice(8);
    const std::size_t sizeOfA = input.Byte();
    constexpr std::size_t kMostFiles = 6;  // one file named often takes memory each time
    std::string list;
    for (std::size_t files = 0; files < kMostFiles; ++files) {
        const std::string_view line = input.Until('\n');
        if (line.empty()) break;
        list.append(line).append("\n");
    }
    const std::string_view rest = input.Text();
    write_scratch("list.zbs", list);
    write_scratch("a", rest.substr(0, sizeOfA));
    write_scratch("b", rest.substr(std::min(sizeOfA, rest.size())));

    std::vector<CSpectrum> expected;
    const std::vector<std::string> files = plain_lines(list);
    const std::size_t total = read_listed(files, expected);
    CZBSInput reader;
    check(reader.Count(scratch_path("list.zbs")) == total && reader.m_vFiles == files,
          "the files of the list are counted");
    std::vector<CSpectrum> spectra;
    check(reader.Browse(spectra, kAllEntries) == (files.empty() ? 0 : total), "all are read");
    check_spectra(expected, spectra);
    check(reader.Browse(spectra, kAllEntries) == 0, "nothing is left");

    spectra.clear();
    reader.Count(scratch_path("list.zbs"));
    std::size_t read = 0;
    for (std::size_t calls = 0; read < total && !reader.Exhausted(); ++calls) {
        check(calls <= 2 * total + 2, "batches end");
        const std::size_t entries = reader.Browse(spectra, batch);
        check(entries <= batch, "batches have their size at most");
        read += entries;
    }
    if (read < total) return;             // a file is larger than the batch
    reader.Browse(spectra, kAllEntries);  // listed files without entries
    check_spectra(expected, spectra);
    check_loading("ZBS", "list.zbs", kAllEntries, expected);
}

}  // namespace tessel::fuzz
