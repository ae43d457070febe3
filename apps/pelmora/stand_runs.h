// The runs of a stand that are to be imported, looked over before anything is changed.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/patience.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::cli {

// One run: its job, a second job where there is one, its fluid and who ran it.
struct StandRun {
  std::string jobA, jobB, fluid, operatorName;
};

// What the readings of the runs allow.
struct RunCheck {
  bool hasRotorB = true;                 // of all runs
  std::string withoutRotorB;             // the first job that lacks it
  std::vector<std::size_t> pointCounts;  // of each run's first job
};

// Runs from the repeated options. A single operator runs all of them.
//
// Errors: Trouble usage where the lists do not fit together, a fluid appears twice (its second run
//         would replace the first) or a job is no whole number.
[[nodiscard]] std::vector<StandRun> standRuns(const std::vector<std::string>& jobs,
                                              const std::vector<std::string>& fluids,
                                              const std::vector<std::string>& operators);

// Opens a stand's database or CSV export. Errors: Trouble database, badInput for what a CSV holds.
[[nodiscard]] ConnectionPtr openStand(const std::string& path, const Patience& patience);

// Errors: Trouble unknownName for a job that the stand has not; badInput for a reading that is
//         missing, is a text or divides by zero, with job, point and column.
[[nodiscard]] RunCheck checkRuns(const ConnectionPtr& stand, const std::string& standPath,
                                 const std::vector<StandRun>& runs);

}  // namespace pelmora::cli
