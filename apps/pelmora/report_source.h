// What a report is made of, read from an open curve database.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/fit_settings.h"
#include "report/build_report.h"

#include <string>
#include <vector>

namespace pelmora::cli {

// Reads the named series, all where none is named, and fits each of them in memory; stores nothing.
//
// Errors: Trouble unknownName.
[[nodiscard]] report::ReportInput reportInput(CurveSession& session, const MeterInfo& meter,
                                              const std::vector<std::string>& series,
                                              const UnkeptSettings& unkept);

}  // namespace pelmora::cli
