// The uncertainty of a volume flow that a calibrated meter shows in service.
// SPDX-License-Identifier: MIT
#pragma once

#include "flow/volume_flow.h"
#include "uncertainty/curve_budget.h"

namespace pelmora::flow {

// What the calibration says about the Strouhal number in use.
//
// calibration: of Strouhal, or of the sum of both rotors' (uncertainty::pairBudget, shared by the
//              rotors).
// steepness:   Roshko dStrouhal/dRoshko, summed over the rotors in use.
struct CalibratedStrouhal {
  const uncertainty::Budget* calibration = nullptr;
  double steepness = 0;
};

// The calibration's rows with the sensitivity -q / Strouhal, and what the instruments in service
// add: with s = steepness / Strouhal,
//
//   frequency q (1 - s),   viscosity q s,   temperature q (2.88E-5 - s (1.92E-5 - b)) per degree F
//
// (the two numbers being 3 and 2 times the body's linear expansion), repeatability, reproducibility
// and model (installation) q. Where U of the calibration was raised to the laboratory's CMC, a row
// makes up the difference. Nothing is shared with the stand, which has instruments of its own.
//
// instruments: in the form of a stand's file.
// Errors:      BadData if they state a reference flow, and as componentSize.
[[nodiscard]] uncertainty::Budget flowBudget(double flow, const CalibratedStrouhal& strouhal,
                                             const uncertainty::StandUncertainty& instruments,
                                             const uncertainty::OperatingPoint& at,
                                             const Service& service);

// The budget of DualFlow::differencePercent, from each rotor's own calibration. What both
// calibrations share cancels (uncertainty::pairBudget). Viscosity and temperature act on both
// rotors at once, so that only the difference between their steepnesses remains. For the other
// instruments, Component::betweenRotors says how much they share.
//
// Errors: as flowBudget.
[[nodiscard]] uncertainty::Budget differenceBudget(const DualFlow& flow,
                                                   const CalibratedStrouhal& rotorA,
                                                   const CalibratedStrouhal& rotorB,
                                                   const uncertainty::StandUncertainty& instruments,
                                                   const uncertainty::OperatingPoint& at,
                                                   const Service& service);

// The standard uncertainty of viscosityOfQuotient(), as a share of the viscosity. It combines the
// budget of the curve there with the uncertainty of the two counters.
//
//   u(v) / v = u(quotient) / |x dquotient/dx|
//
// quotient: of Rotor Sum; steepness: x dquotient/dx.
// Errors:   BadData if the curve is level there.
[[nodiscard]] uncertainty::Component viscosityOfQuotientComponent(
    const CalibratedStrouhal& quotient, const uncertainty::StandUncertainty& instruments,
    const uncertainty::OperatingPoint& at);

}  // namespace pelmora::flow
