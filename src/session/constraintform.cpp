#include "session/constraintform.h"

#include <array>

#include "base/messages.h"
#include "base/numtext.h"
#include "model/project.h"
#include "session/formnumber.h"

namespace molvera {

namespace {

constexpr std::array<const char*, 4> kOperationTexts{"+", "-", "*", "/"};

bool IsSlot(int s) { return s >= 0 && s < kPeakSlots; }

const Region* RegionOfPeak(const Project& project, int p) {
    const int r = project.Peaks[p].Region;
    return r >= 0 && r < kRegionCount ? &project.Regions[r] : nullptr;
}

std::string LimitText(float v) { return (v >= 0 ? " " : "") + FormatGeneral(v); }

void CorrectLimits(const Project& project, int p, PeakParameter kind, ParameterConstraint& c) {
    switch (kind) {
        case PeakParameter::Position: {
            const Region* region = RegionOfPeak(project, p);
            if (region == nullptr) return;
            const double maxBE = region->MaxBE;
            const double minBE = region->MinBE;
            if (c.HighLimit > maxBE + 0.001 || c.HighLimit < minBE - 0.001)
                c.HighLimit = region->MaxBE;
            if (c.LowLimit < minBE - 0.001 || c.LowLimit > maxBE + 0.001)
                c.LowLimit = region->MinBE;
            return;
        }
        case PeakParameter::Area:
        case PeakParameter::FWHM:
            if (c.HighLimit < 0) c.HighLimit = 0;
            if (c.LowLimit < 0) c.LowLimit = 0;
            return;
        case PeakParameter::GL:
            if (c.HighLimit < 0 || c.HighLimit > 100) c.HighLimit = 100;
            if (c.LowLimit < 0 || c.LowLimit > 100) c.LowLimit = 0;
            return;
    }
}

const char* CaptionOf(PeakParameter kind) {
    switch (kind) {
        case PeakParameter::Position:
            return "Constraints for Peak Position";
        case PeakParameter::Area:
            return "Constraints for Peak Area";
        case PeakParameter::FWHM:
            return "Constraint for Peak FWHM";
        case PeakParameter::GL:
            break;
    }
    return "Constraint for Peak %GL";
}

/// A limit message for H and L, or nullptr when they fit the parameter's domain.
const char* LimitRefusal(const Project& project, int p, PeakParameter kind, float low, float high) {
    if (low > high) return msg::kRangeInvalid;
    switch (kind) {
        case PeakParameter::Position: {
            const Region* region = RegionOfPeak(project, p);
            if (region == nullptr) return nullptr;
            if (high > static_cast<double>(region->MaxBE) + 0.001) return msg::kHighBEOutOfRange;
            if (low < static_cast<double>(region->MinBE) - 0.001) return msg::kLowBEOutOfRange;
            return nullptr;
        }
        case PeakParameter::Area:
        case PeakParameter::FWHM:
            return high < 0 || low < 0 ? msg::kNegativeRange : nullptr;
        case PeakParameter::GL:
            break;
    }
    const bool outside = high < 0 || high > 100 || low < 0 || low > 100;
    return outside ? msg::kOutOfRange : nullptr;
}

}  // namespace

void OpenConstraint(Project& project, ConstraintForm& form, PeakParameter kind) {
    const int p = project.CurrentPeak;
    if (!IsSlot(p)) return;
    ParameterConstraint& c = project.Constraints[p][kind];
    form.kind = kind;
    form.caption = CaptionOf(kind);
    form.peakLabel = FormatGeneral(static_cast<float>(p));
    form.referencePeakText = FormatGeneral(static_cast<float>(c.RefPeak));
    if (c.Operation >= 0 && c.Operation <= 3) form.operation = kOperationTexts[c.Operation];
    form.argumentText = FormatGeneral(c.Argument);
    form.useRelation = IsSet(c.Linked);
    form.useLimits = IsSet(c.UseLimits);
    CorrectLimits(project, p, kind, c);
    form.highLimitText = LimitText(c.HighLimit);
    form.lowLimitText = LimitText(c.LowLimit);
    form.visible = true;
}

void OpenPositionConstraint(Project& project, ConstraintForm& form) {
    OpenConstraint(project, form, PeakParameter::Position);
}
void OpenAreaConstraint(Project& project, ConstraintForm& form) {
    OpenConstraint(project, form, PeakParameter::Area);
}
void OpenFWHMConstraint(Project& project, ConstraintForm& form) {
    OpenConstraint(project, form, PeakParameter::FWHM);
}
void OpenGLConstraint(Project& project, ConstraintForm& form) {
    OpenConstraint(project, form, PeakParameter::GL);
}

bool IsCircular(const Project& project, PeakParameter g, int p, int r) {
    int q = r;
    for (int step = 0; step < kPeakSlots; ++step) {
        if (!IsSlot(q)) return false;
        const ParameterConstraint& c = project.Constraints[q][g];
        if (!IsSet(c.Linked)) return false;
        if (c.RefPeak == p) return true;
        q = c.RefPeak;
    }
    return false;
}

bool IsCircularPosition(const Project& project, int p, int r) {
    return IsCircular(project, PeakParameter::Position, p, r);
}
bool IsCircularArea(const Project& project, int p, int r) {
    return IsCircular(project, PeakParameter::Area, p, r);
}
bool IsCircularFWHM(const Project& project, int p, int r) {
    return IsCircular(project, PeakParameter::FWHM, p, r);
}
bool IsCircularGL(const Project& project, int p, int r) {
    return IsCircular(project, PeakParameter::GL, p, r);
}

Status AcceptConstraint(Project& project, ConstraintForm& form) {
    const int p = project.CurrentPeak;
    if (!IsSlot(p)) return Status::Error(msg::kWrongReferencePeak);
    const PeakParameter g = form.kind;
    // The boxes in use must hold numbers before anything is stored.
    const std::string unused = "0";
    const bool relation = form.useRelation;
    const bool limits = form.useLimits;
    if (Status st = CheckNumberBoxes(
            {{"Reference peak", "referencePeakText", relation ? form.referencePeakText : unused},
             {"Argument", "argumentText", relation ? form.argumentText : unused},
             {"Low limit", "lowLimitText", limits ? form.lowLimitText : unused},
             {"High limit", "highLimitText", limits ? form.highLimitText : unused}},
            form.invalidBox);
        !st)
        return st;

    // A reference outside the slots is refused whether or not the relation is on:
    // the recount below indexes the slots with it.
    const auto ref = ToInt16(LeadingNumber(form.referencePeakText));
    if (!ref || !IsSlot(*ref)) return Status::Error(msg::kWrongReferencePeak);
    const int r = *ref;
    if (form.useRelation && (!IsSet(project.Peaks[r].InUse) || r == p)) {
        return Status::Error(msg::kWrongReferencePeak);
    }
    if (form.useRelation && IsCircular(project, g, p, r))
        return Status::Error(msg::kCircularReference);

    Int16 operation = 0;
    for (int i = 0; i < 4; ++i) {
        if (form.operation == kOperationTexts[i]) operation = static_cast<Int16>(i);
    }
    const float a = static_cast<float>(LeadingNumber(form.argumentText));
    if (form.useRelation && (operation == 2 || operation == 3) && a == 0) {
        return Status::Error(msg::kZeroArgument);
    }

    ParameterConstraint& mine = project.Constraints[p][g];
    ParameterConstraint& theirs = project.Constraints[r][g];
    if (form.useRelation) {
        theirs.IsReference = kTrue;
        theirs.DependentPeak = static_cast<Int16>(p);
        mine.Linked = kTrue;
    } else {
        mine.Linked = kFalse;
        RecountDependents(project, g, r);
    }
    mine.RefPeak = static_cast<Int16>(r);
    mine.Operation = operation;
    mine.Argument = a;

    if (!form.useLimits) {
        mine.UseLimits = kFalse;
        form.visible = false;
        return Status::Ok();
    }
    const float low = static_cast<float>(LeadingNumber(form.lowLimitText));
    const float high = static_cast<float>(LeadingNumber(form.highLimitText));
    if (const char* refusal = LimitRefusal(project, p, form.kind, low, high)) {
        return Status::Error(refusal);
    }
    mine.UseLimits = kTrue;
    mine.HighLimit = high;
    mine.LowLimit = low;
    form.visible = false;
    return Status::Ok();
}

}  // namespace molvera
