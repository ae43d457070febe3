// SPDX-License-Identifier: MIT
#include "tables/interval_search.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::tables {
namespace {

// A piece is given up once it errs this many times too much: a curve whose error shrinks again
// beyond that wiggles more than a table with so few points can follow.
constexpr double hopeless = 3;
// Of the distance between two samples.
constexpr double closeness = 1e-6;

}  // namespace

IntervalSearch::IntervalSearch(const SampledCurve& curve, Reading reading,
                               std::function<void()> goOn)
    : curve_(curve), isLinear_(reading == Reading::linear), goOn_(std::move(goOn)) {
  for (const double x : curve.x()) place_.push_back(isLinear_ ? x : std::log(x));
}

double IntervalSearch::errorOf(double from, double to) const {
  requireGoOn();
  const auto placeAt = [&](double place) {
    const double x = curve_.xAt(place);
    return isLinear_ ? x : std::log(x);
  };
  const double x0 = placeAt(from), y0 = curve_.yAt(from);
  const double slope = (curve_.yAt(to) - y0) / (placeAt(to) - x0);
  double worst = 0;
  const auto first = static_cast<std::size_t>(std::ceil(from));
  const auto last = static_cast<std::size_t>(std::floor(to));
  for (std::size_t i = first; i <= last; ++i) {
    const double y = curve_.y()[i];
    worst = std::max(worst, std::abs((y0 + slope * (place_[i] - x0) - y) / y));
  }
  return worst;
}

double IntervalSearch::farthest(double from, double error) const {
  const double last = end();
  // Steps that grow with the piece find its length within a twentieth; the rest is bisection.
  double good = std::min(last, from + 1), bad = last;
  for (double step = 1, to = good; to < last;) {
    to = std::min(last, to + step);
    const double found = errorOf(from, to);
    if (found <= error) {
      good = to;
      bad = last;
    } else {
      if (bad == last) bad = to;
      if (found > hopeless * error) break;
    }
    step = std::max(1.0, (to - from) / 20);
  }
  if (good == last) return last;
  if (bad <= good) bad = std::min(last, good + 1);
  while (bad - good > closeness) {
    const double middle = (good + bad) / 2;
    (errorOf(from, middle) <= error ? good : bad) = middle;
  }
  return good;
}

std::optional<std::vector<double>> IntervalSearch::cover(double error, std::size_t pieces) const {
  std::vector<double> knots{0};
  while (knots.back() < end()) {
    if (knots.size() > pieces) return std::nullopt;
    knots.push_back(farthest(knots.back(), error));
  }
  return knots;
}

double IntervalSearch::largestError(const std::vector<double>& knots) const {
  double worst = 0;
  for (std::size_t k = 1; k < knots.size(); ++k)
    worst = std::max(worst, errorOf(knots[k - 1], knots[k]));
  return worst;
}

}  // namespace pelmora::tables
