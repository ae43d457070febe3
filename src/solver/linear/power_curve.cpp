// SPDX-License-Identifier: MIT
#include "solver/linear/power_curve.h"

#include "solver/linear/function_column.h"
#include "solver/linear/series.h"
#include "solver/arithmetic/point_kernels.h"

#include <cmath>
#include <utility>

namespace pelmora::solver {

PowerCurve::PowerCurve(Expression expression, NodeId base, std::shared_ptr<const PowerFit> fit,
                       std::size_t p)
    : expression_(std::move(expression)),
      base_(base),
      fit_(std::move(fit)),
      columnParameters_(fit_->columnParameters(p)) {}

Column PowerCurve::functionAt(std::span<const double> x) const {
  return columnOfFunction(expression_, base_, x);
}

std::vector<double> PowerCurve::values(std::span<const double> x) const {
  return x.empty() ? std::vector<double>{} : valuesOver(functionAt(x));
}

std::vector<double> PowerCurve::valuesAtPoints(const Series& points) const {
  const auto known = points.functions.find(expression_.key(base_));
  return known != points.functions.end() ? valuesOver(*known->second) : values(points.x);
}

std::vector<double> PowerCurve::valuesOver(const Column& u) const {
  std::vector<double> result(u.size());
  if (fit_->hasPole) {
    std::vector<double> columns(columnParameters_.size());
    for (std::size_t k = 0; k < result.size(); ++k) {
      fit_->columnsAt(u.hi[k], columns);
      // From the highest power down: the small parts first.
      for (std::size_t j = columns.size(); j-- > 0;)
        result[k] += columnParameters_[j].hi * columns[j];
    }
    return result;
  }
  CurveTask task;
  task.u = {u.hi.data(), u.lo.data()};
  task.parameters = columnParameters_.data();
  task.p = columnParameters_.size();
  task.n = result.size();
  task.lowest = fit_->lowest;
  task.middle = fit_->middle;
  task.stretch = fit_->stretch;
  task.values = result.data();
  pointKernels().curve(task);
  return result;
}

bool PowerCurve::isOverLogarithm() const {
  const Node& node = expression_.at(base_);
  return node.op == Op::ln && expression_.at(node.left).op == Op::variable;
}

// Clenshaw's recurrence, all points at a time for each column. Other functions than the logarithm
// cost little in double-double.
std::vector<double> PowerCurve::samples(std::span<const double> x) const {
  if (fit_->hasPole || !isOverLogarithm()) return values(x);
  std::vector<double> t(x.size()), first(x.size()), second(x.size()), result(x.size());
  for (std::size_t k = 0; k < x.size(); ++k) {
    const double u = std::log(x[k]);
    t[k] = (u - fit_->middle) * fit_->stretch;
    result[k] = fit_->lowest == 0 ? 1 : std::pow(u, fit_->lowest);
  }
  for (std::size_t j = columnParameters_.size(); j-- > 1;) {
    const double parameter = columnParameters_[j].hi;
    for (std::size_t k = 0; k < x.size(); ++k) {
      const double next = parameter + 2 * t[k] * first[k] - second[k];
      second[k] = first[k];
      first[k] = next;
    }
  }
  for (std::size_t k = 0; k < x.size(); ++k)
    result[k] *= columnParameters_[0].hi + t[k] * first[k] - second[k];
  return result;
}

std::vector<double> PowerCurve::unitErrors(std::span<const double> x) const {
  std::vector<double> result = functionAt(x).hi;
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
