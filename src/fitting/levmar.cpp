#include "fitting/levmar.h"

#include <ceres/ceres.h>

#include <algorithm>
#include <chrono>
#include <cmath>

#include "base/numtext.h"
#include "fitting/driver.h"
#include "fitting/peakmodel.h"
#include "spectral/envelope.h"

namespace molvera {

namespace {

class ChiSquareCost : public ceres::CostFunction {
public:
    explicit ChiSquareCost(const FitModel& model) : model_(model) {
        set_num_residuals(model.ResidualCount());
        mutable_parameter_block_sizes()->push_back(model.FreeCount());
    }
    bool Evaluate(double const* const* parameters, double* residuals,
                  double** jacobians) const override {
        return model_.Evaluate(parameters[0], residuals, jacobians ? jacobians[0] : nullptr);
    }

private:
    const FitModel& model_;
};

/// After every iteration: the project shows the present values, the host hears of the
/// progress and may let Stop Fitting through.
class Watcher : public ceres::IterationCallback {
public:
    Watcher(Project& project, Host& host, const FitModel& model, const std::vector<double>& theta)
        : project_(project), host_(host), model_(model), theta_(theta) {}

    ceres::CallbackReturnType operator()(const ceres::IterationSummary& summary) override {
        iterations_ = base_ + summary.iteration;
        // The project follows the fit a few times a second, for the plot; the curves cost
        // as much as an iteration, so not after every step.
        if (summary.step_is_successful && summary.cumulative_time_in_seconds >= nextShow_) {
            nextShow_ = summary.cumulative_time_in_seconds + 0.1;
            model_.Store(project_, theta_.data());
            RecomputeScored();
            host_.RegionInView();
        }
        host_.FitProgressed({kLevenbergMarquardtName, summary.iteration,
                             static_cast<float>(2 * summary.cost),
                             summary.cumulative_time_in_seconds});
        host_.Yield();
        return project_.StopRequested ? ceres::SOLVER_TERMINATE_SUCCESSFULLY
                                      : ceres::SOLVER_CONTINUE;
    }
    int Iterations() const { return iterations_; }
    /// Iterations of an earlier pass count on.
    void StartPass() { base_ = iterations_; }

    void RecomputeScored() {
        const Int16 current = project_.CurrentRegion;
        for (int r : model_.Regions()) {
            project_.CurrentRegion = static_cast<Int16>(r);
            ComputeRegionEnvelope(project_, host_);
        }
        project_.CurrentRegion = current;
    }

private:
    Project& project_;
    Host& host_;
    const FitModel& model_;
    const std::vector<double>& theta_;
    int iterations_ = 0;
    int base_ = 0;
    double nextShow_ = 0;
};

/// The sum of the scored regions' chi-squares as the program computes them.
double ScoredChiSquare(const Project& project, const std::vector<int>& regions) {
    double sum = 0;
    for (int r : regions) sum += project.Regions[r].ChiSquare;
    return sum;
}

}  // namespace

LevenbergMarquardtRun FitLevenbergMarquardt(Project& project, Host& host,
                                            const std::vector<int>& fitted) {
    LevenbergMarquardtRun run;
    const std::vector<int> scored = ScoredRegions(project, fitted);
    const FitModel model(project, fitted, scored);
    if (model.FreeCount() == 0) {
        run.problem = "nothing to fit: every peak parameter is fixed or linked";
        return run;
    }
    std::vector<double> theta = model.Start();
    {
        std::vector<double> residuals(static_cast<std::size_t>(model.ResidualCount()));
        if (!model.Evaluate(theta.data(), residuals.data(), nullptr)) {
            run.problem = "the chi-square is not finite at the start";
            return run;
        }
    }

    // What the project holds now, to come back to if the fit ends worse.
    const std::array<Peak, kPeakSlots> before = project.Peaks;
    Watcher watcher(project, host, model, theta);
    watcher.RecomputeScored();
    const double chiBefore = ScoredChiSquare(project, scored);

    ceres::Problem::Options problemOptions;
    problemOptions.cost_function_ownership = ceres::TAKE_OWNERSHIP;
    ceres::Problem problem(problemOptions);
    problem.AddResidualBlock(new ChiSquareCost(model), nullptr, theta.data());
    for (int i = 0; i < model.FreeCount(); ++i) {
        const FreeParameter& f = model.Free()[static_cast<std::size_t>(i)];
        if (std::isfinite(f.lower)) problem.SetParameterLowerBound(theta.data(), i, f.lower);
        if (std::isfinite(f.upper)) problem.SetParameterUpperBound(theta.data(), i, f.upper);
    }

    ceres::Solver::Options options;
    options.minimizer_type = ceres::TRUST_REGION;
    options.trust_region_strategy_type = ceres::LEVENBERG_MARQUARDT;
    // J'J is small (free parameters squared) and well scaled by the solver's Jacobi scaling:
    // the normal equations cost a fraction of a QR of the whole Jacobian.
    options.linear_solver_type = ceres::DENSE_NORMAL_CHOLESKY;
    // Bounds are kept by projecting each step onto them; the projected line search the
    // solver would add costs an extra Jacobian per iteration and finds nothing better here.
    options.max_num_line_search_step_size_iterations = 0;
    options.max_num_iterations = std::max<int>(project.Options.NewtonTrials, 1);
    options.function_tolerance = std::max(static_cast<double>(project.Options.Tolerance), 1e-15);
    options.num_threads = 1;
    options.logging_type = ceres::SILENT;
    options.minimizer_progress_to_stdout = false;
    options.update_state_every_iteration = true;
    // A moderate first trust region: from rough starting values a full Gauss-Newton step can
    // let a peak give its area away to a neighbour and vanish, a tiny one walks down slowly
    // into the nearest valley; 1000 (in the scaled parameters) found the lowest minima on
    // the benchmark spectra and the real C 1s spectrum.
    options.initial_trust_region_radius = 1000;
    options.callbacks.push_back(&watcher);
    ceres::Solver::Summary summary;
    ceres::Solve(options, &problem, &summary);
    run.stopped = summary.termination_type == ceres::USER_SUCCESS;

    // %GL is stored as a whole number: round it, and let the other parameters settle
    // around the rounded values, so that what is stored is a minimum too.
    std::vector<int> gl;
    for (int i = 0; i < model.FreeCount(); ++i) {
        if (model.Free()[static_cast<std::size_t>(i)].which != PeakParameter::GL) continue;
        gl.push_back(i);
        theta[static_cast<std::size_t>(i)] =
            std::clamp(RoundHalfEven(theta[static_cast<std::size_t>(i)]), 0.0, 100.0);
    }
    if (!gl.empty() && !run.stopped && static_cast<int>(gl.size()) < model.FreeCount() &&
        summary.iterations.size() < static_cast<std::size_t>(options.max_num_iterations)) {
        problem.SetManifold(theta.data(), new ceres::SubsetManifold(model.FreeCount(), gl));
        options.max_num_iterations -= static_cast<int>(summary.iterations.size());
        options.initial_trust_region_radius = 1;  // already near: small steps
        watcher.StartPass();
        ceres::Solve(options, &problem, &summary);
        run.stopped = summary.termination_type == ceres::USER_SUCCESS;
    }

    run.iterations = watcher.Iterations();
    model.Store(project, theta.data());
    watcher.RecomputeScored();
    if (!(ScoredChiSquare(project, scored) <= chiBefore)) {
        project.Peaks = before;
        watcher.RecomputeScored();
    }
    host.RegionInView();
    return run;
}

}  // namespace molvera
