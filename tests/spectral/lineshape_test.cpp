#include "spectral/lineshape.h"

#include <cmath>
#include <functional>
#include <numbers>
#include <tuple>

#include <gtest/gtest.h>

#include "session/peakform.h"

namespace molvera {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTrueLn2 = std::numbers::ln2;
constexpr Subshell kSingle = Subshell::S;  ///< a single line: no doublet

/// Integral of f over the whole line, by the midpoint rule after x = p + (w/2) tan t,
/// which keeps Lorentzian tails finite.
double IntegrateWholeLine(const std::function<double(double)>& f, double p, double w) {
    constexpr int kSteps = 200000;
    const double dt = kPi / kSteps;
    double sum = 0;
    for (int i = 0; i < kSteps; ++i) {
        const double t = -kPi / 2 + (i + 0.5) * dt;
        const double sec = 1 / std::cos(t);
        sum += f(p + 0.5 * w * std::tan(t)) * 0.5 * w * sec * sec;
    }
    return sum * dt;
}

/// Integral of f over [a, b] by composite Simpson.
double IntegrateRange(const std::function<double(double)>& f, double a, double b) {
    constexpr int kSteps = 200000;
    const double h = (b - a) / kSteps;
    double sum = f(a) + f(b);
    for (int i = 1; i < kSteps; ++i) sum += (i % 2 ? 4 : 2) * f(a + i * h);
    return sum * h / 3;
}

/// A Gaussian and a Lorentzian of area A and FWHM w, from their textbook forms.
double Gaussian(double x, double p, double A, double w) {
    return A * std::sqrt(4 * kTrueLn2 / kPi) / w *
           std::exp(-4 * kTrueLn2 * (x - p) * (x - p) / (w * w));
}
double Lorentzian(double x, double p, double A, double w) {
    return A * (2 / (kPi * w)) / (1 + 4 * (x - p) * (x - p) / (w * w));
}

// The GL product's width and area factors are checked through the line itself: its half
// maximum at half the FWHM, its area by integration, its ends against the textbook forms.
TEST(LineShape, PureGaussianAndLorentzianInBothFamilies) {
    const double p = 285.0, A = 1234.5, w = 1.7;
    for (bool glSum : {false, true}) {
        // The GL product keeps its area inside 25 half widths, which for the
        // Lorentzian is 2 atan(25) / pi of the whole line.
        const double lorentzArea = glSum ? A : A * kPi / (2 * std::atan(25.0));
        for (double x : {p, p - 0.3, p + 0.85, p + 2.0, p - 4.1}) {
            EXPECT_NEAR(ComponentValue(glSum, x, p, A, w, 0, 0, 1), Gaussian(x, p, A, w),
                        2e-6 * Gaussian(p, p, A, w))
                << "glSum=" << glSum << " x=" << x;
            EXPECT_NEAR(ComponentValue(glSum, x, p, A, w, 100, 0, 1),
                        Lorentzian(x, p, lorentzArea, w), 2e-6 * Lorentzian(p, p, lorentzArea, w))
                << "glSum=" << glSum << " x=" << x;
        }
    }
}

TEST(LineShape, ProductHalfMaximumLiesAtHalfFWHMForEveryGL) {
    const double p = 100, w = 2.4;
    for (int g : {0, 10, 25, 40, 50, 60, 75, 90, 100}) {
        const double top = PeakValue(false, p, p, 50, w, g, 0, kSingle, 0, 1);
        EXPECT_NEAR(PeakValue(false, p + w / 2, p, 50, w, g, 0, kSingle, 0, 1) / top, 0.5, 2e-6)
            << g;
        EXPECT_NEAR(PeakValue(false, p - w / 2, p, 50, w, g, 0, kSingle, 0, 1) / top, 0.5, 2e-6)
            << g;
    }
}

TEST(LineShape, AreasByNumericalIntegration) {
    const double p = 10, A = 700, w = 1.3;
    for (int g : {0, 25, 50, 75, 100}) {
        // GL sum without a tail holds its area over the whole line.
        auto sum = [&](double x) {
            return double(PeakValue(true, x, p, A, w, g, 0, kSingle, 0, 1));
        };
        EXPECT_NEAR(IntegrateWholeLine(sum, p, w), A, 2e-5 * A) << "GL sum g=" << g;
        // GL product holds its area over the table's window of 25 half-width units.
        const double c = (w / 2) / GLTables().GLProductWidthFactor[g];
        auto prod = [&](double x) {
            return double(PeakValue(false, x, p, A, w, g, 0, kSingle, 0, 1));
        };
        EXPECT_NEAR(IntegrateRange(prod, p - 25 * c, p + 25 * c), A, 2e-5 * A)
            << "GL product g=" << g;
    }
}

TEST(LineShape, TailOnlyOnTheHighEnergySide) {
    const double p = 50, A = 100, w = 1.0;
    const int g = 30;
    // TS = 0: symmetric.
    for (double d : {0.2, 0.7, 1.9})
        EXPECT_EQ(PeakValue(true, p + d, p, A, w, g, 0, kSingle, 0, 1),
                  PeakValue(true, p - d, p, A, w, g, 0, kSingle, 0, 1));
    // TS > 0: a larger K lowers the line everywhere on the low side and at p ...
    const double TS = 0.4, TL = 2.0;
    const double Ksym = GLSumAreaFactor(g, 0, 1), Ktail = GLSumAreaFactor(g, TS, TL);
    EXPECT_GT(Ktail, Ksym);
    EXPECT_LT(PeakValue(true, p, p, A, w, g, 0, kSingle, TS, TL),
              PeakValue(true, p, p, A, w, g, 0, kSingle, 0, 1));
    for (double d : {0.2, 0.7, 1.9}) {
        const double left = PeakValue(true, p - d, p, A, w, g, 0, kSingle, TS, TL);
        EXPECT_NEAR(left, PeakValue(true, p - d, p, A, w, g, 0, kSingle, 0, 1) * Ksym / Ktail,
                    1e-5 * left);
        // ... and the tail term is added only above p.
        const double u = 4 * d * d;
        const double G = std::exp(-kTrueLn2 * u);
        const double tail = (A / w) / Ktail * TS * (1 - G) * std::exp(-6.9 * u / TL);
        EXPECT_NEAR(PeakValue(true, p + d, p, A, w, g, 0, kSingle, TS, TL), left + tail,
                    1e-5 * left);
    }
}

TEST(LineShape, TailedPeakAreaCountsHalfOfTheTailTerm) {
    // K adds TS (sqrt(pi/a) - sqrt(pi/(a + 4 ln2))) with a = 27.6/TL, while the tail
    // itself covers one side only and integrates to half of that: a tailed line
    // holds A (K0 + T/2) / (K0 + T).
    const double p = 0, A = 100, w = 1.5, TS = 0.5, TL = 3;
    const int g = 20;
    const double K0 = 0.0050632931 * g + 1.06446702;
    const double a = 27.6 / TL;
    const double T = TS * (std::sqrt(kPi / a) - std::sqrt(kPi / (a + 4 * kTrueLn2)));
    EXPECT_NEAR(GLSumAreaFactor(g, TS, TL), K0 + T, 1e-6);
    auto f = [&](double x) { return double(PeakValue(true, x, p, A, w, g, 0, kSingle, TS, TL)); };
    EXPECT_NEAR(IntegrateWholeLine(f, p, w), A * (K0 + T / 2) / (K0 + T), 2e-5 * A);
}

TEST(LineShape, DoubletsSplitTheirArea) {
    const double p = 100, w = 1.1, S = 1.0;
    for (bool glSum : {false, true}) {
        // p doublet of area 3: area 2 at p and area 1 at p + 1.
        for (double x : {99.0, 100.0, 100.4, 101.0, 102.5}) {
            const float expected =
                static_cast<float>(double(ComponentValue(glSum, x, p, 2, w, 70, 0, 1)) +
                                   ComponentValue(glSum, x, p + S, 1, w, 70, 0, 1));
            EXPECT_FLOAT_EQ(PeakValue(glSum, x, p, 3, w, 70, S, Subshell::P, 0, 1), expected);
        }
        const double shares[][2] = {{0.6, 0.4}, {4.0 / 7, 3.0 / 7}};
        for (int t : {3, 4}) {  // d and f
            const double x = 100.7;
            const double expected =
                double(ComponentValue(glSum, x, p, 7 * shares[t - 3][0], w, 70, 0, 1)) +
                ComponentValue(glSum, x, p + S, 7 * shares[t - 3][1], w, 70, 0, 1);
            EXPECT_NEAR(PeakValue(glSum, x, p, 7, w, 70, S, static_cast<Subshell>(t), 0, 1),
                        expected, 1e-5 * expected)
                << t;
        }
        EXPECT_EQ(PeakValue(glSum, p, p, 3, w, 70, S, Subshell::None, 0, 1), 0.0f);
        EXPECT_EQ(PeakValue(glSum, p, p, 3, w, 70, S, static_cast<Subshell>(5), 0, 1), 0.0f);
    }
    // An f doublet integrates to its whole area.
    auto f = [&](double x) {
        return double(PeakValue(true, x, p, 7, w, 40, S, Subshell::F, 0, 1));
    };
    EXPECT_NEAR(IntegrateWholeLine(f, p, w), 7, 2e-4);
}

TEST(LineShape, ProductGLOutsideTheTableIsNotANumber) {
    EXPECT_TRUE(std::isnan(PeakValue(false, 1, 1, 10, 1, 101, 0, kSingle, 0, 1)));
    EXPECT_TRUE(std::isnan(PeakValue(false, 1, 1, 10, 1, -1, 0, kSingle, 0, 1)));
    EXPECT_TRUE(std::isnan(HeightPercentToArea(false, 2, 50, 1, 120, kSingle, 0, 1)));
}

TEST(HeightConversion, MainLineHeightIsHPercentOfNetScaleAndRoundTrips) {
    const float netScale = 37.5f;
    const double H = 42, w = 1.25, TS = 0.3, TL = 5;
    for (bool glSum : {false, true}) {
        for (int g : {0, 35, 100}) {
            for (Subshell t : {Subshell::S, Subshell::P, Subshell::D, Subshell::F}) {
                const float A = HeightPercentToArea(glSum, netScale, H, w, g, t, TS, TL);
                // The main line (far from the second one) is H * NetScale high at p.
                const double top = PeakValue(glSum, 0, 0, A, w, g, 1e5, t, TS, TL);
                EXPECT_NEAR(top, H * netScale, 1e-5 * H * netScale)
                    << glSum << g << static_cast<int>(t);
                EXPECT_NEAR(AreaToHeightPercent(glSum, netScale, A, w, g, t, TS, TL), H, 1e-5 * H);
            }
            EXPECT_EQ(HeightPercentToArea(glSum, netScale, H, w, g, Subshell::None, TS, TL), 0.0f);
            EXPECT_EQ(AreaToHeightPercent(glSum, netScale, 100, w, g, Subshell::None, TS, TL),
                      0.0f);
        }
    }
}

TEST(ActualFWHM, MeasuresSingletsAndDoubletsAndFormatsTheLabel) {
    Project project;
    Peak& peak = project.Peaks[7];
    peak.PeakType = Subshell::S;
    std::tie(peak.Position, peak.Area, peak.FWHM, peak.PercentGL, peak.TailLength) =
        std::tuple(284.6f, 500.0f, 1.5f, Int16{30}, 1.0f);
    for (Flag gl : {kFalse, kTrue}) {
        project.Options.GLSum = gl;
        const MeasuredWidth m = ActualFWHM(project, 7);
        ASSERT_TRUE(m.converged);
        EXPECT_NEAR(m.width, 1.5, 5e-4);
        EXPECT_EQ(ActualFWHMText(m), "1.500eV   ");
    }
    // A d doublet of Gaussians (FWHM 1): the second line, 2/3 as high, crosses half the
    // main line's height 0.5 * sqrt(log2(4/3)) eV beyond its centre, on either side.
    project.Options.GLSum = kFalse;
    std::tie(peak.PeakType, peak.FWHM, peak.PercentGL) = std::tuple(Subshell::D, 1.0f, Int16{0});
    const double apart = 3.5 + 0.5 * std::sqrt(std::log2(4.0 / 3.0));
    for (const auto& [S, width] : {std::pair(0.0f, 1.0), {3.0f, apart}, {-3.0f, apart}}) {
        peak.Splitting = S;
        const MeasuredWidth m = ActualFWHM(project, 7);
        EXPECT_TRUE(m.converged) << S;
        EXPECT_NEAR(m.width, width, 1e-4) << S;
    }
    peak.FWHM = std::nanf("");
    const MeasuredWidth bad = ActualFWHM(project, 7);
    EXPECT_FALSE(bad.converged);
    EXPECT_EQ(ActualFWHMText(bad), "---           ");
    EXPECT_FALSE(ActualFWHM(project, 51).converged);
}

}  // namespace
}  // namespace molvera
