// SPDX-License-Identifier: MIT
#include "adapters/solver/power_curve.h"

#include "adapters/solver/block_evaluator.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::solver {

PowerCurve::PowerCurve(Expression expression, NodeId base, std::shared_ptr<const PowerFit> fit,
                       std::size_t p)
    : expression_(std::move(expression)), base_(base), fit_(std::move(fit)) {
  columnParameters_.reserve(p);
  for (const DoubleDouble value : fit_->fit.columnParameters(p)) {
    columnParameters_.push_back(static_cast<double>(value));
  }
}

std::vector<double> PowerCurve::functionAt(std::span<const double> x) const {
  std::vector<double> u;
  u.reserve(x.size());
  const Node& node = expression_.at(base_);
  if (node.op == Op::ln && expression_.at(node.left).op == Op::variable) {
    for (const double value : x) u.push_back(std::log(value));
    return u;
  }
  using Evaluator = BlockEvaluator<double>;
  Evaluator evaluator(expression_, {{base_}});
  for (std::size_t start = 0; start < x.size(); start += Evaluator::block) {
    evaluator.load(x.subspan(start, std::min(Evaluator::block, x.size() - start)), {});
    const auto values = evaluator.value(base_);
    u.insert(u.end(), values.begin(), values.end());
  }
  return u;
}

std::vector<double> PowerCurve::values(std::span<const double> x) const {
  std::vector<double> result = functionAt(x);
  std::vector<double> columns(columnParameters_.size());
  for (double& value : result) {
    fit_->columnsAt(value, columns);
    value = 0;
    // From the highest power down: the small parts first.
    for (std::size_t j = columns.size(); j-- > 0;) value += columnParameters_[j] * columns[j];
  }
  return result;
}

std::vector<double> PowerCurve::unitErrors(std::span<const double> x) const {
  std::vector<double> result = functionAt(x);
  const UpperTriangle& r = fit_->fit.factor.r;
  std::vector<double> columns(columnParameters_.size());
  for (double& value : result) {
    fit_->columnsAt(value, columns);
    double sum = 0;
    for (std::size_t j = 0; j < columns.size(); ++j) {  // R'^-1 times the columns
      for (std::size_t i = 0; i < j; ++i) columns[j] -= r.at(i, j).hi * columns[i];
      columns[j] /= r.at(j, j).hi;
      sum += columns[j] * columns[j];
    }
    value = std::sqrt(sum);
  }
  return result;
}

}  // namespace pelmora::solver
