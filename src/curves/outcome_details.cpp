// SPDX-License-Identifier: MIT
#include "curves/outcome_details.h"

#include "base/student_t.h"

#include <cmath>

namespace pelmora {
namespace {

constexpr double bandProbability = 0.95;

}  // namespace

void describeSolution(const FitModel& model, EquationOutcome& outcome) {
  outcome.Statistics = model.statistics();
  outcome.Parameters = model.parameters();
  outcome.Linear = model.linear();
  outcome.Covariance = model.covariance();

  const double n = outcome.Statistics.Observations;
  const double k = static_cast<double>(outcome.Parameters.size()) + 1;
  const double rss = outcome.Statistics.ResidualSumOfSquares;
  if (!(rss > 0) || n <= 0) return;
  const double misfit = n * std::log(rss / n);
  outcome.Bic = misfit + k * std::log(n);
  if (n - k - 1 > 0) outcome.Aicc = misfit + 2 * k + 2 * k * (k + 1) / (n - k - 1);
}

void describeBands(const FitModel& model, std::span<const double> predictedX, FitOutcome& outcome) {
  const EquationOutcome& chosen = outcome.Equations[*outcome.Chosen];
  const double freedom = static_cast<double>(chosen.Statistics.Observations) -
                         static_cast<double>(chosen.Parameters.size());
  const std::vector<double> errors = model.standardErrorsOfCurve(predictedX);
  if (errors.size() != predictedX.size() || !(freedom > 0)) return;
  const double t = twoSidedStudentT(bandProbability, freedom);
  const double s = chosen.Statistics.ResidualStandardError;
  for (const double error : errors) {
    outcome.ConfidenceHalfWidth.push_back(t * error);
    outcome.PredictionHalfWidth.push_back(t * std::hypot(error, s));
  }
}

}  // namespace pelmora
