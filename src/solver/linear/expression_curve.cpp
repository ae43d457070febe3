// SPDX-License-Identifier: MIT
#include "solver/linear/expression_curve.h"

#include "solver/equations/block_evaluator.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::solver {
namespace {

using Evaluator = BlockEvaluator<DoubleDouble>;

// T: double or DoubleDouble.
template <class T>
typename BlockEvaluator<T>::Letters byLetter(const Expression& expression,
                                             const std::vector<DoubleDouble>& parameters) {
  typename BlockEvaluator<T>::Letters letters{};
  const std::vector<int> used = expression.letters();
  for (std::size_t k = 0; k < used.size(); ++k) {
    letters[static_cast<std::size_t>(used[k])] = static_cast<T>(parameters[k]);
  }
  return letters;
}

template <class T>
std::vector<double> valuesOf(const Expression& expression,
                             const std::vector<DoubleDouble>& parameters,
                             std::span<const double> x) {
  BlockEvaluator<T> evaluator(expression, {{expression.root}});
  const auto letters = byLetter<T>(expression, parameters);
  std::vector<double> result;
  result.reserve(x.size());
  for (std::size_t start = 0; start < x.size(); start += BlockEvaluator<T>::block) {
    evaluator.load(x.subspan(start, std::min(BlockEvaluator<T>::block, x.size() - start)), letters);
    for (const T& value : evaluator.value(expression.root))
      result.push_back(static_cast<double>(value));
  }
  return result;
}

}  // namespace

ExpressionCurve::ExpressionCurve(Expression expression, std::vector<DoubleDouble> parameters,
                                 std::shared_ptr<const NestedFit> fit)
    : expression_(std::move(expression)),
      parameters_(std::move(parameters)),
      fit_(std::move(fit)) {}

std::vector<double> ExpressionCurve::values(std::span<const double> x) const {
  return valuesOf<DoubleDouble>(expression_, parameters_, x);
}

std::vector<double> ExpressionCurve::samples(std::span<const double> x) const {
  return valuesOf<double>(expression_, parameters_, x);
}

std::vector<double> ExpressionCurve::unitErrors(std::span<const double> x) const {
  Evaluator evaluator(expression_, {{expression_.root}});
  const auto letters = byLetter<DoubleDouble>(expression_, parameters_);
  const std::vector<int> used = expression_.letters();
  std::vector<double> result;
  for (std::size_t start = 0; start < x.size(); start += Evaluator::block) {
    const std::size_t count = std::min(Evaluator::block, x.size() - start);
    evaluator.load(x.subspan(start, count), letters);
    evaluator.differentiate(expression_.root);
    for (std::size_t k = 0; k < count; ++k) {
      double sum = 0;
      for (std::size_t i = 0; i < used.size(); ++i) {
        DoubleDouble part;  // n' times the gradient
        for (std::size_t j = 0; j <= i; ++j)
          part += fit_->n.at(j, i) * evaluator.gradient(used[j])[k];
        sum += part.hi * part.hi;
      }
      result.push_back(std::sqrt(sum));
    }
  }
  return result;
}

}  // namespace pelmora::solver
