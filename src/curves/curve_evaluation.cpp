// SPDX-License-Identifier: MIT
#include "curves/curve_evaluation.h"

#include "base/readable_number.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace pelmora::calibration {
namespace {

BadData refused(const std::string& why, const std::string& remedy = "fit the series again") {
  return BadData({why, "", remedy});
}

void requireMonotone(std::span<const CurvePoint> curve) {
  const bool rises = curve[1].strouhal > curve[0].strouhal;
  for (std::size_t i = 1; i < curve.size(); ++i) {
    const double step = curve[i].strouhal - curve[i - 1].strouhal;
    if (rises ? step > 0 : step < 0) continue;
    throw refused("The curve turns at Roshko " + significantText(curve[i - 1].roshko, 6) +
                      ": several Roshko numbers have the same Strouhal number.",
                  "fit a curve of a range (min, max) that ends there");
  }
}

// The point before the segment that `value` lies in or, beyond the ends, is nearest to.
template <class Coordinate>
std::size_t segmentOf(std::span<const CurvePoint> curve, double value, Coordinate coordinate) {
  const bool rises = coordinate(curve.back()) > coordinate(curve.front());
  std::size_t segment = 0;
  while (segment + 2 < curve.size()) {
    const double next = coordinate(curve[segment + 1]);
    if (rises ? value <= next : value >= next) break;
    ++segment;
  }
  return segment;
}

std::optional<double> between(const std::optional<double>& a, const std::optional<double>& b,
                              double share) {
  if (!a || !b) return std::nullopt;
  return *a * (1 - share) + *b * share;
}

// `share` of the way from point a to point b.
CurveValue valueAt(const CurvePoint& a, const CurvePoint& b, double share) {
  CurveValue value;
  value.roshko = a.roshko * (1 - share) + b.roshko * share;
  value.strouhal = a.strouhal * (1 - share) + b.strouhal * share;
  value.isExtrapolated = share < 0 || share > 1;
  if (value.isExtrapolated) return value;
  value.confidence = between(a.confidence, b.confidence, share);
  value.prediction = between(a.prediction, b.prediction, share);
  return value;
}

}  // namespace

void requireTable(std::span<const CurvePoint> curve) {
  if (curve.size() < 2) throw refused("The curve has fewer than two points.");
  for (std::size_t i = 1; i < curve.size(); ++i) {
    if (curve[i].roshko > curve[i - 1].roshko) continue;
    throw refused("The curve's Roshko numbers do not rise at " +
                  significantText(curve[i].roshko, 6) + ".");
  }
}

CurveValue strouhalAt(std::span<const CurvePoint> curve, double roshko) {
  requireTable(curve);
  const std::size_t i =
      segmentOf(curve, roshko, [](const CurvePoint& point) { return point.roshko; });
  CurveValue value = valueAt(curve[i], curve[i + 1],
                             (roshko - curve[i].roshko) / (curve[i + 1].roshko - curve[i].roshko));
  value.roshko = roshko;
  return value;
}

CurveValue roshkoAt(std::span<const CurvePoint> curve, double strouhal) {
  requireTable(curve);
  requireMonotone(curve);
  const std::size_t i =
      segmentOf(curve, strouhal, [](const CurvePoint& point) { return point.strouhal; });
  const CurvePoint& a = curve[i];
  const CurvePoint& b = curve[i + 1];
  CurveValue value = valueAt(a, b, (strouhal - a.strouhal) / (b.strouhal - a.strouhal));
  value.strouhal = strouhal;
  if (value.isExtrapolated && value.roshko <= 0) {
    throw OutOfRange({"Extended straight beyond its ends, the curve does not reach Strouhal " +
                          significantText(strouhal, 6) + " at any Roshko number above 0.",
                      "", "stay near the Strouhal numbers of the table"});
  }
  const double slope = std::abs((b.strouhal - a.strouhal) / (b.roshko - a.roshko));
  if (value.confidence) *value.confidence /= slope;
  if (value.prediction) *value.prediction /= slope;
  return value;
}

}  // namespace pelmora::calibration
