// Fuzz target: the option file reader. A file of the full size must write back byte
// for byte; then the options drive a fit of a small region.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "fileio/optionfile.h"
#include "fitting/driver.h"
#include "fuzz_support.h"
#include "model/host.h"
#include "spectral/background.h"
#include "spectral/regionedit.h"

namespace {

// A user who presses Stop Fitting once the fit has yielded `yields` times.
class StopAfterYields : public molvera::Host {
public:
    StopAfterYields(molvera::Project& project, int yields) : project_(project), left_(yields) {}
    void Yield() override {
        if (--left_ <= 0) project_.StopRequested = true;
    }

private:
    molvera::Project& project_;
    int left_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace molvera;
    const std::string path = fuzz::InputFile("optionfile", data, size);
    static const Project sample = [] {
        Project p;
        fuzz::FillRegion(p, 0, 31, 290.0f, 0.5f);
        Region& r = p.Regions[0];
        r.EndPointAverage = 1;
        r.BackgroundLowBE = r.MinBE;
        r.BackgroundHighBE = r.MaxBE;
        r.HasBackground = kTrue;
        RecomputeRegion(p, QuietHost());
        AddPeak(p, QuietHost());
        return p;
    }();
    Project project = sample;
    if (!ReadOptionBytes(project.Options,
                         std::string_view(reinterpret_cast<const char*>(data), size)))
        return 0;
    if (size >= kOptionFileSize) {
        const std::string back = path + ".opa";
        if (!WriteOptionFile(project.Options, back)) std::abort();
        std::ifstream in(back, std::ios::binary);
        const std::string written{std::istreambuf_iterator<char>(in), {}};
        if (written != std::string(reinterpret_cast<const char*>(data), kOptionFileSize))
            std::abort();
    }
    // Options read from a file are not checked like the dialog's, so a fit may run for
    // thousands of trials: the user presses Stop Fitting, here after 20 yields.
    StopAfterYields host(project, 20);
    BeginFit(project, host);
    OptimiseRegion(project, host);
    EndFit(project, host);
    return 0;
}
