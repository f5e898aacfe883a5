#pragma once
// The molvera-cli commands; each returns the process exit code.

#include <string>

#include "cli/args.h"

namespace molvera::cli {

struct Command {
    const char* name;
    const char* usage;
    const char* summary;
    int (*run)(int argc, char** argv);
};

/// The command of that name, or nullptr.
const Command* FindCommand(const std::string& name);
/// Usage line of a command.
const char* Usage(const char* name);

int RunDump(int argc, char** argv);
int RunDumpOptions(int argc, char** argv);
int RunSave(int argc, char** argv);
int RunOptions(int argc, char** argv);
int RunImport(int argc, char** argv);
int RunBackground(int argc, char** argv);
int RunAddPeak(int argc, char** argv);
int RunEditPeak(int argc, char** argv);
int RunDeletePeak(int argc, char** argv);
int RunQuantify(int argc, char** argv);
int RunExportSpectrum(int argc, char** argv);
int RunExportPeaks(int argc, char** argv);
int RunSaveParams(int argc, char** argv);
int RunApplyParams(int argc, char** argv);
int RunFit(int argc, char** argv);
int RunConstrain(int argc, char** argv);
int RunRender(int argc, char** argv);
int RunReport(int argc, char** argv);
int RunBatch(int argc, char** argv);
int RunMerge(int argc, char** argv);

/// batch --plots PREFIX: PREFIX-position.png, -fwhm, -area, -gl and -chi_square.png, each
/// value of every peak against the spectrum index (or the VAMAS experimental variable when
/// every fitted spectrum has one), from the rows batch wrote. False when one cannot be saved.
bool WriteSeriesPlots(const std::string& csv, const std::string& prefix);

}  // namespace molvera::cli
