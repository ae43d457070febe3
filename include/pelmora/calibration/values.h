// The terms of the service, as values: they do not change when the database changes.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/curve_settings.h>
#include <pelmora/export.h>
#include <pelmora/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

// The calibration of a meter with the highest number.
inline constexpr int latestCalibration = -1;

// A calibration of a meter.
struct Meter {
  std::string serial, adjusted;  // serial numbers
  int calibration = 0;           // 0, 1, ...: the recalibration number
  std::int32_t id = 0;           // of its row

  bool operator==(const Meter&) const = default;
};

// A stand's measurements in one fluid. A calibration has up to four runs, one raw part each.
struct Run {
  std::int32_t id = 0;
  int stand = 0, position = 0;
  std::string operatorName, fluid;
  std::string date;  // as stored
  std::vector<std::string> jobs;
  std::size_t points = 0;
};

// Whether a stored curve belongs to the raw points that are stored now.
enum class CurveAge {
  none = 0,  // no curve is stored
  current = 1,
  outdated = 2,  // the raw points have changed since it was fitted
  unknown = 3    // stored by a program that does not keep what it fitted
};

// Everything stored for one series.
struct StoredSeries {
  Meter meter;
  std::string name;
  std::int32_t id = 0;
  std::array<PointArray, 4> raw;  // raw parts, in the order in which they are stored
  PointArray merged, curve;       // no bounds if none are stored
  std::string report;
  // The chosen equation as named in the report; empty if it names none or several.
  std::string equation;
  std::uint64_t basis = 0;  // fingerprint of the raw points and their series, see Database::store()
  std::optional<CurveSettings> settings;  // of the curve's fit, if they were kept

  CurveAge age = CurveAge::none;

  [[nodiscard]] PELMORA_API std::size_t rawPoints() const;
  // One clause if the curve is outdated, otherwise empty.
  [[nodiscard]] PELMORA_API std::string ageWarning() const;
};

// The history entry of what an operation replaced; see history.h. 0 if there was nothing before.
using HistoryEntryId = std::int64_t;

}  // namespace pelmora::calibration
