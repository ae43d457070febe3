// SPDX-License-Identifier: MIT
#include "calibration/steps/merge_parts.h"

#include "base/run_time_error.h"
#include "calibration/steps/raw_points.h"
#include "store/point_rows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace pelmora::calibration::steps {
namespace {

// Hosts know the small r of the first.
constexpr std::array<const char*, rawPartCount> sortingTexts{
    "Sorting raw1 data in series ", "Sorting Raw2 data in series ", "Sorting Raw3 data in series ",
    "Sorting Raw4 data in series "};

// Per cent. `first` holds until the first point outside, `narrow` from then on.
struct BandWidths {
  float first = 0.1F, narrow = 0.045F;
};

BandWidths bandWidths(const MergeSettings& settings) {
  if (!settings.BandPercent) return {};
  constexpr float narrowShare = 0.45F;
  return {*settings.BandPercent, *settings.BandPercent * narrowShare};
}

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
std::size_t trailingCut(const PointArray& longPart, const PointArray& shortPart, BandTester& tester,
                        float narrowBandWidth) {
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

constexpr std::size_t originColumn = 2;  // travels with its point through the sorts

void numberRows(PointArray& all) {
  for (std::size_t i = 0; i < all.size(); ++i) all(i, originColumn) = static_cast<double>(i);
}

// Long part from `cut` on, then the short part; the third column numbers the points.
PointArray joined(const PointArray& longPart, std::size_t cut, const PointArray& shortPart) {
  const std::size_t kept = longPart.size() - cut;
  if (kept + shortPart.size() > static_cast<std::size_t>(mostPoints)) {
    throw makeError(RunTimeError::overflow);
  }
  PointArray all(kept + shortPart.size(), originColumn + 1);
  for (std::size_t c = 0; c < 2; ++c) {
    for (std::size_t i = 0; i < kept; ++i) all(i, c) = longPart(cut + i, c);
    for (std::size_t i = 0; i < shortPart.size(); ++i) all(kept + i, c) = shortPart(i, c);
  }
  numberRows(all);
  return all;
}

void sortBy(std::int16_t column, PointArray& all, const Observer& observer) {
  sortPoints(all, column, originColumn, 0, pointUpperBound(all), true, observer.sortWatch());
}

std::size_t originOf(const PointArray& all, std::size_t row) {
  return static_cast<std::size_t>(all(row, originColumn));
}

// Of points in Strouhal order, those whose Roshko does not exceed that of the point before them.
PointArray thinned(const PointArray& points, const std::vector<PartPoint>& origins,
                   std::vector<PartPoint>& cut) {
  std::vector<std::size_t> rows{0};
  for (std::size_t i = 1; i < points.size(); ++i) {
    if (points(i, 0) <= points(i - 1, 0)) {
      rows.push_back(i);
    } else {
      cut.push_back(origins[originOf(points, i)]);
    }
  }
  PointArray kept(rows.size(), points.columns());
  for (std::size_t c = 0; c < points.columns(); ++c) {
    for (std::size_t i = 0; i < rows.size(); ++i) kept(i, c) = points(rows[i], c);
  }
  return kept;
}

void append(std::vector<PartPoint>& to, const std::vector<PartPoint>& from, std::size_t first = 0) {
  to.insert(to.end(), from.begin() + static_cast<std::ptrdiff_t>(first), from.end());
}

MergedPoints withoutNumbers(const PointArray& all, const std::vector<PartPoint>& origins,
                            std::vector<PartPoint> cut) {
  MergedPoints merged{PointArray(all.size()), {}, std::move(cut)};
  merged.Origins.reserve(all.size());
  for (std::size_t c = 0; c < 2; ++c) {
    for (std::size_t i = 0; i < all.size(); ++i) merged.Points(i, c) = all(i, c);
  }
  for (std::size_t i = 0; i < all.size(); ++i) merged.Origins.push_back(origins[originOf(all, i)]);
  return merged;
}

}  // namespace

MergedPoints asPart(std::int16_t part, PointArray points) {
  MergedPoints whole{std::move(points), {}, {}};
  whole.Origins.reserve(whole.Points.size());
  for (std::size_t i = 0; i < whole.Points.size(); ++i) {
    whole.Origins.push_back(
        {part, static_cast<std::int16_t>(i + 1), whole.Points(i, 0), whole.Points(i, 1)});
  }
  return whole;
}

bool sortPart(MergedPoints& part, const std::string& SeriesName, const Observer& observer) {
  if (pointUpperBound(part.Points) <= 0) return false;
  const auto entry = static_cast<std::size_t>(part.Origins.front().Part - 1);
  observer.status(sortingTexts.at(entry) + SeriesName);
  PointArray all(part.Points.size(), originColumn + 1);
  for (std::size_t c = 0; c < 2; ++c)
    std::ranges::copy(part.Points.column(c), all.column(c).begin());
  numberRows(all);
  sortBy(0, all, observer);
  part = withoutNumbers(all, part.Origins, {});
  return true;
}

Joining howToJoin(const PointArray& merged, std::int16_t part) {
  if (merged.empty()) return Joining::take;
  if (pointUpperBound(merged) != 0) return Joining::merge;
  return part == rawPartCount ? Joining::refuse : Joining::take;
}

MergedPoints mergeParts(MergedPoints A, MergedPoints B, const MergeSettings& settings,
                        const Observer& observer) {
  if (settings.Inverted) {
    negateRoshko(A.Points);
    negateRoshko(B.Points);
  }
  const bool secondIsLong = lastRoshko(A.Points) <= lastRoshko(B.Points);
  const MergedPoints& longPart = secondIsLong ? B : A;
  const MergedPoints& shortPart = secondIsLong ? A : B;

  observer.status("Removing trailing curve points in series " + settings.SeriesName);
  auto tester = settings.createBandTester ? settings.createBandTester() : nullptr;
  if (!tester) throw makeError(RunTimeError::noEngine);
  const BandWidths widths = bandWidths(settings);
  tester->BandWidth = widths.narrow;
  tester->BandWidth = widths.first;
  const std::size_t cutPoints =
      settings.Cuts ? trailingCut(longPart.Points, shortPart.Points, *tester, widths.narrow) : 0;
  tester.reset();

  observer.status("Consolidating raw1 and raw2 data in series " + settings.SeriesName);
  PointArray all = joined(longPart.Points, cutPoints, shortPart.Points);
  std::vector<PartPoint> origins;
  origins.reserve(all.size());
  append(origins, longPart.Origins, cutPoints);
  append(origins, shortPart.Origins);
  std::vector<PartPoint> cut = A.Cut;
  append(cut, B.Cut);
  cut.insert(cut.end(), longPart.Origins.begin(),
             longPart.Origins.begin() + static_cast<std::ptrdiff_t>(cutPoints));

  if (settings.Inverted) negateRoshko(all);
  observer.status("Sorting merged data in series " + settings.SeriesName);
  if (settings.RatioCurve && settings.Cuts) {
    sortBy(1, all, observer);
    all = thinned(all, origins, cut);
  }
  sortBy(0, all, observer);
  return withoutNumbers(all, origins, std::move(cut));
}

}  // namespace pelmora::calibration::steps
