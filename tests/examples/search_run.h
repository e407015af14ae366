#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/temp_folder.h"

namespace tessel::test {

/// How a program of the examples ended.
struct ENDED {
    int m_nStatus = -1;
    std::string m_strOutput;
    std::string m_strErrors;
    std::vector<std::string> Lines() const;  ///< of standard output
};

/// A candidate of a result file, its fields in the order of the line.
struct RESULT_ROW {
    int m_nRank = 0;
    std::string m_strSequence;
    double m_lfMass = 0.0;
    double m_lfScore = 0.0;
    double m_lfFinalScore = 0.0;
    double m_lfQValue = 0.0;
    std::vector<std::pair<int, std::string>> m_vSites;
    int m_nDecoy = 0;
    std::vector<std::string> m_vHits;
};

/// A spectrum of a result file.
struct RESULT_BLOCK {
    std::string m_strTitle;
    std::vector<RESULT_ROW> m_vRows;
};

/// Reads a result file; throws for a line that is no such file's.
std::vector<RESULT_BLOCK> read_results(const std::string& text);

/// A shift of a mass at a position: 1 for the first residue, 0 and length + 1 for the termini.
using Shifts = std::map<std::size_t, double>;

/// MH+ of a peptide, from residue masses of its own.
double peptide_mass(std::string_view sequence, const Shifts& shifts = {});
/// An MGF block with the precursor at charge 2 and every singly charged b and y ion, their m/z off
/// by `error`.
std::string perfect_spectrum(const std::string& title, std::string_view sequence,
                             const Shifts& shifts = {}, double error = 0.0);

/// A folder with all that closed_search needs: the default tables, "db.fasta", "spectra.mgf" and a
/// parameter file of the settings below.
class CSearchRun {
public:
    CSearchRun();

    /// Writes the parameter file and starts closed_search, or another program, with it in the
    /// folder.
    ENDED Run(const std::string& program = CLOSED_SEARCH) const;
    /// Starts a program in the folder with these words behind it.
    ENDED RunWith(const std::string& words, const std::string& program = CLOSED_SEARCH) const;
    /// Runs and reads the final result; a failed run gives none.
    std::vector<RESULT_BLOCK> Search() const;
    /// The sequence of the first candidate of the first spectrum, or nothing.
    std::string FirstSequence() const;

    CTempFolder m_cFolder;
    std::map<std::string, std::string> m_mapSettings;  ///< by key; any section
};

}  // namespace tessel::test
