// SPDX-License-Identifier: MIT
#include "solver/nonlinear/polish.h"

#include "solver/arithmetic/double_double_functions.h"
#include "solver/linear/orthogonal_factor.h"

#include <cmath>
#include <utility>

namespace pelmora::solver {
namespace {

constexpr int longestPolish = 60;
// A step below this share of every parameter, or of every standard error, changes no digit.
constexpr double negligibleOfParameter = 1e-16, negligibleOfError = 1e-13;
// The step after such a one must be smaller, or this share of every standard error.
constexpr double shrinking = 0.9, nothingOfError = 1e-24;

bool allFinite(const Column& column) {
  for (std::size_t k = 0; k < column.size(); ++k) {
    if (!isFinite(column.at(k))) return false;
  }
  return true;
}

// Solves (1 - n' S n) w = z by Cholesky; empty if the matrix is not positive definite.
// S = sum of residual times second derivatives, p x p.
std::optional<std::vector<DoubleDouble>> bentStep(const NestedFit& fit,
                                                  const std::vector<DoubleDouble>& s) {
  const std::size_t p = fit.factor.rank;
  UpperTriangle half(p), upper(p);
  std::vector<DoubleDouble> sn(p * p);
  for (std::size_t i = 0; i < p; ++i) {
    for (std::size_t j = 0; j < p; ++j) {
      for (std::size_t k = 0; k <= j; ++k) sn[i * p + j] += s[i * p + k] * fit.n.at(k, j);
    }
  }
  for (std::size_t i = 0; i < p; ++i) {
    for (std::size_t j = i; j < p; ++j) {
      DoubleDouble cell = i == j ? DoubleDouble(1) : DoubleDouble(0);
      for (std::size_t k = 0; k <= i; ++k) cell -= fit.n.at(k, i) * sn[k * p + j];
      for (std::size_t k = 0; k < i; ++k) cell -= upper.at(k, i) * upper.at(k, j);
      if (i == j && !(cell.hi > 1e-10)) return std::nullopt;
      upper.at(i, j) = i == j ? sqrt(cell) : cell / upper.at(i, i);
    }
  }
  std::vector<DoubleDouble> w = fit.factor.z;
  for (std::size_t i = 0; i < p; ++i) {
    for (std::size_t k = 0; k < i; ++k) w[i] -= upper.at(k, i) * w[k];
    w[i] = w[i] / upper.at(i, i);
  }
  for (std::size_t i = p; i-- > 0;) {
    for (std::size_t k = i + 1; k < p; ++k) w[i] -= upper.at(i, k) * w[k];
    w[i] = w[i] / upper.at(i, i);
  }
  return w;
}

std::vector<DoubleDouble> parameterStep(const NestedFit& fit, const std::vector<DoubleDouble>& w) {
  const std::size_t p = fit.factor.rank;
  std::vector<DoubleDouble> step(p);
  for (std::size_t k = 0; k < p; ++k) {
    for (std::size_t i = k; i < p; ++i) step[k] += fit.n.at(k, i) * w[i];
  }
  return step;
}

// `last`: the step before, if it was negligible; empty otherwise.
bool isNegligible(const std::vector<DoubleDouble>& step, const std::vector<DoubleDouble>& last,
                  const std::vector<DoubleDouble>& parameters, const NestedFit& fit,
                  std::size_t n) {
  const std::size_t p = step.size();
  const double variance = fit.factor.residualSquares[p].hi / static_cast<double>(n - p);
  for (std::size_t k = 0; k < p; ++k) {
    const double error = std::sqrt(variance) * fit.unitError(p, k);
    const double size = std::fabs(step[k].hi);
    if (size <= negligibleOfParameter * std::fabs(parameters[k].hi)) continue;
    const bool isSmall =
        last.empty() ? size <= negligibleOfError * error
                     : size <= shrinking * std::fabs(last[k].hi) || size <= nothingOfError * error;
    if (!isSmall) return false;
  }
  return true;
}

}  // namespace

std::optional<Minimum> polish(const RegressionModel& model, const std::vector<double>& start,
                              double& workLeft, std::string& reason) {
  const std::size_t p = model.parameters();
  Minimum result;
  result.parameters.assign(start.begin(), start.end());
  Column residuals;
  std::vector<Column> slopes;
  std::vector<DoubleDouble> last;  // the step before, if it was negligible
  for (int pass = 0; pass < longestPolish && workLeft > 0; ++pass) {
    workLeft -= model.work();
    model.evaluateExactly(result.parameters, residuals, slopes);
    bool finite = allFinite(residuals);
    for (const Column& column : slopes) finite = finite && allFinite(column);
    if (!finite) {
      reason = "the equation is not finite at some points near the best parameters found";
      return std::nullopt;
    }
    const std::vector<DoubleDouble> bend = model.curvature(result.parameters, residuals);
    Factor factor = orthogonalFactor(std::move(slopes), residuals, dependenceOfExactColumns);
    if (factor.rank < p) {
      reason = "the data cannot tell the parameters apart";
      return std::nullopt;
    }
    result.fit = std::make_shared<const NestedFit>(makeTermsFit(std::move(factor)));
    std::vector<DoubleDouble> w = result.fit->factor.z;
    bool curvesUp = true;
    if (!bend.empty()) {
      const auto bent = bentStep(*result.fit, bend);
      curvesUp = bent.has_value();
      if (bent) w = *bent;
    }
    std::vector<DoubleDouble> step = parameterStep(*result.fit, w);
    if (!last.empty() && curvesUp &&
        isNegligible(step, last, result.parameters, *result.fit, model.points())) {
      return result;
    }
    ++result.iterations;
    const bool negligible = isNegligible(step, {}, result.parameters, *result.fit, model.points());
    if (negligible && !curvesUp) {
      reason = "the search ended at a saddle of the residual sum of squares";
      return std::nullopt;
    }
    // It is taken all the same, and the next one looked at. Newton's steps square what is missing,
    // so that the digits no longer tell where the search came from. On the way to a minimum at
    // infinity, where standard errors are vast, steps that look negligible beside them grow
    // instead.
    for (std::size_t k = 0; k < p; ++k) result.parameters[k] += step[k];
    last = negligible ? std::move(step) : std::vector<DoubleDouble>{};
  }
  reason = workLeft > 0 ? "no convergence" : "no convergence within the limit of work";
  return std::nullopt;
}

}  // namespace pelmora::solver
