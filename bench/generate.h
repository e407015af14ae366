#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tessel::bench {

// The inputs, made from a fixed seed when they are asked for and not there. Every function returns
// the path of its file, in the folder of inputs.

void set_input_folder(const std::string& folder);
/// The path of a file that a contender writes; what an earlier round left there is removed.
std::string output_file(const std::string& name);

/// 120 peaks each, in ascending order, "%.5lf %.1lf".
std::string mgf_file(std::size_t spectra);
/// The same spectra; 30 % of the entries have two or three precursors.
std::string zb2_file(std::size_t entries);
/// Proteins of 50 to 1,000 residues, 60 on a line.
std::string fasta_file(std::size_t bytes);
/// Three definitions in a row share one mass, every tenth is a terminal one.
std::string mod_file(std::size_t definitions);
/// Names of definitions that sit on residues, spread over the file.
std::vector<std::string> mod_names(std::size_t definitions, std::size_t count);
/// The spectra in four files, 10 candidates each, with sites out of mod_file(definitions) and
/// hits; every twentieth candidate repeats the one before it with another hit.
std::vector<std::string> result_files(std::size_t spectra, std::size_t definitions);

}  // namespace tessel::bench
