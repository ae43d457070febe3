// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fleet_output.h"

#include "apps/pelmora/output/refit_output.h"
#include "apps/pelmora/output/text_table.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace pelmora::cli {
namespace {

using calibration::FleetState;
using calibration::FleetStatus;
using calibration::RefitResult;
using calibration::RefitResultKind;

const char* stateWord(FleetState state) {
  switch (state) {
    case FleetState::running: return "running";
    case FleetState::paused: return "paused";
    case FleetState::cancelled: return "cancelled";
    case FleetState::done: break;
  }
  return "done";
}

// "5:07" or "27:05:07".
std::string timeText(double seconds) {
  const auto whole = static_cast<long long>(std::llround(std::min(seconds, 1e12)));
  const auto twoDigits = [](long long number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
  };
  const long long hours = whole / 3600, minutes = whole / 60 % 60;
  const std::string rest = ":" + twoDigits(whole % 60);
  if (hours == 0) return std::to_string(minutes) + rest;
  return std::to_string(hours) + ":" + twoDigits(minutes) + rest;
}

std::string progressText(const FleetStatus& job) {
  const double share =
      job.series == 0 ? 0 : 100 * static_cast<double>(job.done) / static_cast<double>(job.series);
  std::string text = "  " + std::to_string(job.done) + " of " +
                     counted(job.series, "series", "series") + " (" + significantText(share, 3) +
                     " %), " + std::to_string(job.doneRanges) + " of " +
                     counted(job.ranges, "range") + " done";
  if (job.leasedRanges > 0) text += ", " + std::to_string(job.leasedRanges) + " at work";
  if (job.abandonedRanges > 0)
    text += ", " + std::to_string(job.abandonedRanges) + " left behind by workers that ended";
  text += "\n";
  if (!job.rate) return text;
  text += "  " + significantText(*job.rate, 3) + " series/s";
  if (job.secondsLeft) text += ", " + timeText(*job.secondsLeft) + " left";
  return text + "\n";
}

}  // namespace

std::string jobText(const FleetStatus& job) {
  std::string text = "Job " + std::to_string(job.job) + " is " + stateWord(job.state) +
                     ", started at " + job.startedAt;
  if (!job.userName.empty()) text += " by " + job.userName;
  if (!job.endedAt.empty()) text += ", ended at " + job.endedAt;
  return wrapped(text + ":", 0) + progressText(job);
}

std::string jobText(const FleetStatus& job, const std::vector<RefitResult>& results) {
  std::string text = jobText(job) + "  " + counted(job.stored, "curve") + " replaced or added, " +
                     std::to_string(job.changed) + " moved by more than " +
                     significantText(job.changedPercent, 4) + " %, " + std::to_string(job.failed) +
                     " without a new curve\n";
  RefitResults changed, missing;
  for (const RefitResult& result : results)
    (result.kind == RefitResultKind::changed ? changed : missing).push_back(&result);
  return text + changedTable(changed) + missingTable(missing);
}

nlohmann::json jobJson(const FleetStatus& job) {
  nlohmann::json value{{"job", job.job},
                       {"state", stateWord(job.state)},
                       {"startedAt", job.startedAt},
                       {"user", job.userName},
                       {"version", job.version},
                       {"changedPercent", job.changedPercent},
                       {"ranges",
                        {{"all", job.ranges},
                         {"done", job.doneRanges},
                         {"atWork", job.leasedRanges},
                         {"leftBehind", job.abandonedRanges}}},
                       {"series",
                        {{"all", job.series},
                         {"done", job.done},
                         {"stored", job.stored},
                         {"changed", job.changed},
                         {"failed", job.failed}}}};
  if (!job.endedAt.empty()) value["endedAt"] = job.endedAt;
  if (job.rate) value["seriesPerSecond"] = *job.rate;
  if (job.secondsLeft) value["secondsLeft"] = *job.secondsLeft;
  return value;
}

}  // namespace pelmora::cli
