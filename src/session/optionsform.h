#pragma once
// The options dialog ("Option") as plain data, and its logic.

#include <array>
#include <string>

#include "base/status.h"
#include "model/options.h"

namespace molvera {

/// Texts and check states of the options dialog's controls; index i is level i + 1.
struct OptionsForm {
    bool visible = false;
    bool useSearch = false;
    bool useNewton = false;
    bool useLevenbergMarquardt = false;
    std::string searchTrialsText;
    std::string newtonTrialsText;
    std::string toleranceText = "0.0001";
    std::array<bool, kLevels> usePositionSearch{};
    std::array<std::string, kLevels> positionRangeText;
    std::array<std::string, kLevels> positionStepText;
    std::array<bool, kLevels> useAreaSearch{};
    std::array<std::string, kLevels> areaRangeText;
    std::array<std::string, kLevels> areaStepText;
    std::array<bool, kLevels> useFWHMSearch{};
    std::array<std::string, kLevels> fwhmRangeText;
    std::array<std::string, kLevels> fwhmStepText;
    std::array<bool, kLevels> usePositionNewton{};
    std::array<std::string, kLevels> positionDeltaText;
    std::array<bool, kLevels> useAreaNewton{};
    std::array<std::string, kLevels> areaDeltaText;
    std::array<bool, kLevels> useFWHMNewton{};
    std::array<std::string, kLevels> fwhmDeltaText;
    bool glSum = false;
    bool glProduct = false;
    /// Output: whether the peak editor's asymmetry frame is enabled (GL sum only).
    bool asymmetryFrameEnabled = false;
    std::string invalidBox;  ///< field of the box last refused as no number; "" when none
};

/// Copies the options into the dialog and shows it.
void FillOptionsDialog(const FitOptions& options, OptionsForm& form);

/// OK: a box in use that holds no number is refused with a message naming it and
/// nothing is stored; then reads the dialog back with its checks, in order; the first
/// failure returns its message, keeping what earlier steps stored. On success the
/// dialog is hidden.
Status ApplyOptionsDialog(OptionsForm& form, FitOptions& options);

/// Cancel, or Esc: the options go back to `opened`, as they were when the dialog was
/// opened (the method and line-shape buttons act at once), and the dialog is hidden.
void CancelOptionsDialog(OptionsForm& form, FitOptions& options, const FitOptions& opened);

/// A method or line-shape button was clicked (the toolkit has already changed its
/// state): the options follow that button at once, and its partner shows the opposite.
void ApplyNewtonChoice(OptionsForm& form, FitOptions& options);
void ApplySearchChoice(OptionsForm& form, FitOptions& options);
/// Levenberg-Marquardt checked: it is the method; unchecked: Newton's method is.
void ApplyLevenbergMarquardtChoice(OptionsForm& form, FitOptions& options);
void ApplyGLSumChoice(OptionsForm& form, FitOptions& options);
void ApplyGLProductChoice(OptionsForm& form, FitOptions& options);

/// The name that Save Parameters proposes: up to and including the first "." of the
/// last file name, then "opa"; a name without "." is proposed unchanged.
std::string ProposeOptionFileName(const std::string& lastFileName);

/// Load Parameters on a chosen path: reads the file, and refreshes and shows the dialog
/// unless the read failed; the caller shows a failure.
Status LoadOptionsCommand(const std::string& path, OptionsForm& form, FitOptions& options);

/// Start-up: reads "default.opa" (or `path`) silently, fills the dialog and hides it.
void LoadDefaultOptions(const std::string& path, OptionsForm& form, FitOptions& options);

}  // namespace molvera
