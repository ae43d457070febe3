// SPDX-License-Identifier: MIT
#include "calibration/trust/trusted_fit.h"

#include "band/band.h"
#include "base/readable_number.h"
#include "calibration/fit_inputs.h"
#include "calibration/optimal_table.h"
#include "calibration/steps/catalogue_fit.h"
#include "calibration/trust/reference_judge.h"
#include "calibration/trust/reference_report.h"
#include "calibration/trust/trust_reference.h"
#include "calibration/trust/trust_warnings.h"
#include "curves/curve_checks.h"
#include "curves/predicted_curve.h"
#include "curves/table_size.h"
#include "solver/solver.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace pelmora::calibration {
namespace {

using ReferenceState = solver::reference::PointState;
using solver::reference::ReferenceCurve;

void throwIfStopped(const std::function<bool()>& stopRequested) {
  if (stopRequested && stopRequested()) throw solver::reference::Stopped();
}

// The linear reading of the table may take this part of the test band.
constexpr double readingShareOfBand = 0.25;

// What about the points makes a trusted curve impossible; empty if nothing does.
std::string troubleOf(const Fit& fit, std::span<const steps::PartPoint> origins) {
  std::vector<double> places;
  for (std::size_t i = 0; i < fit.merged.size(); ++i) {
    const double roshko = fit.merged(i, 0);
    if (isOutsideFitRange(fit.settings, roshko)) continue;
    if (!(roshko > 0)) {
      return "point " + std::to_string(origins[i].Number) + " of part " +
             std::to_string(origins[i].Part) + " has Roshko " + significantText(roshko, 4) +
             "; a Roshko number is above 0";
    }
    places.push_back(roshko);
  }
  const std::size_t flows = distinctLevels(places);
  if (flows >= fewestTrustedFlows) return {};
  return std::to_string(flows) + (flows == 1 ? " distinct flow is" : " distinct flows are") +
         " too few for a curve that can be trusted: measure at " +
         std::to_string(fewestTrustedFlows) + " or more";
}

ReferenceCurve referenceOf(const Fit& fit, std::span<const steps::PartPoint> origins,
                           const solver::reference::StopRequested& stopRequested) {
  std::vector<int> parts;
  std::vector<std::uint8_t> outside;
  for (std::size_t i = 0; i < fit.merged.size(); ++i) {
    parts.push_back(origins[i].Part);
    outside.push_back(isOutsideFitRange(fit.settings, fit.merged(i, 0)) ? 1 : 0);
  }
  solver::reference::ReferenceOptions options;
  options.stopRequested = stopRequested;
  return solver::reference::fitReference(
      {fit.merged.column(0), fit.merged.column(1), parts, outside}, options);
}

Trust trustOf(const Fit& fit, std::span<const steps::PartPoint> origins,
              const ReferenceCurve& reference) {
  const auto& summary = reference.summary();
  Trust trust;
  trust.isRelative = summary.relative;
  trust.points = summary.points;
  trust.lengthDecades = summary.length;
  const double unit = summary.relative ? 100 : 1;
  trust.noiseHigh = unit * summary.noiseHigh;
  trust.noiseLow = unit * summary.noiseLow;
  std::vector<double> places;
  for (std::size_t i = 0; i < fit.merged.size(); ++i) {
    const auto& point = reference.points()[i];
    const PointUse use = point.state == ReferenceState::used       ? PointUse::used
                         : point.state == ReferenceState::excluded ? PointUse::outside
                                                                   : PointUse::distrusted;
    trust.judged.push_back({origins[i].Part, static_cast<std::size_t>(origins[i].Number),
                            fit.merged(i, 0), fit.merged(i, 1), use, unit * point.residual,
                            unit * point.leaveOneOut, unit * point.leaveOneOutSd});
    if (use == PointUse::used) places.push_back(fit.merged(i, 0));
  }
  trust.flows = distinctLevels(places);
  return trust;
}

PointArray usedPoints(const Trust& trust) {
  PointArray points(trust.points);
  std::size_t row = 0;
  for (const JudgedPoint& point : trust.judged) {
    if (point.use != PointUse::used) continue;
    points(row, 0) = point.roshko;
    points(row++, 1) = point.strouhal;
  }
  return points;
}

// The values of a table that falls, nearest to `y` in the sense of least squares; a rotor ratio
// does so by nature.
std::vector<double> falling(std::span<const double> y) {
  struct Block {
    double sum;
    std::size_t count;
    [[nodiscard]] double mean() const { return sum / static_cast<double>(count); }
  };
  std::vector<Block> blocks;
  for (const double value : y) {
    blocks.push_back({value, 1});
    while (blocks.size() > 1 && blocks[blocks.size() - 2].mean() < blocks.back().mean()) {
      const Block last = blocks.back();
      blocks.pop_back();
      blocks.back().sum += last.sum;
      blocks.back().count += last.count;
    }
  }
  std::vector<double> values;
  for (const Block& block : blocks) values.insert(values.end(), block.count, block.mean());
  return values;
}

// The reference curve as a table; nothing, and the trouble, where it is not a rotor ratio's.
std::optional<std::vector<double>> referenceTable(Fit& fit, const ReferenceJudge& judge) {
  std::vector<double> y;
  for (const auto& estimate : judge.table()) y.push_back(estimate.value);
  if (!fit.settings.ratio) return y;
  const std::vector<double> fallen = falling(y);
  for (std::size_t i = 0; i < y.size(); ++i) {
    if (std::abs(fallen[i] - y[i]) <= 2 * judge.table()[i].curveSd) continue;
    fit.trouble = "the ratio rises with Roshko near " +
                  significantText(fit.trust->table[i].roshko, 4) + ", by more than its noise";
    return std::nullopt;
  }
  return fallen;
}

bool mayStoreReference(const FitSettings& settings) {
  const auto isNamed = [](const std::vector<std::string>& names) {
    return std::ranges::find(names, referenceCurveName) != names.end();
  };
  return (settings.only.empty() || isNamed(settings.only)) && !isNamed(settings.without);
}

void describeTable(Trust& trust, std::span<const double> grid, const ReferenceJudge& judge) {
  trust.table.clear();
  for (std::size_t i = 0; i < grid.size(); ++i) {
    const auto& at = judge.table()[i];
    trust.table.push_back({grid[i], at.value, at.curveSd, at.newPointSd});
  }
}

// For each row of the table the readings that decide the curve there alone, as a share of one new
// reading's variance: 1 / n at or beyond the first and the last flow, which was measured n times;
// less towards the flow next to it, and 0 from there on.
std::vector<double> shareOfEndReadings(const Fit& fit) {
  const std::vector<Level> levels = levelsOf(fit.fitted.column(0));
  const Level &first = levels.front(), &second = levels[1];
  const Level &last = levels.back(), &lastButOne = levels[levels.size() - 2];
  std::vector<double> shares;
  for (const double roshko : fit.curve.column(0)) {
    const double low = std::log(second.from / roshko) / std::log(second.from / first.to);
    const double high = std::log(roshko / lastButOne.to) / std::log(last.from / lastButOne.to);
    shares.push_back(std::max(std::clamp(low, 0.0, 1.0) / static_cast<double>(first.count),
                              std::clamp(high, 0.0, 1.0) / static_cast<double>(last.count)));
  }
  return shares;
}

// At an end the curve follows the readings of one flow, whichever way they err: there the band is
// that of as many new readings.
void describeBands(Fit& fit, const ReferenceJudge& judge) {
  const std::vector<double> distances = judge.distances(fit.curve.column(1));
  const std::vector<double> ends = shareOfEndReadings(fit);
  for (std::size_t i = 0; i < distances.size(); ++i) {
    const auto& at = judge.table()[i];
    const double ofReading = at.newPointSd * at.newPointSd - at.curveSd * at.curveSd;
    const double curveSd = std::sqrt(at.curveSd * at.curveSd + ends[i] * ofReading);
    fit.outcome.ConfidenceHalfWidth.push_back(std::hypot(2 * curveSd, distances[i]));
    fit.outcome.PredictionHalfWidth.push_back(std::hypot(2 * at.newPointSd, distances[i]));
  }
}

// Replaces the table at whose Roshko numbers the equations were judged by one at other numbers.
void placeTable(Fit& fit, const std::vector<double>& grid, const ReferenceJudge& judge,
                const std::vector<double>& chosen, bool isReference) {
  describeTable(*fit.trust, grid, judge);
  const auto fallen = isReference ? referenceTable(fit, judge) : std::nullopt;
  replaceTable(fit, grid, fallen ? *fallen : chosen);
}

// False if the fit was stopped between two equations.
bool fitTrustedPoints(Fit& fit, std::span<const steps::PartPoint> origins,
                      const steps::Observer& watch, const std::function<bool()>& stopRequested) {
  fit.trouble = troubleOf(fit, origins);
  if (!fit.trouble.empty()) return true;
  if (!(fit.min > 0)) {
    throw OutOfRange(
        {"the range begins at Roshko " + significantText(fit.min, 6), "", "begin it above 0"});
  }
  const std::vector<ModelDefinition> tried = equationsToTry(fit.settings);
  const auto kept = std::make_shared<const TrustReference>(
      TrustReference{referenceOf(fit, origins, stopRequested)});
  const ReferenceCurve& reference = kept->curve;
  fit.trust = trustOf(fit, origins, reference);
  fit.trust->reference = kept;
  fit.fitted = usedPoints(*fit.trust);
  std::vector<double> grid = logSpacedGrid(fit.min, fit.max, fit.settings.points - 1);
  ReferenceJudge judge(reference, grid, fit.settings.band, stopRequested);
  const std::vector<double> placed =
      placedGrid([&](std::span<const double> x) { return judge.values(x); }, fit.min, fit.max,
                 fit.settings.points - 1, readingShareOfBand * fit.settings.band);
  if (placed != grid) {
    grid = placed;
    judge = ReferenceJudge(reference, grid, fit.settings.band, stopRequested);
  }
  describeTable(*fit.trust, grid, judge);

  steps::CatalogueSettings settings = catalogueSettings(fit);
  steps::CatalogueFit catalogue;
  catalogue.useEquations(catalogueOf(tried));
  const steps::FitLabels labels{"Roshko", "Strouhal"};
  const steps::CatalogueRun run{fit.fitted, fit.min,       fit.max, labels, createSolver(),
                                nullptr,    stopRequested, grid,    true};
  if (catalogue.run(run, settings, watch) == steps::RunEnd::stopped) return false;
  std::vector<Soundness> soundness(tried.size());
  const auto test = [&](std::size_t index, const FitModel& model) -> std::optional<std::string> {
    throwIfStopped(stopRequested);
    soundness[index] = judge.judge(model, fit.trust->flows);
    if (soundness[index].isSound) return std::nullopt;
    return soundness[index].why;
  };
  catalogue.selectSimplest(createBandTester, test, settings, watch);
  fit.trust->equations = std::move(soundness);
  fit.outcome = catalogue.verdicts();
  fit.curve = catalogue.curve();

  CurveSamples chosen = [&](std::span<const double> x) { return judge.values(x); };
  if (const FitModel* model = catalogue.model()) {
    chosen = [model](std::span<const double> x) { return model->evaluate(x); };
  }
  if (mayStoreReference(fit.settings))
    addReferenceCurve(fit, reference, referenceTable(fit, judge));
  if (fit.report.empty()) fit.report = catalogue.details();
  if (!fit.accepted()) return true;
  if (fit.settings.spacing == PointSpacing::optimal) {
    const std::vector<double> optimal =
        optimalGrid(fit, chosen, [&] { throwIfStopped(stopRequested); });
    judge = ReferenceJudge(reference, optimal, fit.settings.band, stopRequested);
    placeTable(fit, optimal, judge, chosen(optimal), catalogue.model() == nullptr);
  }
  describeBands(fit, judge);
  fit.outcome.Warnings = trustWarnings(fit, judge, chosen);
  return true;
}

}  // namespace

bool fitTrusted(Fit& fit, std::span<const steps::PartPoint> origins, const steps::Observer& watch,
                const std::function<bool()>& stopRequested) {
  try {
    return fitTrustedPoints(fit, origins, watch, stopRequested);
  } catch (const solver::reference::Stopped&) {
    return false;
  }
}

}  // namespace pelmora::calibration
