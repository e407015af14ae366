#pragma once

#include <cstdint>
#include <string>

namespace tessel::test {

// Input of any size, written in a moment. All of it is determined by the size, so that what is read
// can be compared without keeping it.

/// Writes MGF blocks of 100 peaks until the file has so many bytes; returns their number. Block i,
/// counted from 1, has the title "run.i.i.2.0.dta".
std::uint64_t write_large_mgf(const std::string& path, std::uint64_t bytes);
/// Writes ZB2 entries of 100 peaks and one precursor, likewise; scan numbers count from 1.
std::uint64_t write_large_zb2(const std::string& path, std::uint64_t bytes);
/// Writes proteins of 300 to 699 residues in lines of 60, likewise. Protein i has the accession
/// "Pi" and 300 + i % 400 residues.
std::uint64_t write_large_fasta(const std::string& path, std::uint64_t bytes);
/// Writes result blocks of one candidate under 1000 titles in turn, likewise.
std::uint64_t write_large_results(const std::string& path, std::uint64_t bytes);

/// The size of the target-decoy database of so many such proteins.
std::uint64_t target_decoy_size(std::uint64_t proteins);

}  // namespace tessel::test
