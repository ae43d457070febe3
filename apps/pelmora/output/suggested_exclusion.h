// Commands that exclude suspect points.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::cli {

struct SuspectPoint {
  int part = 0;
  std::size_t number = 0;
  double sigmas = 0;  // off the other points
};

// The series as it was named; calibration: negative for the latest.
struct NamedSeries {
  std::string database, meter;
  int calibration = -1;
  std::string series;
};

// As many as the warnings of a fit name. More points than that probably have a common cause, and a
// command that named them all would be too long to read.
inline constexpr std::size_t mostSuggestedPoints = 20;

// One command for each raw part, none for more than mostSuggestedPoints. Its reason is stored with
// each point, so it holds for all.
[[nodiscard]] std::vector<std::string> exclusionCommands(const NamedSeries& series,
                                                         const std::vector<SuspectPoint>& points);

// What to do about more points than that: a sentence without its full stop.
[[nodiscard]] std::string manyPointsAdvice();

}  // namespace pelmora::cli
