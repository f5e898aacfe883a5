#pragma once
// Linked peak parameters follow their reference peaks.

#include "model/records.h"

namespace molvera {

/// Chain propagation of one parameter from peak slot s, whose value has just been set.
void PropagatePosition(Project& project, int s);
void PropagateArea(Project& project, int s);
void PropagateFWHM(Project& project, int s);
void PropagateGL(Project& project, int s);

/// Chain propagation of the parameter of group `g` from peak slot s.
void Propagate(Project& project, PeakParameter g, int s);

/// One pass over every relation of all four parameters.
void ApplyAllRelations(Project& project);

/// Sets the parameter of peak d from peak r by d's relation in group `g`; a result that
/// is not finite (or a %GL outside Int16) is not stored.
void ApplyRelation(Project& project, PeakParameter g, int r, int d);
void ApplyPositionRelation(Project& project, int r, int d);
void ApplyAreaRelation(Project& project, int r, int d);
void ApplyFWHMRelation(Project& project, int r, int d);
void ApplyGLRelation(Project& project, int r, int d);

}  // namespace molvera
