// The nouns of the service. Values: they stay as they are when the database changes.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/curve_settings.h>
#include <pelmora/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

// Of a meter's calibrations the one with the highest number.
inline constexpr int latestCalibration = -1;

// A calibration of a meter.
struct Meter {
  std::string serial, adjusted;  // serial numbers
  int calibration = 0;           // 0, 1, ...: the recalibration number
  std::int32_t id = 0;           // of its row

  bool operator==(const Meter&) const = default;
};

// What a stand has measured in one fluid: up to four for a calibration, one raw part each.
struct Run {
  std::int32_t id = 0;
  int stand = 0, position = 0;
  std::string operatorName, fluid;
  std::string date;  // as stored
  std::vector<std::string> jobs;
  std::size_t points = 0;
};

// Everything that is stored of one series.
struct StoredSeries {
  Meter meter;
  std::string name;
  std::int32_t id = 0;
  std::array<PointArray, 4> raw;  // raw parts, in the order that they are stored in
  PointArray merged, curve;       // no bounds where none are stored
  std::string report;
  // The chosen equation as the report names it; empty where it names none or several.
  std::string equation;
  std::uint64_t basis =
      0;  // fingerprint of the raw points and whose they are, see Database::store()
  std::optional<CurveSettings> settings;  // with which the curve was fitted, where they were kept

  [[nodiscard]] std::size_t rawPoints() const;
};

// Where an operation has left what it replaced; see history.h. 0 where there was nothing before.
using HistoryEntryId = std::int64_t;

}  // namespace pelmora::calibration
