// SPDX-License-Identifier: MIT
#include "apps/pelmora/recorded_expansion.h"

#include <pelmora/calibration/conversion.h>
#include <pelmora/calibration/details.h>

namespace pelmora::cli {

std::optional<double> recordedExpansion(const calibration::Database& lab,
                                        const calibration::Meter& meter) {
  const calibration::Details details = lab.details(meter);
  const auto recorded = details.find("expansion");
  if (recorded == details.end()) return std::nullopt;
  return calibration::measureIn(recorded->second, "1/K");
}

}  // namespace pelmora::cli
