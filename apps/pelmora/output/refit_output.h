// What a refit tells, for people and for programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/refit.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

struct RefitSummary {
  std::string database;
  calibration::RefitOptions options;
  calibration::RefitOutcome outcome;
  double seconds = 0;
};

using RefitResults = std::vector<const calibration::RefitResult*>;
// The curves that moved, the largest shift first, and the series without a new curve; empty for
// none. A long list is cut.
[[nodiscard]] std::string changedTable(RefitResults changed);
[[nodiscard]] std::string missingTable(const RefitResults& missing);
[[nodiscard]] nlohmann::json resultJson(const calibration::RefitResult& result, bool isStored);

[[nodiscard]] std::string refitText(const RefitSummary& summary);
[[nodiscard]] std::string refitJson(const RefitSummary& summary);

}  // namespace pelmora::cli
