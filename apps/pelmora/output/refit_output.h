// What a refit tells, for people and for programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/refit.h>

#include <string>

namespace pelmora::cli {

struct RefitSummary {
  std::string database;
  calibration::RefitOptions options;
  calibration::RefitOutcome outcome;
  double seconds = 0;
};

[[nodiscard]] std::string refitText(const RefitSummary& summary);
[[nodiscard]] std::string refitJson(const RefitSummary& summary);

}  // namespace pelmora::cli
