#include "fitting/uncertainty.h"

#include <Eigen/Dense>
#include <cmath>
#include <limits>

#include "fitting/peakmodel.h"

namespace molvera {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool OnBound(double x, double bound) {
    return std::isfinite(bound) && std::fabs(x - bound) <= 1e-9 * (1 + std::fabs(bound));
}

/// The state and value of a parameter that follows free parameter `root` with `scale`.
Sigma Follow(const std::vector<Sigma>& free, int root, double scale) {
    if (root < 0) return {};
    Sigma s = free[static_cast<std::size_t>(root)];
    s.value *= std::fabs(scale);
    return s;
}

}  // namespace

Uncertainties ComputeUncertainties(const Project& project, const std::vector<int>& fitted) {
    Uncertainties u;
    const FitModel model(project, fitted, ScoredRegions(project, fitted));
    const int n = model.FreeCount();
    const int rows = model.ResidualCount();
    u.points = rows;
    u.freeParameters = n;
    u.reducedChiSquare = kNaN;
    const std::vector<double> theta = model.Start();
    std::vector<double> residuals(static_cast<std::size_t>(rows));
    std::vector<double> jacobian(static_cast<std::size_t>(rows) * static_cast<std::size_t>(n));
    const bool finite = model.Evaluate(theta.data(), residuals.data(), jacobian.data());

    // Residual j is r / sqrt(w m) with r the plain difference and m its region's points,
    // so w r^2 = m x residual^2 and w (dr)' (dr) = m x (d residual)' (d residual).
    double weighted = 0;
    Eigen::MatrixXd A = Eigen::MatrixXd::Zero(n, n);
    for (int j = 0; j < rows; ++j) {
        const double m = model.RowPoints(j);
        weighted +=
            m * residuals[static_cast<std::size_t>(j)] * residuals[static_cast<std::size_t>(j)];
        const Eigen::Map<const Eigen::RowVectorXd> row(
            jacobian.data() + static_cast<std::size_t>(j) * n, n);
        A.noalias() += m * row.transpose() * row;
    }
    const int dof = rows - n;
    if (finite && dof > 0) u.reducedChiSquare = weighted / dof;

    // Parameters on a bound, or that change nothing, are not determined; the rest share a
    // covariance, on the subspace the data determine.
    std::vector<Sigma> free(static_cast<std::size_t>(n), {Sigma::State::NotDetermined, 0});
    std::vector<int> inside;
    for (int i = 0; i < n; ++i) {
        const FreeParameter& f = model.Free()[static_cast<std::size_t>(i)];
        const double x = theta[static_cast<std::size_t>(i)];
        if (!OnBound(x, f.lower) && !OnBound(x, f.upper) && A(i, i) > 0) inside.push_back(i);
    }
    Eigen::MatrixXd covariance = Eigen::MatrixXd::Zero(n, n);
    if (finite && dof > 0 && !inside.empty()) {
        const int k = static_cast<int>(inside.size());
        Eigen::MatrixXd S(k, k);
        Eigen::VectorXd d(k);
        for (int a = 0; a < k; ++a) d[a] = 1 / std::sqrt(A(inside[a], inside[a]));
        for (int a = 0; a < k; ++a)
            for (int b = 0; b < k; ++b) S(a, b) = A(inside[a], inside[b]) * d[a] * d[b];
        const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> eigen(S);
        const Eigen::VectorXd& values = eigen.eigenvalues();
        const Eigen::MatrixXd& vectors = eigen.eigenvectors();
        const double tolerance = 1e-10 * std::max(values.maxCoeff(), 0.0);
        std::vector<bool> determined(static_cast<std::size_t>(k), true);
        Eigen::MatrixXd pseudo = Eigen::MatrixXd::Zero(k, k);
        for (int e = 0; e < k; ++e) {
            if (values[e] > tolerance) {
                pseudo += vectors.col(e) * vectors.col(e).transpose() / values[e];
            } else {
                // A direction the data do not determine: every parameter that moves along it.
                for (int a = 0; a < k; ++a)
                    if (vectors(a, e) * vectors(a, e) > 1e-6)
                        determined[static_cast<std::size_t>(a)] = false;
            }
        }
        const double s2 = weighted / dof;
        for (int a = 0; a < k; ++a) {
            if (!determined[static_cast<std::size_t>(a)]) continue;
            for (int b = 0; b < k; ++b) {
                if (!determined[static_cast<std::size_t>(b)]) continue;
                covariance(inside[a], inside[b]) = pseudo(a, b) * d[a] * d[b] * s2;
            }
            free[static_cast<std::size_t>(inside[a])] = {
                Sigma::State::Value, std::sqrt(covariance(inside[a], inside[a]))};
        }
    }

    // Every peak of the scored regions: its parameters, and its share of the region's area.
    for (int r : model.Regions()) {
        std::vector<int> slots;
        for (Int16 slot : PeakList(project.Regions[r]))
            if (slot >= 0 && slot < kPeakSlots) slots.push_back(slot);
        double total = 0;
        auto area = [&](int slot) {
            const ParameterLink& l = model.Link(slot, PeakParameter::Area);
            return l.root < 0 ? l.offset
                              : l.scale * theta[static_cast<std::size_t>(l.root)] + l.offset;
        };
        for (int slot : slots) total += area(slot);
        u.peakSlots.insert(u.peakSlots.end(), slots.begin(), slots.end());
        for (int slot : slots) {
            PeakSigmas& peak = u.peaks[static_cast<std::size_t>(slot)];
            for (PeakParameter which : kPeakParameters) {
                const ParameterLink& l = model.Link(slot, which);
                peak.parameters[static_cast<std::size_t>(which)] = Follow(free, l.root, l.scale);
            }
            // share = 100 A / total: its gradient along the free parameters.
            peak.areaPercent = total != 0 ? 100 * area(slot) / total : kNaN;
            Eigen::VectorXd g = Eigen::VectorXd::Zero(n);
            for (int other : slots) {
                const ParameterLink& l = model.Link(other, PeakParameter::Area);
                if (l.root < 0) continue;
                const double own = other == slot ? total : 0;
                g[l.root] += 100 * l.scale * (own - area(slot)) / (total * total);
            }
            Sigma& share = peak.areaPercentSigma;
            if (g.isZero()) continue;
            share.state = Sigma::State::Value;
            for (int i = 0; i < n; ++i)
                if (g[i] != 0 && free[static_cast<std::size_t>(i)].state != Sigma::State::Value)
                    share.state = Sigma::State::NotDetermined;
            if (share.state == Sigma::State::Value) share.value = std::sqrt(g.dot(covariance * g));
        }
    }
    return u;
}

}  // namespace molvera
