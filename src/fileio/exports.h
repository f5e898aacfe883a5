#pragma once
// Text exports of the current region: the spectrum (.dat) and the peak table (.par).

#include <string>

#include "base/status.h"
#include "model/records.h"

namespace molvera {

/// The .dat text of the current region: data, and inside the background range the
/// envelope, background, each peak and the residual; lines end in CR LF.
std::string SpectrumExportText(const Project& project);

/// The .par text of the current region: slot, position, area, FWHM and %GL per peak.
std::string PeakParameterExportText(const Project& project);

/// Writes SpectrumExportText to `path`; fails with "Error in writing file".
Status ExportSpectrum(const Project& project, const std::string& path);

/// Writes PeakParameterExportText to `path`; fails with "Error in writing file".
Status ExportPeakParameters(const Project& project, const std::string& path);

}  // namespace molvera
