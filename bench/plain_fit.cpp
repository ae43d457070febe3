// SPDX-License-Identifier: MIT
#include "bench/plain_fit.h"

#include "bench/eigen_design.h"
#include "bench/plain_database.h"

#include <Eigen/Dense>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace pelmora::bench {

PlainPoints sorted(const PlainPoints& points) {
  std::vector<std::size_t> order(points.x.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::ranges::sort(order, {}, [&](std::size_t i) { return points.x[i]; });
  PlainPoints result;
  for (const std::size_t i : order) {
    result.x.push_back(points.x[i]);
    result.y.push_back(points.y[i]);
  }
  return result;
}

PlainFit plainFit(const PlainPoints& points, double band) {
  constexpr std::size_t places = 40;
  const auto n = static_cast<Eigen::Index>(points.x.size());
  const Eigen::VectorXd y = Eigen::Map<const Eigen::VectorXd>(points.y.data(), n);
  PlainFit fit;
  fit.grid.resize(places);
  const double lowest = points.x.front(), highest = points.x.back();
  for (std::size_t k = 0; k < places; ++k)
    fit.grid[k] = lowest * std::pow(highest / lowest, static_cast<double>(k) / (places - 1));
  const Eigen::MatrixXd all = design(points.x, 10), allGrid = design(fit.grid, 10);
  const Eigen::MatrixXd other = design(points.x, 0), otherGrid = design(fit.grid, 0);
  const double total = (y.array() - y.mean()).matrix().squaredNorm();
  double best = -1;
  for (const int order : {0, 10, 9, 8, 7, 6}) {
    const auto columns = order > 0 ? all.leftCols(order + 1) : other.leftCols(9);
    const auto at = order > 0 ? allGrid.leftCols(order + 1) : otherGrid.leftCols(9);
    const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(columns);
    const Eigen::VectorXd parameters = qr.solve(y);
    const Eigen::Index p = columns.cols();
    Eigen::MatrixXd inverse = Eigen::MatrixXd::Identity(p, p);
    qr.matrixR().topLeftCorner(p, p).triangularView<Eigen::Upper>().solveInPlace(inverse);
    const double squares = (y - columns * parameters).squaredNorm();
    const double variance = squares / static_cast<double>(n - p);
    const Eigen::VectorXd errors =
        qr.colsPermutation() * (inverse.rowwise().norm() * std::sqrt(variance)).eval();
    const double adjusted = 1 - variance / (total / static_cast<double>(n - 1));
    const Eigen::VectorXd predicted = at * parameters;
    bool isInBand = true;
    for (std::size_t i = 0, k = 0; i < points.x.size(); ++i) {
      while (k + 2 < fit.grid.size() && fit.grid[k + 1] < points.x[i]) ++k;
      const double t = (points.x[i] - fit.grid[k]) / (fit.grid[k + 1] - fit.grid[k]);
      const auto row = static_cast<Eigen::Index>(k);
      const double read = predicted[row] + t * (predicted[row + 1] - predicted[row]);
      isInBand = isInBand && std::abs(points.y[i] / read - 1) < band;
    }
    if (!isInBand || adjusted <= best) continue;
    best = adjusted;
    fit.parameters.assign(parameters.begin(), parameters.end());
    fit.errors.assign(errors.begin(), errors.end());
    fit.curve.assign(predicted.begin(), predicted.end());
  }
  require(fit.curve.size() == places, "the plain fit");
  return fit;
}

}  // namespace pelmora::bench
