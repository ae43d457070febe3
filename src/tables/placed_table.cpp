// SPDX-License-Identifier: MIT
#include "tables/placed_table.h"

#include "base/readable_number.h"
#include "tables/interval_search.h"
#include "tables/knot_program.h"
#include "tables/placed_cubic.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace pelmora::tables {
namespace {

// Samples of the curve between two knots, at least; in all, at least the second number.
constexpr std::size_t samplesPerSegment = 64, fewestSamples = 8192;
// Halvings of the error: by the last one it is known to 1E-10 of where it began.
constexpr int halvings = 34;
// Places between two knots where a reading error is looked for, and around the worst of them.
constexpr std::size_t placesPerSegment = 65, placesAroundWorst = 401;
constexpr std::size_t fewestPlaces = 1000;

void requirePoints(std::size_t points, Reading reading) {
  if (points >= fewestPoints(reading) && points <= mostPoints) return;
  throw calibration::BadData(
      {"a table for " + std::string(readingName(reading)) + " reading cannot have " +
           std::to_string(points) + " points",
       "",
       "choose " + std::to_string(fewestPoints(reading)) + " to " + std::to_string(mostPoints)});
}

SampledCurve sampled(const Curve& curve, Range range, std::size_t points) {
  return {curve, range, std::max(fewestSamples, samplesPerSegment * points)};
}

PlacedTable tableOf(const Curve& curve, std::vector<double> x, Reading reading) {
  PlacedTable table;
  table.x = std::move(x);
  table.y = curve(table.x);
  table.error = readingError(curve, table.x, table.y, reading);
  return table;
}

// A curve that is straight somewhere needs fewer knots; the longest pieces take the rest.
void fillUp(std::vector<double>& knots, std::size_t points) {
  while (knots.size() < points) {
    std::size_t longest = 1;
    for (std::size_t k = 2; k < knots.size(); ++k) {
      if (knots[k] - knots[k - 1] > knots[longest] - knots[longest - 1]) longest = k;
    }
    const double middle = (knots[longest - 1] + knots[longest]) / 2;
    knots.insert(knots.begin() + static_cast<std::ptrdiff_t>(longest), middle);
  }
}

std::vector<double> placeForStraight(const SampledCurve& curve, std::size_t points, Reading reading,
                                     const std::function<void()>& goOn) {
  const IntervalSearch search(curve, reading, goOn);
  const auto end = static_cast<double>(curve.samples());
  std::vector<double> best(points);
  double high = 0;
  for (std::size_t k = 0; k < points; ++k) {
    best[k] = end * static_cast<double>(k) / static_cast<double>(points - 1);
    if (k > 0) high = std::max(high, search.errorOf(best[k - 1], best[k]));
  }
  double low = 0;
  for (int i = 0; i < halvings && high > 0; ++i) {
    const double middle = (low + high) / 2;
    if (auto knots = search.cover(middle, points - 1)) {
      best = std::move(*knots);
      high = middle;
    } else {
      low = middle;
    }
  }
  fillUp(best, points);
  const double even = search.largestError(best);
  if (points <= mostProgrammedPoints && even > 0) {
    std::vector<double> other = programKnots(search, points, even);
    if (!other.empty()) {
      balanceKnots(search, other);
      if (search.largestError(other) < even) best = std::move(other);
    }
  }
  return best;
}

// How many points a straight reading takes, or nearly; for cubic reading the fewest.
std::size_t enoughPoints(const Curve& curve, Range range, double mostPercent, Reading reading) {
  if (reading == Reading::cubic) return fewestPoints(reading);
  const SampledCurve samples = sampled(curve, range, mostProgrammedPoints);
  const auto knots = IntervalSearch(samples, reading).cover(mostPercent / 100, mostPoints - 1);
  return knots ? knots->size() : mostPoints;
}

struct Found {
  double error = 0, at = 0;
};

Found worstOf(const Curve& curve, const TableReader& read, const std::vector<double>& places) {
  const std::vector<double> y = curve(places);
  Found worst{0, places.front()};
  for (std::size_t i = 0; i < places.size(); ++i) {
    const double error = std::abs(read(places[i]) / y[i] - 1);
    if (!(error <= worst.error)) worst = {error, places[i]};
  }
  return worst;
}

std::vector<double> between(double low, double high, std::size_t count) {
  std::vector<double> places;
  for (std::size_t i = 0; i < count; ++i)
    places.push_back(low *
                     std::pow(high / low, static_cast<double>(i) / static_cast<double>(count - 1)));
  return places;
}

}  // namespace

