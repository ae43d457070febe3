// SPDX-License-Identifier: MIT
#include "solver/solver_model.h"

#include "solver/equations/expression_parser.h"
#include "solver/equations/known_equations.h"
#include "solver/fit_log.h"
#include "solver/linear/linear_fit.h"
#include "solver/nonlinear/nonlinear_fit.h"
#include "base/number_text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::solver {
namespace {

// The column with a symbol.
// Errors: NoSolution if there is none.
std::size_t columnOf(const FitData& data, const std::string& symbol) {
  const auto place = std::find(data.Symbols.begin(), data.Symbols.end(), symbol);
  const auto column = static_cast<std::size_t>(place - data.Symbols.begin());
  if (column >= data.Columns.size() || place == data.Symbols.end()) {
    throw NoSolution{"no column has the symbol " + symbol};
  }
  return column;
}

void requireFinite(std::span<const double> values, const std::string& name) {
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (!std::isfinite(values[k])) {
      throw NoSolution{"the value of " + name + " in row " + numberText(k + 1) + " is not finite"};
    }
  }
}

}  // namespace

SolverModel::SolverModel(std::shared_ptr<SeriesCache> cache) : cache_(std::move(cache)) {}

void SolverModel::attach(const std::shared_ptr<const FitData>& data) {
  solution_.reset();
  series_.reset();
  letters_.clear();
  linear_ = false;
  reason_.clear();
  try {
    solution_ = solve(data.get());
  } catch (const ParseFailure& failure) {
    reason_ = "the equation cannot be read: " + failure.message;
  } catch (const NoSolution& failure) {
    reason_ = failure.reason;
  }
}

Solution SolverModel::solve(const FitData* data) {
  const auto equation = knownEquation(Definition.Expression);
  letters_ = equation->letters;
  const std::size_t p = letters_.size();
  if (p == 0) throw NoSolution{"the equation has no parameters"};
  linear_ = equation->form.has_value();
  if (data == nullptr) throw NoSolution{"there are no data"};
  const std::size_t xColumn = columnOf(*data, "X"), yColumn = columnOf(*data, "Y");
  const std::vector<double>&x = data->Columns[xColumn], &y = data->Columns[yColumn];
  names_ = {xColumn < data->Names.size() ? data->Names[xColumn] : "X",
            yColumn < data->Names.size() ? data->Names[yColumn] : "Y"};
  if (x.size() != y.size()) throw NoSolution{"the columns X and Y differ in length"};
  if (x.size() <= p) {
    throw NoSolution{"too few points: " + numberText(x.size()) + " for " + numberText(p) +
                     " parameters, at least " + numberText(p + 1) + " are needed"};
  }
  series_ = cache_->known(x, y);
  if (!series_) {  // one that is known has been looked through
    requireFinite(x, "X");
    requireFinite(y, "Y");
    series_ = cache_->add(x, y);
  }
  if (linear_) return fitLinear(*equation, *series_);
  return fitNonlinear(equation->expression, *series_, Settings);
}

FitData SolverModel::results() const {
  FitData table;
  if (!solution_) return table;
  table.Names = {names_[0], names_[1], "Residual"};
  table.Symbols = {"X", "Y", ""};
  std::vector<double> residuals = solution_->curve->valuesAtPoints(*series_);
  for (std::size_t k = 0; k < residuals.size(); ++k) residuals[k] = series_->y[k] - residuals[k];
  table.Columns = {series_->x, series_->y, std::move(residuals)};
  return table;
}

std::vector<double> SolverModel::evaluate(std::span<const double> x) const {
  return solution_ ? solution_->curve->values(x) : std::vector<double>{};
}

std::vector<double> SolverModel::sampleCurve(std::span<const double> x) const {
  return solution_ ? solution_->curve->samples(x) : std::vector<double>{};
}

std::vector<FitParameter> SolverModel::parameters() const {
  std::vector<FitParameter> result;
  if (!solution_) return result;
  result.reserve(letters_.size());
  for (std::size_t k = 0; k < letters_.size(); ++k) {
    result.push_back({std::string(1, static_cast<char>('a' + letters_[k])),
                      static_cast<double>(solution_->parameters[k]), solution_->standardErrors[k]});
  }
  return result;
}

FitStatistics SolverModel::statistics() const {
  return solution_ ? solution_->statistics : FitStatistics{};
}

std::vector<double> SolverModel::covariance() const {
  return solution_ ? solution_->covariance() : std::vector<double>{};
}

std::vector<double> SolverModel::standardErrorsOfCurve(std::span<const double> x) const {
  if (!solution_) return {};
  std::vector<double> errors = solution_->curve->unitErrors(x);
  for (double& error : errors) error *= solution_->statistics.ResidualStandardError;
  return errors;
}

void SolverModel::writeLog(const std::string& path) const { writeFitLog(*this, path); }

}  // namespace pelmora::solver
