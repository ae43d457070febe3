// Exclusions of a series: reading them, and what happens to them when its points are replaced.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"
#include "calibration/steps/whole_part.h"

#include <pelmora/calibration/import.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

// Fills `excluded` and `excludedBefore`. Needs id and raw.
void readExclusions(Session& session, StoredSeries& series);

// The number of a point by its place among those of the part that are left.
//
// excluded: by part and number.
[[nodiscard]] std::size_t numberInWholePart(std::span<const ExcludedPoint> excluded, int part,
                                            std::size_t index);

[[nodiscard]] DroppedExclusion droppedExclusion(const std::string& series, int part,
                                                const ExcludedRow& row, const std::string& why);

// After points were stored in place of `before`: its exclusions last if they are the same points,
// and end otherwise. Fills `excluded` and `dropped`.
void keepExclusions(Session& session, const std::string& series, const steps::WholePart& before,
                    StoredPoints& stored);

// The exclusions of the series that an import derives, as they are before it.
class ExclusionsOfRuns {
 public:
  ExclusionsOfRuns(Session& session, const Meter& meter);
  // Once the series are derived: leaves out again what came again, from the same job with the same
  // number and values, and drops the other exclusions. Fills `excludedAgain` and `dropped`.
  void applyAgain(Imported& imported) const;

 private:
  struct OfSeries {
    std::int32_t id = 0;
    std::vector<std::pair<int, ExcludedRow>> rows;  // part and row
  };
  void applyAgain(const OfSeries& before, DerivedSeries& series, Imported& imported) const;

  Session& session_;
  std::vector<OfSeries> series_;
};

}  // namespace pelmora::calibration
