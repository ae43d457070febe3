// Importing runs of a stand into a meter's calibration.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/command_change.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/run_list.h"
#include "apps/pelmora/trouble.h"

#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

struct ImportRequest {
  ImportOptions options;
  std::vector<ListedRun> runs;
};

// Errors: Trouble usage.
[[nodiscard]] ImportRequest importRequest(const ImportOptions& options);

struct ImportOutcome {
  calibration::Imported imported;
  bool isNewCalibration = false;   // the meter was unknown, or --new-calibration was given
  std::vector<std::string> notes;  // what was not derived or replaced, and why
  std::optional<Trouble> trouble;  // second jobs that were left out; the rest is imported
};

// An unknown meter is registered; runs in a fluid that the meter already has replace that run.
// `change` keeps what the import replaces. Nothing is final before change.finish().
//
// Errors: Trouble and Failure; nothing is changed then.
[[nodiscard]] ImportOutcome importRuns(CommandChange& change, const ImportRequest& request);

}  // namespace pelmora::cli
