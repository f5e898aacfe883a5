#pragma once
// The region shift and region caption dialogs as data.

#include <string>

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// "Region Shift": the shift box (eV).
struct RegionShiftForm {
    std::string shiftText;
    bool visible = false;
};

/// "Region Caption": the caption box, in the records' single-byte code page.
struct RegionCaptionForm {
    std::string captionText;
    bool visible = false;
};

/// Shows the shift dialog with the current region's Shift.
void OpenRegionShift(const Project& project, RegionShiftForm& form);
/// Accept: Shift = the leading number of the box (0 without one); hides the dialog. The
/// shift moves the drawn peaks at once: a region with a background and peaks has its
/// curves and chi-square recomputed, and a region with data is redrawn.
void AcceptRegionShift(Project& project, Host& host, RegionShiftForm& form);

/// Shows the caption dialog with the current region's 20-character Caption.
void OpenRegionCaption(const Project& project, RegionCaptionForm& form);
/// OK: Caption = the box cut or padded to 20 characters; hides the dialog; redraws
/// the region when it has data.
void AcceptRegionCaption(Project& project, Host& host, RegionCaptionForm& form);

}  // namespace molvera
