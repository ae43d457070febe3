// Points of a series in the point tables.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/observer.h"
#include "store/connection.h"
#include "store/name_text.h"

#include <pelmora/types.h>

#include <cstdint>
#include <memory>
#include <string>

namespace pelmora::calibration::steps {

inline constexpr std::int16_t rawPartCount = 4;  // tables raw1 to raw4

// All points of a series in one point table, in the order in which the database returns them: as an
// open record set, and as an array.
[[nodiscard]] std::unique_ptr<Recordset> openPoints(Connection& connection,
                                                    const std::string& table,
                                                    std::int32_t SeriesID);
[[nodiscard]] PointArray readPoints(Connection& connection, const std::string& table,
                                    std::int32_t SeriesID);

// The row of a series, added where it is missing, after a text. Returns its id.
[[nodiscard]] std::int32_t seriesRow(Connection& connection, const NameText& SeriesName,
                                     std::int32_t MeterID, const Observer& observer = {});

// A series in one raw table; the name stands in texts.
struct RawTarget {
  std::string table;
  std::int32_t SeriesID;
  std::string SeriesName;
};
void removeRawPoints(Connection& connection, const RawTarget& target,
                     const Observer& observer = {});
// Adds the points in one batch. Errors: those of writePoints; nothing is then stored.
void insertRawPoints(Connection& connection, const RawTarget& target, const PointArray& points,
                     const Observer& observer = {});

}  // namespace pelmora::calibration::steps
