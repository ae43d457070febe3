// SPDX-License-Identifier: MIT
#include "calibration/merging.h"

#include "band/band.h"
#include "calibration/exclusions.h"
#include "calibration/fit_watch.h"
#include "calibration/steps/merge_parts.h"
#include "curves/table_reading.h"
#include "store/point_rows.h"

#include <cmath>

namespace pelmora::calibration {
namespace {

void requirePoints(const Fit& fit, std::span<const PointArray> parts) {
  const std::string place = nameOf(fit);
  std::size_t usable = 0;
  if (parts.size() > fit.rawPoints.size())
    throw BadData({place + ": more than four raw parts", place, "join some of them"});
  for (std::size_t part = 0; part < parts.size(); ++part) {
    const PointArray& points = parts[part];
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (std::isfinite(points(i, 0)) && std::isfinite(points(i, 1))) continue;
      throw BadData({place + ", raw part " + std::to_string(part + 1) + ", point " +
                         std::to_string(i + 1) + ": a value is not finite",
                     place, "leave the point out"});
    }
    // The merge leaves out a part of a single point.
    if (points.size() > 1) usable += points.size();
  }
  if (usable == 0) {
    throw BadData(
        {place + (fit.series.empty() ? " have" : " has") + " no raw part of two points or more",
         place, "import a run or store points"});
  }
  if (usable > static_cast<std::size_t>(mostPoints)) {
    throw BadData({place + (fit.series.empty() ? " are " : " has ") + std::to_string(usable) +
                       " raw points; a fit takes at most " + std::to_string(mostPoints),
                   place, "thin out the raw parts"});
  }
}

void requireMergeBand(const Fit& fit) {
  const auto& band = fit.settings.mergeBand;
  if (!band || (std::isfinite(*band) && *band > 0)) return;
  throw BadData({"the merge band must be above 0 %", nameOf(fit), "give a width in per cent"});
}

steps::MergeSettings mergeSettingsOf(const Fit& fit) {
  steps::MergeSettings settings{fit.settings.inverted, fit.settings.ratio, fit.series,
                                createBandTester};
  if (fit.settings.mergeBand) settings.BandPercent = static_cast<float>(*fit.settings.mergeBand);
  settings.Cuts = fit.settings.cutsOverlap;
  return settings;
}

std::vector<steps::PartPoint> mergeAll(Fit& fit, std::span<const PointArray> parts,
                                       std::span<const ExcludedPoint> excluded,
                                       const Observer& observer) {
  const steps::Observer watch = stepsOf(observer);
  const steps::MergeSettings settings = mergeSettingsOf(fit);
  steps::MergedPoints merged;
  for (std::size_t k = 0; k < parts.size(); ++k) {
    requireGoOn(fit, observer);
    const auto number = static_cast<std::int16_t>(k + 1);
    steps::MergedPoints part = steps::asPart(number, parts[k]);
    for (std::size_t i = 0; i < part.Origins.size() && !excluded.empty(); ++i)
      part.Origins[i].Number = static_cast<std::int16_t>(numberInWholePart(excluded, number, i));
    if (!steps::sortPart(part, fit.series, watch)) continue;
    switch (steps::howToJoin(merged.Points, number)) {
      case steps::Joining::take:
        part.Cut.insert(part.Cut.begin(), merged.Cut.begin(), merged.Cut.end());
        merged = std::move(part);
        break;
      case steps::Joining::merge:
        merged = steps::mergeParts(std::move(merged), std::move(part), settings, watch);
        break;
      case steps::Joining::refuse:
        throw BadData({nameOf(fit) + ": the merge has left a single point of the first parts",
                       nameOf(fit), "check the raw parts"});
    }
  }
  fit.merged = std::move(merged.Points);
  const TableReading joined(fit.merged);
  for (const steps::PartPoint& point : merged.Cut) {
    fit.cut.push_back({point.Part, static_cast<std::size_t>(point.Number), point.Roshko,
                       point.Strouhal, joined.deviationPercent(point.Roshko, point.Strouhal)});
  }
  return std::move(merged.Origins);
}

}  // namespace

std::vector<steps::PartPoint> mergeRawParts(Fit& fit, std::span<const PointArray> parts,
                                            std::span<const ExcludedPoint> excluded,
                                            const Observer& observer) {
  requirePoints(fit, parts);
  requireMergeBand(fit);
  for (std::size_t part = 0; part < parts.size(); ++part) fit.rawPoints[part] = parts[part].size();
  return mergeAll(fit, parts, excluded, observer);
}

std::vector<CutPoint> cutByMerge(const StoredSeries& series) {
  Fit fit;
  fit.meter = series.meter;
  fit.series = series.name;
  fit.settings.ratio = series.name == "Ratio";
  if (const auto& kept = series.settings) {
    fit.settings.ratio = kept->RatioCurve;
    fit.settings.inverted = kept->Inverted;
    fit.settings.mergeBand = kept->MergeBandPercent;
    fit.settings.cutsOverlap = !kept->KeepsOverlap;
  }
  try {
    (void)mergeRawParts(fit, series.raw, series.excluded, {});
  } catch (const BadData&) {
    return {};
  }
  for (std::size_t p = 0; p < series.raw.size(); ++p) {
    const PointArray& points = series.raw[p];
    if (points.size() == 1)
      fit.cut.push_back({static_cast<int>(p + 1),
                         series.numberOf(static_cast<int>(p + 1), 0),
                         points(0, 0),
                         points(0, 1),
                         {}});
  }
  return std::move(fit.cut);
}

}  // namespace pelmora::calibration
