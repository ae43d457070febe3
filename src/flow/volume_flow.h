// Roshko and Strouhal numbers of a meter in service, and the flow through it.
// SPDX-License-Identifier: MIT
#pragma once

#include "curves/body_expansion.h"

#include <functional>

namespace pelmora::flow {

// Strouhal at a Roshko number. Beyond the calibrated range it throws or extrapolates, as its owner
// wants.
using StrouhalCurve = std::function<double(double)>;

// Units:  the viscosity in the unit that the Roshko numbers were made with, cSt as a rule;
//         temperatures in degrees F.
struct Service {
  double viscosity = 0, temperatureF = 70;
  BodyExpansion expansion;
};

// Units:  flow in volumes of Strouhal's unit per second: gal/s for pulses per gallon.
struct MeterFlow {
  double roshko = 0, strouhal = 0, flow = 0;
};

// With the expansion factors G of BodyExpansion, as the derived series have them:
//
//   Roshko = f / v G_R(T),   q = f G_S(T) / Strouhal(Roshko)
//
// Errors: BadData if frequency, viscosity or Strouhal is not above 0.
[[nodiscard]] MeterFlow volumeFlow(const StrouhalCurve& curve, double frequency,
                                   const Service& service);

// Both rotors of a meter at once: q = (f_A + f_B) G_S / (Strouhal_A + Strouhal_B), and the flow by
// each rotor alone. A difference beyond its uncertainty means that one rotor no longer follows its
// curve.
struct DualFlow {
  MeterFlow rotorA, rotorB;
  double flow = 0;
  double differencePercent = 0;  // B minus A, in per cent of the joint flow
};

// Errors: as volumeFlow.
[[nodiscard]] DualFlow dualFlow(const StrouhalCurve& rotorA, const StrouhalCurve& rotorB,
                                double frequencyA, double frequencyB, const Service& service);

struct RoshkoRange {
  double lowest = 0, highest = 0;
};

// The viscosity that follows from the quotient of both frequencies. The curve quotient(x) is the
// series Rotor Sum over x, the sum of both Roshko numbers. Where quotient(x) = f_A / f_B,
//
//   v = (f_A + f_B) G_R(T) / x
//
// range: where x is searched; the curve must not turn within it.
// Errors: BadData for frequencies that are not above 0, and if the quotient occurs at several
//         places; OutOfRange if it occurs at none.
[[nodiscard]] double viscosityOfQuotient(const StrouhalCurve& quotient, const RoshkoRange& range,
                                         double frequencyA, double frequencyB, double temperatureF,
                                         const BodyExpansion& expansion = {});

}  // namespace pelmora::flow
