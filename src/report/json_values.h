// Values of the component as JSON: every command that writes JSON names them alike.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/points.h>
#include <pelmora/calibration/sign_off.h>
#include <pelmora/calibration/values.h>
#include <pelmora/fit_outcome.h>
#include <pelmora/types.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::report {

[[nodiscard]] nlohmann::json pointsJson(const PointArray& points);
[[nodiscard]] nlohmann::json meterJson(const calibration::Meter& meter);
[[nodiscard]] nlohmann::json runsJson(const std::vector<calibration::Run>& runs);
[[nodiscard]] nlohmann::json equationJson(const EquationOutcome& equation);
[[nodiscard]] nlohmann::json rawPointJson(const calibration::RawPoint& point);
[[nodiscard]] nlohmann::json warningJson(const CurveWarning& warning);
// isValid: the series is as it was signed.
[[nodiscard]] nlohmann::json signatureJson(const calibration::SignOff& entry, bool isValid);

// Indented, ending in a line end; numbers in their shortest exact form, non-finite ones null.
[[nodiscard]] std::string jsonText(const nlohmann::json& value);

}  // namespace pelmora::report
