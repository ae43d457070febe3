// The tables of the measured points and of the results that follow from them.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_tables.h"

namespace pelmora::report {

[[nodiscard]] ReportTable resultsTable(const Report& report);
// Repeatability and hysteresis of each fluid and nominal flow.
[[nodiscard]] ReportTable flowsTable(const Report& report);
// Every raw point with its state, excluded ones too.
[[nodiscard]] ReportTable pointsTable(const Report& report);
[[nodiscard]] ReportTable mergedTable(const Report& report);

}  // namespace pelmora::report
