// Which series are whole, told from what was brought over and what is lost.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/salvage.h"

namespace pelmora::sqlite {
class DatabaseHandle;
}

namespace pelmora::sqlite::salvage {

// Fills Meters, Series and OrphanedRows, and marks series that are not known to be whole in a table
// of our own, so that nobody takes them for whole later. Needs temp.salvage_lost (part, seriesID,
// rows) in `output` and the counts of all tables in `report`.
void describeSeries(const DatabaseHandle& output, SalvageReport& report);

}  // namespace pelmora::sqlite::salvage
