// The curve-fitting engine behind a fit run: data in, one model per equation, statistics out.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace pelmora {

// Named columns of equal length.
struct FitData {
  std::vector<std::string> Names, Symbols;  // Symbols: "X", "Y" or empty
  std::vector<std::vector<double>> Columns;
};

struct ModelDefinition {
  std::string Name, Expression;
};

struct FitParameter {
  std::string Name;
  double Value = 0, StandardError = 0;
};

// With n observations, p parameters: ResidualStandardError = sqrt(RSS / (n - p)),
// RSquared = 1 - RSS / TSS, AdjustedRSquared = 1 - (1 - RSquared) (n - 1) / (n - p),
// RegressionSumOfSquares = TSS - RSS, with TSS about the mean of y. For an equation without a
// constant term, an engine may take TSS about zero, with n in place of n - 1. All are zero if no
// solution was found.
struct FitStatistics {
  std::int32_t Observations = 0, Iterations = 0;
  double ResidualStandardError = 0, RSquared = 0, AdjustedRSquared = 0, RegressionSumOfSquares = 0,
         ResidualSumOfSquares = 0;
};

struct SolverSettings {
  std::int32_t First = 0, Second = 0;  // maximum number of iterations, number of starts
  double ResidualTolerance = 0;
  std::vector<double>
      StartValues;  // one per parameter, in alphabetical order; empty: the engine's own
  // Asked again and again while an equation is fitted; true ends its fit without a solution. Empty:
  // never.
  std::function<bool()> StopRequested = {};
};

// One equation, one fit. Shapes: n points, p parameters.
class PELMORA_API FitModel {
 public:
  virtual ~FitModel() = default;
  ModelDefinition Definition;
  SolverSettings Settings;

  // Fits the definition's expression to the columns with the symbols "X" and "Y". All equations
  // of a run share one data object.
  virtual void attach(const std::shared_ptr<const FitData>& data) = 0;
  [[nodiscard]] virtual bool solutionFound() const = 0;
  // The fitted table, n rows: columns 1 x, 2 observed y, 3 residual.
  [[nodiscard]] virtual FitData results() const = 0;
  [[nodiscard]] virtual std::vector<double> evaluate(std::span<const double> x) const = 0;
  [[nodiscard]] virtual std::vector<FitParameter> parameters() const = 0;
  [[nodiscard]] virtual FitStatistics statistics() const = 0;
  virtual void writeLog(const std::string& path) const = 0;
  // Why there is no solution, in words; empty if there is one or the engine does not say.
  [[nodiscard]] virtual std::string failureReason() const { return {}; }

  // The following are empty or false if there is no solution or the engine does not know.
  // Whether the equation is linear in its parameters.
  [[nodiscard]] virtual bool linear() const { return false; }
  // Covariance of the parameters, p x p, row-major.
  [[nodiscard]] virtual std::vector<double> covariance() const { return {}; }
  // Standard error of the curve itself at each x (not of a new observation there).
  [[nodiscard]] virtual std::vector<double> standardErrorsOfCurve(std::span<const double>) const {
    return {};
  }
  // The curve at many more x than a run needs, for a closer look at the chosen equation; empty if
  // `evaluate` serves only the run.
  [[nodiscard]] virtual std::vector<double> sampleCurve(std::span<const double>) const {
    return {};
  }
};

// The role of DataFitX.
class PELMORA_API FitEngine {
 public:
  virtual ~FitEngine() = default;
  virtual std::unique_ptr<FitModel> createModel() = 0;
};

}  // namespace pelmora
