#include "constraints/propagation.h"

#include <array>
#include <cmath>

#include "base/numtext.h"

namespace molvera {

namespace {

bool ValidSlot(int s) { return s >= 0 && s < kPeakSlots; }

/// v combined with a by operation `op`; nothing for an unknown operation.
bool Combine(int op, double v, double a, double& out) {
    switch (op) {
        case 0:
            out = v + a;
            return true;
        case 1:
            out = v - a;
            return true;
        case 2:
            out = v * a;
            return true;
        case 3:
            out = v / a;
            return true;
        default:
            return false;
    }
}

void StoreSingle(float& field, double value) {
    const float f = static_cast<float>(value);
    if (std::isfinite(f)) field = f;
}

}  // namespace

void ApplyRelation(Project& project, PeakParameter g, int r, int d) {
    if (!ValidSlot(r) || !ValidSlot(d)) return;
    const ParameterConstraint& c = project.Constraints[d][g];
    const Peak& ref = project.Peaks[r];
    Peak& dep = project.Peaks[d];
    double v = 0;
    switch (g) {
        case PeakParameter::Position:
            v = ref.Position;
            break;
        case PeakParameter::Area:
            v = ref.Area;
            break;
        case PeakParameter::FWHM:
            v = ref.FWHM;
            break;
        case PeakParameter::GL:
            v = ref.PercentGL;
            break;
    }
    double result = 0;
    if (!Combine(c.Operation, v, c.Argument, result)) return;
    switch (g) {
        case PeakParameter::Position:
            StoreSingle(dep.Position, result);
            break;
        case PeakParameter::Area:
            StoreSingle(dep.Area, result);
            break;
        case PeakParameter::FWHM:
            StoreSingle(dep.FWHM, result);
            break;
        case PeakParameter::GL:
            if (std::isfinite(result)) {
                if (auto gl = ToInt16(result)) dep.PercentGL = *gl;
            }
            break;
    }
}

void ApplyPositionRelation(Project& project, int r, int d) {
    ApplyRelation(project, PeakParameter::Position, r, d);
}
void ApplyAreaRelation(Project& project, int r, int d) {
    ApplyRelation(project, PeakParameter::Area, r, d);
}
void ApplyFWHMRelation(Project& project, int r, int d) {
    ApplyRelation(project, PeakParameter::FWHM, r, d);
}
void ApplyGLRelation(Project& project, int r, int d) {
    ApplyRelation(project, PeakParameter::GL, r, d);
}

void Propagate(Project& project, PeakParameter g, int s) {
    if (!ValidSlot(s)) return;
    std::array<bool, kPeakSlots> pending{};
    std::array<bool, kPeakSlots> done{};
    int c = s;
    while (true) {
        for (int i = 0; i < kPeakSlots; ++i) {
            const ParameterConstraint& ci = project.Constraints[i][g];
            if (i != c && IsSet(project.Peaks[i].InUse) && IsSet(ci.Linked) && ci.RefPeak == c) {
                pending[i] = true;
                ApplyRelation(project, g, c, i);
            }
        }
        done[c] = true;
        int next = -1;
        for (int i = 0; i < kPeakSlots; ++i) {
            if (pending[i] && !done[i]) {
                next = i;
                break;
            }
        }
        if (next < 0) return;
        c = next;
    }
}

void PropagatePosition(Project& project, int s) { Propagate(project, PeakParameter::Position, s); }
void PropagateArea(Project& project, int s) { Propagate(project, PeakParameter::Area, s); }
void PropagateFWHM(Project& project, int s) { Propagate(project, PeakParameter::FWHM, s); }
void PropagateGL(Project& project, int s) { Propagate(project, PeakParameter::GL, s); }

void ApplyAllRelations(Project& project) {
    constexpr std::array<PeakParameter, 4> order{PeakParameter::Position, PeakParameter::FWHM,
                                                 PeakParameter::Area, PeakParameter::GL};
    for (int k = 0; k < kPeakSlots; ++k) {
        for (PeakParameter g : order) {
            if (!IsSet(project.Constraints[k][g].IsReference)) continue;
            for (int i = 0; i < kPeakSlots; ++i) {
                const ParameterConstraint& ci = project.Constraints[i][g];
                if (IsSet(ci.Linked) && ci.RefPeak == k) ApplyRelation(project, g, k, i);
            }
        }
    }
}

}  // namespace molvera
