#include "fitting/trialscore.h"

#include "constraints/propagation.h"
#include "spectral/envelope.h"

namespace molvera {

ScoreMode ChooseScoreMode(const Project& project, PeakParameter g, int p) {
    if (!IsSet(project.Constraints[p][g].IsReference)) return ScoreMode::Alone;
    for (int i = 0; i < kPeakSlots; ++i) {
        if (IsSet(project.Peaks[i].InUse) && project.Constraints[i][g].RefPeak == p &&
            project.Peaks[i].Region != project.CurrentRegion) {
            return ScoreMode::AllRegions;
        }
    }
    return ScoreMode::Region;
}

float& ParameterField(Peak& peak, PeakParameter g) {
    switch (g) {
        case PeakParameter::Position:
            return peak.Position;
        case PeakParameter::Area:
            return peak.Area;
        case PeakParameter::FWHM:
        case PeakParameter::GL:
            break;
    }
    return peak.FWHM;
}

float ScoreTrial(Project& project, Host& host, ScoreMode mode, PeakParameter g, int p) {
    switch (mode) {
        case ScoreMode::Alone:
            return TrialChiSquare(project, p);
        case ScoreMode::Region:
            Propagate(project, g, p);
            ComputeRegionEnvelope(project, host);
            return project.Current().ChiSquare;
        case ScoreMode::AllRegions:
            break;
    }
    Propagate(project, g, p);
    RecomputeRegionsWithBackground(project, QuietHost());
    return project.TotalChiSquare;
}

void SettleProject(Project& project, Host& host, ScoreMode mode, PeakParameter g, int p) {
    switch (mode) {
        case ScoreMode::Alone:
            ComputeRegionEnvelope(project, host);
            return;
        case ScoreMode::Region:
            Propagate(project, g, p);
            ComputeRegionEnvelope(project, host);
            return;
        case ScoreMode::AllRegions:
            break;
    }
    Propagate(project, g, p);
    RecomputeRegionsWithBackground(project, host);
}

}  // namespace molvera
