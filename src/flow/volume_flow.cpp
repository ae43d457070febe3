// SPDX-License-Identifier: MIT
#include "flow/volume_flow.h"

#include "base/readable_number.h"

#include <pelmora/calibration/failure.h>

#include <cmath>
#include <optional>
#include <string>

namespace pelmora::flow {
namespace {

constexpr int mostIterations = 200;
constexpr double converged = 1e-13;
constexpr int searchedPlaces = 512;

void requireAbove0(double value, const std::string& name) {
  if (value > 0 && std::isfinite(value)) return;
  throw calibration::BadData({name + " is not above 0", "", "check the measured values"});
}

double strouhalAt(const StrouhalCurve& curve, double roshko) {
  const double strouhal = curve(roshko);
  requireAbove0(strouhal,
                "the Strouhal number of the curve at Roshko " + significantText(roshko, 6));
  return strouhal;
}

double roshkoOf(double frequency, const Service& service) {
  return frequency / service.viscosity * service.expansion.roshkoFactor(service.temperatureF);
}

double bisected(const StrouhalCurve& quotient, double wanted, double low, double high) {
  const bool isBelow = quotient(low) < wanted;
  for (int i = 0; i < mostIterations && high - low > converged * high; ++i) {
    const double middle = std::sqrt(low * high);
    ((quotient(middle) < wanted) == isBelow ? low : high) = middle;
  }
  return std::sqrt(low * high);
}

}  // namespace

MeterFlow volumeFlow(const StrouhalCurve& curve, double frequency, const Service& service) {
  requireAbove0(frequency, "the frequency");
  requireAbove0(service.viscosity, "the viscosity");
  MeterFlow made;
  made.roshko = roshkoOf(frequency, service);
  made.strouhal = strouhalAt(curve, made.roshko);
  made.flow = frequency * service.expansion.strouhalFactor(service.temperatureF) / made.strouhal;
  return made;
}

DualFlow dualFlow(const StrouhalCurve& rotorA, const StrouhalCurve& rotorB, double frequencyA,
                  double frequencyB, const Service& service) {
  DualFlow made;
  made.rotorA = volumeFlow(rotorA, frequencyA, service);
  made.rotorB = volumeFlow(rotorB, frequencyB, service);
  made.flow = (frequencyA + frequencyB) * service.expansion.strouhalFactor(service.temperatureF) /
              (made.rotorA.strouhal + made.rotorB.strouhal);
  made.differencePercent = 100 * (made.rotorB.flow - made.rotorA.flow) / made.flow;
  return made;
}

double viscosityOfQuotient(const StrouhalCurve& quotient, const RoshkoRange& range,
                           double frequencyA, double frequencyB, double temperatureF,
                           const BodyExpansion& expansion) {
  requireAbove0(frequencyA, "the frequency of rotor A");
  requireAbove0(frequencyB, "the frequency of rotor B");
  requireAbove0(range.lowest, "the start of the curve");
  const double wanted = frequencyA / frequencyB;
  std::optional<double> found;
  double before = range.lowest;
  for (int i = 1; i <= searchedPlaces; ++i) {
    const double share = i / double{searchedPlaces};
    const double here = i == searchedPlaces
                            ? range.highest
                            : range.lowest * std::pow(range.highest / range.lowest, share);
    const double left = quotient(before) - wanted, right = quotient(here) - wanted;
    if (i == 1 && left == 0) found = before;
    // A quotient that is met exactly at `before` was found as the end of the previous interval.
    const bool isCrossed = left != 0 && (right == 0 || (left < 0) != (right < 0));
    if (isCrossed && found) {
      throw calibration::BadData({"the quotient of the rotors occurs at several Roshko numbers", "",
                                  "give the viscosity, or a fluid and its temperature"});
    }
    if (isCrossed) found = bisected(quotient, wanted, before, here);
    before = here;
  }
  if (!found) {
    throw calibration::OutOfRange(
        {"the quotient of the rotors, " + significantText(wanted, 6) + ", is not on the curve", "",
         "check both frequencies, or give the viscosity"});
  }
  return (frequencyA + frequencyB) * expansion.roshkoFactor(temperatureF) / *found;
}

}  // namespace pelmora::flow
