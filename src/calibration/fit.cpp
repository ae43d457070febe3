// Merging and fitting the raw parts of a series.
// SPDX-License-Identifier: MIT
#include "band/band.h"
#include "base/readable_number.h"
#include "calibration/session.h"
#include "calibration/steps/catalogue_fit.h"
#include "calibration/steps/merge_parts.h"
#include "calibration/stored_fit.h"
#include "solver/solver.h"
#include "store/point_rows.h"

#include <pelmora/own_tables.h>

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

std::string nameOf(const Fit& fit) {
  return fit.series.empty() ? "the points" : placeOf(fit.meter, fit.series);
}

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
         place, "import a run or bring points"});
  }
  if (usable > static_cast<std::size_t>(mostPoints)) {
    throw BadData({place + (fit.series.empty() ? " are " : " has ") + std::to_string(usable) +
                       " raw points; a fit takes at most " + std::to_string(mostPoints),
                   place, "thin out the raw parts"});
  }
}

steps::Observer stepsOf(const Observer& observer) {
  steps::Observer steps;
  steps.onStatus = observer.status;
  if (observer.progress) {
    steps.onProgress = [&observer](std::int16_t finished, std::int16_t of) {
      observer.progress(static_cast<std::size_t>(finished), static_cast<std::size_t>(of));
    };
  }
  return steps;
}

void requireGoOn(const Fit& fit, const Observer& observer) {
  if (!observer.stop.stop_requested()) return;
  throw Cancelled({"the fit of " + nameOf(fit) + " was cancelled", nameOf(fit), ""});
}

void mergeAll(Fit& fit, std::span<const PointArray> parts, const Observer& observer) {
  const steps::Observer watch = stepsOf(observer);
  const steps::MergeSettings settings{fit.settings.inverted, fit.settings.ratio, fit.series,
                                      createBandTester};
  steps::MergedPoints merged;
  for (std::size_t k = 0; k < parts.size(); ++k) {
    requireGoOn(fit, observer);
    const auto number = static_cast<std::int16_t>(k + 1);
    steps::MergedPoints part = steps::asPart(number, parts[k]);
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
  for (const steps::PartPoint& point : merged.Cut)
    fit.cut.push_back(
        {point.Part, static_cast<std::size_t>(point.Number), point.Roshko, point.Strouhal});
  fit.merged = std::move(merged.Points);
}

void settleRange(Fit& fit) {
  const double lowest = fit.merged(0, 0), highest = fit.merged(fit.merged.size() - 1, 0);
  const FitSettings& settings = fit.settings;
  fit.min = settings.min.value_or(lowest);
  fit.max = settings.max.value_or(highest);
  const bool isGiven = settings.min || settings.max;
  if (isGiven && fit.min >= fit.max) {
    throw OutOfRange({"the range from " + significantText(fit.min, 15) + " to " +
                          significantText(fit.max, 15) + " is empty",
                      nameOf(fit), "give a range from small to large"});
  }
  const bool isInside = lowest <= fit.min && fit.max <= highest;
  if (!isInside && settings.outside == RangePolicy::refuse) {
    throw OutOfRange({"the range from " + significantText(fit.min, 15) + " to " +
                          significantText(fit.max, 15) + " is not inside the raw points of " +
                          nameOf(fit) + ", which reach from " + significantText(lowest, 15) +
                          " to " + significantText(highest, 15),
                      nameOf(fit), "leave the range out, fit the whole range or extrapolate"});
  }
  if (!isInside && settings.outside == RangePolicy::wholeRange) {
    fit.min = lowest;
    fit.max = highest;
  }
  fit.isWholeRange = fit.min == lowest && fit.max == highest;
}

std::vector<steps::Equation> catalogueOf(const EquationList& list) {
  std::vector<steps::Equation> catalogue;
  for (auto equation = list.equations().rbegin(); equation != list.equations().rend(); ++equation)
    catalogue.push_back({equation->Name, equation->Expression});
  return catalogue;
}

void fitCatalogue(Fit& fit, const Observer& observer) {
  const steps::Observer watch = stepsOf(observer);
  steps::CatalogueSettings settings{static_cast<float>(fit.settings.band),
                                    fit.settings.points,
                                    fit.meter.serial,
                                    fit.series,
                                    fit.settings.ratio,
                                    fit.settings.ignoreResiduals};
  steps::CatalogueFit catalogue;
  catalogue.useEquations(catalogueOf(fit.settings.equations));
  const steps::CatalogueRun run{
      fit.merged, fit.min, fit.max, {"Roshko", "Strouhal"}, createSolver(), nullptr, [&observer] {
        return observer.stop.stop_requested();
      }};
  try {
    if (catalogue.run(run, settings, watch) == steps::RunEnd::stopped) requireGoOn(fit, observer);
    catalogue.select(createBandTester, settings, watch);
  } catch (const Failure&) {
    throw;
  } catch (const Error& error) {
    throw NoFit({"fitting " + nameOf(fit) + ": " + error.what(), nameOf(fit),
                 "check the points and the equations"},
                error.number());
  }
  fit.outcome = catalogue.outcome(settings.BandPercent);
  fit.curve = catalogue.curve();
  fit.report = catalogue.details();
}

Fit fitParts(Fit fit, std::span<const PointArray> parts, const Observer& observer) {
  requirePoints(fit, parts);
  for (std::size_t part = 0; part < parts.size(); ++part) fit.rawPoints[part] = parts[part].size();
  mergeAll(fit, parts, observer);
  settleRange(fit);
  fitCatalogue(fit, observer);
  return fit;
}

}  // namespace

Fit fit(std::span<const PointArray> parts, const FitSettings& settings, const Observer& observer) {
  Fit fit;
  fit.settings = settings;
  return fitParts(std::move(fit), parts, observer);
}

Fit Database::fit(const StoredSeries& series, const FitSettings& settings,
                  const Observer& observer) const {
  Fit fit;
  fit.meter = series.meter;
  fit.series = series.name;
  fit.seriesID = series.id;
  fit.basis = series.basis;
  fit.settings = settings;
  return fitParts(std::move(fit), series.raw, observer);
}

Fit Database::fit(const Meter& meter, const std::string& series, const FitSettings& settings,
                  const Observer& observer) const {
  return fit(this->series(meter, series), settings, observer);
}

}  // namespace pelmora::calibration
