// SPDX-License-Identifier: MIT
#include "calibration/trust/reference_judge.h"

#include "base/readable_number.h"

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

using solver::reference::ReferenceEstimate;

// The reference curve is evaluated at least at this many places, and an equation is compared with
// it at this many times as many.
constexpr std::size_t fewestPlaces = 100;
constexpr std::size_t comparedPerPlace = 4;
// An equation may always depart by this part of the test band.
constexpr double shareOfBand = 0.25;
// The 2-sigma band of good curves with few flows is often just wider than the test band; a warning
// for each would not be read (bench/README.md, "Rules of the choice").
constexpr double worthAWarning = 1.25;

// The table's rows with the same number of places between any two of them.
std::vector<double> placesOf(std::span<const double> table) {
  const std::size_t intervals = table.size() - 1;
  const std::size_t parts = std::max<std::size_t>(1, (fewestPlaces + intervals - 1) / intervals);
  std::vector<double> x;
  for (std::size_t i = 0; i < intervals; ++i) {
    for (std::size_t k = 0; k < parts; ++k) {
      const double share = static_cast<double>(k) / static_cast<double>(parts);
      x.push_back(k == 0 ? table[i] : table[i] * std::pow(table[i + 1] / table[i], share));
    }
  }
  x.push_back(table.back());
  return x;
}

}  // namespace

ReferenceJudge::ReferenceJudge(const solver::reference::ReferenceCurve& curve,
                               std::span<const double> table, double bandPercent,
                               const solver::reference::StopRequested& stop)
    : bandPercent_(bandPercent),
      tableX_(table.begin(), table.end()),
      coarseX_(placesOf(table)),
      coarse_(curve.evaluate(coarseX_, stop)) {
  const std::size_t parts = (coarseX_.size() - 1) / (table.size() - 1);
  for (std::size_t i = 0; i < coarse_.size(); i += parts) table_.push_back(coarse_[i]);
  for (std::size_t i = 0; i < coarse_.size(); ++i) {
    const std::size_t row = std::min(i / parts, table.size() - 2);
    places_.push_back({coarseX_[i], coarse_[i].value, 2 * coarse_[i].curveSd, row});
    if (i + 1 == coarse_.size()) break;
    for (std::size_t k = 1; k < comparedPerPlace; ++k) {
      const double share = static_cast<double>(k) / comparedPerPlace;
      places_.push_back(
          {coarseX_[i] * std::pow(coarseX_[i + 1] / coarseX_[i], share), valueIn(i, share),
           2 * (coarse_[i].curveSd * (1 - share) + coarse_[i + 1].curveSd * share), row});
    }
  }
  for (const Place& place : places_) placesX_.push_back(place.x);
}

// Cubic in ln x, with the derivatives at both ends.
double ReferenceJudge::valueIn(std::size_t interval, double share) const {
  const ReferenceEstimate &a = coarse_[interval], &b = coarse_[interval + 1];
  const double xa = coarseX_[interval], xb = coarseX_[interval + 1];
  const double width = std::log(xb / xa), rest = 1 - share;
  return a.value * (1 + 2 * share) * rest * rest + b.value * (3 - 2 * share) * share * share +
         width * share * rest * (a.derivative * xa * rest - b.derivative * xb * share);
}

std::vector<double> ReferenceJudge::values(std::span<const double> x) const {
  std::vector<double> found;
  for (const double at : x) {
    const auto behind = std::upper_bound(coarseX_.begin() + 1, coarseX_.end() - 1, at);
    const auto interval = static_cast<std::size_t>(behind - coarseX_.begin()) - 1;
    const double xa = coarseX_[interval], xb = coarseX_[interval + 1];
    found.push_back(valueIn(interval, std::log(at / xa) / std::log(xb / xa)));
  }
  return found;
}

double ReferenceJudge::allowedAt(const Place& place) const {
  return std::max(place.halfWidth, shareOfBand * bandPercent_ / 100 * std::abs(place.value));
}

Soundness ReferenceJudge::judge(const FitModel& model, std::size_t flows) const {
  Soundness sound;
  sound.isJudged = true;
  const std::size_t parameters = model.parameters().size();
  if (parameters >= flows) {
    sound.why = "it has " + std::to_string(parameters) + " parameters for " +
                std::to_string(flows) + " distinct flows";
    return sound;
  }
  // Some hundred places: samples are exact enough to compare, and take a fraction of the time.
  std::vector<double> y = model.sampleCurve(placesX_);
  if (y.empty()) y = model.evaluate(placesX_);
  double worst = -1;
  for (std::size_t i = 0; i < places_.size(); ++i) {
    const double allowed = allowedAt(places_[i]);
    const double departure = std::abs(y[i] - places_[i].value);
    const double share = std::isfinite(departure) ? departure / allowed : INFINITY;
    if (!(share > worst)) continue;
    worst = share;
    const double percent = 100 / std::abs(places_[i].value);
    sound.roshko = places_[i].x;
    sound.departurePercent = departure * percent;
    sound.allowedPercent = allowed * percent;
    if (std::isinf(share)) break;
  }
  sound.isSound = worst <= 1;
  if (sound.isSound) return sound;
  sound.why = "it departs from the reference curve " +
              (std::isfinite(sound.departurePercent)
                   ? "by " + significantText(sound.departurePercent, 2) + " %"
                   : std::string("without limit")) +
              " at Roshko " + significantText(sound.roshko, 4) + ", where " +
              significantText(sound.allowedPercent, 2) + " % is allowed";
  return sound;
}

std::vector<double> ReferenceJudge::distances(std::span<const double> tableY) const {
  std::vector<double> largest(tableY.size(), 0);
  for (const Place& place : places_) {
    const std::size_t row = place.row;
    const double share = (place.x - tableX_[row]) / (tableX_[row + 1] - tableX_[row]);
    const double read = tableY[row] * (1 - share) + tableY[row + 1] * share;
    const double distance = std::abs(read - place.value);
    largest[row] = std::max(largest[row], distance);
    largest[row + 1] = std::max(largest[row + 1], distance);
  }
  return largest;
}

std::vector<ReferenceJudge::WideRange> ReferenceJudge::wideRanges() const {
  std::vector<WideRange> ranges;
  bool isOpen = false;
  for (const Place& place : places_) {
    const double percent = 100 * place.halfWidth / std::abs(place.value);
    if (!(percent > worthAWarning * bandPercent_)) {
      isOpen = false;
      continue;
    }
    if (!isOpen) ranges.push_back({place.x, place.x, place.x, percent});
    isOpen = true;
    WideRange& range = ranges.back();
    range.to = place.x;
    if (percent > range.percent) range.widest = place.x, range.percent = percent;
  }
  return ranges;
}

}  // namespace pelmora::calibration
