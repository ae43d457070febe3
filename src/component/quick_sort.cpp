// The hosts' sort: their messages are processed while it runs, its errors shown to the operator.
// SPDX-License-Identifier: MIT
#include "component/sort_watch.h"

#include <pelmora/types.h>

namespace pelmora {

void quickSortPoints(PointArray& points, std::int16_t sortColumn, std::int16_t lastColumn,
                     std::int16_t low, std::int16_t high, bool ascending) {
  sortPoints(points, sortColumn, lastColumn, low, high, ascending, hostsSortWatch());
}

}  // namespace pelmora
