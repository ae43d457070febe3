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

// A calibration and the names of its series, in alphabetical order.
struct MeterOverview {
  Meter meter;
  std::vector<std::string> series;

  bool operator==(const MeterOverview&) const = default;
};

// bySerial: by serial number, the latest calibration first. none: whatever the database reads
// fastest.
enum class OverviewOrder { bySerial, none };

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

// "none", "current", "outdated", "unknown": the names in JSON, which never change.
[[nodiscard]] PELMORA_API const char* curveAgeKey(CurveAge age);

// Why a point was left out of its series, by whom and when.
struct Exclusion {
  std::string reason, userName;
  std::string excludedAt;  // UTC, ISO 8601
  bool operator==(const Exclusion&) const = default;
};

// A raw point that was left out: the raw tables do not have it, our own tables do.
struct ExcludedPoint {
  int part = 0;                     // 1 to 4
  std::size_t number = 0;           // place in the whole part, from 1, excluded points counted
  double roshko = 0, strouhal = 0;  // not a number if the raw table had none
  std::string job;                  // of the stand; empty for points that came from elsewhere
  Exclusion exclusion;
};

// Everything stored for one series.
struct StoredSeries {
  Meter meter;
  std::string name;
  std::int32_t id = 0;
  // Raw parts, in the order in which they are stored, without the points that were left out.
  std::array<PointArray, 4> raw;
  std::vector<ExcludedPoint> excluded;  // by part and number
  // Exclusions of parts that another program has replaced since: they are not in force.
  std::vector<ExcludedPoint> excludedBefore;
  PointArray merged, curve;  // no bounds if none are stored
  std::string report;
  // The chosen equation as named in the report; empty if it names none or several.
  std::string equation;
  std::uint64_t basis = 0;  // fingerprint of the raw points and their series, see Database::store()
  std::optional<CurveSettings> settings;  // of the curve's fit, if they were kept

  CurveAge age = CurveAge::none;

  [[nodiscard]] PELMORA_API std::size_t rawPoints() const;
  // The number, in the whole part, of a point of raw[part - 1].
  [[nodiscard]] PELMORA_API std::size_t numberOf(int part, std::size_t index) const;
  // The stored curve. Errors: NoCurve.
  [[nodiscard]] PELMORA_API const PointArray& storedCurve() const;
  // One clause if the curve is outdated, otherwise empty.
  [[nodiscard]] PELMORA_API std::string ageWarning() const;
};

// The history entry of what an operation replaced; see history.h. 0 if there was nothing before.
using HistoryEntryId = std::int64_t;

}  // namespace pelmora::calibration
