// What a calibration stand contributes to the uncertainty of every curve that it measures.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/coverage.h"
#include "uncertainty/input.h"
#include "units/unit.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::uncertainty {

// Why a value is uncertain. `fit` and `reading` belong to a curve and its table, the others to the
// stand.
enum class Cause {
  fit,
  flow,
  viscosity,
  temperature,
  frequency,
  repeatability,
  reproducibility,
  model,
  reading,
};

// "fit", "reference flow", "viscosity" ...
[[nodiscard]] std::string_view causeName(Cause cause);

enum class Evaluation { a, b };  // by statistics of observations; by other means

// Units:  standard: per cent or ppm of the quantity itself, or a unit of it; repeatability,
//         reproducibility and model are relative to the Strouhal number.
struct Component {
  Cause cause = Cause::flow;
  std::string label;  // tells several of one cause apart; may be empty
  units::Measure standard;
  Distribution distribution = Distribution::normal;
  double degreesOfFreedom = knownExactly;
  Evaluation evaluation = Evaluation::b;
  // Correlation of its errors in the two rotors of one run, and in two calibrations on the stand.
  double betweenRotors = 0, betweenCalibrations = 0;
  // Temperature alone: relative change of the viscosity per degree F, where the stand computes the
  // viscosity from the temperature.
  double viscosityChange = 0;
};

struct StandUncertainty {
  std::string name;
  // The laboratory's calibration and measurement capability: no U is stated below it. Expanded, in
  // per cent; `quotientCmcPercent` for the quotient of two rotors.
  double cmcPercent = 0;
  std::optional<double> quotientCmcPercent;
  double probability = twoSigmaProbability;
  std::vector<Component> components;
};

}  // namespace pelmora::uncertainty
