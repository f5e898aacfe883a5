#include "session/fitcommands.h"

#include "fitting/driver.h"

namespace molvera {

void OptimiseRegionCommand(Project& project, SessionHost& host) {
    const Region& region = project.Current();
    if (!IsSet(region.HasData) || !IsSet(region.HasBackground)) return;
    host.HidePeakEditor();
    BeginFit(project, host);
    OptimiseRegion(project, host);
    EndFit(project, host);
}

void OptimiseAllCommand(Project& project, SessionHost& host) {
    BeginFit(project, host);
    host.HidePeakEditor();
    OptimiseAllRegions(project, host);
    EndFit(project, host);
}

}  // namespace molvera
