#pragma once
// The molvera-cli commands; each returns the process exit code.

#include <string>

#include "cli/common.h"

namespace molvera::cli {

/// Usage line of a command.
const char* Usage(const char* name);

int RunDump(const Args& args);
int RunDumpOptions(const Args& args);
int RunSave(const Args& args);
int RunOptions(const Args& args);
int RunImport(const Args& args);
int RunBackground(const Args& args);
int RunAddPeak(const Args& args);
int RunEditPeak(const Args& args);
int RunDeletePeak(const Args& args);
int RunQuantify(const Args& args);
int RunExportSpectrum(const Args& args);
int RunExportPeaks(const Args& args);
int RunSaveParams(const Args& args);
int RunApplyParams(const Args& args);
int RunFit(const Args& args);
int RunConstrain(const Args& args);
int RunRender(const Args& args);
int RunReport(const Args& args);
int RunBatch(const Args& args);
int RunMerge(const Args& args);
int RunCompletion(const Args& args);

/// batch --plots PREFIX: PREFIX-position.png, -fwhm, -area, -gl and -chi_square.png, each
/// value of every peak against the spectrum index (or the VAMAS experimental variable when
/// every fitted spectrum has one), from the rows batch wrote. False when one cannot be saved.
bool WriteSeriesPlots(const std::string& csv, const std::string& prefix);

}  // namespace molvera::cli
