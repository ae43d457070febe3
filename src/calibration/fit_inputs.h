// What a fit hands on to the fit of a catalogue.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/catalogue_fit.h"

#include <pelmora/calibration/fit.h>

#include <span>
#include <vector>

namespace pelmora::calibration {

// Whether a merged point lies outside the range of the points to fit.
[[nodiscard]] bool isOutsideFitRange(const FitSettings& settings, double roshko);

[[nodiscard]] steps::CatalogueSettings catalogueSettings(const Fit& fit);

// Runs walk a catalogue from its last entry down: `tried` in the order of trial.
[[nodiscard]] std::vector<steps::Equation> catalogueOf(std::span<const ModelDefinition> tried);

}  // namespace pelmora::calibration
