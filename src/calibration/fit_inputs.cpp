// SPDX-License-Identifier: MIT
#include "calibration/fit_inputs.h"

#include <algorithm>

namespace pelmora::calibration {

bool isOutsideFitRange(const FitSettings& settings, double roshko) {
  return (settings.fitMin && roshko < *settings.fitMin) ||
         (settings.fitMax && roshko > *settings.fitMax);
}

steps::CatalogueSettings catalogueSettings(const Fit& fit) {
  return {static_cast<float>(fit.settings.band),
          fit.settings.points,
          fit.meter.serial,
          fit.series,
          fit.settings.ratio,
          fit.settings.ignoreResiduals};
}

std::vector<steps::Equation> catalogueOf(std::span<const ModelDefinition> tried) {
  std::vector<steps::Equation> catalogue;
  for (const ModelDefinition& equation : tried)
    catalogue.push_back({equation.Name, equation.Expression});
  std::ranges::reverse(catalogue);
  return catalogue;
}

}  // namespace pelmora::calibration
