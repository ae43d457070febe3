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

struct EquationOutcome {
  std::string Name, Expression;
  EquationVerdict Verdict = EquationVerdict::notTried;
  std::string Reason;  // in words; empty for accepted and chosen
  FitStatistics Statistics;
  std::vector<FitParameter> Parameters;
  double WorstResidualRatio = 0;  // residual / observed y of largest magnitude, signed
  double WorstResidualX = 0;      // where
  PointArray Predicted;           // the predicted table; no bounds where there is none
};

// Equations stand in catalogue order; the fit run tries them from the last to the first.
struct FitOutcome {
  std::vector<EquationOutcome> Equations;
  std::optional<std::size_t> Chosen;
};

}  // namespace pelmora
