// What a fit passes on to the fit of a catalogue.
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

// The equations as a catalogue. `tried` is in the order of trial; runs walk a catalogue from its
// last entry to its first.
[[nodiscard]] std::vector<steps::Equation> catalogueOf(std::span<const ModelDefinition> tried);

}  // namespace pelmora::calibration
