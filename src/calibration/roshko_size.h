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

// How many times larger `roshko` is than the nearest of `others`. 1 if the nearest is within a
// factor of 10,000, if there are no others, and if the factor is larger than units can explain
// (1e9). The fluids of calibrations differ by less than a factor of 1,000 in viscosity, the units
// of viscosity by 1,000,000.
[[nodiscard]] double farFactor(double roshko, std::span<const double> others);

// The typical Roshko numbers of all raw parts except one, in all calibrations of the meter: those
// of the series with this name, or of all series if the name is empty.
[[nodiscard]] std::vector<double> otherRoshkos(Session& session, const Meter& meter,
                                               const std::string& series, std::int32_t exceptSeries,
                                               int exceptPart);

// The points outside the largest group, where gaps of a factor of 1,000 separate groups. Empty if
// two groups are equally large.
[[nodiscard]] std::vector<FarPoint> farPoints(const PointArray& points);

// One sentence for each imported run that is far from all other runs, and one for each point that
// is far from the rest of its run. They name the job, the column and the line.
[[nodiscard]] std::vector<std::string> doubtsAbout(Session& session, const Imported& imported,
                                                   const Stand& stand,
                                                   const std::vector<StandRun>& runs);

}  // namespace pelmora::calibration
