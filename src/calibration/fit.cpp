// Merging and fitting the raw parts of a series.
// SPDX-License-Identifier: MIT
#include "band/band.h"
#include "base/readable_number.h"
#include "calibration/fit_inputs.h"
#include "calibration/fit_watch.h"
#include "calibration/merging.h"
#include "calibration/optimal_table.h"
#include "calibration/session.h"
#include "calibration/steps/catalogue_fit.h"
#include "calibration/stored_fit.h"
#include "calibration/trust/trusted_fit.h"
#include "curves/outcome_details.h"
#include "points/point_fingerprint.h"
#include "solver/solver.h"

#include <pelmora/own_tables.h>

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

// The merged points inside fitMin..fitMax.
PointArray pointsToFit(const Fit& fit) {
  const FitSettings& settings = fit.settings;
  if (!settings.fitMin && !settings.fitMax) return fit.merged;
  std::vector<std::size_t> inside;
  for (std::size_t i = 0; i < fit.merged.size(); ++i) {
    if (!isOutsideFitRange(settings, fit.merged(i, 0))) inside.push_back(i);
  }
  if (inside.size() < 2) {
    throw OutOfRange({"fewer than two points" + (fit.series.empty() ? "" : " of " + nameOf(fit)) +
                          " are inside the range to fit",
                      nameOf(fit), "give a wider range to fit"});
  }
  PointArray points(inside.size());
  for (std::size_t i = 0; i < inside.size(); ++i) {
    points(i, 0) = fit.merged(inside[i], 0);
    points(i, 1) = fit.merged(inside[i], 1);
  }
  return points;
}

void settleRange(Fit& fit) {
  const double lowest = fit.fitted(0, 0), highest = fit.fitted(fit.fitted.size() - 1, 0);
  const FitSettings& settings = fit.settings;
  fit.min = settings.min.value_or(lowest);
  fit.max = settings.max.value_or(highest);
  const bool isGiven = settings.min || settings.max;
  if (isGiven && fit.min >= fit.max) {
    throw OutOfRange({"the range from " + significantText(fit.min, 15) + " to " +
                          significantText(fit.max, 15) + " is empty",
                      nameOf(fit), "give a range from small to large"},
                     {fit.min, fit.max}, {lowest, highest});
  }
  const bool isInside = lowest <= fit.min && fit.max <= highest;
  if (!isInside && settings.outside == RangePolicy::refuse) {
    throw OutOfRange(
        {"the range from " + significantText(fit.min, 15) + " to " + significantText(fit.max, 15) +
             " extends beyond " + (fit.series.empty() ? "" : "the raw points of ") + nameOf(fit) +
             ", which reach from " + significantText(lowest, 15) + " to " +
             significantText(highest, 15),
         nameOf(fit), "choose a range within them, fit all of them or extrapolate"},
        {fit.min, fit.max}, {lowest, highest});
  }
  if (!isInside && settings.outside == RangePolicy::wholeRange) {
    fit.min = lowest;
    fit.max = highest;
  }
  fit.isWholeRange = fit.min == lowest && fit.max == highest;
}

void fitCatalogue(Fit& fit, const steps::Observer& watch, const Observer& observer) {
  steps::CatalogueSettings settings = catalogueSettings(fit);
  steps::CatalogueFit catalogue;
  catalogue.useEquations(catalogueOf(equationsToTry(fit.settings)));
  const steps::CatalogueRun run{
      fit.fitted, fit.min, fit.max, {"Roshko", "Strouhal"}, createSolver(), nullptr, [&observer] {
        return observer.stop.stop_requested();
      }};
  if (catalogue.run(run, settings, watch) == steps::RunEnd::stopped) requireGoOn(fit, observer);
  catalogue.select(createBandTester, settings, watch);
  fit.outcome = catalogue.outcome(settings.BandPercent);
  fit.curve = catalogue.curve();
  fit.report = catalogue.details();
  if (fit.settings.spacing != PointSpacing::optimal || !fit.accepted()) return;
  const FitModel* model = catalogue.model();
  const CurveSamples samples = [model](std::span<const double> x) { return model->evaluate(x); };
  const std::vector<double> grid = optimalGrid(fit, samples, [&] { requireGoOn(fit, observer); });
  replaceTable(fit, grid, samples(grid));
  fit.outcome.ConfidenceHalfWidth.clear();
  fit.outcome.PredictionHalfWidth.clear();
  pelmora::describeBands(*model, grid, fit.outcome);
}

Fit fitParts(Fit fit, std::span<const PointArray> parts, std::span<const ExcludedPoint> excluded,
             const Observer& observer) {
  const std::vector<steps::PartPoint> origins = mergeRawParts(fit, parts, excluded, observer);
  for (const steps::PartPoint& origin : origins)
    fit.places.push_back({origin.Part, static_cast<std::size_t>(origin.Number)});
  fit.fitted = pointsToFit(fit);
  settleRange(fit);
  const steps::Observer watch = stepsOf(observer);
  try {
    if (fit.settings.choice == Choice::adjustedR2) {
      fitCatalogue(fit, watch, observer);
    } else {
      const auto stopped = [&observer] { return observer.stop.stop_requested(); };
      if (!fitTrusted(fit, origins, watch, stopped)) requireGoOn(fit, observer);
    }
  } catch (const Failure&) {
    throw;
  } catch (const Error& error) {
    throw NoFit({"fitting " + nameOf(fit) + ": " + error.what(), nameOf(fit),
                 "check the points and the equations"},
                error.number());
  }
  return fit;
}

}  // namespace

Fit fit(std::span<const PointArray> parts, const FitSettings& settings, const Observer& observer) {
  Fit fit;
  fit.settings = settings;
  return fitParts(std::move(fit), parts, {}, observer);
}

Fit Database::fit(const StoredSeries& series, const FitSettings& settings,
                  const Observer& observer) const {
  Fit fit;
  fit.meter = series.meter;
  fit.series = series.name;
  fit.seriesID = series.id;
  fit.basis = series.basis;
  fit.pointsFingerprint = fingerprintOf(series.raw);
  fit.settings = settings;
  return fitParts(std::move(fit), series.raw, series.excluded, observer);
}

Fit Database::fit(const Meter& meter, const std::string& series, const FitSettings& settings,
                  const Observer& observer) const {
  return fit(this->series(meter, series), settings, observer);
}

}  // namespace pelmora::calibration
