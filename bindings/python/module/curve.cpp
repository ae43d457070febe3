// A curve's table, read at many places at once.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/bindings.h"

#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <sstream>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
// The ends of a table and those of the points that it was fitted to differ by rounding.
constexpr double sameEnd = 1e-9;

std::string numberText(double number) {
  std::ostringstream text;
  text.precision(9);
  text << number;
  return text.str();
}

// Roshko as the table is read: inside its range, unless the line beyond its ends is wanted.
double placeIn(const cal::Curve& curve, double roshko, py::ssize_t index, bool extrapolate) {
  if (std::isnan(roshko)) {
    throw cal::BadData({"Roshko number " + std::to_string(index) + " (counted from 0) is NaN",
                        "the argument of the curve", "drop missing values first"});
  }
  if (extrapolate) return roshko;
  const double low = curve.lowestRoshko(), high = curve.highestRoshko();
  if (roshko < low && roshko >= low * (1 - sameEnd)) return low;
  if (roshko > high && roshko <= high * (1 + sameEnd)) return high;
  if (roshko >= low && roshko <= high) return roshko;
  throw cal::OutOfRange({"Roshko " + numberText(roshko) +
                             " is outside the curve, which reaches from " + numberText(low) +
                             " to " + numberText(high),
                         "the argument of the curve",
                         "stay inside curve.range, or pass extrapolate=True to continue the line "
                         "through the last two points"});
}

template <class Value>
py::array_t<double> atEach(const Column& places, Value value) {
  py::array_t<double> result(places.size());
  double* out = result.mutable_data();
  for (py::ssize_t i = 0; i < places.size(); ++i) out[i] = value(places.data()[i], i);
  return result;
}

py::array_t<double> strouhal(const cal::Curve& curve, const Column& roshko, bool extrapolate) {
  return atEach(roshko, [&](double place, py::ssize_t i) {
    return curve(placeIn(curve, place, i, extrapolate)).strouhal;
  });
}

py::array_t<double> halfWidths(const cal::Curve& curve, const Column& roshko, bool ofPrediction) {
  return atEach(roshko, [&](double place, py::ssize_t i) {
    const cal::CurveValue value = curve(placeIn(curve, place, i, false));
    return (ofPrediction ? value.prediction : value.confidence).value_or(unknown);
  });
}

py::array_t<double> roshko(const cal::Curve& curve, const Column& strouhal, bool extrapolate) {
  return atEach(strouhal, [&](double wanted, py::ssize_t i) {
    if (std::isnan(wanted)) {
      throw cal::BadData({"Strouhal number " + std::to_string(i) + " (counted from 0) is NaN",
                          "the argument of the inverse", "drop missing values first"});
    }
    const cal::CurveValue value = curve.inverse(wanted);
    if (!value.isExtrapolated || extrapolate) return value.roshko;
    throw cal::OutOfRange({"the curve reaches Strouhal " + numberText(wanted) +
                               " only beyond its ends, at Roshko " + numberText(value.roshko),
                           "the argument of the inverse",
                           "stay inside the Strouhal numbers of curve.table, or pass "
                           "extrapolate=True"});
  });
}

// The slope of the table's segment; at a knot, of the segment above it.
py::array_t<double> slope(const cal::Curve& curve, const Column& roshko, bool extrapolate) {
  const auto& points = curve.points();
  return atEach(roshko, [&](double place, py::ssize_t i) {
    const double at = placeIn(curve, place, i, extrapolate);
    auto above = std::upper_bound(points.begin() + 1, points.end() - 1, at,
                                  [](double x, const cal::CurvePoint& p) { return x < p.roshko; });
    const cal::CurvePoint &to = *above, &from = *(above - 1);
    return (to.strouhal - from.strouhal) / (to.roshko - from.roshko);
  });
}

py::array tableOf(const py::object& self) {
  const auto& points = self.cast<const cal::Curve&>().points();
  return viewOf(&points.front().roshko, {static_cast<py::ssize_t>(points.size()), 2},
                {sizeof(cal::CurvePoint), offsetof(cal::CurvePoint, strouhal)}, self);
}

}  // namespace

void bindCurve(py::module_& module) {
  py::class_<cal::Curve>(module, "Curve")
      .def("strouhal", &strouhal, "roshko"_a, "extrapolate"_a)
      .def("half_widths", &halfWidths, "roshko"_a, "of_prediction"_a)
      .def("roshko", &roshko, "strouhal"_a, "extrapolate"_a)
      .def("slope", &slope, "roshko"_a, "extrapolate"_a)
      .def_property_readonly("table", &tableOf)
      .def_property_readonly("has_bands",
                             [](const cal::Curve& curve) {
                               for (const cal::CurvePoint& point : curve.points())
                                 if (!point.confidence || !point.prediction) return false;
                               return true;
                             })
      .def_property_readonly("range", [](const cal::Curve& curve) {
        return py::make_tuple(curve.lowestRoshko(), curve.highestRoshko());
      });
}

}  // namespace pelmora::python
