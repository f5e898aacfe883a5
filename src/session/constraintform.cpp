#include "session/constraintform.h"

#include <array>

#include "base/numtext.h"
#include "base/messages.h"
#include "model/project.h"

namespace molvera {

namespace {

constexpr std::array<const char*, 4> kOperationTexts{"+", "-", "*", "/"};

bool IsSlot(int s) { return s >= 0 && s < kPeakSlots; }

const Region* RegionOfPeak(const Project& project, int p) {
    const int r = project.Peaks[p].Region;
    return r >= 0 && r < kRegionCount ? &project.Regions[r] : nullptr;
}

std::string LimitText(float v) { return (v >= 0 ? " " : "") + FormatGeneral(v); }

void CorrectLimits(const Project& project, int p, ConstraintKind kind, ParameterConstraint& c) {
    switch (kind) {
        case ConstraintKind::Position: {
            const Region* region = RegionOfPeak(project, p);
            if (region == nullptr) return;
            const double maxBE = region->MaxBE;
            const double minBE = region->MinBE;
            if (c.HighLimit > maxBE + 0.001 || c.HighLimit < minBE - 0.001) c.HighLimit = region->MaxBE;
            if (c.LowLimit < minBE - 0.001 || c.LowLimit > maxBE + 0.001) c.LowLimit = region->MinBE;
            return;
        }
        case ConstraintKind::Area:
        case ConstraintKind::FWHM:
            if (c.HighLimit < 0) c.HighLimit = 0;
            if (c.LowLimit < 0) c.LowLimit = 0;
            return;
        case ConstraintKind::GL:
            if (c.HighLimit < 0 || c.HighLimit > 100) c.HighLimit = 100;
            if (c.LowLimit < 0 || c.LowLimit > 100) c.LowLimit = 0;
            return;
    }
}

const char* CaptionOf(ConstraintKind kind) {
    switch (kind) {
        case ConstraintKind::Position: return "Constraints for Peak Position";
        case ConstraintKind::Area: return "Constraints for Peak Area";
        case ConstraintKind::FWHM: return "Constraint for Peak FWHM";
        case ConstraintKind::GL: break;
    }
    return "Constraint for Peak %GL";
}

/// A limit message for H and L, or nullptr when they fit the parameter's domain.
const char* LimitRefusal(const Project& project, int p, ConstraintKind kind, float low, float high) {
    if (low > high) return msg::kRangeInvalid;
    switch (kind) {
        case ConstraintKind::Position: {
            const Region* region = RegionOfPeak(project, p);
            if (region == nullptr) return nullptr;
            if (high > static_cast<double>(region->MaxBE) + 0.001) return msg::kHighBEOutOfRange;
            if (low < static_cast<double>(region->MinBE) - 0.001) return msg::kLowBEOutOfRange;
            return nullptr;
        }
        case ConstraintKind::Area:
        case ConstraintKind::FWHM:
            return high < 0 || low < 0 ? msg::kNegativeRange : nullptr;
        case ConstraintKind::GL: break;
    }
    const bool outside = high < 0 || high > 100 || low < 0 || low > 100;
    return outside ? msg::kOutOfRange : nullptr;
}

}  // namespace

Group GroupOf(ConstraintKind kind) {
    switch (kind) {
        case ConstraintKind::Position: return Group::Position;
        case ConstraintKind::FWHM: return Group::FWHM;
        case ConstraintKind::Area: return Group::Area;
        case ConstraintKind::GL: break;
    }
    return Group::GL;
}

void OpenConstraint(Project& project, ConstraintForm& form, ConstraintKind kind) {
    const int p = project.CurrentPeak;
    if (!IsSlot(p)) return;
    ParameterConstraint& c = project.Constraints[p][GroupOf(kind)];
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
    OpenConstraint(project, form, ConstraintKind::Position);
}
void OpenAreaConstraint(Project& project, ConstraintForm& form) {
    OpenConstraint(project, form, ConstraintKind::Area);
}
void OpenFWHMConstraint(Project& project, ConstraintForm& form) {
    OpenConstraint(project, form, ConstraintKind::FWHM);
}
void OpenGLConstraint(Project& project, ConstraintForm& form) {
    OpenConstraint(project, form, ConstraintKind::GL);
}

bool IsCircular(const Project& project, Group g, int p, int r) {
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

bool IsCircularPosition(const Project& project, int p, int r) { return IsCircular(project, Group::Position, p, r); }
bool IsCircularArea(const Project& project, int p, int r) { return IsCircular(project, Group::Area, p, r); }
bool IsCircularFWHM(const Project& project, int p, int r) { return IsCircular(project, Group::FWHM, p, r); }
bool IsCircularGL(const Project& project, int p, int r) { return IsCircular(project, Group::GL, p, r); }

Status AcceptConstraint(Project& project, ConstraintForm& form) {
    const int p = project.CurrentPeak;
    if (!IsSlot(p)) return Status::Error(msg::kWrongReferencePeak);
    const Group g = GroupOf(form.kind);

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
