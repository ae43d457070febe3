// SPDX-License-Identifier: MIT
#include "component/consolidate_raw.h"

#include "store/point_rows.h"

#include <pelmora/platform.h>

#include <memory>

namespace pelmora {
namespace {

constexpr float firstBandWidth = 0.1F;     // per cent, until the first point outside
constexpr float narrowBandWidth = 0.045F;  // per cent, from then on

void negateRoshko(PointArray& points) {
  if (points.empty()) return;
  for (double& roshko : points.column(0)) roshko = -roshko;
}

double lastRoshko(const PointArray& points) {
  if (points.empty()) throw makeError(RunTimeError::outOfRange);
  return points(points.size() - 1, 0);
}

// How many of the long part's first points disagree with the short part, scanning from the end: one
// point outside the band right behind one inside is tolerated, a second ends the scan.
std::size_t trailingCut(const PointArray& longPart, const PointArray& shortPart,
                        BandTester& tester) {
  bool previousInside = false;
  for (std::size_t i = longPart.size(); i-- > 0;) {
    const double x = longPart(i, 0);
    const double y = longPart(i, 1);
    for (std::size_t k = shortPart.size() - 1; k >= 1; --k) {
      const double xk = shortPart(k, 0);
      const double xp = shortPart(k - 1, 0);
      if (xk < x) break;
      if (!(xp <= x && x <= xk)) continue;
      tester.SetSegment(xp, shortPart(k - 1, 1), xk, shortPart(k, 1));
      if (tester.TestPoint(x, y)) {
        previousInside = true;
        continue;
      }
      tester.BandWidth = narrowBandWidth;
      if (!previousInside) return i + 1;
      previousInside = false;
    }
  }
  return 0;
}

PointArray joined(const PointArray& longPart, std::size_t cut, const PointArray& shortPart) {
  const std::size_t kept = longPart.size() - cut;
  if (kept + shortPart.size() > static_cast<std::size_t>(mostPoints)) {
    throw makeError(RunTimeError::overflow);
  }
  PointArray all(kept + shortPart.size());
  for (std::size_t c = 0; c < 2; ++c) {
    for (std::size_t i = 0; i < kept; ++i) all(i, c) = longPart(cut + i, c);
    for (std::size_t i = 0; i < shortPart.size(); ++i) all(kept + i, c) = shortPart(i, c);
  }
  return all;
}

// Of points in Strouhal order, those whose Roshko does not exceed that of the point before them.
PointArray thinned(const PointArray& points) {
  std::vector<std::size_t> rows{0};
  for (std::size_t i = 1; i < points.size(); ++i) {
    if (points(i, 0) <= points(i - 1, 0)) rows.push_back(i);
  }
  PointArray kept(rows.size());
  for (std::size_t c = 0; c < 2; ++c) {
    for (std::size_t i = 0; i < rows.size(); ++i) kept(i, c) = points(rows[i], c);
  }
  return kept;
}

}  // namespace

PointArray consolidateRaw(const OperationContext& context, PointArray A, PointArray B,
                          bool& ArrayIsEmpty, bool bInverted, bool ratioCurve) {
  PointArray merged;
  context.trap("Error in rawData:consolidateRaw", [&] {
    ArrayIsEmpty = true;
    if (bInverted) {
      negateRoshko(A);
      negateRoshko(B);
    }
    const bool secondIsLong = lastRoshko(A) <= lastRoshko(B);
    const PointArray& longPart = secondIsLong ? B : A;
    const PointArray& shortPart = secondIsLong ? A : B;
    const std::string seriesName = context.shared().fitRecord().SeriesName;

    context.raiseStatusUpdate("Removing trailing curve points in series " + seriesName);
    const Platform& platform = context.platform();
    auto tester = platform.createBandTester ? platform.createBandTester() : nullptr;
    if (!tester) throw makeError(RunTimeError::noEngine);
    tester->BandWidth = narrowBandWidth;
    tester->BandWidth = firstBandWidth;
    const std::size_t cut = trailingCut(longPart, shortPart, *tester);
    tester.reset();

    context.raiseStatusUpdate("Consolidating raw1 and raw2 data in series " + seriesName);
    PointArray all = joined(longPart, cut, shortPart);
    if (bInverted) negateRoshko(all);
    context.raiseStatusUpdate("Sorting merged data in series " + seriesName);
    if (ratioCurve) {
      quickSortPoints(all, 1, 1, 0, pointUpperBound(all), true);
      all = thinned(all);
    }
    quickSortPoints(all, 0, 1, 0, pointUpperBound(all), true);
    ArrayIsEmpty = false;
    merged = std::move(all);
  });
  return merged;
}

}  // namespace pelmora
