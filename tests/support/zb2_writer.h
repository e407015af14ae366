#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tessel::test {

// ZB2 files as the readers' tests need them, correct and broken ones.

struct ZB2_SCAN {
    std::uint32_t m_uScan = 0;
    std::vector<std::pair<double, double>> m_vPeaks;             // m/z, intensity
    std::vector<std::pair<double, std::int32_t>> m_vPrecursors;  // m/z, charge
};

/// A number with its lowest byte first.
std::string zb2_number(std::uint32_t number);
std::string zb2_number(double number);

std::string zb2_header(std::uint32_t entries, const std::string& stem);
std::string zb2_entry(const ZB2_SCAN& scan);
std::string zb2_file(const std::string& stem, const std::vector<ZB2_SCAN>& scans);

/// Scans numbered from 1 on with one peak and one precursor of charge 2 each.
std::vector<ZB2_SCAN> plain_scans(std::size_t count);

}  // namespace tessel::test
