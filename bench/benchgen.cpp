// molvera_benchgen: a synthetic XPS spectrum with known peaks, set up for a fit by
// Molvera and by fityk with the same model, the same starting values and the same
// objective.
//
//   molvera_benchgen [--peaks N] [--seed S] PREFIX
//       PREFIX.txt        the spectrum: binding energy and counts, two columns
//       PREFIX.truth      the peaks it was drawn from: position, FWHM, area, %GL
//       PREFIX.opa        Levenberg-Marquardt, GL sum, 200 iterations, tolerance 1e-6
//       PREFIX.xps        the region, a Shirley background over the whole range and the
//                         peaks at rough starting values (%GL 50, free)
//       PREFIX.fityk.dat  binding energy, counts minus Molvera's background, sqrt(|counts|)
//       PREFIX.fit        the fityk script: the same peaks as PseudoVoigt, fitted by MPFIT
//   molvera_benchgen --score FITTED.xps PREFIX
//       prints a fityk script that evaluates fityk's WSSR at the peaks of FITTED.xps
//
// fityk's WSSR over the data minus the background with sigma = sqrt(|R|) (1 where R is 0) is
// Molvera's chi-square times the number of range points; PseudoVoigt(height, center, hwhm,
// shape) is the GL sum line without tail with shape = %GL / 100 and hwhm = FWHM / 2.

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "base/numtext.h"
#include "fileio/formats.h"
#include "fileio/optionfile.h"
#include "fileio/projectfile.h"
#include "model/project.h"
#include "session/backgroundform.h"
#include "session/optionsform.h"
#include "session/peakform.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"

