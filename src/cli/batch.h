#pragma once
// One model over a series of spectra: every spectrum imported into a fresh project, the
// region parameters applied, fitted, and a CSV row written per peak.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "fileio/formats.h"
#include "model/records.h"

namespace molvera::cli {

/// One spectrum of a series, or the reason a file gave none.
struct SeriesSpectrum {
    std::string file;
    int block = 0;  ///< 1.. within its file (0 when the file could not be read)
    const ImportFormat* format = nullptr;
    ImportedSpectrum spectrum;
    std::string error;  ///< why the file could not be read; then `spectrum` is empty
};

/// The spectra of `files` in order (each block of a multi-block file is one); `format`
/// nullptr picks each file's format from its extension.
std::vector<SeriesSpectrum> ReadSeries(const std::vector<std::string>& files,
                                       const ImportFormat* format);

/// The first line of the results.
std::string BatchHeader();

/// The rows of spectrum `index`: imported into a fresh project with `options`, the region
/// parameter file `model` applied as apply-params does, fitted as fit --region 1 does; one
/// row per peak, or one row with the reason when that fails.
std::string FitSpectrumRows(int index, const SeriesSpectrum& s, std::string_view model,
                            const FitOptions& options);

/// The rows of the spectra `indices` (in that order), fitted by `jobs` threads; a
/// spectrum not started when Ctrl-C is pressed gives no row. `progress`, when given, is
/// called with the number of spectra done after each (from one thread at a time).
std::string FitSeriesRows(const std::vector<SeriesSpectrum>& series,
                          const std::vector<int>& indices, std::string_view model,
                          const FitOptions& options, int jobs,
                          const std::function<void(std::size_t)>& progress = {});

/// The results files joined in spectrum order under one header; an error when a file
/// has another header or a spectrum appears in two files.
Status MergeResults(const std::vector<std::string>& contents, std::string& merged);

}  // namespace molvera::cli
