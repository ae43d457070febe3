// A curve at many places at once.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/bindings.h"
#include "bindings/python/module/curve_handle.h"
#include "bindings/python/module/pickling.h"
#include "bindings/python/module/records.h"
#include "bindings/python/module/watched.h"

#include <pelmora/calibration/coverage.h>
#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/flow.h>
#include <pelmora/calibration/report.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <vector>

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

// Roshko as the curve is evaluated: inside its range, unless the line beyond its ends is wanted.
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
  constexpr py::ssize_t portion = 64;
  py::array_t<double> result(places.size());
  double* out = result.mutable_data();
  for (py::ssize_t i = 0; i < places.size(); ++i) {
    if (i % portion == portion - 1) takeTurns();
    out[i] = value(places.data()[i], i);
  }
  return result;
}

// values(portion of the places) gives as many numbers.
template <class Values>
py::array_t<double> inPortions(const std::vector<double>& places, Values values) {
  constexpr std::size_t portion = 1024;
  const std::span<const double> all(places);
  py::array_t<double> result(static_cast<py::ssize_t>(places.size()));
  double* out = result.mutable_data();
  for (std::size_t first = 0; first < places.size(); first += portion) {
    if (first > 0) takeTurns();
    for (const double value : values(all.subspan(first, std::min(portion, all.size() - first))))
      *out++ = value;
  }
  return result;
}

std::vector<double> placesIn(const cal::Curve& curve, const Column& roshko, bool extrapolate) {
  std::vector<double> places;
  for (py::ssize_t i = 0; i < roshko.size(); ++i)
    places.push_back(placeIn(curve, roshko.data()[i], i, extrapolate));
  return places;
}

py::array_t<double> arrayOf(const std::vector<double>& values) {
  return py::array_t<double>(static_cast<py::ssize_t>(values.size()), values.data());
}

cal::ReadAs readingNamed(const std::string& reading) {
  if (const auto known = cal::tableReadingOf(reading)) return *known;
  throw cal::BadData({"there is no reading '" + reading + "'", "reading",
                      "use 'linear', 'log' or 'cubic', or None for the curve itself"});
}

py::array_t<double> strouhal(const CurveHandle& curve, const Column& roshko, bool extrapolate,
                             const std::string& reading) {
  const std::vector<double> places = placesIn(curve.table(), roshko, extrapolate);
  const cal::ReadAs how = readingNamed(reading);
  const cal::FittedCurve& function = curve.function();
  return inPortions(places, [&](auto portion) { return function.read(portion, how); });
}

py::array_t<double> halfWidths(const CurveHandle& curve, const Column& roshko, bool ofPrediction) {
  return atEach(roshko, [&](double place, py::ssize_t i) {
    const cal::CurveValue value = curve.table()(placeIn(curve.table(), place, i, false));
    return (ofPrediction ? value.prediction : value.confidence).value_or(unknown);
  });
}

// U of each place; NaN where it is not known.
py::array_t<double> expanded(const CurveHandle& curve, const Column& roshko,
                             const std::string& reading, std::optional<double> viscosity) {
  const std::vector<double> places = placesIn(curve.table(), roshko, false);
  const cal::EvaluateOptions options{readingNamed(reading), viscosity};
  const cal::FittedCurve& function = curve.function();
  return inPortions(places, [&](auto portion) {
    std::vector<double> values;
    for (const cal::CurveEstimate& at : function.at(portion, options))
      values.push_back(at.budget ? at.budget->expanded : unknown);
    return values;
  });
}

py::array_t<double> roshko(const CurveHandle& curve, const Column& strouhal, bool extrapolate) {
  return atEach(strouhal, [&](double wanted, py::ssize_t i) {
    if (std::isnan(wanted)) {
      throw cal::BadData({"Strouhal number " + std::to_string(i) + " (counted from 0) is NaN",
                          "the argument of the inverse", "drop missing values first"});
    }
    const cal::CurveEstimate value = curve.function().inverse(wanted);
    if (!value.isExtrapolated || extrapolate) return value.roshko;
    throw cal::OutOfRange({"the curve reaches Strouhal " + numberText(wanted) +
                               " only beyond its ends, at Roshko " + numberText(value.roshko),
                           "the argument of the inverse",
                           "stay inside the Strouhal numbers of curve.table, or pass "
                           "extrapolate=True"});
  });
}

