// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/bench.h"

#include "base/sha256.h"

#include <array>
#include <bit>

namespace pelmora::cli::workbench {

using calibration::latestCalibration;
using calibration::StoredSeries;

namespace {

// As bytes: the digits of tens of thousands of points take longer than reading them.
void addBytes(std::string& text, const PointArray& points) {
  text += std::to_string(points.size()) + "\n";
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto bytes =
        std::bit_cast<std::array<char, 2 * sizeof(double)>>(std::array{points(i, 0), points(i, 1)});
    text.append(bytes.data(), bytes.size());
  }
}

}  // namespace

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
  StoredSeries others = series;  // everything but its points
  others.raw = {};
  others.merged = others.curve = PointArray();
  std::string text =
      signedContents(others) + "\n" + std::to_string(series.id) + "\n" + series.report + "\n";
  for (const PointArray& part : series.raw) addBytes(text, part);
  addBytes(text, series.merged);
  addBytes(text, series.curve);
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
