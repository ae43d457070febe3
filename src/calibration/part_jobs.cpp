// SPDX-License-Identifier: MIT
#include "calibration/part_jobs.h"

#include "base/text_case.h"
#include "calibration/steps/derivation.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <pelmora/curve_database.h>

#include <algorithm>

namespace pelmora::calibration {

bool isDerivedName(const std::string& series) {
  return std::ranges::any_of(steps::derivedSeriesNames,
                             [&](const char* name) { return equalNames(name, series); });
}

RunJobs::RunJobs(Session& session, const Meter& meter) {
  for (const CalSetupInfo& setup : calSetups(session.curves(), meter.id)) {
    Run run{setup.Fluid, {}, {}};
    const auto rows =
        readRows(session.connection(), "Select JobRecordID from CalDataPoint where CalSetupID=" +
                                           std::to_string(setup.ID));
    for (; !rows->atEnd(); rows->moveNext()) run.jobs.push_back(toText(rows->value(0)));
    if (setup.JobRecordIDs.size() > 1) run.lastJob = setup.JobRecordIDs[1];
    runs_.push_back(std::move(run));
  }
}

PartJobs RunJobs::of(const std::string& series, int part, std::size_t points) const {
  const auto index = static_cast<std::size_t>(part - 1);
  if (index >= runs_.size() || !isDerivedName(series)) return {};
  const Run& run = runs_[index];
  if (run.jobs.size() == points) return {run.fluid, run.jobs};
  const auto ofLast = static_cast<std::size_t>(std::ranges::count(run.jobs, run.lastJob));
  if (!run.lastJob.empty() && ofLast == points)
    return {run.fluid, std::vector<std::string>(points, run.lastJob)};
  return {};
}

}  // namespace pelmora::calibration
