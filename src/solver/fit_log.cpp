// SPDX-License-Identifier: MIT
#include "solver/fit_log.h"

#include "base/file_text.h"
#include "base/number_text.h"

#include <fstream>

namespace pelmora::solver {

void writeFitLog(const FitModel& model, const std::string& path) {
  std::ofstream log(filePath(path), std::ios::binary | std::ios::trunc);
  if (!log) return;
  constexpr const char* lineEnd = "\r\n";
  log << "Equation: " << model.Definition.Name << lineEnd;
  log << "Y = " << model.Definition.Expression << lineEnd;
  if (!model.solutionFound()) {
    log << "No solution: " << model.failureReason() << lineEnd;
    return;
  }
  const FitStatistics statistics = model.statistics();
  log << "Solution found, " << (model.linear() ? "direct" : "iterative") << lineEnd;
  for (const FitParameter& parameter : model.parameters()) {
    log << parameter.Name << " = " << numberText(parameter.Value)
        << ", Standard Error = " << numberText(parameter.StandardError) << lineEnd;
  }
  log << "Number of Observations = " << numberText(statistics.Observations) << lineEnd
      << "Number of Nonlinear Iterations = " << numberText(statistics.Iterations) << lineEnd
      << "Residual Standard Error = " << numberText(statistics.ResidualStandardError) << lineEnd
      << "R2 Value = " << numberText(statistics.RSquared) << lineEnd
      << "R2adjusted Value = " << numberText(statistics.AdjustedRSquared) << lineEnd
      << "Regression Sum of Squares = " << numberText(statistics.RegressionSumOfSquares) << lineEnd
      << "Residual Sum of Squares = " << numberText(statistics.ResidualSumOfSquares) << lineEnd;
}

}  // namespace pelmora::solver
