#include "model/project.h"

#include <algorithm>

namespace molvera {

Text20 Text20::From(std::string_view text) {
    Text20 t;
    std::copy_n(text.begin(), std::min<std::size_t>(text.size(), 20), t.chars.begin());
    return t;
}

const char* ParameterName(PeakParameter parameter) {
    switch (parameter) {
        case PeakParameter::Position:
            return "Position";
        case PeakParameter::Area:
            return "Area";
        case PeakParameter::FWHM:
            return "FWHM";
        case PeakParameter::GL:
            break;
    }
    return "GL";
}

double ParameterValue(const Peak& peak, PeakParameter parameter) {
    switch (parameter) {
        case PeakParameter::Position:
            return peak.Position;
        case PeakParameter::Area:
            return peak.Area;
        case PeakParameter::FWHM:
            return peak.FWHM;
        case PeakParameter::GL:
            break;
    }
    return peak.PercentGL;
}

ParameterConstraint& PeakConstraint::operator[](PeakParameter parameter) {
    switch (parameter) {
        case PeakParameter::Position:
            return Position;
        case PeakParameter::Area:
            return Area;
        case PeakParameter::FWHM:
            return FWHM;
        case PeakParameter::GL:
            break;
    }
    return GL;
}

const ParameterConstraint& PeakConstraint::operator[](PeakParameter parameter) const {
    return const_cast<PeakConstraint&>(*this)[parameter];
}

std::span<const Int16> PeakList(const Region& region) {
    const auto count =
        static_cast<std::size_t>(std::clamp<int>(region.PeakCount, 0, kMaxPeaksPerRegion));
    return std::span<const Int16>(region.PeakIndex.data(), count);
}

Host& QuietHost() {
    static Host quiet;
    return quiet;
}

void ClearPeakSlot(Project& project, int slot) {
    Peak& p = project.Peaks[slot];
    p.InUse = kFalse;
    p.PeakType = Subshell::None;
    p.Splitting = 0;
    p.Position = 0;
    p.Area = 100;
    p.HeightPercent = 100;
    p.FWHM = 1;
    p.PercentGL = 80;
    p.FixPosition = 0;
    p.FixFWHM = 0;
    p.FixArea = 0;
    p.FixGL = 1;
    for (PeakParameter g : kPeakParameters) {
        ParameterConstraint& c = project.Constraints[slot][g];
        c.Linked = 0;
        c.RefPeak = 0;
        c.IsReference = 0;
        c.DependentPeak = 0;
        c.Operation = 0;
        c.Argument = 0;
    }
    project.Quant.RsfOverride[slot] = 0;
}

void SetNewPeakDefaults(Peak& p, int region) {
    p.PeakType = Subshell::S;
    p.Splitting = 0;
    p.Region = static_cast<Int16>(region);
    p.FixPosition = 0;
    p.FixFWHM = 0;
    p.FixArea = 0;
    p.FixGL = 1;
    p.TailScale = 0;
    p.TailLength = 1.0f;
}

void ClearProject(Project& project, Host& host) {
    project.TotalChiSquare = 0;
    project.TotalPeakCount = 0;
    for (Region& r : project.Regions) {
        r.HasData = kFalse;
        r.HasBackground = kFalse;
        r.Shift = 0;
    }
    for (int slot = 0; slot < kPeakSlots; ++slot) ClearPeakSlot(project, slot);
    project.Quant = QuantSettings{};
    host.ProjectCleared();
}

void ResizeRegionArrays(Region& region, int n) {
    const std::size_t size = static_cast<std::size_t>(std::max(n, 0)) + 1;
    for (SingleArray* a : {&region.BindingEnergy, &region.RawIntensity, &region.RangeBE,
                           &region.RangeIntensity, &region.BackgroundWork, &region.BackgroundCurve,
                           &region.PeakSumCurve, &region.Residual}) {
        a->assign(size, 0.0f);
    }
}

void ResizePeakCurve(Project& project, int slot, int m) {
    const std::size_t size = static_cast<std::size_t>(std::max(m, 0)) + 1;
    project.Peaks[slot].Curve.assign(size, 0.0f);
    project.SavedPeaks[slot].Curve.assign(size, 0.0f);
}

void RecountDependents(Project& project, PeakParameter g, int ref) {
    ParameterConstraint& rc = project.Constraints[ref][g];
    bool any = false;
    for (int i = 0; i < kPeakSlots; ++i) {
        const ParameterConstraint& ic = project.Constraints[i][g];
        if (IsSet(ic.Linked) && ic.RefPeak == ref) {
            any = true;
            rc.DependentPeak = static_cast<Int16>(i);
        }
    }
    rc.IsReference = ToFlag(any);
}

void ReleaseTies(Project& project, int slot) {
    for (PeakParameter g : kPeakParameters) {
        ParameterConstraint& c = project.Constraints[slot][g];
        if (IsSet(c.Linked)) {
            c.Linked = kFalse;
            if (c.RefPeak >= 0 && c.RefPeak < kPeakSlots) RecountDependents(project, g, c.RefPeak);
        }
        if (IsSet(c.IsReference)) {
            c.IsReference = kFalse;
            for (int i = 0; i < kPeakSlots; ++i) {
                ParameterConstraint& ic = project.Constraints[i][g];
                if (IsSet(ic.Linked) && ic.RefPeak == slot) ic.Linked = kFalse;
            }
        }
    }
    for (PeakParameter g : kPeakParameters) project.Constraints[slot][g].UseLimits = kFalse;
}

int FirstFreePeakSlot(const Project& project) {
    for (int s = 0; s < kPeakSlots; ++s)
        if (!IsSet(project.Peaks[s].InUse)) return s;
    return -1;
}

}  // namespace molvera
