#pragma once
// Every fixed text that the program shows the user, in one place.

namespace molvera::msg {

inline constexpr const char* kWrongFileFormat = "Wrong file format";
inline constexpr const char* kErrorReadingFile = "Error in reading file";
inline constexpr const char* kErrorReadingFileImport = "Error Reading File";
inline constexpr const char* kErrorWritingFile = "Error in writing file";
inline constexpr const char* kErrorSavingFile = "Error in saving file";
inline constexpr const char* kFileSaved = "File saved";
inline constexpr const char* kDataFileExported = "Data file exported";
inline constexpr const char* kParameterFileSaved = "Parameter File saved";
inline constexpr const char* kTooManyRegions = "Too many regions";
inline constexpr const char* kTooManyPeaks = "Too many peaks";
inline constexpr const char* kIncompatibleRegion = "Incompatible region";
inline constexpr const char* kBindingEnergyOutOfRange = "Binding energy out-of-range";
inline constexpr const char* kOnly5000Points = "Only 5000 points have been read";
inline constexpr const char* kTooManyPointsPrefix = "Too many points.  Only ";
inline constexpr const char* kTooManyPointsSuffix = " points have been read.";
inline constexpr const char* kNotVamas = "Not a VAMAS file";
inline constexpr const char* kNotXps = "Not an XPS file";

// Constraint dialog.
inline constexpr const char* kWrongReferencePeak = "Wrong Reference Peak";
inline constexpr const char* kCircularReference = "Circular Reference";
inline constexpr const char* kZeroArgument = "*0 or /0 not allowed";
inline constexpr const char* kRangeInvalid = "Range Invalid";
inline constexpr const char* kHighBEOutOfRange = "High BE value out of range";
inline constexpr const char* kLowBEOutOfRange = "Low BE value out of range";
inline constexpr const char* kNegativeRange = "Negative range value";
inline constexpr const char* kOutOfRange = "Out of Range";

// Options dialog.
inline constexpr const char* kSearchTrialsRange =
    "No. of trials for Search method must be in the range 1-200";
inline constexpr const char* kNewtonTrialsRange =
    "No. of trials for Newton's method must be in the range 1-200";
inline constexpr const char* kToleranceRange = "% Tolerence must be in the range 0-100";
inline constexpr const char* kMustBePositiveSuffix = " must be >0";
inline constexpr const char* kPosRangePrefix = "Range value for Position of level";
inline constexpr const char* kPosStepPrefix = "Step value for Position of level";
inline constexpr const char* kAreaRangePrefix = "Range value for Area of level";
inline constexpr const char* kAreaStepPrefix = "Step value for Area of level";
inline constexpr const char* kFWHMRangePrefix = "Range value for FWHM of level";
inline constexpr const char* kFWHMStepPrefix = "Step value for FWHM of level";
inline constexpr const char* kPosDeltaPrefix = "Delta value for Position of level";
inline constexpr const char* kAreaDeltaPrefix = "Delta value for Area of level";
inline constexpr const char* kFWHMDeltaPrefix = "Delta value for FWHM of level";

// Region window.
inline constexpr const char* kDeleteRegionTitle = "!! WARNING !!";
inline constexpr const char* kDeleteRegionText =
    "All information in this region data will be deleted! Continue?";
inline constexpr const char* kNoPrinter = "No printer is available";
inline constexpr const char* kPrintingFailed = "Error in printing";

// Autosave.
inline constexpr const char* kRestoreTitle = "Restore unsaved work";
inline constexpr const char* kAutosaveFailed =
    "The recovery copy of the unsaved work could not be written";

}  // namespace molvera::msg
