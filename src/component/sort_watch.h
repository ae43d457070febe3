// How hosts know a sort.
// SPDX-License-Identifier: MIT
#pragma once

#include "points/point_sort.h"

namespace pelmora {

// Processes the messages of the thread's host and shows errors through the message form.
[[nodiscard]] SortWatch hostsSortWatch();

}  // namespace pelmora
