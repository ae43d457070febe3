// SPDX-License-Identifier: MIT
#include "calibration/curve_age.h"

#include "base/word_mixer.h"
#include "calibration/session.h"
#include "points/point_fingerprint.h"

#include <algorithm>
#include <unordered_set>

namespace pelmora::calibration {
namespace {

std::uint64_t keyOf(const PointArray& points, std::size_t i) {
  WordMixer mixer;
  mixer.add(points(i, 0));
  mixer.add(points(i, 1));
  return mixer.state();
}

using Keys = std::unordered_set<std::uint64_t>;

Keys keysOf(const PointArray& points) {
  Keys keys;
  for (std::size_t i = 0; i < points.size(); ++i) keys.insert(keyOf(points, i));
  return keys;
}

// The merged points are copies of raw ones, to the last bit.
bool isOfOtherPoints(const StoredSeries& series) {
  const Keys merged = keysOf(series.merged);
  Keys raw;
  for (const PointArray& part : series.raw) {
    const Keys keys = keysOf(part);
    const bool isMerged = std::ranges::any_of(keys, [&](auto key) { return merged.contains(key); });
    // The merge leaves out a part of a single point.
    if (part.size() > 1 && !isMerged) return true;
    raw.insert(keys.begin(), keys.end());
  }
  return std::ranges::any_of(merged, [&](auto key) { return !raw.contains(key); });
}

}  // namespace

CurveAge ageOf(const StoredSeries& series) {
  if (series.curve.size() < 2) return CurveAge::none;
  if (series.settings && !series.settings->PointsFingerprint.empty() &&
      series.settings->CurveFingerprint == fingerprintOf({&series.curve, 1})) {
    return series.settings->PointsFingerprint == fingerprintOf(series.raw) ? CurveAge::current
                                                                           : CurveAge::outdated;
  }
  if (series.merged.empty()) return CurveAge::unknown;
  return isOfOtherPoints(series) ? CurveAge::outdated : CurveAge::unknown;
}

std::string StoredSeries::ageWarning() const {
  if (age != CurveAge::outdated) return {};
  return "the curve of " + placeOf(meter, name) +
         " is older than its raw points: they have changed since it was fitted";
}

CurveAge Database::curveAge(const StoredSeries& series, const Observer& observer) const {
  if (series.age != CurveAge::unknown) return series.age;
  return repeat(series, {}, observer).isStoredCurve() ? CurveAge::current : CurveAge::unknown;
}

}  // namespace pelmora::calibration
