// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/bench.h"

#include "base/sha256.h"

namespace pelmora::cli::workbench {

using calibration::latestCalibration;
using calibration::StoredSeries;

calibration::Meter meterOf(Bench& bench, const Arguments& arguments) {
  constexpr std::int64_t highest = 32767;
  const auto number = arguments.findInteger("calibration", 0, highest);
  return bench.lab().meter(arguments.text("meter"),
                           number ? static_cast<int>(*number) : latestCalibration);
}

SeriesPlace placeOf(Bench& bench, const Arguments& arguments) {
  return {meterOf(bench, arguments), arguments.text("series")};
}

std::string revisionOf(const calibration::Database& lab, const StoredSeries& series) {
  constexpr std::size_t enough = 16;
  std::string text =
      signedContents(series) + "\n" + std::to_string(series.id) + "\n" + series.report + "\n";
  if (series.settings) text += series.settings->FittedAt;
  const auto signatures = lab.signOffs(series);
  if (!signatures.empty()) text += "\n" + std::to_string(signatures.front().id);
  return sha256Hex(text).substr(0, enough);
}

void requireRevision(const calibration::Database& lab, const StoredSeries& now,
                     const Arguments& arguments) {
  if (arguments.text("revision") == revisionOf(lab, now)) return;
  throw calibration::Changed(
      {"somebody has changed series '" + now.name + "' since you opened it", lab.location(),
       "nothing was stored; load the series again and look at what has changed"});
}

}  // namespace pelmora::cli::workbench
