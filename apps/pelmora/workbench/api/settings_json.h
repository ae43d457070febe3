// The settings of a fit as the workbench sends and receives them.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/workbench/api/arguments.h"

#include <pelmora/calibration/fit.h>

#include <nlohmann/json_fwd.hpp>

namespace pelmora::cli::workbench {

// The members have the names that the command line's JSON gives them.
[[nodiscard]] nlohmann::json settingsJson(const calibration::FitSettings& settings);

// What is absent stays as FitSettings has it. Errors: BadData.
[[nodiscard]] calibration::FitSettings settingsOf(const Arguments& given);

// With which a series is fitted unless somebody changes them: those of its curve or, without one,
// the usual ones.
[[nodiscard]] calibration::FitSettings settingsFor(const calibration::StoredSeries& series);

}  // namespace pelmora::cli::workbench
