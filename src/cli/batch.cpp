#include "cli/batch.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "base/numtext.h"
#include "cli/common.h"
#include "fileio/files.h"
#include "fileio/regionparams.h"
#include "model/project.h"
#include "session/fitcommands.h"
#include "session/report.h"

namespace molvera::cli {

namespace {

constexpr std::array kColumns = {"spectrum", "file",       "block",      "variable",
                                 "peak",     "label",      "position",   "position_sigma",
                                 "fwhm",     "fwhm_sigma", "area",       "area_sigma",
                                 "gl",       "gl_sigma",   "chi_square", "error"};

std::string SigmaField(const Sigma& sigma) {
    return sigma.state == Sigma::State::Value ? ExactText(sigma.value) : std::string();
}

std::string Trimmed(std::string text) {
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

// The columns before the peak's: spectrum, file, block, variable.
std::string Lead(int index, const SeriesSpectrum& s) {
    return std::to_string(index) + "," + CsvField(s.file) + "," + std::to_string(s.block) + "," +
           (s.spectrum.variable ? ExactText(*s.spectrum.variable) : std::string()) + ",";
}

std::string FailedRow(int index, const SeriesSpectrum& s, const std::string& why) {
    return Lead(index, s) + std::string(kColumns.size() - 5, ',') + CsvField(why) + "\n";
}

}  // namespace

std::vector<SeriesSpectrum> ReadSeries(const std::vector<std::string>& files,
                                       const ImportFormat* format) {
    std::vector<SeriesSpectrum> series;
    for (const std::string& file : files) {
        SeriesSpectrum s{file, 0, format ? format : FindImportFormatOfFile(file), {}, {}};
        std::string bytes;
        ImportedData data;
        if (!s.format) {
            s.error = "no import format for this file name (give --format)";
        } else if (Status st = ReadFileBytes(file, s.format->maxBytes, s.format->unreadable, bytes);
                   !st) {
            s.error = st.Text();
        } else if (data = s.format->parse(bytes); !data.status) {
            s.error = WithFileName(data.status, file).Text();
        } else if (data.spectra.empty()) {
            s.error = "the file holds no spectrum";
        }
        if (!s.error.empty()) {
            series.push_back(std::move(s));
            continue;
        }
        for (ImportedSpectrum& spectrum : data.spectra) {
            series.push_back({file, s.block + 1, s.format, std::move(spectrum), {}});
            ++s.block;
        }
    }
    return series;
}

std::string BatchHeader() {
    std::string line;
    for (const char* name : kColumns) line += (line.empty() ? "" : ",") + std::string(name);
    return line + "\n";
}

std::string FitSpectrumRows(int index, const SeriesSpectrum& s, std::string_view model,
                            const FitOptions& options) {
    if (!s.error.empty()) return FailedRow(index, s, s.error);
    Session session;
    ClearProject(session.project, session.host);
    Project& project = session.project;
    project.Options = options;
    project.CurrentRegion = 0;
    ImportedData one;
    one.spectra.push_back(s.spectrum);
    if (ImportResult r = StoreImport(project, session.host, one, s.format->policy); !r.status)
        return FailedRow(index, s, r.status.Text());
    if (Status st = ApplyRegionParameterBytes(project, session.host, model); !st)
        return FailedRow(index, s, st.Text());
    const FitSummary summary = OptimiseRegionCommand(project, session.host);
    if (!summary.note.empty()) return FailedRow(index, s, summary.note);
    if (summary.stopped) return FailedRow(index, s, "stopped");
    const Uncertainties u = FitUncertainties(project, false);
    std::string rows;
    for (int slot : u.peakSlots) {
        const Peak& peak = project.Peaks[static_cast<std::size_t>(slot)];
        const PeakSigmas& sigmas = u.peaks[static_cast<std::size_t>(slot)];
        rows += Lead(index, s) + std::to_string(slot) + "," +
                CsvField(Latin1ToUtf8(Trimmed(peak.Label.Str()))) + ",";
        for (PeakParameter p : {PeakParameter::Position, PeakParameter::FWHM, PeakParameter::Area,
                                PeakParameter::GL}) {
            rows += p == PeakParameter::GL
                        ? std::to_string(peak.PercentGL)
                        : FormatRoundTrip(static_cast<float>(ParameterValue(peak, p)));
            rows += "," + SigmaField(sigmas.parameters[static_cast<std::size_t>(p)]) + ",";
        }
        rows += FormatRoundTrip(summary.chiSquareAfter) + ",\n";
    }
    return rows;
}

std::string FitSeriesRows(const std::vector<SeriesSpectrum>& series,
                          const std::vector<int>& indices, std::string_view model,
                          const FitOptions& options, int jobs,
                          const std::function<void(std::size_t)>& progress) {
    std::vector<std::string> rows(indices.size());
    std::atomic<std::size_t> next{0};
    std::size_t done = 0;
    std::mutex doneMutex;
    auto work = [&] {
        for (std::size_t k = next++; k < indices.size() && !gInterrupted.load(); k = next++) {
            const int i = indices[k];
            rows[k] = FitSpectrumRows(i, series[static_cast<std::size_t>(i)], model, options);
            if (progress) {
                const std::lock_guard<std::mutex> lock(doneMutex);
                progress(++done);
            }
        }
    };
    std::vector<std::thread> workers;
    const int extra =
        std::clamp(jobs, 1, static_cast<int>(std::max<std::size_t>(indices.size(), 1)));
    for (int t = 1; t < extra; ++t) workers.emplace_back(work);
    work();
    for (std::thread& t : workers) t.join();
    std::string all;
    for (const std::string& r : rows) all += r;
    return all;
}

Status MergeResults(const std::vector<std::string>& contents, std::string& merged) {
    const std::string header = BatchHeader();
    std::map<long, std::string> bySpectrum;
    for (std::size_t f = 0; f < contents.size(); ++f) {
        const std::string& text = contents[f];
        if (text.compare(0, header.size(), header) != 0)
            return Status::Error("file " + std::to_string(f + 1) + " is not a batch result");
        std::map<long, std::string> mine;
        for (std::size_t start = header.size(); start < text.size();) {
            std::size_t end = text.find('\n', start);
            end = end == std::string::npos ? text.size() : end + 1;
            const std::string line = text.substr(start, end - start);
            start = end;
            const std::size_t length = LeadingNumberLength(line);
            if (length == 0 || line[length] != ',' || line[0] == ' ')
                return Status::Error("file " + std::to_string(f + 1) +
                                     ": a row without its "
                                     "spectrum number");
            std::string& rows = mine[static_cast<long>(LeadingNumber(line))];
            rows += line.back() == '\n' ? line : line + "\n";
        }
        for (auto& [index, rows] : mine)
            if (!bySpectrum.emplace(index, std::move(rows)).second)
                return Status::Error("spectrum " + std::to_string(index) + " is in two files");
    }
    merged = header;
    for (const auto& [index, rows] : bySpectrum) merged += rows;
    return Status::Ok();
}

}  // namespace molvera::cli
