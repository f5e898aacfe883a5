#pragma once
// Newton's method: one step on one parameter of one peak from 13 chi-square samples.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// One Newton step with step size delta on the position of peak p; `improved` is
/// left as it was when the position is linked.
void NewtonPosition(Project& project, Host& host, int p, float delta, bool& improved);
/// One Newton step on the area (delta in area units); the area never drops below 0.1.
void NewtonArea(Project& project, Host& host, int p, float delta, bool& improved);
/// One Newton step on the FWHM.
void NewtonFWHM(Project& project, Host& host, int p, float delta, bool& improved);

/// Peak editor: repeated steps on one parameter over the levels while they improve.
void NewtonPeakPosition(Project& project, Host& host, int p);
void NewtonPeakArea(Project& project, Host& host, int p);
void NewtonPeakFWHM(Project& project, Host& host, int p);
/// Peak editor "Optimise Peak": all free parameters over the trials and levels,
/// %GL by SearchGL.
void NewtonPeak(Project& project, Host& host, int p);

/// The area step of level `level`: Delta x Area, after an area of 0 became 1.
float NewtonAreaDelta(Project& project, int p, int level);

}  // namespace molvera
