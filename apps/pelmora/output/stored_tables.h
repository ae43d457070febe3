// What a curve database holds, as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"

#include <string>

namespace pelmora::cli {

// Every calibration of every meter.
[[nodiscard]] std::string metersText(CurveSession& session);
[[nodiscard]] std::string metersJson(CurveSession& session);

// The runs and the series of one calibration.
[[nodiscard]] std::string meterContentsText(CurveSession& session, const MeterInfo& meter);
[[nodiscard]] std::string meterContentsJson(CurveSession& session, const MeterInfo& meter);

// One series: counts, the fitted curve and the report as it is stored. `stored` has one series.
[[nodiscard]] std::string seriesContentsText(const MeterInfo& stored);
[[nodiscard]] std::string seriesContentsJson(const MeterInfo& stored);

}  // namespace pelmora::cli
