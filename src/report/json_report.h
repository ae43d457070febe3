// A report as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// One object with "schema": "pelmora-report/1"; docs/report.md lists its members. Members may be
// added under the same version; one that changes or goes makes it version 2.
[[nodiscard]] std::string jsonReport(const Report& report);

}  // namespace pelmora::report
