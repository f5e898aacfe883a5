#include "session/peakform.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/numtext.h"
#include "constraints/propagation.h"
#include "fitting/uncertainty.h"
#include "session/fitcommands.h"
#include "session/formnumber.h"
#include "session/quantform.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"

namespace molvera {

namespace {

bool ValidSlot(int slot) { return slot >= 0 && slot < kPeakSlots; }

// Where each box stands in PeakBoxes.
enum PeakBoxIndex : std::size_t {
    kPositionBox,
    kFWHMBox,
    kAreaBox,
    kGLBox,
    kSplittingBox,
    kTailScaleBox,
    kTailLengthBox
};

Subshell PeakTypeFromText(const std::string& text) {
    if (text == "s") return Subshell::S;
    if (text == "p") return Subshell::P;
    if (text == "d") return Subshell::D;
    if (text == "f") return Subshell::F;
    return Subshell::None;
}

// A rounded scroll-bar position, or false when it is no usable number.
bool BarPosition(double value, int& position) {
    const double r = RoundHalfEven(value);
    if (!std::isfinite(r) || std::fabs(r) > 1e9) return false;
    position = static_cast<int>(r);
    return true;
}

ScrollBar& Bar(PeakForm& form, PeakParameter which) {
    switch (which) {
        case PeakParameter::Position:
            return form.positionBar;
        case PeakParameter::FWHM:
            return form.fwhmBar;
        case PeakParameter::Area:
            return form.areaBar;
        case PeakParameter::GL:
            break;
    }
    return form.glBar;
}

// Rewrites the box of a bar from its position, as a user's move does.
void WriteBarText(PeakForm& form, PeakParameter which) {
    const int position = Bar(form, which).value;
    switch (which) {
        case PeakParameter::Position:
            form.positionText =
                FormatGeneral(static_cast<float>(form.positionBase + position / 100.0));
            break;
        case PeakParameter::FWHM:
            form.fwhmText = FormatGeneral(static_cast<float>(position / 100.0));
            break;
        case PeakParameter::Area:
            form.areaText = FormatGeneral(static_cast<float>(position) * form.areaScale);
            break;
        case PeakParameter::GL:
            form.glText = std::to_string(position);
            break;
    }
}

// Sets a bar's range; its position is kept inside the range without rewriting the box.
void SetBarRange(ScrollBar& bar, int min, int max) {
    bar.min = min;
    bar.max = max;
    bar.value = std::clamp(bar.value, std::min(min, max), std::max(min, max));
}

// A peak's value set into a bar from the program; ignored when out of range.
void SetBarFromPeak(PeakForm& form, PeakParameter which, bool usable, int position) {
    if (usable) MoveScrollBar(form, which, position);
}

Int16 CheckValue(bool checked) { return checked ? 1 : 0; }

void HideEditor(PeakForm& form) { form.visible = false; }

// Accept and ReDraw share everything but hiding the editor.
Status ApplyAndRecompute(Project& project, Host& host, PeakForm& form) {
    const int slot = project.CurrentPeak;
    if (!ValidSlot(slot)) return Status::Ok();
    if (Status st = ApplyPeakEditor(project, form); !st) return st;
    ApplyAllRelations(project);
    FillPeakEditor(project, form, slot);
    project.AreaScale = form.areaScale;
    if (IsSet(project.Current().HasBackground)) ComputeRegionEnvelope(project, host);
    host.CurvesChanged();
    return Status::Ok();
}

// Cancel and close: the peak as the editor found it; a peak Add Peak has just made is
// deleted (false: DeletePeak has recomputed the region).
bool RestoreSavedPeak(Project& project, Host& host, PeakForm& form) {
    const int slot = project.CurrentPeak;
    if (!ValidSlot(slot)) return false;
    if (form.addedPeak == slot) {
        DeleteEditedPeak(project, host, form);
        return false;
    }
    project.Peaks[slot] = project.SavedPeaks[slot];
    project.Quant.RsfOverride[slot] = form.savedRsf;
    HideEditor(form);
    return IsSet(project.Current().HasBackground);
}

}  // namespace

const char* PeakTypeText(Subshell type) {
    switch (type) {
        case Subshell::S:
            return "s";
        case Subshell::P:
            return "p";
        case Subshell::D:
            return "d";
        case Subshell::F:
            return "f";
        default:
            return nullptr;
    }
}

std::string RelationText(const Project& project, int slot, PeakParameter which) {
    if (!ValidSlot(slot)) return "";
    const ParameterConstraint& c = project.Constraints[slot][which];
    // As the fit and the propagation see it: a reference to another peak in use.
    if (!IsSet(c.Linked) || !ValidSlot(c.RefPeak) || c.RefPeak == slot ||
        !IsSet(project.Peaks[c.RefPeak].InUse))
        return "";
    static constexpr std::array<const char*, 4> kOperations{"+", "-", "\xD7", "/"};
    const char* operation = c.Operation >= 0 && c.Operation < 4 ? kOperations[c.Operation] : "?";
    return "= peak " + std::to_string(c.RefPeak) + " " + operation + " " +
           FormatGeneral(c.Argument);
}

std::string ActualFWHMText(const MeasuredWidth& w) {
    if (!w.converged) return "---           ";
    return FormatFixed(w.width, 3) + "eV   ";
}

bool OpenPeakEditor(Project& project, Host& host, PeakForm& form, int buttonIndex) {
    if (buttonIndex < 0 || buttonIndex >= kPeakButtonCount) return false;
    const int r = buttonIndex / 10;
    const int k = buttonIndex - 10 * r;
    const Region& region = project.Regions[r];
    if (k >= region.PeakCount) return false;
    const int slot = region.PeakIndex[k];
    if (!ValidSlot(slot)) return false;

    project.CurrentPeak = static_cast<Int16>(slot);
    project.SavedPeaks[slot] = project.Peaks[slot];
    form.savedRsf = project.Quant.RsfOverride[slot];
    FillPeakEditor(project, form, slot);
    project.AreaScale = form.areaScale;
    host.CurvesChanged();
    form.visible = true;
    form.addedPeak = -1;
    return true;
}

bool AddPeakAndEdit(Project& project, Host& host, PeakForm& form) {
    const int slot = AddPeak(project, host);
    if (slot < 0) return false;
    // The new peak is the last of the current region's list.
    if (!OpenPeakEditor(project, host, form,
                        10 * project.CurrentRegion + project.Current().PeakCount - 1))
        return false;
    form.addedPeak = slot;
    return true;
}

void FillPeakEditor(const Project& project, PeakForm& form, int slot) {
    if (!ValidSlot(slot)) return;
    const Peak& peak = project.Peaks[slot];
    const int r =
        peak.Region >= 0 && peak.Region < kRegionCount ? peak.Region : project.CurrentRegion;
    const Region& region = project.Regions[r];

    form.caption = "Peak " + std::to_string(slot);
    form.positionText = FormatGeneral(peak.Position);
    form.fwhmText = FormatGeneral(peak.FWHM);
    form.areaText = FormatGeneral(peak.Area);
    form.glText = std::to_string(peak.PercentGL);
    form.splittingText = FormatGeneral(peak.Splitting);
    form.tailScaleText = FormatGeneral(peak.TailScale);
    form.tailLengthText = FormatGeneral(peak.TailLength);
    form.fixPosition = peak.FixPosition != 0;
    form.fixFWHM = peak.FixFWHM != 0;
    form.fixArea = peak.FixArea != 0;
    form.fixGL = peak.FixGL != 0;
    if (const char* type = PeakTypeText(peak.PeakType)) form.peakType = type;
    form.actualFWHM = ActualFWHMText(ActualFWHM(project, slot));

    int position = 0;
    int posMax = 0;
    if (BarPosition(static_cast<double>(region.BackgroundHighBE - region.BackgroundLowBE) * 100.0,
                    posMax)) {
        SetBarRange(form.positionBar, 0, posMax);
    }
    form.positionBase = region.BackgroundLowBE;
    bool usable = BarPosition((peak.Position - region.BackgroundLowBE) * 100.0f, position);
    SetBarFromPeak(form, PeakParameter::Position, usable, position);

    SetBarRange(form.fwhmBar, 30, 500);
    position = 50;
    usable = peak.FWHM >= 0.5f ? BarPosition(peak.FWHM * 100.0f, position) : true;
    SetBarFromPeak(form, PeakParameter::FWHM, usable, position);

    SetBarRange(form.areaBar, 0, 1000);
    form.areaScale = peak.Area / 500.0f;
    if (form.areaScale == 0) form.areaScale = 1;
    usable = BarPosition(peak.Area / form.areaScale, position);
    if (usable && position == 0) position = 1;
    SetBarFromPeak(form, PeakParameter::Area, usable, position);

    SetBarRange(form.glBar, 0, 100);
    SetBarFromPeak(form, PeakParameter::GL, true, peak.PercentGL);

    for (const NumberBox& box : PeakBoxes(form)) form.shownText[box.field] = box.text;
    FillQuantBoxes(project, form, slot);

    for (PeakParameter which : kPeakParameters)
        form.relationText[static_cast<std::size_t>(which)] = RelationText(project, slot, which);
    form.sigmaText = {};
    if (form.withSigmas && IsSet(region.HasData) && IsSet(region.HasBackground)) {
        const Uncertainties u = ComputeUncertainties(project, {r});
        const PeakSigmas& sigmas = u.peaks[static_cast<std::size_t>(slot)];
        for (PeakParameter which : kPeakParameters) {
            const auto i = static_cast<std::size_t>(which);
            form.sigmaText[i] = SigmaText(sigmas.parameters[i]);
        }
    }
}

std::vector<NumberBox> PeakBoxes(const PeakForm& form) {
    return {PeakBox(form, PeakParameter::Position),
            PeakBox(form, PeakParameter::FWHM),
            PeakBox(form, PeakParameter::Area),
            PeakBox(form, PeakParameter::GL),
            {"S.O.S.", "splittingText", form.splittingText},
            {"TS", "tailScaleText", form.tailScaleText},
            {"TL", "tailLengthText", form.tailLengthText}};
}

std::string& BoxText(PeakForm& form, PeakParameter which) {
    switch (which) {
        case PeakParameter::Position:
            return form.positionText;
        case PeakParameter::FWHM:
            return form.fwhmText;
        case PeakParameter::Area:
            return form.areaText;
        case PeakParameter::GL:
            break;
    }
    return form.glText;
}

NumberBox PeakBox(const PeakForm& form, PeakParameter which) {
    switch (which) {
        case PeakParameter::Position:
            return {"Position", "positionText", form.positionText};
        case PeakParameter::FWHM:
            return {"FWHM", "fwhmText", form.fwhmText};
        case PeakParameter::Area:
            return {"Area", "areaText", form.areaText};
        case PeakParameter::GL:
            break;
    }
    return {"%GL", "glText", form.glText};
}

bool BoxTyped(const PeakForm& form, const NumberBox& box) {
    const auto shown = form.shownText.find(box.field);
    return shown == form.shownText.end() || shown->second != box.text;
}

Status ApplyPeakEditor(Project& project, PeakForm& form) {
    const int slot = project.CurrentPeak;
    if (!ValidSlot(slot)) return Status::Ok();
    const std::vector<NumberBox> boxes = PeakBoxes(form);
    std::vector<NumberBox> typed;
    for (const NumberBox& box : boxes)
        if (BoxTyped(form, box)) typed.push_back(box);
    if (Status st = CheckNumberBoxes(typed, form.invalidBox); !st) return st;
    if (Status st = CheckQuantBoxes(form); !st) return st;
    Peak& peak = project.Peaks[slot];
    auto read = [&](std::size_t i, float& field) {
        if (BoxTyped(form, boxes[i])) field = BoxSingle(boxes[i].text);
    };

    read(kPositionBox, peak.Position);
    read(kFWHMBox, peak.FWHM);
    read(kAreaBox, peak.Area);
    read(kSplittingBox, peak.Splitting);
    // %GL indexes the line-shape tables: it is kept inside 0..100 like TS and TL.
    if (BoxTyped(form, boxes[kGLBox])) {
        const double typedGL = RoundHalfEven(LeadingNumber(form.glText));
        const double gl = std::clamp(typedGL, 0.0, 100.0);
        peak.PercentGL = static_cast<Int16>(gl);
        if (gl != typedGL) form.glText = std::to_string(peak.PercentGL);
    }
    if (BoxTyped(form, boxes[kTailScaleBox])) {
        peak.TailScale = std::clamp(BoxSingle(form.tailScaleText), 0.0f, 1.0f);
        form.tailScaleText = FormatGeneral(peak.TailScale);
    }
    if (BoxTyped(form, boxes[kTailLengthBox])) {
        peak.TailLength = std::clamp(BoxSingle(form.tailLengthText), 0.01f, 200.0f);
        form.tailLengthText = FormatGeneral(peak.TailLength);
    }

    if (const Subshell type = PeakTypeFromText(form.peakType); type != Subshell::None)
        peak.PeakType = type;
    peak.HeightPercent = AreaToHeightPercent(project, peak);

    peak.FixPosition = CheckValue(form.fixPosition);
    peak.FixFWHM = CheckValue(form.fixFWHM);
    peak.FixArea = CheckValue(form.fixArea);
    peak.FixGL = CheckValue(form.fixGL);
    StoreQuantBoxes(project, form, slot);
    return Status::Ok();
}

bool MoveScrollBar(PeakForm& form, PeakParameter which, int position) {
    ScrollBar& bar = Bar(form, which);
    if (position < std::min(bar.min, bar.max) || position > std::max(bar.min, bar.max))
        return false;
    bar.value = position;
    WriteBarText(form, which);
    return true;
}

void SetFixCheck(Project& project, PeakForm& form, PeakParameter which, bool checked) {
    const int slot = project.CurrentPeak;
    if (!ValidSlot(slot)) return;
    Peak& peak = project.Peaks[slot];
    switch (which) {
        case PeakParameter::Position:
            form.fixPosition = checked;
            peak.FixPosition = CheckValue(checked);
            break;
        case PeakParameter::FWHM:
            form.fixFWHM = checked;
            peak.FixFWHM = CheckValue(checked);
            break;
        case PeakParameter::Area:
            form.fixArea = checked;
            peak.FixArea = CheckValue(checked);
            break;
        case PeakParameter::GL:
            form.fixGL = checked;
            peak.FixGL = CheckValue(checked);
            break;
    }
}

Status AcceptPeakEditor(Project& project, Host& host, PeakForm& form) {
    if (Status st = ApplyAndRecompute(project, host, form); !st) return st;
    HideEditor(form);
    form.addedPeak = -1;
    return Status::Ok();
}

Status AcceptOnPeak(Project& project, Host& host, int slot,
                    const std::function<void(PeakForm&)>& type) {
    if (slot < 0 || slot >= kPeakSlots) return Status::Ok();
    const int r = project.Peaks[slot].Region;
    if (r < 0 || r >= kRegionCount) return Status::Ok();
    const std::span<const Int16> list = PeakList(project.Regions[r]);
    const auto at = std::find(list.begin(), list.end(), slot);
    if (at == list.end()) return Status::Ok();

    const Int16 current = project.CurrentPeak;
    const Peak saved = project.SavedPeaks[slot];
    const float areaScale = project.AreaScale;
    PeakForm form;
    form.withSigmas = false;
    Status st = Status::Ok();
    if (OpenPeakEditor(project, host, form, 10 * r + static_cast<int>(at - list.begin()))) {
        type(form);
        st = AcceptPeakEditor(project, host, form);
    }
    project.CurrentPeak = current;
    project.SavedPeaks[slot] = saved;
    project.AreaScale = areaScale;
    return st;
}

Status RedrawPeakEditor(Project& project, Host& host, PeakForm& form) {
    return ApplyAndRecompute(project, host, form);
}

bool LiveApplyPeakEditor(Project& project, Host& host, PeakForm& form) {
    if (!form.visible || !ValidSlot(project.CurrentPeak)) return false;
    // The boxes' texts by PeakBoxes order, then Label and RSF.
    static constexpr std::array<std::string PeakForm::*, 9> kTexts{
        &PeakForm::positionText,   &PeakForm::fwhmText,      &PeakForm::areaText,
        &PeakForm::glText,         &PeakForm::splittingText, &PeakForm::tailScaleText,
        &PeakForm::tailLengthText, &PeakForm::labelText,     &PeakForm::rsfText};
    static constexpr std::array<const char*, 2> kQuantFields{"labelText", "rsfText"};
    std::array<bool, kTexts.size()> typed{};
    const std::vector<NumberBox> boxes = PeakBoxes(form);
    bool any = false;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        typed[i] = BoxTyped(form, boxes[i]);
        if (typed[i] && !BoxNumber(boxes[i].text)) return false;
        any = any || typed[i];
    }
    for (std::size_t i = boxes.size(); i < kTexts.size(); ++i) {
        typed[i] = BoxTyped(form, {"", kQuantFields[i - boxes.size()], form.*kTexts[i]});
        any = any || typed[i];
    }
    const Peak& peak = project.Peaks[project.CurrentPeak];
    const char* type = PeakTypeText(peak.PeakType);
    if (!any && (!type || form.peakType == type)) return false;
    if (!ApplyPeakEditor(project, form)) return false;
    std::array<std::string, kTexts.size()> kept;
    for (std::size_t i = 0; i < kTexts.size(); ++i) kept[i] = form.*kTexts[i];
    if (Status st = ApplyAndRecompute(project, host, form); !st) return false;
    for (std::size_t i = 0; i < kTexts.size(); ++i) {
        if (!typed[i]) continue;
        form.*kTexts[i] = kept[i];
        form.shownText[i < boxes.size() ? boxes[i].field : kQuantFields[i - boxes.size()]] =
            kept[i];
    }
    return true;
}

void CancelPeakEditor(Project& project, Host& host, PeakForm& form) {
    if (RestoreSavedPeak(project, host, form)) ComputeRegionEnvelope(project, host);
    host.CurvesChanged();
}

void ClosePeakEditor(Project& project, Host& host, PeakForm& form) {
    if (RestoreSavedPeak(project, host, form)) ComputeRegionEnvelopeKeepingTotal(project, host);
    host.CurvesChanged();
}

void DeleteEditedPeak(Project& project, Host& host, PeakForm& form) {
    DeletePeak(project, host);
    form.visible = false;
    form.addedPeak = -1;
}

}  // namespace molvera
