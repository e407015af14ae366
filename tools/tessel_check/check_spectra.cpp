// The spectrum files of the data list come in; each is checked as the reader of the type that the
// parameter file names would read it.

#include <algorithm>

#include "tessel/base/line_reader.h"
#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/platform/file.h"
#include "tessel/spectra/zb_input.h"
#include "tools/tessel_check/checks.h"
#include "tools/tessel_check/mgf_check.h"
#include "tools/tessel_check/names.h"
#include "tools/tessel_check/progress.h"
#include "tools/tessel_check/spectrum_summary.h"

namespace tessel::check {
namespace {

// Read at a time: enough to be quick, and less than an engine's batch.
constexpr std::size_t kEntriesAtOnce = 1000;

bool has_rising_peaks(const CSpectrum& spectrum) {
    return std::is_sorted(spectrum.m_vPeaks.begin(), spectrum.m_vPeaks.end(), CPeak::Mz_Less);
}

// The bytes that a spectrum has taken in its file, roughly.
std::uint64_t bytes_of(const CSpectrum& spectrum) {
    return spectrum.m_vPeaks.size() * 16;
}

void report_faults(CInput& reader, const PLACE& place, std::size_t read, CReport& report) {
    for (const std::string& fault : reader.TakeFaults()) {
        const bool noHeader = read == 0 && fault.starts_with("no ZB2 header");
        report.Error(noHeader ? "type-does-not-fit" : "damaged-file", place,
                     fault + "; what is readable is searched",
                     noHeader ? "Correct \"msmstype\" or the path." : "Export the file anew.");
    }
}

// Returns the number of entries that the file announces.
std::size_t check_zb2(const std::string& path, bool progress, CReport& report) {
    const PLACE place{path, 0};
    CProgress shown(path, progress);
    CSpectrumSummary summary(path, report);
    CZBInput reader;
    const std::size_t announced = reader.Count(path);
    std::vector<CSpectrum> spectra;
    std::size_t read = 0;
    for (std::size_t entries = announced; entries > 0;) {
        spectra.clear();
        entries = reader.Browse(spectra, kEntriesAtOnce);
        read += entries;
        for (const CSpectrum& spectrum : spectra) {
            shown.Read(bytes_of(spectrum));
            summary.Add(spectrum, place);
            if (spectrum.m_vPeaks.empty()) summary.AddWithoutPeaks(spectrum, place);
            if (!has_rising_peaks(spectrum)) summary.AddUnsortedPeaks(spectrum, place);
        }
    }
    report_faults(reader, place, read, report);
    summary.Finish();
    return announced;
}

void check_zbs(const std::string& path, std::size_t batchSize, bool progress, CReport& report) {
    CLineReader lines(path);
    std::string_view line;
    std::size_t number = 0;
    while (lines.ReadLine(line)) {
        const PLACE place{path, ++number};
        const std::string file(line);
        if (!path_exists(file)) {
            report.Error("missing-path", place,
                         in_quotes(file) + " does not exist; it counts as a file without spectra",
                         "Correct the path or remove the line.");
            continue;
        }
        const std::size_t entries = check_zb2(file, progress, report);
        if (entries > batchSize) {
            report.Error("batch-too-small", place,
                         joined_text(in_quotes(file), " has ", entries, " entries, \"maxspec\" is ",
                                     batchSize,
                                     "; a listed file is read at once, so it and all behind it are "
                                     "not searched"),
                         joined_text("Set maxspec to at least ", entries, "."));
        }
    }
    if (!lines.IsOpen() || lines.Failed()) {
        report.Error("unreadable-file", {path, 0},
                     "the list cannot be read to its end; nothing is searched",
                     "Check its permissions and its disk.");
    } else if (number == 0) {
        report.Error("no-entries", {path, 0}, "the list is empty; nothing is searched",
                     "List one ZB2 file a line.");
    }
}

void check_file(const std::string& path, const CCondition& condition, bool progress,
                CReport& report) {
    const auto status = file_status(path);
    if (!status) return;  // reported with its key
    if (status->m_bFolder) {
        report.Error("not-a-file", {path, 0}, "this is a folder; nothing of it is searched",
                     "Name a file, or set msmsfolder=1.");
    } else if (condition.m_strMSMSType == "MGF") {
        check_mgf(path, condition.m_nMaxSpec, progress, report);
    } else if (condition.m_strMSMSType == "ZBS") {
        check_zbs(path, condition.m_nMaxSpec, progress, report);
    } else {
        check_zb2(path, progress, report);
    }
}

}  // namespace

void check_spectra(const CParameterFile& file, const CCondition& condition, bool progress,
                   CReport& report) {
    // A file that is named but does not exist is reported with its key.
    const bool named = !condition.m_bMSMSFolder && to_int(file.Value("msmsnum")) > 0;
    if (condition.m_vMSMSFiles.empty() && !named) {
        report.Warning("no-spectra", file.PlaceOf(*CKnownKey("msmsnum")),
                       condition.m_bMSMSFolder
                           ? "no file of the folders ends in ." + condition.m_strMSMSType +
                                 " in small letters; nothing is searched"
                           : "no spectrum file is named; nothing is searched",
                       "Name one by msmspath1 and set msmsnum=1.");
    }
    const std::string& type = condition.m_strMSMSType;
    if (type != "MGF" && type != "ZB2" && type != "ZBS") return;  // reported with its key
    for (const std::string& path : condition.m_vMSMSFiles)
        check_file(path, condition, progress, report);
}

}  // namespace tessel::check
