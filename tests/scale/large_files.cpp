#include "tests/scale/large_files.h"

#include <stdexcept>

#include "tessel/platform/file.h"
#include "tests/support/zb2_writer.h"

namespace tessel::test {
namespace {

constexpr std::uint64_t kPeaks = 100;

// Appends what `append(text, number)` makes until the file is large enough; returns how many.
template <class Append>
std::uint64_t write_until(FilePtr file, std::uint64_t bytes, Append append) {
    std::string text;
    std::uint64_t written = 0;
    std::uint64_t number = 0;
    while (written < bytes) {
        text.clear();
        while (text.size() < 1'000'000 && written + text.size() < bytes)
            append(text, ++number);
        std::fwrite(text.data(), 1, text.size(), file.get());
        written += text.size();
    }
    if (!close_file(std::move(file))) throw std::runtime_error("the disk is full");
    return number;
}

std::size_t residues(std::uint64_t number) {
    return 300 + number % 400;
}

std::string peak_lines() {
    std::string lines;
    for (std::uint64_t i = 0; i < kPeaks; ++i)
        lines += std::to_string(150 + 10 * i) + ".12345 " + std::to_string(1000 + i) + ".5\n";
    return lines;
}

}  // namespace

std::uint64_t write_large_mgf(const std::string& path, std::uint64_t bytes) {
    const std::string peaks = peak_lines();
    return write_until(open_file(path, "wb"), bytes, [&](std::string& text, std::uint64_t number) {
        const std::string scan = std::to_string(number);
        text += "BEGIN IONS\nTITLE=run." + scan + '.' + scan +
                ".2.0.dta\nCHARGE=2+\nPEPMASS=" + std::to_string(400 + number % 800) + ".25\n" +
                peaks + "END IONS\n";
    });
}

std::uint64_t write_large_zb2(const std::string& path, std::uint64_t bytes) {
    ZB2_SCAN scan;
    for (std::uint64_t i = 0; i < kPeaks; ++i)
        scan.m_vPeaks.emplace_back(150.0 + 10.0 * static_cast<double>(i), 1.0);
    scan.m_vPrecursors = {{500.25, 2}};
    const std::uint64_t size = zb2_entry(scan).size();
    const std::uint64_t header = zb2_header(0, "run").size();
    const auto entries = static_cast<std::uint32_t>((bytes - header + size - 1) / size);
    // Every entry differs from the first one in its scan number alone.
    const std::string rest = zb2_entry(scan).substr(4);
    const auto append = [&](std::string& text, std::uint64_t number) {
        if (number == 1) text = zb2_header(entries, "run");
        text += zb2_number(static_cast<std::uint32_t>(number)) + rest;
    };
    return write_until(open_file(path, "wb"), header + entries * size, append);
}

std::uint64_t write_large_fasta(const std::string& path, std::uint64_t bytes) {
    const std::string line = std::string(20, 'A') + std::string(20, 'K') + std::string(20, 'E');
    return write_until(open_file(path, "wb"), bytes, [&](std::string& text, std::uint64_t number) {
        text += ">P" + std::to_string(number) + " protein\n";
        for (std::size_t left = residues(number); left > 0;) {
            const std::size_t length = left < line.size() ? left : line.size();
            text.append(line, 0, length) += '\n';
            left -= length;
        }
    });
}

std::uint64_t write_large_results(const std::string& path, std::uint64_t bytes) {
    return write_until(open_file(path, "wb"), bytes, [](std::string& text, std::uint64_t number) {
        text += "S\t999.5\t2\ntitle" + std::to_string(number % 1000) +
                "\n1\tPEPTIDEK\t998.5\t10.5\t0.001\t0.01\t0\t0\t0\t0\t1\t" +
                std::to_string(number) + ";1;K;R\t0\t1\t2\t3\t4\t5\t1\t2\t3\t4\t5\t6\t7\t8\n";
    });
}

// Accession and description in both headers, and the sequence twice: ">Pi\tprotein\t\n" and
// ">REV_Pi\t_REVi\n".
std::uint64_t target_decoy_size(std::uint64_t proteins) {
    std::uint64_t size = 0;
    for (std::uint64_t i = 1; i <= proteins; ++i) {
        const std::uint64_t digits = std::to_string(i).size();
        size += 12 + digits + 12 + 2 * digits + 2 * (residues(i) + 1);
    }
    return size;
}

}  // namespace tessel::test
