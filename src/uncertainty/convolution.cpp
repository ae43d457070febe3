// SPDX-License-Identifier: MIT
#include "uncertainty/convolution.h"

#include <cmath>
#include <vector>

namespace pelmora::uncertainty {
namespace {

// Arguments of the characteristic function of the sum, whose standard deviation is 1.
constexpr double argumentStep = 0.05;
constexpr std::size_t mostSteps = 5000;
constexpr double negligibleFunction = 1e-9;
// A normal error of this size joins the others: without it, the function of a few rectangular
// errors would hardly fall.
constexpr double smoothing = 0.02;
// A part below this share of the whole cannot change k by 0.1 %.
constexpr double counts = 1e-3;
constexpr double fewestDegrees = 3, asGoodAsNormal = 200;

double studentFunction(double t, double degrees) {
  const double order = degrees / 2, x = std::sqrt(degrees) * t;
  return std::exp(order * std::log(x) + std::log(std::cyl_bessel_k(order, x)) - std::lgamma(order) -
                  (order - 1) * std::log(2.0));
}

// At t > 0, of one part of standard uncertainty 1.
double characteristic(const ErrorPart& part, double t) {
  const double half = halfWidthDivisor(part.distribution) * t;
  switch (part.distribution) {
    case Distribution::rectangular: return std::sin(half) / half;
    case Distribution::triangular: return std::pow(std::sin(half / 2) / (half / 2), 2);
    case Distribution::uShaped: return std::cyl_bessel_j(0.0, half);
    case Distribution::normal: break;
  }
  if (part.degreesOfFreedom < asGoodAsNormal) return studentFunction(t, part.degreesOfFreedom);
  return std::exp(-t * t / 2);
}

// At argumentStep, twice of it ...
std::vector<double> productOf(std::span<const ErrorPart> parts, double whole) {
  std::vector<double> product;
  for (std::size_t i = 1; i <= mostSteps; ++i) {
    const double t = argumentStep * static_cast<double>(i);
    double value = std::exp(-smoothing * smoothing * t * t / 2);
    for (const ErrorPart& part : parts) {
      const double share = std::abs(part.uncertainty) / whole;
      if (share * t > 1e-12 && value != 0) value *= characteristic(part, share * t);
    }
    product.push_back(value);
    if (std::abs(value) < negligibleFunction && i > 200) break;
  }
  return product;
}

// P(|sum| <= k), by the trapezoidal rule.
double probabilityOf(double k, const std::vector<double>& product) {
  double sum = k / 2;
  for (std::size_t i = 0; i < product.size(); ++i) {
    const double t = argumentStep * static_cast<double>(i + 1);
    sum += std::sin(k * t) / t * product[i];
  }
  return 2 / std::acos(-1.0) * argumentStep * sum;
}

}  // namespace

std::optional<double> convolvedFactor(double probability, std::span<const ErrorPart> parts) {
  double whole = 0;
  for (const ErrorPart& part : parts) whole = std::hypot(whole, part.uncertainty);
  if (!(whole > 0)) return std::nullopt;
  for (const ErrorPart& part : parts) {
    const bool isCounted = std::abs(part.uncertainty) > counts * whole;
    if (isCounted && part.degreesOfFreedom < fewestDegrees) return std::nullopt;
  }
  const std::vector<double> product = productOf(parts, whole);
  double low = 0, high = 20;
  for (int i = 0; i < 30; ++i) {
    const double middle = (low + high) / 2;
    (probabilityOf(middle, product) < probability ? low : high) = middle;
  }
  return (low + high) / 2;
}

}  // namespace pelmora::uncertainty
