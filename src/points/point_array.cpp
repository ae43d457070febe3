// SPDX-License-Identifier: MIT
#include <pelmora/types.h>

#include <limits>

namespace pelmora {

std::int16_t pointUpperBound(const PointArray& points) {
  constexpr std::size_t highest = std::numeric_limits<std::int16_t>::max();
  if (points.empty() || points.size() - 1 > highest) return -1;
  return static_cast<std::int16_t>(points.size() - 1);
}

}  // namespace pelmora
