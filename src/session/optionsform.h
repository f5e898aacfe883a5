#pragma once
// The options dialog ("Option") as plain data, and its logic.

#include <array>
#include <string>

#include "model/options.h"
#include "base/status.h"

namespace molvera {

/// Texts and check states of the options dialog's controls; index i is level i + 1.
struct OptionsForm {
    bool Visible = false;
    bool UseSearch = false;
    bool UseNewton = false;
    std::string SearchTrial;
    std::string NewtonTrial;
    std::string TolVal = "0.0001";
    std::array<bool, kLevels> PosSearchCheck{};
    std::array<std::string, kLevels> PosRange;
    std::array<std::string, kLevels> PosStep;
    std::array<bool, kLevels> AreaSearchCheck{};
    std::array<std::string, kLevels> AreaRange;
    std::array<std::string, kLevels> AreaStep;
    std::array<bool, kLevels> FWHMSearchCheck{};
    std::array<std::string, kLevels> FWHMRange;
    std::array<std::string, kLevels> FWHMStep;
    std::array<bool, kLevels> PosNewtonCheck{};
    std::array<std::string, kLevels> PosDelta;
    std::array<bool, kLevels> AreaNewtonCheck{};
    std::array<std::string, kLevels> AreaDelta;
    std::array<bool, kLevels> FWHMNewtonCheck{};
    std::array<std::string, kLevels> FWHMDelta;
    bool GLSum = false;
    bool GLProduct = false;
    /// Output: whether the peak editor's asymmetry frame is enabled (GL sum only).
    bool AsymmetryFrameEnabled = false;
};

/// Copies the options into the dialog and shows it.
void FillOptionsDialog(const FitOptions& options, OptionsForm& form);

/// OK: reads the dialog back with its checks, in order; the first failure returns its
/// message, keeping what earlier steps stored. On success the dialog is hidden.
Status ApplyOptionsDialog(OptionsForm& form, FitOptions& options);

/// Immediate handlers, run after the toolkit has changed the clicked button's state.
void UseNewtonClick(OptionsForm& form, FitOptions& options);
void UseSearchClick(OptionsForm& form, FitOptions& options);
void GLSumClick(OptionsForm& form, FitOptions& options);
void GLProductClick(OptionsForm& form, FitOptions& options);

/// The name that Save Parameters proposes: up to and including the first "." of the
/// last file name, then "opa"; a name without "." is proposed unchanged.
std::string ProposeOptionFileName(const std::string& lastFileName);

/// Load Parameters on a chosen path: reads the file, and refreshes and shows the dialog
/// unless the read failed; the caller shows a failure.
Status LoadOptionsCommand(const std::string& path, OptionsForm& form, FitOptions& options);

/// Start-up: reads "default.opa" (or `path`) silently, fills the dialog and hides it.
void LoadDefaultOptions(const std::string& path, OptionsForm& form, FitOptions& options);

}  // namespace molvera
