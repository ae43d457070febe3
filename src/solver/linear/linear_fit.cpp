// SPDX-License-Identifier: MIT
#include "solver/linear/linear_fit.h"

#include "solver/linear/column_kernels.h"
#include "solver/linear/expression_curve.h"
#include "solver/linear/function_column.h"
#include "solver/linear/orthogonal_factor.h"
#include "solver/linear/power_curve.h"
#include "base/number_text.h"

#include <algorithm>
#include <set>
#include <utility>

namespace pelmora::solver {
namespace {

// Polynomials with up to this many terms share one fit over all of them; those with negative powers
// seldom come in orders.
constexpr std::size_t sharedColumns = 11;
constexpr std::size_t smallFit = 5;

std::string letterText(int letter) { return std::string(1, static_cast<char>('a' + letter)); }

[[noreturn]] void failAtPoint(const std::string& what, double x, double y) {
  throw NoSolution{what + " at x = " + numberText(x) + ", y = " + numberText(y)};
}

void requireFinite(const Column& column, const Series& series, const std::string& what) {
  if (range(column).isFinite) return;
  for (std::size_t k = 0; k < column.size(); ++k) {
    if (!std::isfinite(column.hi[k]) || !std::isfinite(column.lo[k])) {
      failAtPoint(what + " is not finite", series.x[k], series.y[k]);
    }
  }
}

[[noreturn]] void failForRank(std::size_t rank, std::size_t p, const std::string& letter,
                              const Series& series) {
  std::string reason = "the data determine only " + numberText(rank) + " of " + numberText(p) +
                       " parameters: the term of " + letter + " depends on the others";
  const std::size_t levels = std::set<double>(series.x.begin(), series.x.end()).size();
  if (levels < p) reason += "; there are " + numberText(levels) + " different values of x";
  throw NoSolution{reason};
}

std::shared_ptr<const Column> functionOf(const Expression& expression, NodeId base,
                                         Series& series) {
  const std::string key = expression.key(base);
  if (const auto known = series.functions.find(key);
      known != series.functions.end() && !key.empty()) {
    return known->second;
  }
  auto column = std::make_shared<const Column>(columnOfFunction(expression, base, series.x));
  if (!key.empty()) series.functions[key] = column;
  return column;
}

std::shared_ptr<const PowerFit> powerFitOf(const Expression& expression, const PowerBasis& basis,
                                           Series& series) {
  const std::size_t p = basis.parameterOf.size();
  const std::string key = expression.key(basis.base);
  const auto place = std::pair(key, basis.lowest);
  const auto known = series.powerFits.find(place);
  if (!key.empty() && known != series.powerFits.end() && known->second->columns() >= p) {
    return known->second;
  }
  const auto u = functionOf(expression, basis.base, series);
  requireFinite(*u, series, "a term");
  if (basis.lowest < 0) {
    const auto zero = std::find(u->hi.begin(), u->hi.end(), 0.0);
    const auto at = static_cast<std::size_t>(zero - u->hi.begin());
    if (zero != u->hi.end()) failAtPoint("a term divides by zero", series.x[at], series.y[at]);
  }
  const std::size_t columns = p <= smallFit || basis.lowest != 0
                                  ? p
                                  : std::max(p, std::min(sharedColumns, series.x.size() - 1));
  auto fit = std::make_shared<const PowerFit>(*u, series.y, series.squares, basis.lowest, columns);
  if (!key.empty()) series.powerFits[place] = fit;
  return fit;
}

Solution fitPowers(Expression expression, const PowerBasis& basis, const Series& series,
                   const std::shared_ptr<const PowerFit>& fit) {
  const std::size_t p = basis.parameterOf.size();
  if (fit->fit.factor.rank < p) {
    const std::size_t parameter = basis.parameterOf[fit->fit.factor.rank];
    failForRank(std::min(fit->fit.factor.independent, p), p,
                letterText(expression.letters()[parameter]), series);
  }
  Solution solution;
  solution.fit = std::shared_ptr<const NestedFit>(fit, &fit->fit);
  solution.parameterOfTerm = basis.parameterOf;
  solution.factorOfTerm = basis.factor;
  const bool hasConstant = basis.lowest <= 0 && basis.lowest + static_cast<int>(p) > 0;
  fillFromFit(solution, series.x.size(), hasConstant ? series.squaresAboutMean : series.squares,
              hasConstant ? 1 : 0);
  solution.curve = std::make_shared<PowerCurve>(std::move(expression), basis.base, fit, p);
  return solution;
}

Solution fitTerms(Expression expression, const LinearForm& form, const Series& series) {
  const std::vector<int> letters = expression.letters();
  const std::size_t p = letters.size();
  bool hasConstant = false;
  for (std::size_t k = 0; k < p; ++k) {
    if (form.coefficients[k] == noNode) {
      throw NoSolution{"the equation does not depend on " + letterText(letters[k])};
    }
    hasConstant = hasConstant || expression.at(form.coefficients[k]).op == Op::constant;
  }
  std::vector<Column> columns = columnsOf(expression, form.coefficients, series.x);
  for (std::size_t k = 0; k < p; ++k) {
    requireFinite(columns[k], series, "the term of " + letterText(letters[k]));
  }
  Column y(series.y.size());
  std::copy(series.y.begin(), series.y.end(), y.hi.begin());
  if (form.offset != noNode) {
    const Column offset = columnsOf(expression, {{form.offset}}, series.x).front();
    requireFinite(offset, series, "the part without parameters");
    subtractMultiple(y, DoubleDouble(1), offset);
  }
  Factor factor = orthogonalFactor(std::move(columns), std::move(y), dependenceOfExactColumns);
  if (factor.rank < p) failForRank(factor.independent, p, letterText(letters[factor.rank]), series);
  Solution solution = solutionOfTerms(
      std::make_shared<const NestedFit>(makeTermsFit(std::move(factor))), series.x.size(),
      hasConstant ? series.squaresAboutMean : series.squares, hasConstant ? 1 : 0);
  solution.curve =
      std::make_shared<ExpressionCurve>(std::move(expression), solution.parameters, solution.fit);
  return solution;
}

}  // namespace

Solution fitLinear(const KnownEquation& equation, Series& series) {
  if (equation.basis) {
    const auto fit = powerFitOf(equation.expression, *equation.basis, series);
    return fitPowers(equation.expression, *equation.basis, series, fit);
  }
  return fitTerms(equation.expression, equation.form.value(), series);
}

}  // namespace pelmora::solver
