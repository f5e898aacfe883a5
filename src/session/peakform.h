#pragma once
// The peak editor as data: its boxes, check boxes and scroll bars, filling them from
// a peak, reading them back, and its buttons.

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/status.h"
#include "model/host.h"
#include "model/records.h"
#include "session/formnumber.h"
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
    std::string peakType = "s";  ///< "s", "p", "d" or "f"
    std::string splittingText;   ///< "S.O.S."
    std::string actualFWHM = "---";
    std::string positionText;
    ScrollBar positionBar{0, 0, 0};
    bool fixPosition = false;
    std::string fwhmText;
    ScrollBar fwhmBar{30, 500, 30};
    bool fixFWHM = false;
    std::string areaText = "100";
    ScrollBar areaBar{0, 1000, 0};
    bool fixArea = false;
    std::string glText = "80";
    ScrollBar glBar{0, 100, 0};
    bool fixGL = false;
    /// "± 0.012" beside each value, by PeakParameter: the standard uncertainty at the
    /// present values; "" for a value no fit varies.
    std::array<std::string, 4> sigmaText;
    bool withSigmas = true;  ///< false: no sigma is computed (a drag never shows the form)
    /// "= peak 0 \xD7 1" for a parameter that follows another peak's, by PeakParameter;
    /// "" for one of its own. Its box is read-only.
    std::array<std::string, 4> relationText;
    std::string tailScaleText;   ///< "TS"
    std::string tailLengthText;  ///< "TL"
    std::string caption;
    std::string labelText;       ///< the peak's label (at most 20 characters)
    std::string rsfText;         ///< an RSF typed for the peak; "" for the computed one
    std::string rsfPlaceholder;  ///< what the empty RSF box shows ("2.881 from xraylib")
    float savedRsf = 0;          ///< the typed RSF when the editor opened, for Cancel
    std::string invalidBox;      ///< field of the box last refused as no number; "" when none
    /// The number boxes' texts as the program last wrote them, by field ("positionText"):
    /// Apply reads only boxes whose text differs, so a value shown rounded stays exact.
    std::map<std::string, std::string> shownText;
    bool visible = false;
    int addedPeak = -1;      ///< slot Add Peak made and opened, not yet accepted; -1 when none
    float positionBase = 0;  ///< BackgroundLowBE: the energy of positionBar's position 0
    float areaScale = 1;     ///< area of one step of areaBar
};

/// "s", "p", "d" or "f"; null for a type without a name.
const char* PeakTypeText(Subshell type);

/// The relation a parameter of peak `slot` follows, as "= peak 0 \xD7 1" or
/// "= peak 2 + 1.1" (Latin-1); "" when it follows none.
std::string RelationText(const Project& project, int slot, PeakParameter which);

/// The text of the measured-width label for a measured width.
std::string ActualFWHMText(const MeasuredWidth& w);

/// Opens the editor from main-window peak button `buttonIndex` (10 x region + k):
/// that peak becomes CurrentPeak, is saved for Cancel, fills the form and is shown.
/// False (nothing done) when the button lists no peak.
bool OpenPeakEditor(Project& project, Host& host, PeakForm& form, int buttonIndex);

/// Add Peak, then the editor opened on the new peak; Cancel or closing the window
/// removes that peak again until Accept keeps it. False when Add Peak refused.
bool AddPeakAndEdit(Project& project, Host& host, PeakForm& form);

/// Writes the values of peak `slot` into the controls, the scroll bars rewriting their
/// boxes; sets form.areaScale (the caller keeps it as the project's AreaScale).
void FillPeakEditor(const Project& project, PeakForm& form, int slot);

/// The value box of a parameter, as a box that must hold a number.
NumberBox PeakBox(const PeakForm& form, PeakParameter which);

/// The text of a parameter's value box.
std::string& BoxText(PeakForm& form, PeakParameter which);

/// Every number box: Position, FWHM, Area, %GL, S.O.S., TS, TL, in this order.
std::vector<NumberBox> PeakBoxes(const PeakForm& form);

/// True when the user changed the box's text since the program wrote it.
bool BoxTyped(const PeakForm& form, const NumberBox& box);

/// Reads the controls into CurrentPeak (TS and TL limited and written back); a number
/// box is read only when the user changed its text. A changed box that holds no number
/// is refused ("Position: 'abc' is not a number") and nothing is stored.
Status ApplyPeakEditor(Project& project, PeakForm& form);

/// Moves a scroll bar as the user does and rewrites its box; a position outside the
/// bar's range is ignored (false).
bool MoveScrollBar(PeakForm& form, PeakParameter which, int position);

/// A Fix check box changed: the flag goes into CurrentPeak at once.
void SetFixCheck(Project& project, PeakForm& form, PeakParameter which, bool checked);

/// Accept: apply, relations, refill, envelope, redraw, hide; a refusal of ApplyPeakEditor
/// changes nothing and is returned for the caller to show.
Status AcceptPeakEditor(Project& project, Host& host, PeakForm& form);
/// Opens a form that is never shown on peak `slot` (of its own region), lets `type` write
/// boxes, and presses Accept, as the peak table and a drag in the plot do: the peak open in
/// the editor, its saved copy for Cancel and the area scale stay as they were. Nothing is
/// done when the slot is no listed peak.
Status AcceptOnPeak(Project& project, Host& host, int slot,
                    const std::function<void(PeakForm&)>& type);
/// ReDraw: as Accept, but the editor stays open.
Status RedrawPeakEditor(Project& project, Host& host, PeakForm& form);
/// Live editing, a moment after the user typed: when every typed box holds a number, as
/// ReDraw, except that the typed boxes keep their texts (as the form corrects them) and
/// count as read; otherwise nothing (no message while the user is still typing). True
/// when typed values (or another type) were applied.
bool LiveApplyPeakEditor(Project& project, Host& host, PeakForm& form);
/// Cancel: the peak as it was when the editor opened, or none when Add Peak opened it;
/// hide; envelope; redraw.
void CancelPeakEditor(Project& project, Host& host, PeakForm& form);
/// Closing the window: as Cancel, with the quiet recompute that leaves the total alone
/// (a peak just added is removed as Delete Peak does).
void ClosePeakEditor(Project& project, Host& host, PeakForm& form);
/// Delete Peak: removes CurrentPeak from the project and hides the editor.
void DeleteEditedPeak(Project& project, Host& host, PeakForm& form);

}  // namespace molvera
