// What the last fit did with each equation of the catalogue.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_engine.h>
#include <pelmora/types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora {

enum class EquationVerdict {
  notTried = 0,            // an earlier equation ended the run
  noSolution = 1,          // the engine found none
  residualTestFailed = 2,  // the largest residual ratio is beyond the limit
  ratioTestFailed = 3,     // the curve is no rotor ratio curve
  bandTestFailed = 4,      // a raw point lies outside the band
  accepted = 5,            // passed every test, another equation ranks higher
  chosen = 6
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
      Covariance;  // of the parameters, p x p row by row; empty where the engine has none
  // Akaike's criterion corrected for small samples, and the Bayesian one; the variance counts as a
  // parameter. Smaller is better, among fits of the same points. Absent where they are not defined.
  std::optional<double> Aicc, Bic;
  double WorstResidualRatio = 0;  // residual / observed y of largest magnitude, signed
  double WorstResidualX = 0;      // where
  PointArray Predicted;           // the predicted table; no bounds where there is none
};

// What the tests at the raw points cannot see in a chosen curve.
enum class CurveWarningKind {
  pole = 0,           // leaves the finite numbers, or swings wildly, between neighbouring points
  oscillation = 1,    // turns between neighbouring points by more than the noise explains
  fewLevels = 2,      // as many parameters as distinct x levels, or more
  extrapolation = 3,  // predicted beyond the raw points
  tableReading = 4    // the table read linearly misses its own curve
};

struct CurveWarning {
  CurveWarningKind Kind = CurveWarningKind::pole;
  double FromX = 0, ToX = 0;  // where
  double Percent = 0;         // how far, in per cent of the curve; 0 where that says nothing
  std::string Text;           // in words
};

// Equations stand in catalogue order; the fit run tries them from the last to the first.
struct FitOutcome {
  std::vector<EquationOutcome> Equations;
  std::optional<std::size_t> Chosen;
  // Of the chosen curve, one per predicted point: half widths of the 95 % confidence band of the
  // curve and of the 95 % prediction band of a further measurement, in units of y. Empty where the
  // engine does not know.
  std::vector<double> ConfidenceHalfWidth, PredictionHalfWidth;
  std::vector<CurveWarning> Warnings;
};

}  // namespace pelmora
