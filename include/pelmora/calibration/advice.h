// What to do about a fit without a curve, or about a curve with warnings.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fit.h>
#include <pelmora/export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

enum class AdviceKind {
  checkPoint = 0,        // `points` contradict the others
  leaveOutEquation = 1,  // `equation` ended the run before others were tried
  beginAboveOne = 2,     // `equation` has a pole at Roshko 1
  measure = 3,           // at the Roshko numbers `measure`
  morePoints = 4,        // a table of `tablePoints` points
  widerBand = 5,         // `band` per cent
  trustedChoice = 6,     // fit by Choice::trusted
  moreData = 7           // there are too few points, or points that cannot be fitted
};

// "checkPoint", "leaveOutEquation" ...: the names in JSON, which never change.
[[nodiscard]] PELMORA_API const char* adviceKey(AdviceKind kind);

// One thing to do. The fields that its kind names are filled.
struct Advice {
  AdviceKind kind = AdviceKind::moreData;
  std::string text;  // a sentence without a full stop
  std::vector<JudgedPoint> points{};
  std::string equation{};
  std::vector<double> measure{};
  std::int32_t tablePoints = 0;
  std::optional<double> band{};
};

// The most important first; empty if nothing needs to be done. A wider band is never advised if
// single points are to blame, or if it would have to be more than three times as wide.
[[nodiscard]] PELMORA_API std::vector<Advice> adviceFor(const Fit& fit);

// Equations that failed for the same reason, best first, so that the reason is given once.
struct Rejected {
  std::vector<std::string> names;
  std::string why;  // of the first
};
[[nodiscard]] PELMORA_API std::vector<Rejected> rejectedTogether(const Fit& fit);

}  // namespace pelmora::calibration
