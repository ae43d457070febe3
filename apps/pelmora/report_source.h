// What a report is made of, read from an open curve database.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "report/build_report.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

// Settings for curves that were stored without theirs. Absent: what the stored report and curve tell, else
// the defaults of a fit.
struct UnkeptSettings {
  std::optional<double> band;
  std::optional<std::int16_t> points;
  std::string equations;  // file or folder
};

// Reads the named series, all where none is named, and fits each of them in memory; stores nothing.
//
// Errors: Trouble unknownName.
[[nodiscard]] report::ReportInput reportInput(CurveSession& session, const MeterInfo& meter,
                                              const std::vector<std::string>& series,
                                              const UnkeptSettings& unkept);

}  // namespace pelmora::cli
