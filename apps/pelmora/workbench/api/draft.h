// A series as it would be with other points left out, before anything is stored.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>

#include <cstddef>
#include <compare>
#include <string>
#include <vector>

namespace pelmora::cli::workbench {

struct PointPlace {
  int part = 0;            // 1 to 4
  std::size_t number = 0;  // in the whole part, from 1
  auto operator<=>(const PointPlace&) const = default;
};

struct DraftExclusion {
  PointPlace place;
  std::string reason;
};

// The series with exactly these points left out.
//
// Errors: BadData for a point that the series does not have, or that is listed twice.
[[nodiscard]] calibration::StoredSeries withExclusions(const calibration::StoredSeries& stored,
                                                       const std::vector<DraftExclusion>& wanted);

// Leaves out and takes back what differs from the stored series `now`. A point that is left out
// already keeps its reason.
//
// alsoDerived: the same in every series that was derived from the same readings.
// Errors: as for Database::exclude() and include().
void storeExclusions(calibration::Database& lab, const calibration::StoredSeries& now,
                     const std::vector<DraftExclusion>& wanted, bool alsoDerived);

}  // namespace pelmora::cli::workbench
