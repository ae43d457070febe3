// The runs of an import, as the command line lists them.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/stand.h>

#include <string>
#include <vector>

namespace pelmora::cli {

struct ListedRun {
  calibration::StandRun run;
  std::string secondJob;  // of "A:B"; empty if there is none
};

// Runs from the repeated options. A single operator runs all of them.
//
// Errors: Trouble usage if the lists do not fit together, a fluid appears twice (its second run
//         would replace the first), a name cannot be stored, or a job is not a whole number.
[[nodiscard]] std::vector<ListedRun> listedRuns(const std::vector<std::string>& jobs,
                                                const std::vector<std::string>& fluids,
                                                const std::vector<std::string>& operators);

}  // namespace pelmora::cli
