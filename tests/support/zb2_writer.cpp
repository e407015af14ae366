#include "tests/support/zb2_writer.h"

#include <cstring>

namespace tessel::test {
namespace {

std::string low_bytes(std::uint64_t number, int count) {
    std::string bytes;
    for (int i = 0; i < count; ++i, number /= 256)
        bytes += static_cast<char>(number % 256);
    return bytes;
}

std::uint32_t size_of(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

}  // namespace

std::string zb2_number(std::uint32_t number) {
    return low_bytes(number, 4);
}

std::string zb2_number(double number) {
    std::uint64_t bits;
    static_assert(sizeof bits == sizeof number);
    std::memcpy(&bits, &number, sizeof bits);
    return low_bytes(bits, 8);
}

std::string zb2_header(std::uint32_t entries, const std::string& stem) {
    return zb2_number(entries) + zb2_number(size_of(stem.size())) + stem;
}

std::string zb2_entry(const ZB2_SCAN& scan) {
    std::string bytes = zb2_number(scan.m_uScan) + zb2_number(size_of(scan.m_vPeaks.size()));
    for (const auto& [mz, intensity] : scan.m_vPeaks)
        bytes += zb2_number(mz) + zb2_number(intensity);
    bytes += zb2_number(size_of(scan.m_vPrecursors.size()));
    for (const auto& [mz, charge] : scan.m_vPrecursors)
        bytes += zb2_number(mz) + zb2_number(static_cast<std::uint32_t>(charge));
    return bytes;
}

std::string zb2_file(const std::string& stem, const std::vector<ZB2_SCAN>& scans) {
    std::string bytes = zb2_header(size_of(scans.size()), stem);
    for (const ZB2_SCAN& scan : scans)
        bytes += zb2_entry(scan);
    return bytes;
}

std::vector<ZB2_SCAN> plain_scans(std::size_t count) {
    std::vector<ZB2_SCAN> scans(count);
    for (std::size_t i = 0; i < count; ++i) {
        scans[i].m_uScan = size_of(i + 1);
        scans[i].m_vPeaks = {{100.5, static_cast<double>(i)}};
        scans[i].m_vPrecursors = {{500.5, 2}};
    }
    return scans;
}

}  // namespace tessel::test
