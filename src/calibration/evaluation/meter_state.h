// The state of a meter as hosts give it, converted for `flow/` and `tables/`.
// SPDX-License-Identifier: MIT
#pragma once

#include "tables/table_forms.h"

#include <optional>

namespace pelmora::calibration {

// expansionPerKelvin: the linear expansion of the body; absent: stainless steel.
[[nodiscard]] inline tables::MeterState meterState(double celsius,
                                                   std::optional<double> expansionPerKelvin) {
  constexpr double fahrenheitPerKelvin = 1.8;
  tables::MeterState state{fahrenheitPerKelvin * celsius + 32, {}};
  if (expansionPerKelvin) state.expansion.linear = *expansionPerKelvin / fahrenheitPerKelvin;
  return state;
}

}  // namespace pelmora::calibration
