// A finding of the doctor, for people and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/examination.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace pelmora::cli {

// One word. JSON shows it as well, so it never changes.
[[nodiscard]] std::string severityText(calibration::Severity severity);
// Several lines: severity and check, what was found, and the remedy.
[[nodiscard]] std::string findingLines(const calibration::Finding& finding);
[[nodiscard]] nlohmann::json findingJson(const calibration::Finding& finding);

}  // namespace pelmora::cli