ReadingError readingError(const Curve& curve, std::span<const double> x, std::span<const double> y,
                          Reading reading) {
  const TableReader read(x, y, reading);
  const std::size_t each = std::max(placesPerSegment, fewestPlaces / (x.size() - 1) + 1);
  std::vector<double> places;
  for (std::size_t k = 1; k < x.size(); ++k) {
    const std::vector<double> segment = between(x[k - 1], x[k], each);
    places.insert(places.end(), segment.begin(), segment.end());
  }
  const Found coarse = worstOf(curve, read, places);
  if (!std::isfinite(coarse.error)) {
    throw calibration::BadData(
        {"the curve has no relative error at x = " + significantText(coarse.at, 6), "",
         "choose a range in which the curve is defined and not zero"});
  }
  const auto at = std::find(places.begin(), places.end(), coarse.at);
  const double low = at == places.begin() ? *at : *(at - 1);
  const double high = at + 1 == places.end() ? *at : *(at + 1);
  const Found fine =
      low < high ? worstOf(curve, read, between(low, high, placesAroundWorst)) : coarse;
  const Found& worst = fine.error > coarse.error ? fine : coarse;
  return {100 * worst.error, worst.at};
}

PlacedTable placeTable(const Curve& curve, Range range, std::size_t points, Reading reading,
                       const std::function<void()>& goOn) {
  requirePoints(points, reading);
  const SampledCurve samples = sampled(curve, range, points);
  const std::vector<double> knots = reading == Reading::cubic
                                        ? placeForCubic(samples, points)
                                        : placeForStraight(samples, points, reading, goOn);
  std::vector<double> x;
  for (const double knot : knots) x.push_back(samples.xAt(knot));
  return tableOf(curve, std::move(x), reading);
}

PlacedTable evenTable(const Curve& curve, Range range, std::size_t points, Reading reading) {
  requirePoints(points, reading);
  const SampledCurve samples = sampled(curve, range, points);
  std::vector<double> x;
  const auto end = static_cast<double>(samples.samples());
  for (std::size_t k = 0; k < points; ++k)
    x.push_back(samples.xAt(end * static_cast<double>(k) / static_cast<double>(points - 1)));
  return tableOf(curve, std::move(x), reading);
}

PlacedTable shortestTable(const Curve& curve, Range range, double mostPercent, Reading reading) {
  if (!(mostPercent > 0)) {
    throw calibration::BadData(
        {"no table has a reading error of 0", "", "choose an error above 0 %, such as 0.01 %"});
  }
  const std::size_t fewest = fewestPoints(reading);
  // Enough points, and too few of them.
  std::size_t enough = enoughPoints(curve, range, mostPercent, reading), few = fewest - 1;
  PlacedTable best = placeTable(curve, range, enough, reading);
  for (; best.error.percent > mostPercent; best = placeTable(curve, range, enough, reading)) {
    if (enough == mostPoints) {
      throw calibration::OutOfRange({"a table of " + std::to_string(mostPoints) +
                                         " points still errs by " +
                                         significantText(best.error.percent, 2) + " %",
                                     "", "allow a larger error or choose a shorter range"});
    }
    few = enough;
    enough = reading == Reading::cubic ? std::min(mostPoints, 2 * enough) : enough + 1;
  }
  // The count of a straight reading is right or one too many; that of a cubic one is halved.
  while (enough - few > 1) {
    const std::size_t fewer = reading == Reading::cubic ? (few + enough) / 2 : enough - 1;
    PlacedTable table = placeTable(curve, range, fewer, reading);
    if (table.error.percent <= mostPercent) {
      enough = fewer;
      best = std::move(table);
    } else {
      few = fewer;
    }
  }
  return best;
}

}  // namespace pelmora::tables
