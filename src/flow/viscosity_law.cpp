// SPDX-License-Identifier: MIT
#include "flow/viscosity_law.h"

#include "base/readable_number.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace pelmora::flow {
namespace {

constexpr double leastOfD341 = 0.21;  // cSt; the formula for Z does not hold below it
constexpr double celsiusZero = 273.15;
constexpr double slopeStep = 0.01;  // K

[[noreturn]] void refuse(const std::string& what, const std::string& remedy) {
  throw calibration::BadData({what, "", remedy});
}

double zOf(double v) { return v + 0.7 + std::exp(-1.47 - 1.84 * v - 0.51 * v * v); }

// The viscosity of a Z by Newton's method; Z rises with v from 0.21 on.
double viscosityOfZ(double z) {
  double v = std::max(leastOfD341, z - 0.7);
  for (int i = 0; i < 50; ++i) {
    const double added = std::exp(-1.47 - 1.84 * v - 0.51 * v * v);
    const double step = (v + 0.7 + added - z) / (1 - (1.84 + 1.02 * v) * added);
    v -= step;
    if (std::abs(step) < 1e-15 * v) break;
  }
  return v;
}

double upOf(ViscosityScale scale, double v) {
  return scale == ViscosityScale::d341 ? std::log10(std::log10(zOf(v))) : std::log(v);
}

double viscosityOf(ViscosityScale scale, double up) {
  if (scale == ViscosityScale::andrade) return std::exp(up);
  return viscosityOfZ(std::pow(10.0, std::pow(10.0, up)));
}

std::string degrees(double kelvin) { return fixedText(kelvin - celsiusZero, 2) + " C"; }

TemperatureRange rangeOf(const std::vector<ViscosityPoint>& points) {
  if (points.empty()) return {};
  const auto [low, high] = std::minmax_element(
      points.begin(), points.end(),
      [](const ViscosityPoint& a, const ViscosityPoint& b) { return a.kelvin < b.kelvin; });
  return {low->kelvin, high->kelvin};
}

// `shift` is c of the Andrade scale.
void requireTemperature(double kelvin, double shift) {
  if (!std::isfinite(kelvin) || !(kelvin > 0)) {
    refuse(degrees(kelvin) + " of the viscosity law is not above absolute zero",
           "give a temperature above " + degrees(0));
  }
  if (kelvin + shift > 0) return;
  refuse("at " + degrees(kelvin) +
             ", the temperature in K plus the constant c of the viscosity law is not above 0",
         "give a temperature above " + degrees(-shift));
}

void requireRange(TemperatureRange range, double shift) {
  requireTemperature(range.lowest, shift);
  requireTemperature(range.highest, shift);
  if (range.highest > range.lowest) return;
  refuse("the viscosity law holds nowhere from " + degrees(range.lowest) + " to " +
             degrees(range.highest),
         "give the lower temperature first, then a higher one");
}

void requirePoint(ViscosityScale scale, const ViscosityPoint& point, double shift) {
  requireTemperature(point.kelvin, shift);
  const double least = scale == ViscosityScale::d341 ? leastOfD341 : 0;
  if (!std::isfinite(point.centistokes) || !(point.centistokes > 0) || point.centistokes < least) {
    refuse("the viscosity at " + degrees(point.kelvin) + " is below the range of its law",
           least > 0 ? "the D341 law starts at 0.21 cSt; use the Andrade law"
                     : "give a viscosity above 0 cSt");
  }
}

}  // namespace

ViscosityLaw::ViscosityLaw(ViscosityScale scale, std::vector<ViscosityPoint> points,
                           TemperatureRange range, double shift)
    : scale_(scale), range_(range), shift_(shift) {
  if (points.size() < 2) refuse("a viscosity law needs at least two points", "add a temperature");
  std::sort(points.begin(), points.end(),
            [](const auto& a, const auto& b) { return a.kelvin < b.kelvin; });
  for (std::size_t i = 0; i < points.size(); ++i) {
    requirePoint(scale, points[i], shift);
    if (i > 0 && points[i].kelvin == points[i - 1].kelvin)
      refuse(degrees(points[i].kelvin) + " is in the viscosity law twice", "keep one of them");
    if (i > 0 && points[i].centistokes >= points[i - 1].centistokes) {
      refuse("the viscosity does not fall between " + degrees(points[i - 1].kelvin) + " and " +
                 degrees(points[i].kelvin),
             "check both points: a liquid gets thinner when it gets warmer");
    }
    nodes_.push_back({across(points[i].kelvin), upOf(scale, points[i].centistokes)});
  }
  requireRange(range, shift);
}

ViscosityLaw::ViscosityLaw(ViscosityScale scale, std::vector<ViscosityPoint> points, double shift)
    : ViscosityLaw(scale, points, rangeOf(points), shift) {}

ViscosityLaw ViscosityLaw::fromD341(double a, double b, TemperatureRange range) {
  requireRange(range, 0);
  std::vector<ViscosityPoint> points;
  for (const double kelvin : {range.lowest, range.highest}) {
    const double up = a - b * std::log10(kelvin);
    points.push_back({kelvin, viscosityOf(ViscosityScale::d341, up)});
  }
  return {ViscosityScale::d341, points, range};
}

ViscosityLaw ViscosityLaw::fromAndrade(double a, double b, double c, TemperatureRange range) {
  requireRange(range, c);
  std::vector<ViscosityPoint> points;
  for (const double kelvin : {range.lowest, range.highest})
    points.push_back({kelvin, std::exp(a + b / (kelvin + c))});
  return {ViscosityScale::andrade, points, range, c};
}

double ViscosityLaw::across(double kelvin) const {
  return scale_ == ViscosityScale::d341 ? std::log10(kelvin) : -1 / (kelvin + shift_);
}

double ViscosityLaw::unchecked(double kelvin) const {
  const double at = across(kelvin);
  const auto after = std::upper_bound(nodes_.begin() + 1, nodes_.end() - 1, at,
                                      [](double x, const Node& node) { return x < node.across; });
  const Node &low = *(after - 1), &high = *after;
  const double share = (at - low.across) / (high.across - low.across);
  return viscosityOf(scale_, low.up + share * (high.up - low.up));
}

double ViscosityLaw::operator()(double kelvin) const {
  if (kelvin >= range_.lowest && kelvin <= range_.highest) return unchecked(kelvin);
  throw calibration::OutOfRange({"the viscosity law does not reach " + degrees(kelvin), "",
                                 "it holds from " + degrees(range_.lowest) + " to " +
                                     degrees(range_.highest) +
                                     "; add a point, or give the viscosity"});
}

double ViscosityLaw::changePerKelvin(double kelvin) const {
  const double here = (*this)(kelvin);
  return (unchecked(kelvin + slopeStep) - unchecked(kelvin - slopeStep)) / (2 * slopeStep * here);
}

}  // namespace pelmora::flow
