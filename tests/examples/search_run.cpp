// Runs a program as a user would, in a folder of its own, and reads what it wrote.

#include "tests/examples/search_run.h"
#include "tests/support/classic.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "tests/support/captured.h"
#include "tests/support/system.h"

namespace tessel::test {

namespace {

constexpr double kProton = 1.00727647;
constexpr double kWater = 18.0105647;

double residue_mass(char residue) {
    static const std::map<char, double> masses{
        {'G', 57.02146},  {'A', 71.03711},  {'S', 87.03203},  {'P', 97.05276},  {'V', 99.06841},
        {'T', 101.04768}, {'C', 103.00919}, {'L', 113.08406}, {'I', 113.08406}, {'N', 114.04293},
        {'D', 115.02694}, {'Q', 128.05858}, {'K', 128.09496}, {'E', 129.04259}, {'M', 131.04049},
        {'H', 137.05891}, {'F', 147.06841}, {'R', 156.10111}, {'Y', 163.06333}, {'W', 186.07931}};
    return masses.at(residue);
}

// The masses of the residues; a shifted terminus counts with the residue beside it.
std::vector<double> residue_masses(std::string_view sequence, const Shifts& shifts) {
    std::vector<double> masses;
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        masses.push_back(residue_mass(sequence[i]));
        for (const auto& [position, shift] : shifts) {
            const bool isHere = position == i + 1 || (position == 0 && i == 0) ||
                                (position == sequence.size() + 1 && i + 1 == sequence.size());
            if (isHere) masses.back() += shift;
        }
    }
    return masses;
}

RESULT_ROW read_row(const std::string& line) {
    CClassicIn fields(line);
    RESULT_ROW row;
    int sites = 0;
    fields >> row.m_nRank >> row.m_strSequence >> row.m_lfMass >> row.m_lfScore >>
        row.m_lfFinalScore >> row.m_lfQValue >> sites;
    for (int i = 0; i < sites; ++i) {
        std::pair<int, std::string> site;
        fields >> site.first >> site.second;
        row.m_vSites.push_back(site);
    }
    int ignored = 0;
    int hits = 0;
    fields >> ignored >> row.m_nDecoy >> ignored >> hits;
    for (int i = 0; i < hits; ++i) {
        std::string hit;
        fields >> hit;
        row.m_vHits.push_back(hit);
    }
    fields >> ignored;
    row.m_vSubScores.resize(5);
    for (double& score : row.m_vSubScores)
        fields >> score;
    for (int i = 0; i < 8; ++i)
        fields >> ignored;
    if (!fields || fields >> ignored) throw std::runtime_error("bad result line: " + line);
    return row;
}

}  // namespace

std::vector<std::string> ENDED::Lines() const {
    std::vector<std::string> lines;
    std::istringstream text(m_strOutput);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

std::vector<RESULT_BLOCK> read_results(const std::string& text) {
    std::vector<RESULT_BLOCK> blocks;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("S\t")) {
            std::getline(lines, line);
            blocks.push_back({line, {}});
        } else {
            blocks.at(blocks.size() - 1).m_vRows.push_back(read_row(line));
        }
    }
    return blocks;
}

double peptide_mass(std::string_view sequence, const Shifts& shifts) {
    double mass = kWater + kProton;
    for (const double residue : residue_masses(sequence, shifts))
        mass += residue;
    return mass;
}

std::string perfect_spectrum(const std::string& title, std::string_view sequence,
                             const Shifts& shifts, double error) {
    const double mass = peptide_mass(sequence, shifts);
    std::map<double, double> peaks;
    double begin = 0.0;
    for (const double residue : residue_masses(sequence, shifts)) {
        begin += residue;
        peaks[begin + kProton] = 100.0;
        peaks[mass - begin] = 150.0;
    }
    // The whole peptide and its empty remainder are no fragments.
    peaks.erase(begin + kProton);
    peaks.erase(mass - begin);
    CClassicOut block;
    block.precision(9);
    block << "BEGIN IONS\nTITLE=" << title << "\nCHARGE=2+\nPEPMASS=" << (mass + kProton) / 2.0
          << '\n';
    for (const auto& [mz, intensity] : peaks)
        block << mz + error << ' ' << intensity << '\n';
    block << "END IONS\n";
    return block.str();
}

CSearchRun::CSearchRun()
    : m_mapSettings{{"activation_type", "CID-ITMS"},
                    {"mstol", "20"},
                    {"mstolppm", "1"},
                    {"msmstol", "0.5"},
                    {"msmstolppm", "0"},
                    {"maxdelta", "0"},
                    {"fastapath", "db.fasta"},
                    {"outputpath", "."},
                    {"outputname", "out"},
                    {"modpath", "modification.ini"},
                    {"aapath", "aa.ini"},
                    {"msmsnum", "1"},
                    {"msmspath1", "spectra.mgf"},
                    {"msmstype", "MGF"},
                    {"auto_rev", "0"},
                    {"log", "LOG_INFO"}} {
    for (const char* name : {"element.ini", "aa.ini", "modification.ini", "quant.ini"}) {
        std::filesystem::copy_file(test::source_path("data/" + std::string(name)),
                                   m_cFolder.Path(name));
    }
}

ENDED CSearchRun::Run(const std::string& program) const {
    // Keys are found from their section to the end of the file, so one section would not do.
    std::string text;
    for (const char* section : {"param", "file", "datalist", "engine", "filter", "quant", "system"})
        text += '[' + std::string(section) + "]\n";
    for (const auto& [key, value] : m_mapSettings)
        text += key + '=' + value + '\n';
    m_cFolder.Write("search.param", text);
    return RunWith("search.param", program);
}

ENDED CSearchRun::RunWith(const std::string& words, const std::string& program) const {
    return {run_program(program, words, m_cFolder.Path()),
            stream_text(m_cFolder.Read("output.txt")), stream_text(m_cFolder.Read("errors.txt"))};
}

std::vector<RESULT_BLOCK> CSearchRun::Search() const {
    const ENDED ended = Run();
    if (ended.m_nStatus != 0) return {};
    return read_results(m_cFolder.Read(ended.Lines().back()));
}

std::string CSearchRun::FirstSequence() const {
    const std::vector<RESULT_BLOCK> blocks = Search();
    if (blocks.empty() || blocks[0].m_vRows.empty()) return "";
    return blocks[0].m_vRows[0].m_strSequence;
}

}  // namespace tessel::test
