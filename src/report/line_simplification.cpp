// SPDX-License-Identifier: MIT
#include "report/line_simplification.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::report {
namespace {

using Point = std::array<double, 2>;

double distanceToSegment(const Point& p, const Point& a, const Point& b) {
  const double dx = b[0] - a[0], dy = b[1] - a[1];
  const double length2 = dx * dx + dy * dy;
  const double share =
      length2 > 0 ? std::clamp(((p[0] - a[0]) * dx + (p[1] - a[1]) * dy) / length2, 0.0, 1.0) : 0;
  return std::hypot(p[0] - a[0] - share * dx, p[1] - a[1] - share * dy);
}

}  // namespace

std::vector<Point> simplified(std::span<const Point> line, double tolerance) {
  if (line.size() < 3) return {line.begin(), line.end()};
  std::vector<bool> isKept(line.size(), false);
  isKept.front() = isKept.back() = true;
  std::vector<std::pair<std::size_t, std::size_t>> pieces{{0, line.size() - 1}};
  while (!pieces.empty()) {
    const auto [first, last] = pieces.back();
    pieces.pop_back();
    std::size_t farthest = first;
    double largest = tolerance;
    for (std::size_t i = first + 1; i < last; ++i) {
      const double distance = distanceToSegment(line[i], line[first], line[last]);
      if (distance > largest) farthest = i, largest = distance;
    }
    if (farthest == first) continue;
    isKept[farthest] = true;
    pieces.insert(pieces.end(), {{first, farthest}, {farthest, last}});
  }
  std::vector<Point> kept;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (isKept[i]) kept.push_back(line[i]);
  }
  return kept;
}

}  // namespace pelmora::report
