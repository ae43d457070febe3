// SPDX-License-Identifier: MIT
#include "tables/placed_cubic.h"

#include "tables/table_reader.h"

#include <algorithm>
#include <cmath>

namespace pelmora::tables {
namespace {

constexpr int mostRounds = 200;
// Rounds without a better placing after which nothing is expected any more.
constexpr int patience = 40;
// Knots move this share of the way to where the last round wants them.
constexpr double damping = 0.5;
// A segment that does not err at all still keeps some of the knots' attention.
constexpr double smallestShare = 1e-3;

std::vector<double> segmentErrors(const SampledCurve& curve, const std::vector<double>& knots) {
  std::vector<double> x, y;
  for (const double knot : knots) {
    x.push_back(curve.xAt(knot));
    y.push_back(curve.yAt(knot));
  }
  const TableReader read(x, y, Reading::cubic);
  std::vector<double> errors(knots.size() - 1, 0.0);
  std::size_t segment = 0;
  for (std::size_t i = 0; i <= curve.samples(); ++i) {
    while (segment + 2 < knots.size() && static_cast<double>(i) > knots[segment + 1]) ++segment;
    const double error = std::abs(read(curve.x()[i]) / curve.y()[i] - 1);
    errors[segment] = std::max(errors[segment], error);
  }
  return errors;
}

// Knots with an equal share of the fourth roots between each two of them.
std::vector<double> redistributed(const std::vector<double>& knots,
                                  const std::vector<double>& errors) {
  const double worst = *std::max_element(errors.begin(), errors.end());
  std::vector<double> sum{0};
  for (const double error : errors)
    sum.push_back(sum.back() + std::pow(std::max(error / worst, smallestShare), 0.25));
  std::vector<double> moved = knots;
  std::size_t segment = 0;
  for (std::size_t k = 1; k + 1 < knots.size(); ++k) {
    const double wanted = sum.back() * static_cast<double>(k) / static_cast<double>(errors.size());
    while (sum[segment + 1] < wanted) ++segment;
    const double share = (wanted - sum[segment]) / (sum[segment + 1] - sum[segment]);
    const double target = knots[segment] + share * (knots[segment + 1] - knots[segment]);
    moved[k] += damping * (target - knots[k]);
  }
  return moved;
}

}  // namespace

std::vector<double> placeForCubic(const SampledCurve& curve, std::size_t points) {
  std::vector<double> knots(points);
  const auto end = static_cast<double>(curve.samples());
  for (std::size_t k = 0; k < points; ++k)
    knots[k] = end * static_cast<double>(k) / static_cast<double>(points - 1);
  std::vector<double> best = knots;
  double least = -1;
  for (int round = 0, since = 0; round < mostRounds && since < patience; ++round, ++since) {
    const std::vector<double> errors = segmentErrors(curve, knots);
    const double worst = *std::max_element(errors.begin(), errors.end());
    if (least < 0 || worst < least) {
      least = worst;
      best = knots;
      since = 0;
    }
    if (worst == 0) break;
    knots = redistributed(knots, errors);
  }
  return best;
}

}  // namespace pelmora::tables
