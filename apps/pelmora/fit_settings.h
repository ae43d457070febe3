// Fitting a stored series again as its curve was fitted.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/series_fit.h"

#include <pelmora/curve_settings.h>

#include <cstdint>
#include <optional>
#include <string>

namespace pelmora::cli {

// Settings for curves that were stored without theirs. Absent: what the stored report and curve
// tell, else the defaults of a fit.
struct UnkeptSettings {
  std::optional<double> band;
  std::optional<std::int16_t> points;
  std::string equations;  // file or folder
};

struct StoredSettings {
  CurveSettings settings;
  bool areKept = false;  // else they are those of `unkept`, or taken from what is stored
};

[[nodiscard]] StoredSettings settingsOfStored(CurveSession& session, const SeriesInfo& stored,
                                              const UnkeptSettings& unkept);

// Fits the series with these settings and stores nothing; a range beyond the raw points is taken as
// it is, as a stored curve's may be. Errors: Trouble as of trySeries.
[[nodiscard]] SeriesFit fitWith(CurveSession& session, const MeterInfo& meter,
                                const SeriesInfo& stored, const CurveSettings& settings);

}  // namespace pelmora::cli
