// What is recorded of the thermal expansion of a meter.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>

#include <optional>

namespace pelmora::cli {

// Linear expansion of the meter's body per K, as recorded with the calibration; absent if it is
// not.
[[nodiscard]] std::optional<double> recordedExpansion(const calibration::Database& lab,
                                                      const calibration::Meter& meter);

}  // namespace pelmora::cli
