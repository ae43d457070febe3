// The first page of a certificate: who, what, how, and the results in a few numbers.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

[[nodiscard]] std::string htmlFacts(const Report& report);
[[nodiscard]] std::string htmlResults(const Report& report);
// "Calibration certificate", or "Calibration report" without a number.
[[nodiscard]] std::string reportTitle(const Report& report);
// "Certificate 2026-17, Meter M1, calibration 2": stands on every printed page.
[[nodiscard]] std::string pageName(const Report& report);

}  // namespace pelmora::report