py::array_t<double> slope(const CurveHandle& curve, const Column& roshko, bool extrapolate) {
  const std::vector<double> places = placesIn(curve.table(), roshko, extrapolate);
  const cal::FittedCurve& function = curve.function();
  return inPortions(places, [&](auto portion) { return function.slopes(portion); });
}

py::array_t<double> flow(const CurveHandle& curve, const Column& frequency, const Column& viscosity,
                         const Column& fahrenheit) {
  const auto size = static_cast<std::size_t>(frequency.size());
  const std::span<const double> hertz(frequency.data(), size), centistokes(viscosity.data(), size),
      degrees(fahrenheit.data(), size);
  const cal::FittedCurve& function = curve.function();
  std::vector<double> flows;
  watched({}, [&](const cal::Observer& observer) {
    flows = cal::flowsOf(function, hertz, centistokes, degrees, observer.stop);
  });
  return arrayOf(flows);
}

py::array tableOf(const py::object& self) {
  const auto& points = self.cast<const CurveHandle&>().table().points();
  return viewOf(&points.front().roshko, {static_cast<py::ssize_t>(points.size()), 2},
                {sizeof(cal::CurvePoint), offsetof(cal::CurvePoint, strouhal)}, self);
}

// How many standard uncertainties the 95 % bands are wide.
double coverageOf(const cal::Fit& fit) {
  if (fit.trust) return 2;
  const EquationOutcome& chosen = fit.chosen();
  const auto parameters = static_cast<std::int32_t>(chosen.Parameters.size());
  return cal::coverageFactor(0.95, chosen.Statistics.Observations - parameters);
}

// The chosen equation and the coverage of the bands; None if no fit gives the curve.
py::object equationOf(const CurveHandle& curve) {
  if (!curve.fit()) return py::none();
  const cal::Fit& fit = **curve.fit();
  return py::make_tuple(recordOf(fit.equations().front()), coverageOf(fit));
}

py::object pictureOf(const CurveHandle& curve) {
  if (!curve.fit()) return py::none();
  std::string picture;
  watched({}, [&](const cal::Observer& observer) {
    picture = cal::plotOf(**curve.fit(), observer.stop);
  });
  return textOf(picture);
}

}  // namespace

void bindCurve(py::module_& module) {
  py::class_<CurveHandle>(module, "Curve")
      .def("strouhal", &strouhal, "roshko"_a, "extrapolate"_a, "reading"_a)
      .def("half_widths", &halfWidths, "roshko"_a, "of_prediction"_a)
      .def("expanded", &expanded, "roshko"_a, "reading"_a, "viscosity"_a)
      .def("roshko", &roshko, "strouhal"_a, "extrapolate"_a)
      .def("slope", &slope, "roshko"_a, "extrapolate"_a)
      .def("flow", &flow, "frequency"_a, "viscosity"_a, "fahrenheit"_a)
      .def_property_readonly("source",
                             [](const CurveHandle& curve) {
                               return std::string(cal::curveSourceName(curve.function().source()));
                             })
      .def_property_readonly("table", &tableOf)
      .def_property_readonly("equation", &equationOf)
      .def("picture", &pictureOf)
      .def("to_bytes", [](const CurveHandle& curve) { return py::bytes(bytesOf(curve)); })
      .def_property_readonly("has_bands",
                             [](const CurveHandle& curve) {
                               for (const cal::CurvePoint& point : curve.table().points())
                                 if (!point.confidence || !point.prediction) return false;
                               return true;
                             })
      .def_property_readonly("range", [](const CurveHandle& curve) {
        return py::make_tuple(curve.table().lowestRoshko(), curve.table().highestRoshko());
      });
  module.def(
      "curve_from", [](const std::string& pickled) { return curveFrom(pickled); }, "pickled"_a);
}

}  // namespace pelmora::python
