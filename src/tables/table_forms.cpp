// SPDX-License-Identifier: MIT
#include "tables/table_forms.h"

#include <pelmora/calibration/failure.h>

#include <cmath>

namespace pelmora::tables {
namespace {

// x and y divided by constants.
Form divided(const Form& form, double byX, double byY) {
  return {[curve = form.curve, byX, byY](std::span<const double> x) {
            std::vector<double> roshko(x.begin(), x.end());
            for (double& each : roshko) each *= byX;
            std::vector<double> y = curve(roshko);
            for (double& each : y) each /= byY;
            return y;
          },
          {form.range.low / byX, form.range.high / byX}};
}

}  // namespace

Form universalViscosityForm(const Form& strouhalOverRoshko, const MeterState& state) {
  return divided(strouhalOverRoshko, state.expansion.roshkoFactor(state.temperatureF),
                 state.expansion.strouhalFactor(state.temperatureF));
}

Form frequencyForm(const Form& strouhalOverRoshko, double viscosity, const MeterState& state) {
  if (!(viscosity > 0) || !std::isfinite(viscosity)) {
    throw calibration::BadData({"the viscosity of the fluid is not above 0", "",
                                "give it in the unit that the Roshko numbers are made with"});
  }
  return divided(strouhalOverRoshko, state.expansion.roshkoFactor(state.temperatureF) / viscosity,
                 state.expansion.strouhalFactor(state.temperatureF));
}

}  // namespace pelmora::tables
