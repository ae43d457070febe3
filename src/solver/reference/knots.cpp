// SPDX-License-Identifier: MIT
#include "solver/reference/knots.h"

#include <algorithm>
#include <cmath>

namespace pelmora::solver::reference {
namespace {

double onScale(const Knots& knots, double y) {
  return knots.relative ? std::log(y) : y / knots.unit;
}

// The middle one of the sizes of y.
double typicalSize(std::span<const double> y, std::span<const std::size_t> used) {
  std::vector<double> sizes;
  for (const std::size_t i : used) sizes.push_back(std::abs(y[i]));
  const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
  std::nth_element(sizes.begin(), middle, sizes.end());
  return *middle > 0 ? *middle : 1;
}

void fitLine(Knots& knots, std::span<const double> t, std::span<const double> z) {
  const double n = static_cast<double>(t.size());
  double meanT = 0, meanZ = 0;
  for (std::size_t i = 0; i < t.size(); ++i) {
    meanT += t[i] / n;
    meanZ += z[i] / n;
  }
  double tt = 0, tz = 0;
  for (std::size_t i = 0; i < t.size(); ++i) {
    tt += (t[i] - meanT) * (t[i] - meanT);
    tz += (t[i] - meanT) * (z[i] - meanZ);
  }
  knots.origin = meanT;
  knots.level = meanZ;
  knots.slope = tt > 0 ? tz / tt : 0;
}

std::vector<Fluid>::iterator placeOf(std::vector<Fluid>& fluids, int number) {
  return std::lower_bound(fluids.begin(), fluids.end(), number,
                          [](const Fluid& fluid, int wanted) { return fluid.number < wanted; });
}

void gatherFluids(Knots& knots, std::span<const double> x, std::span<const int> fluid,
                  std::span<const std::size_t> used) {
  for (const std::size_t i : used) {
    const int number = fluid.empty() ? 0 : fluid[i];
    const auto place = placeOf(knots.fluids, number);
    if (place == knots.fluids.end() || place->number != number) {
      knots.fluids.insert(place, {number, x[i], x[i]});
    } else {
      place->smallestX = std::min(place->smallestX, x[i]);
      place->largestX = std::max(place->largestX, x[i]);
    }
  }
}

}  // namespace

double dragAt(const Knots& knots, double t) { return std::exp(knots.knots.front().t - t); }

double scaled(const Knots& knots, double t, double y) {
  return onScale(knots, y) - (knots.level + knots.slope * t);
}

Knots gatherKnots(std::span<const double> x, std::span<const double> y, std::span<const int> fluid,
                  std::span<const std::size_t> used, bool relative, double drag) {
  Knots knots;
  knots.drag = drag;
  knots.relative = relative;
  if (!relative) knots.unit = typicalSize(y, used);
  gatherFluids(knots, x, fluid, used);
  std::vector<double> t, z;
  for (const std::size_t i : used) {
    t.push_back(std::log(x[i]));
    z.push_back(onScale(knots, y[i]));
  }
  fitLine(knots, t, z);

  const auto fluidOf = [&](std::size_t i) { return fluid.empty() ? 0 : fluid[i]; };
  knots.order.assign(used.begin(), used.end());
  std::sort(knots.order.begin(), knots.order.end(), [&](std::size_t a, std::size_t b) {
    if (x[a] != x[b]) return x[a] < x[b];
    if (fluidOf(a) != fluidOf(b)) return fluidOf(a) < fluidOf(b);
    return y[a] != y[b] ? y[a] < y[b] : a < b;
  });
  for (std::size_t first = 0; first < knots.order.size();) {
    const std::size_t start = knots.order[first];
    std::size_t end = first;
    const auto place = placeOf(knots.fluids, fluidOf(start));
    Knot knot{};
    knot.fluid = static_cast<int>(place - knots.fluids.begin());
    knot.t = std::log(x[start]) - knots.origin;
    knot.flowFraction = x[start] / place->largestX;
    knot.first = first;
    for (; end < knots.order.size() && x[knots.order[end]] == x[start] &&
           fluidOf(knots.order[end]) == fluidOf(start);
         ++end) {
      knots.z.push_back(scaled(knots, knot.t, y[knots.order[end]]));
      knot.mean += knots.z.back();
    }
    knot.count = end - first;
    knot.mean /= static_cast<double>(knot.count);
    for (std::size_t k = first; k < end; ++k)
      knot.scatter += (knots.z[k] - knot.mean) * (knots.z[k] - knot.mean);
    knots.knots.push_back(knot);
    first = end;
  }
  return knots;
}

}  // namespace pelmora::solver::reference
