#pragma once
// The peak editor as data: its boxes, check boxes and scroll bars, filling them from
// a peak, reading them back, and its buttons.

#include <string>

#include "model/host.h"
#include "model/records.h"
#include "spectral/lineshape.h"

namespace molvera {

/// A horizontal scroll bar: its range and position.
struct ScrollBar {
    int min = 0;
    int max = 0;
    int value = 0;
};

/// State of every control of the peak editor.
struct PeakForm {
    std::string PeakType = "s";  ///< "s", "p", "d" or "f"
    std::string SplittingVal;    ///< "S.O.S."
    std::string ActFWHM = "---";
    std::string PosVal;
    ScrollBar ScPos{0, 0, 0};
    bool ChkPos = false;
    std::string FWHMVal;
    ScrollBar ScFWHM{30, 500, 30};
    bool ChkFWHM = false;
    std::string AreaVal = "100";
    ScrollBar ScArea{0, 1000, 0};
    bool ChkArea = false;
    std::string GLVal = "80";
    ScrollBar ScGL{0, 100, 0};
    bool ChkGL = false;
    std::string TSVal;
    std::string TLVal;
    std::string caption;
    bool visible = false;
    float PositionBase = 0;  ///< BackgroundLowBE: the energy of ScPos position 0
    float AreaScale = 1;     ///< area of one step of ScArea
};

/// The text of the measured-width label for a measured width.
std::string ActualFWHMText(const MeasuredWidth& w);

/// Opens the editor from main-window peak button `buttonIndex` (10 x region + k):
/// that peak becomes CurrentPeak, is saved for Cancel, fills the form and is shown.
/// False (nothing done) when the button lists no peak.
bool OpenPeakEditor(Project& project, Host& host, PeakForm& form, int buttonIndex);

/// Writes the values of peak `slot` into the controls, the scroll bars rewriting their
/// boxes; sets form.AreaScale (the caller keeps it as the project's AreaScale).
void FillPeakEditor(const Project& project, PeakForm& form, int slot);

/// Reads the controls into CurrentPeak (TS and TL limited and written back).
void ApplyPeakEditor(Project& project, PeakForm& form);

/// Moves a scroll bar as the user does and rewrites its box; a position outside the
/// bar's range is ignored (false).
bool MoveScrollBar(PeakForm& form, PeakParameter which, int position);

/// A Fix check box changed: the flag goes into CurrentPeak at once.
void SetFixCheck(Project& project, PeakForm& form, PeakParameter which, bool checked);

/// Accept: apply, relations, refill, envelope, redraw, hide.
void PeakAccept(Project& project, Host& host, PeakForm& form);
/// ReDraw: as Accept, but the editor stays open.
void PeakReDraw(Project& project, Host& host, PeakForm& form);
/// Cancel: the peak as it was when the editor opened; hide; envelope; redraw.
void PeakCancel(Project& project, Host& host, PeakForm& form);
/// Closing the window: as Cancel, with the quiet recompute that leaves the total alone.
void ClosePeakEditor(Project& project, Host& host, PeakForm& form);
/// Delete Peak: removes CurrentPeak from the project and hides the editor.
void PeakDelete(Project& project, Host& host, PeakForm& form);

}  // namespace molvera
