// A raw part together with the points that were left out of it, each at its place.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/excluded_points.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration::steps {

struct WholePoint {
  Value Roshko, Strouhal;
  std::optional<ExcludedRow> Exclusion;  // absent: the raw table has the point
};

struct WholePart {
  int Part = 1;                    // 1 to 4
  std::vector<WholePoint> Points;  // point `number` is at number - 1
  // Exclusions from other points: a program that does not know them has replaced the part since.
  std::vector<ExcludedRow> Adrift;
};

[[nodiscard]] WholePart readWholePart(Connection& curves, int part, std::int32_t SeriesID);

// The rows of the raw table alone.
[[nodiscard]] WholePart readRawPart(Connection& curves, int part, std::int32_t SeriesID);

// Replaces the rows of the raw table by the points without an exclusion, and the excluded rows by
// the others. Exclusions that are adrift are dropped.
void writeWholePart(Connection& curves, std::int32_t SeriesID, const WholePart& part);

// Whether the part has exactly this point at the exclusion's place.
[[nodiscard]] bool holds(const WholePart& part, const ExcludedRow& exclusion);

// Whether the excluded points were left out of a part of which exactly these points remained.
[[nodiscard]] bool belongTo(const std::vector<ExcludedRow>& excluded, const PointArray& rest);

}  // namespace pelmora::calibration::steps
