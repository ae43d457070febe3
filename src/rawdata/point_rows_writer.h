// Adding points to a point table.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <pelmora/types.h>

#include <cstdint>

namespace pelmora {

// Adds one row per point to a record set with the fields seriesID, Roshko and Strouhal and sends
// them in one batch update.
//
// Errors: Error 9 for an array that has bounds but not two columns, 6 for more points than 16-bit
// indices
//         reach; nothing is then stored.
void writePoints(Recordset& rows, std::int32_t SeriesID, const PointArray& points);

}  // namespace pelmora
