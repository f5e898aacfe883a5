#include "spectral/regionedit.h"

#include "model/project.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"

namespace molvera {

namespace {

bool ValidSlot(int s) { return s >= 0 && s < kPeakSlots; }

int ClampedPeakCount(const Region& r) {
    return r.PeakCount < 0 ? 0
                           : (r.PeakCount > kMaxPeaksPerRegion ? kMaxPeaksPerRegion : r.PeakCount);
}

}  // namespace

int AddPeak(Project& project, Host& host) {
    const int r = project.CurrentRegion;
    Region& region = project.Regions[r];
    if (!IsSet(region.HasData) || !IsSet(region.HasBackground)) return -1;
    if (region.PeakCount >= kMaxPeaksPerRegion || region.PeakCount < 0) {
        host.Beep();
        return -1;
    }
    const int slot = FirstFreePeakSlot(project);
    if (slot < 0) {
        host.Beep();
        return -1;
    }
    const int k = region.PeakCount;
    region.PeakIndex[k] = static_cast<Int16>(slot);
    project.CurrentPeak = static_cast<Int16>(slot);
    Peak& p = project.Peaks[slot];
    p.InUse = kTrue;
    SetNewPeakDefaults(p, r);
    p.Position = (region.BackgroundLowBE + region.BackgroundHighBE) / 2;
    p.FWHM = 1.0f;
    p.HeightPercent = 50;
    p.Area = HeightPercentToArea(project, p);
    ResizePeakCurve(project, slot, region.RangeCount);
    region.PeakCount = static_cast<Int16>(k + 1);
    host.PeakListChanged(r, PeakList(region), true);
    ComputeRegionEnvelope(project, host);
    host.CurvesChanged();
    return slot;
}

void DeletePeak(Project& project, Host& host) {
    const int slot = project.CurrentPeak;
    if (!ValidSlot(slot)) return;
    Peak& peak = project.Peaks[slot];
    peak.InUse = kFalse;

    const int r = peak.Region;
    const bool validRegion = r >= 0 && r < kRegionCount;
    if (validRegion) {
        Region& region = project.Regions[r];
        const int count = ClampedPeakCount(region);
        int k = -1;
        for (int i = 0; i < count; ++i)
            if (region.PeakIndex[i] == slot) k = i;
        if (k >= 0) {
            for (int j = k + 1; j < count; ++j) region.PeakIndex[j - 1] = region.PeakIndex[j];
            region.PeakCount = static_cast<Int16>(count - 1);
            host.PeakListChanged(r, PeakList(region),
                                 r == project.CurrentRegion && IsSet(region.HasBackground));
        }
    }

    ReleaseTies(project, slot);

    host.PeakDeleted(slot);

    if (validRegion && IsSet(project.Regions[r].HasBackground)) {
        const Int16 saved = project.CurrentRegion;
        project.CurrentRegion = static_cast<Int16>(r);
        project.TotalChiSquare -= project.Regions[r].ChiSquare;
        ComputeRegionEnvelopeKeepingTotal(project, host);
        project.TotalChiSquare += project.Regions[r].ChiSquare;
        host.TotalChiSquareChanged(project.TotalChiSquare);
        project.CurrentRegion = saved;
        host.CurvesChanged();
    }
}

void ClearRegionParameters(Project& project, Host& host) {
    const int r = project.CurrentRegion;
    for (int s = 0; s < kPeakSlots; ++s) {
        if (IsSet(project.Peaks[s].InUse) && project.Peaks[s].Region == r) {
            project.CurrentPeak = static_cast<Int16>(s);
            DeletePeak(project, host);
        }
    }
    Region& region = project.Regions[r];
    region.HasBackground = kFalse;
    region.PeakCount = 0;
    region.Shift = 0;
    region.ChiSquare = 0;
    region.Caption = Text20();
    host.ChiSquareChanged(r, 0);
    host.CurvesChanged();
    RecomputeRegionsWithBackground(project, host);
}

void DeleteRegionData(Project& project, Host& host) {
    ClearRegionParameters(project, host);
    project.Current().HasData = kFalse;
    host.RegionDataDeleted();
    host.RegionInView();
}

void RefreshMainWindow(Project& project, Host& host) {
    for (int k = 0; k < kRegionCount; ++k) {
        const Region& region = project.Regions[k];
        if (!IsSet(region.HasData)) continue;
        host.ChiSquareChanged(k, IsSet(region.HasBackground) ? region.ChiSquare : 0.0f);
        host.PeakListChanged(k, PeakList(region), k == project.CurrentRegion);
    }
    host.RegionListChanged();
}

}  // namespace molvera