namespace molvera {
namespace {

constexpr int kPoints = kMaxPoints;
constexpr double kHighBE = 300.0;
constexpr double kStep = 0.005;  // eV
constexpr int kTruthGL = 30;
constexpr double kBase = 300.0;        // counts of the flat part of the background
constexpr double kStepPerArea = 0.05;  // Shirley-like step: counts per unit of peak area below

struct PeakValues {
    double position = 0, fwhm = 0, area = 0, gl = 0;
};

std::string Num(double v) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

/// The peaks the spectrum is drawn from: spread over 278..297 eV, areas and widths varied.
std::vector<PeakValues> TruePeaks(int count) {
    constexpr double kAreaFactor[] = {1.0, 0.6, 1.4, 0.8, 1.2};
    std::vector<PeakValues> peaks;
    for (int k = 0; k < count; ++k)
        peaks.push_back({278.0 + 19.0 * (k + 0.5) / count, 1.2 + 0.1 * (k % 4),
                         3000.0 * kAreaFactor[k % 5], kTruthGL});
    return peaks;
}

/// Poisson counts on a Shirley-like step: the background rises by kStepPerArea for every
/// unit of peak area at lower binding energy.
std::vector<int> DrawCounts(const std::vector<PeakValues>& truth, unsigned seed) {
    std::vector<double> peaks(kPoints);
    for (int j = 0; j < kPoints; ++j)
        for (const PeakValues& p : truth)
            peaks[j] += PeakValue(true, kHighBE - kStep * j, p.position, p.area, p.fwhm, kTruthGL,
                                  0, Subshell::S, 0, 0);
    std::mt19937 rng(seed);
    std::vector<int> counts(kPoints);
    double below = 0;  // peak area at lower binding energy
    for (int j = kPoints - 1; j >= 0; --j) {
        below += peaks[j] * kStep;
        std::poisson_distribution<int> draw(kBase + kStepPerArea * below + peaks[j]);
        counts[j] = draw(rng);
    }
    return counts;
}

bool Fail(const std::string& what) {
    std::fprintf(stderr, "molvera_benchgen: %s\n", what.c_str());
    return false;
}

bool Refused(const Status& st) { return Fail(st.Text()); }

/// Levenberg-Marquardt on GL sum peaks, the other options as default.opa holds them.
bool WriteOptions(const std::string& path, FitOptions& options) {
    const std::string defaults = std::string(MOLVERA_SOURCE_DIR) + "/default.opa";
    if (Status st = ReadOptionFile(options, defaults); !st) return Refused(st);
    OptionsForm form;
    FillOptionsDialog(options, form);
    form.useSearch = form.useNewton = false;
    form.useLevenbergMarquardt = true;
    form.glSum = true;
    form.glProduct = false;
    ApplyGLSumChoice(form, options);
    form.newtonTrialsText = "200";
    form.toleranceText = "0.0001";  // per cent
    if (Status st = ApplyOptionsDialog(form, options); !st) return Refused(st);
    if (Status st = WriteOptionFile(options, path); !st) return Refused(st);
    return true;
}

/// Imports the spectrum, sets a Shirley background over all of it and adds the peaks at
/// their starting values through the peak editor, as Add Peak and Accept do.
bool WriteProject(const std::string& prefix, const std::vector<PeakValues>& truth) {
    Project project;
    Host& host = QuietHost();
    ClearProject(project, host);
    if (!WriteOptions(prefix + ".opa", project.Options)) return false;
    const ImportResult imported =
        ImportFile(project, host, *FindImportFormat("ascii"), prefix + ".txt");
    if (!imported.status) return Refused(imported.status);

    BackgroundForm background;
    ShowBackgroundDialog(project, background);
    background.lowBEText = FormatRoundTrip(project.Current().MinBE);
    background.highBEText = FormatRoundTrip(project.Current().MaxBE);
    background.averagePoints = "None";
    background.backgroundType = "Shirley";
    if (!AcceptBackground(project, host, background)) return Fail("background refused");

    for (std::size_t k = 0; k < truth.size(); ++k) {
        const double sign = k % 2 == 0 ? 1 : -1;
        if (AddPeak(project, host) < 0) return Fail("Add Peak refused");
        PeakForm form;
        if (!OpenPeakEditor(project, host, form, PeakButtonIndex(0, static_cast<int>(k))))
            return Fail("no peak editor");
        form.positionText = FormatRoundTrip(static_cast<float>(truth[k].position + 0.3 * sign));
        form.fwhmText = "1";
        form.areaText = FormatRoundTrip(static_cast<float>(truth[k].area * (1 + 0.3 * sign)));
        form.glText = "50";
        SetFixCheck(project, form, PeakParameter::GL, false);
        if (Status st = AcceptPeakEditor(project, host, form); !st) return Refused(st);
    }
    if (Status st = SaveProject(project, prefix + ".xps"); !st) return Refused(st);
    return true;
}

/// The peaks of region 1 of a project file, and its range points as loaded.
bool LoadRegion(const std::string& path, Project& project, std::vector<PeakValues>& peaks) {
    if (Status st = LoadProject(project, QuietHost(), path); !st) return Refused(st);
    const Region& region = project.Regions[0];
    for (int k = 0; k < region.PeakCount; ++k) {
        const Peak& p = project.Peaks[region.PeakIndex[k]];
        peaks.push_back({p.Position, p.FWHM, p.Area, static_cast<double>(p.PercentGL)});
    }
    return true;
}

/// fityk's data: binding energy, counts minus the background, sqrt(|counts|) (1 for 0).
bool WriteFitykData(const std::string& path, const Region& region) {
    std::ofstream out(path);
    for (int j = 1; j <= region.RangeCount; ++j) {
        const double r = region.RangeIntensity[j];
        out << Num(region.RangeBE[j]) << ' ' << Num(r - region.BackgroundCurve[j]) << ' '
            << Num(r == 0 ? 1.0 : std::sqrt(std::fabs(r))) << '\n';
    }
    return out.good() || Fail("cannot write " + path);
}

/// A fityk script over `dataPath` with `peaks` as PseudoVoigt functions, varied (and
/// fitted by MPFIT) when `fit`, else constant; it prints the WSSR and every peak as
/// "peak position FWHM area %GL" in Molvera's units (%GL rounded, the area of that %GL at
/// fityk's height).
std::string FitykScript(const std::string& dataPath, const std::vector<PeakValues>& peaks,
                        bool fit) {
    const std::string var = fit ? "~" : "";
    std::string s = "set numeric_format = '%.10g'\n@0 < '" + dataPath + "':1:2:3:\n";
    for (std::size_t k = 0; k < peaks.size(); ++k) {
        const PeakValues& p = peaks[k];
        const double height = p.area / (p.fwhm * GLSumAreaFactorAt(p.gl, 0, 0));
        s += "%p" + std::to_string(k) + " = PseudoVoigt(height=" + var + Num(height) +
             ", center=" + var + Num(p.position) + ", hwhm=" + var + Num(p.fwhm / 2) +
             ", shape=" + var + Num(p.gl / 100) + (fit ? " [0:1]" : "") + ")\nF += %p" +
             std::to_string(k) + "\n";
    }
    if (fit) s += "set fitting_method = mpfit\nfit\n";
    s += "print 'wssr', sum(((y - F(x)) / s)^2)\n";
    const std::string k0 = Num(GLSumAreaFactorAt(0, 0, 0));
    const std::string perGL = Num(GLSumAreaFactorSlope());
    for (std::size_t k = 0; k < peaks.size(); ++k) {
        const std::string f = "%p" + std::to_string(k);
        s += "print 'peak', " + f + ".center, 2*" + f + ".hwhm, " + f + ".height*2*" + f +
             ".hwhm*(" + k0 + "+" + perGL + "*round(100*" + f + ".shape)), 100*" + f + ".shape\n";
    }
    return s;
}

bool WriteText(const std::string& path, const std::string& text) {
    std::ofstream out(path);
    out << text;
    return out.good() || Fail("cannot write " + path);
}

bool Generate(const std::string& prefix, int peakCount, unsigned seed) {
    const std::vector<PeakValues> truth = TruePeaks(peakCount);
    const std::vector<int> counts = DrawCounts(truth, seed);
    std::string spectrum, truthText;
    for (int j = 0; j < kPoints; ++j)
        spectrum += Num(kHighBE - kStep * j) + ' ' + std::to_string(counts[j]) + '\n';
    for (const PeakValues& p : truth)
        truthText +=
            Num(p.position) + ' ' + Num(p.fwhm) + ' ' + Num(p.area) + ' ' + Num(p.gl) + '\n';
    if (!WriteText(prefix + ".txt", spectrum) || !WriteText(prefix + ".truth", truthText) ||
        !WriteProject(prefix, truth))
        return false;
    // What molvera-cli fit sees: the project as loaded again.
    Project project;
    std::vector<PeakValues> start;
    if (!LoadRegion(prefix + ".xps", project, start)) return false;
    if (project.Regions[0].RangeCount != kPoints) return Fail("the range lost points");
    return WriteFitykData(prefix + ".fityk.dat", project.Regions[0]) &&
           WriteText(prefix + ".fit", FitykScript(prefix + ".fityk.dat", start, true));
}

int Run(int argc, char** argv) {
    int peaks = 4;
    unsigned seed = 1;
    std::string score, prefix;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool hasValue = i + 1 < argc;
        if (a == "--peaks" && hasValue) {
            peaks = std::atoi(argv[++i]);
        } else if (a == "--seed" && hasValue) {
            seed = static_cast<unsigned>(std::strtoul(argv[++i], nullptr, 10));
        } else if (a == "--score" && hasValue) {
            score = argv[++i];
        } else if (prefix.empty() && !a.starts_with("-")) {
            prefix = a;
        } else {
            prefix.clear();
            break;
        }
    }
    if (prefix.empty() || peaks < 1 || peaks > kMaxPeaksPerRegion) {
        std::fprintf(stderr,
                     "usage: molvera_benchgen [--peaks 1..10] [--seed S] PREFIX\n"
                     "       molvera_benchgen --score FITTED.xps PREFIX\n");
        return 2;
    }
    if (score.empty()) return Generate(prefix, peaks, seed) ? 0 : 1;
    Project project;
    std::vector<PeakValues> fitted;
    if (!LoadRegion(score, project, fitted)) return 1;
    std::printf("%s", FitykScript(prefix + ".fityk.dat", fitted, false).c_str());
    return 0;
}

}  // namespace
}  // namespace molvera

int main(int argc, char** argv) { return molvera::Run(argc, argv); }
