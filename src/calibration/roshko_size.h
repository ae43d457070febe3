// Roshko numbers that are far from those of the same run or of the same meter's other runs.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/import.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

class Session;

// The typical Roshko number of a raw part; 0 for a part without positive ones.
[[nodiscard]] double typicalRoshko(const PointArray& points);

// How many times larger `roshko` is than the nearest of `others`; 1 where one is within a factor of
// 10,000, or there is none, or the factor is beyond what units explain (1e9). Fluids of
// calibrations differ by less than 1,000 in viscosity, units of viscosity by 1,000,000.
[[nodiscard]] double farFactor(double roshko, std::span<const double> others);

// The typical Roshko numbers of all raw parts of the series with this name, or of all series if it
// is empty, in all calibrations of the meter, except one part.
[[nodiscard]] std::vector<double> otherRoshkos(Session& session, const Meter& meter,
                                               const std::string& series, std::int32_t exceptSeries,
                                               int exceptPart);

// The points outside the largest group, where gaps of a factor of 1,000 separate groups. None if
// two groups are the largest.
[[nodiscard]] std::vector<FarPoint> farPoints(const PointArray& points);

// One sentence for each imported run that is far from all others, and for each of its points that
// is far from the run: job, column and line.
[[nodiscard]] std::vector<std::string> doubtsAbout(Session& session, const Imported& imported,
                                                   const Stand& stand,
                                                   const std::vector<StandRun>& runs);

}  // namespace pelmora::calibration
