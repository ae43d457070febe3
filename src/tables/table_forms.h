// The curve of a meter in the quantities that flow computers ask for.
// SPDX-License-Identifier: MIT
#pragma once

#include "curves/body_expansion.h"
#include "tables/sampled_curve.h"

namespace pelmora::tables {

// A curve and the range of its x, ready for placeTable.
struct Form {
  Curve curve;
  Range range;
};

// The meter at one temperature. Units: degrees F.
struct MeterState {
  double temperatureF = 70;
  BodyExpansion expansion;
};

// Universal viscosity curve: K factor over frequency / viscosity, as the meter at that temperature
// shows them. Roshko and Strouhal numbers are these times the expansion factors:
//
//   f/v = Roshko / G_R(T),  K = Strouhal / G_S(T)
//
// Units:  x in the unit of Roshko, y in that of Strouhal.
[[nodiscard]] Form universalViscosityForm(const Form& strouhalOverRoshko, const MeterState& state);

// K factor over frequency, for a fluid of one viscosity at one temperature.
//
// Units:  viscosity in the unit that Roshko was made with: cSt where x is in Hz/cSt.
// Errors: BadData if the viscosity is not above 0.
[[nodiscard]] Form frequencyForm(const Form& strouhalOverRoshko, double viscosity,
                                 const MeterState& state);

}  // namespace pelmora::tables
