#pragma once
// Linked peak parameters follow their reference peaks.

#include "model/records.h"

namespace molvera {

/// Chain propagation of one parameter from peak slot s, whose value has just been set.
void PropagatePosition(Project& project, int s);
void PropagateArea(Project& project, int s);
void PropagateFWHM(Project& project, int s);
void PropagateGL(Project& project, int s);

/// One pass over every relation of all four parameters.
void ApplyAllRelations(Project& project);

}  // namespace molvera
