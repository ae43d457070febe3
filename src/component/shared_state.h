// What all objects of one apartment share.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <array>

namespace pelmora {

struct SharedState {
  DatabaseLocation location;
  // Element 0 is the shared fit record: raw parts, merged and fitted points, series, summary of the
  // last fit.
  std::array<SeriesInfo, 1> lastResults;
  // The series that the running fit found, and the one that was fitted or read last.
  MeterInfo foundSeries;
  MeterInfo lastFittedSeries;

  [[nodiscard]] SeriesInfo& fitRecord() { return lastResults.front(); }
  [[nodiscard]] const SeriesInfo& fitRecord() const { return lastResults.front(); }
};

}  // namespace pelmora
