#include "tests/faults/written_files.h"

#include <filesystem>

#include "tessel/param/condition_writer.h"
#include "tessel/platform/file.h"

namespace tessel::test {
namespace {

std::string alert(const std::string& text) {
    return "[Tessel] ALERT: " + text + '\n';
}

// A caller's own file, as an engine keeps one open for its spectra.
bool write_spectrum(const CSpectrum& spectrum, const std::string& path) {
    FilePtr file = open_file(path, "wb");
    spectrum.Output(file.get());
    return close_file(std::move(file));
}

}  // namespace

int run_writer(const WRITTEN_FILE& file) {
    return file.m_fWrite() ? 0 : kToldByResult;
}

CWrittenFiles::CWrittenFiles(bool large) {
    m_cCondition.m_strOutputPath = m_cFolder.Path() + '/';
    AddDatabase(large ? 2000 : 2);
    AddTables(large ? 3000 : 3);
    AddParameterFile(large ? 2000 : 1);
    AddMerged(large ? 40'000 : 2);
    AddFinalResult(large ? 20'000 : 2);
    AddSpectrum(large ? 5000 : 3);
}

std::map<std::string, std::string> CWrittenFiles::Contents() const {
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::directory_iterator(m_cFolder.Path()))
        contents[entry.path().filename().string()] = read_file(entry.path().string());
    return contents;
}

void CWrittenFiles::Restore(const std::map<std::string, std::string>& contents) const {
    for (const auto& [name, bytes] : Contents())
        if (!contents.contains(name)) std::filesystem::remove(m_cFolder.Path(name));
    for (const auto& [name, bytes] : contents)
        m_cFolder.Write(name, bytes);
}

void CWrittenFiles::AddDatabase(std::size_t proteins) {
    std::string text;
    for (std::size_t i = 0; i < proteins; ++i)
        text += ">P" + std::to_string(i) + " text\n" + std::string(500, 'A') + "\nCDE\n";
    m_cCondition.m_strFastaPath = m_cFolder.Write("db.fasta", text);
    const std::string path = m_cCondition.m_strFastaPath + "_td.fasta";
    const auto write = [this] {
        m_cCondition.SetFastaPath();
        return true;
    };
    m_vFiles.push_back(
        {"database", path, write, alert("Cannot write the target-decoy database " + path), 1});
}

void CWrittenFiles::AddTables(std::size_t mods) {
    m_cCondition.m_vLabels = {"None"};
    for (std::size_t i = 0; i < mods; ++i)
        m_cCondition.m_vMods.emplace_back().m_strName = "Modification" + std::to_string(i) + "[K]";
    m_cCondition.m_cAlphaBet.m_strComposition[0] = "C(3)H(5)N(1)O(1)";
    for (const bool residues : {true, false}) {
        const std::string path =
            residues ? m_cCondition.GetTmpAAPath(0) : m_cCondition.GetTmpModPath(0);
        const auto write = [this, residues] {
            residues ? m_cCondition.WriteAA(0) : m_cCondition.WriteMod(0);
            return true;
        };
        m_vFiles.push_back({residues ? "residues" : "modifications", path, write,
                            alert("Cannot write the file: " + path), 0});
    }
}

void CWrittenFiles::AddParameterFile(std::size_t files) {
    for (std::size_t i = 0; i < files; ++i)
        m_cCondition.m_vMSMSFiles.push_back("spectra" + std::to_string(i) + ".mgf");
    const std::string path = m_cFolder.Path("search.param");
    const auto write = [this, path] {
        CConditionWriter(path, &m_cCondition).Write();
        return true;
    };
    m_vFiles.push_back({"parameters", path, write, alert("Write_Failed: [" + path + "]"), 0});
}

void CWrittenFiles::AddMerged(std::size_t lines) {
    std::vector<std::string> inputs;
    for (const std::string number : {"1", "2"}) {
        std::string text;
        for (std::size_t i = 0; i < lines; ++i)
            text += "line " + std::to_string(i) + " of batch " + number + '\n';
        inputs.push_back(m_cFolder.Write("run." + number + ".res", text));
    }
    const std::string path = m_cFolder.Path("run.res");
    const auto write = [this, inputs, path] {
        return !m_cCondition.MergeFiles(inputs, path, true);
    };
    m_vFiles.push_back(
        {"merged", path, write, alert("Failed to write the result file: " + path), kToldByResult});
}

void CWrittenFiles::AddFinalResult(std::size_t spectra) {
    for (std::size_t i = 0; i < spectra; ++i) {
        CPSMRes& spectrum = m_cCondition.m_mapPSMRes["title " + std::to_string(i)];
        spectrum.m_strTitle = "title " + std::to_string(i);
        spectrum.m_vPeps.resize(1);
        spectrum.m_vPeps[0].m_strSeq = "PEPTIDE";
        spectrum.m_vPeps[0].m_lfScore = 10.0;
    }
    const std::string path = m_cFolder.Path("final.res");
    const auto write = [this, path] {
        m_cCondition.WriteFinalResult(path, 0.0);
        return true;
    };
    m_vFiles.push_back(
        {"result", path, write, alert("Failed to write the result file: " + path), 0});
}

void CWrittenFiles::AddSpectrum(std::size_t peaks) {
    CSpectrum spectrum;
    spectrum.m_strTitle = "a.1.1.2.0.dta";
    spectrum.m_nCharge = 2;
    spectrum.m_lfMH = 1000.0;
    for (std::size_t i = 0; i < peaks; ++i)
        spectrum.m_vPeaks.push_back({100.0 + 0.25 * static_cast<double>(i), 1.0, 0});
    const std::string path = m_cFolder.Path("own.mgf");
    const auto write = [spectrum, path] { return write_spectrum(spectrum, path); };
    m_vFiles.push_back({"spectrum", path, write, "", kToldByResult});
}

}  // namespace tessel::test
