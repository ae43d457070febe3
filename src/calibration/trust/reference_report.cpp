// SPDX-License-Identifier: MIT
#include "calibration/trust/reference_report.h"

#include "calibration/steps/fit_report.h"

#include <cmath>

namespace pelmora::calibration {
namespace {

constexpr const char* expression = "smooth curve in log(x), a Gaussian process (Matern 5/2)";

// Over the points that were used, in units of Strouhal.
void describeStatistics(const Fit& fit, const solver::reference::ReferenceCurve& reference,
                        EquationOutcome& outcome) {
  FitStatistics& s = outcome.Statistics;
  const double n = static_cast<double>(fit.trust->points);
  double mean = 0, total = 0;
  for (const JudgedPoint& point : fit.trust->judged) {
    if (point.use == PointUse::used) mean += point.strouhal / n;
  }
  double worst = 0;
  for (const JudgedPoint& point : fit.trust->judged) {
    if (point.use != PointUse::used) continue;
    // A relative residual is a share of the curve's value.
    const double residual = fit.trust->isRelative
                                ? point.strouhal - point.strouhal / (1 + point.residual / 100)
                                : point.residual;
    s.ResidualSumOfSquares += residual * residual;
    total += (point.strouhal - mean) * (point.strouhal - mean);
    const double ratio = point.strouhal == 0 ? 0 : residual / point.strouhal;
    if (std::abs(ratio) < std::abs(worst)) continue;
    worst = ratio;
    outcome.WorstResidualX = point.roshko;
  }
  outcome.WorstResidualRatio = worst;
  s.Observations = static_cast<std::int32_t>(fit.trust->points);
  s.RegressionSumOfSquares = total - s.ResidualSumOfSquares;
  // The parameters that the curve takes, level and slope of its straight line included.
  const double p = reference.summary().effectiveParameters;
  if (!(total > 0) || !(n > p)) return;
  s.RSquared = 1 - s.ResidualSumOfSquares / total;
  s.AdjustedRSquared = 1 - (1 - s.RSquared) * (n - 1) / (n - p);
  s.ResidualStandardError = std::sqrt(s.ResidualSumOfSquares / (n - p));
}

std::string reportOf(const Fit& fit, const EquationOutcome& outcome) {
  const steps::FitLabels labels{"Roshko", "Strouhal"};
  const auto used = fit.fitted.column(0);
  return steps::reportHead(fit.meter.serial, fit.series, {outcome.Name, outcome.Expression}) +
         steps::reportBody({labels, used.front(), used.back(), outcome.Parameters,
                            outcome.Statistics, 0, static_cast<float>(fit.settings.band),
                            fit.settings.points, fit.min, fit.max}) +
         steps::predictedListing(labels, outcome.Predicted) + "\r\n\r\n" +
         steps::rawListing(labels, fit.fitted);
}

}  // namespace

void addReferenceCurve(Fit& fit, const solver::reference::ReferenceCurve& reference,
                       const std::optional<std::vector<double>>& table) {
  const Trust& trust = *fit.trust;
  EquationOutcome outcome;
  outcome.Name = referenceCurveName;
  outcome.Expression = expression;
  const std::string unit = trust.isRelative ? " in %" : "";
  outcome.Parameters = {{"Length scale in decades", trust.lengthDecades, 0},
                        {"Noise at the largest flow" + unit, trust.noiseHigh, 0},
                        {"Noise at the smallest flow" + unit, trust.noiseLow, 0}};
  describeStatistics(fit, reference, outcome);
  Soundness sound;
  sound.isJudged = true;
  sound.isSound = table.has_value();
  sound.why = table ? "" : fit.trouble;
  outcome.Reason = sound.why;
  outcome.Verdict = table ? EquationVerdict::accepted : EquationVerdict::ratioTestFailed;
  if (table) {
    outcome.Predicted = PointArray(table->size());
    for (std::size_t i = 0; i < table->size(); ++i) {
      outcome.Predicted(i, 0) = trust.table[i].roshko;
      outcome.Predicted(i, 1) = (*table)[i];
    }
  }
  const bool isChosen = table && !fit.outcome.Chosen;
  if (isChosen) {
    outcome.Verdict = EquationVerdict::chosen;
    fit.outcome.Chosen = fit.outcome.Equations.size();
    fit.curve = outcome.Predicted;
    fit.report = reportOf(fit, outcome);
  }
  if (fit.outcome.Chosen) fit.trouble.clear();
  fit.outcome.Equations.push_back(std::move(outcome));
  fit.trust->equations.push_back(std::move(sound));
}

}  // namespace pelmora::calibration
