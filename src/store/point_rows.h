// Rows of a record set as points, and points as rows.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <pelmora/types.h>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace pelmora {

// Most points that 16-bit indices reach.
inline constexpr std::int32_t mostPoints = 32767;

// All rows' fields "roshko" and "strouhal" in the order of the rows; no bounds for no rows. Leaves
// the record set behind its last row.
//
// Errors: Error 6 for more than mostPoints rows, 94 for a null, 13 for text that is not a number.
[[nodiscard]] PointArray pointsFromRows(Recordset& rows);

// The same for one who reads the rows anyway, and passes each of them on.
class PointRows {
 public:
  // Of the same record set as the rows before. Errors: as for pointsFromRows.
  void take(const Recordset& rows);
  [[nodiscard]] PointArray points() { return std::move(points_); }

 private:
  std::size_t row_ = 0, roshkoField_ = 0, strouhalField_ = 0;
  PointArray points_;
};

// At most 40 rows from the current one on, in single precision: Roshko first, or Strouhal first.
// Rows past the 40th are left unread.
//
// Errors: Error 6 for a value beyond single precision, 94 for a null, 13 for text that is no
// number.
[[nodiscard]] FixedCurve40 curve40FromRows(Recordset& rows);
[[nodiscard]] FixedCurve40 curve40FromRowsSwapped(Recordset& rows);

// Adds one row per point to a record set with the fields seriesID, Roshko and Strouhal and sends
// them in one batch update.
//
// Errors: Error 9 for an array that has bounds but not two columns, 6 for more points than 16-bit
//         indices reach; nothing is then stored.
void writePoints(Recordset& rows, std::int32_t SeriesID, const PointArray& points);

}  // namespace pelmora
