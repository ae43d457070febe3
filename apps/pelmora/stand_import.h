// Importing runs of a stand into a meter's calibration: checks first, then one import.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/stand_runs.h"
#include "apps/pelmora/stored_change.h"
#include "apps/pelmora/trouble.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

struct ImportRequest {
  std::string meter, stand;
  std::vector<StandRun> runs;
  std::int16_t reCalID = -1, standID = -1, positionID = -1;
  bool newCalibration = false;
};

// Errors: Trouble usage, as of standRuns.
[[nodiscard]] ImportRequest importRequest(const ImportOptions& options);

struct DerivedSeries {
  std::string name;
  std::int32_t seriesID = 0;
  std::array<std::size_t, 4> points{};  // of raw parts 1 to 4
  std::optional<Trouble> trouble;       // the series cannot be read; `points` says nothing then
};

struct ImportOutcome {
  MeterInfo meter;
  bool meterIsNew = false;
  std::vector<CalSetupInfo> setups;
  std::vector<DerivedSeries> series;
  std::vector<std::string> notes;  // what was left out, and why
  std::optional<Trouble> trouble;  // an import that did not end well; what there is stands above

  // Badly imported or with series that cannot be read; nothing where all is well.
  [[nodiscard]] std::optional<Trouble> anyTrouble() const;
};

// An unknown meter is registered; runs of a fluid that the meter has already replace that run.
// `change` keeps what the import replaces. Nothing is final before change.finish().
//
// Errors: Trouble; nothing is changed then.
[[nodiscard]] ImportOutcome importRuns(StoredChange& change, const ImportRequest& request);

}  // namespace pelmora::cli
