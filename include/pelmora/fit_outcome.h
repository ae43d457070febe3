// How each equation of the catalogue did in the last fit.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_engine.h>
#include <pelmora/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora {

enum class EquationVerdict {
  notTried = 0,            // an earlier equation ended the run
  noSolution = 1,          // the engine found none
  residualTestFailed = 2,  // the largest residual ratio is beyond the limit
  ratioTestFailed = 3,     // the curve is not a valid rotor ratio curve
  bandTestFailed = 4,      // a raw point lies outside the band
  accepted = 5,            // passed every test, but another equation ranks higher
  chosen = 6,
  notSound = 7  // departs from the reference curve; only in trusted fits
};

// Shapes: n observations, p parameters, m predicted points.
struct EquationOutcome {
  std::string Name, Expression;
  EquationVerdict Verdict = EquationVerdict::notTried;
  std::string Reason;  // in words; empty for accepted and chosen
  FitStatistics Statistics;
  std::vector<FitParameter> Parameters;
  bool Linear = false;  // in its parameters
  std::vector<double>
      Covariance;  // of the parameters, p x p, row-major; empty if the engine has none
  // Akaike's information criterion corrected for small samples, and the Bayesian one; the variance
  // counts as a parameter. Smaller is better among fits of the same points. Absent if undefined.
  std::optional<double> Aicc, Bic;
  double WorstResidualRatio = 0;  // residual / observed y of largest magnitude, signed
  double WorstResidualX = 0;      // where it occurs
  PointArray Predicted;           // the predicted table; no bounds if there is none
};

// Defects of a chosen curve that the tests at the raw points cannot see.
enum class CurveWarningKind {
  pole = 0,           // leaves the finite numbers, or swings wildly, between neighbouring points
  oscillation = 1,    // turns between neighbouring points by more than the noise explains
  fewLevels = 2,      // at least as many parameters as distinct x levels
  extrapolation = 3,  // predicted beyond the raw points
  tableReading = 4,   // linear interpolation in the table misses its own curve
  // Only in trusted fits:
  distrustedPoint = 5,  // a raw point contradicts the others and was left out
  wideBand = 6          // the points do not determine the curve to within the test band
};

struct CurveWarning {
  CurveWarningKind Kind = CurveWarningKind::pole;
  double FromX = 0, ToX = 0;         // where
  double Percent = 0;                // by how much, in per cent of the curve; 0 if not applicable
  std::string Text;                  // in words
  std::vector<double> Measure = {};  // x at which more points would help
  // For tableReading: a number of table points that is enough; 0 if no reasonable one is.
  std::int32_t Points = 0;
};

// Equations are in catalogue order; the fit run tries them from the last to the first.
struct FitOutcome {
  std::vector<EquationOutcome> Equations;
  std::optional<std::size_t> Chosen;
  // For the chosen curve, one per predicted point: half-widths of the 95 % confidence band of the
  // curve and of the 95 % prediction band of one more measurement, in units of y. Empty if the
  // engine does not know them.
  std::vector<double> ConfidenceHalfWidth, PredictionHalfWidth;
  std::vector<CurveWarning> Warnings;
};

}  // namespace pelmora
