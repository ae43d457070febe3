// The curve of a stored series: its table, and the function behind it.
// SPDX-License-Identifier: MIT
#include "calibration/evaluation/fitted_curve_body.h"
#include "calibration/part_jobs.h"
#include "calibration/session.h"
#include "uncertainty/stand_file.h"

#include <algorithm>
#include <set>
#include <utility>

namespace pelmora::calibration {
namespace {

Curve tableOf(const StoredSeries& stored, const Repeated& repeated, const std::string& location) {
  const FitOutcome withoutBands;
  const FitOutcome& bands = repeated.isStoredCurve() ? repeated.fit.outcome : withoutBands;
  try {
    return Curve(pointsWithBands(stored.curve, bands));
  } catch (const BadData& failure) {
    throw BadData({"the stored curve of " + placeOf(stored.meter, stored.name) +
                       " cannot be read: " + failure.what(),
                   location, "fit it again"});
  }
}

// Whether the stand states an uncertainty that depends on what it read.
bool needsReadings(const StandStatement& statement) {
  const auto stand = uncertainty::readStandUncertainty(statement.text, statement.file);
  return std::ranges::any_of(stand.components, [](const uncertainty::Component& each) {
    const units::Quantity of = each.standard.unit->quantity;
    return of != units::Quantity::relative && of != units::Quantity::temperature;
  });
}

// Of the points that the merge has kept: the curve does not rest on the others.
std::vector<PointReading> readingsOf(Session& session, const StoredSeries& stored) {
  std::set<std::pair<double, double>> merged;
  for (std::size_t i = 0; i < stored.merged.size(); ++i)
    merged.emplace(stored.merged(i, 0), stored.merged(i, 1));
  const RunJobs runs(session, stored.meter, "");
  std::vector<PointReading> found;
  for (std::size_t p = 0; p < stored.raw.size(); ++p) {
    const int part = static_cast<int>(p + 1);
    const PointArray& points = stored.raw[p];
    const auto leftOut = std::ranges::count(stored.excluded, part, &ExcludedPoint::part);
    const auto whole = points.size() + static_cast<std::size_t>(leftOut);
    const PartJobs jobs = runs.of(stored.name, part, whole);
    if (jobs.readings.empty()) continue;
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (!merged.contains({points(i, 0), points(i, 1)})) continue;
      found.push_back(
          {part, points(i, 0), points(i, 1), jobs.readings[stored.numberOf(part, i) - 1]});
    }
  }
  return found;
}

CurveOrigin originOf(const Database& lab, Session& session, const StoredSeries& stored) {
  const Details details = lab.details(stored.meter);
  const auto unit = [&](const char* key) {
    const auto found = details.find(key);
    return found == details.end() ? std::string() : found->second;
  };
  CurveOrigin origin;
  origin.stand = lab.standUncertainty(stored.meter);
  origin.roshkoUnit = unit("roshko-unit");
  origin.strouhalUnit = unit("strouhal-unit");
  origin.frequencyUnit = unit("frequency-unit");
  origin.viscosityUnit = unit("viscosity-unit");
  origin.flowUnit = unit("flow-unit");
  if (origin.stand && needsReadings(*origin.stand)) {
    origin.readings =
        session.asking("reading what the stand read for " + placeOf(stored.meter, stored.name),
                       [&] { return readingsOf(session, stored); });
  }
  return origin;
}

}  // namespace

Curve Database::curve(const Meter& meter, const std::string& series) const {
  return curve(this->series(meter, series));
}

Curve Database::curve(const StoredSeries& stored, const Observer& observer) const {
  (void)stored.storedCurve();
  return tableOf(stored, repeat(stored, {}, observer), location());
}

FittedCurve Database::fittedCurve(const Meter& meter, const std::string& series) const {
  return fittedCurve(this->series(meter, series));
}

FittedCurve Database::fittedCurve(const StoredSeries& stored, const Observer& observer) const {
  (void)stored.storedCurve();
  return fittedCurve(stored, repeat(stored, {}, observer), observer);
}

FittedCurve Database::fittedCurve(const StoredSeries& stored, const Repeated& repeated,
                                  const Observer& observer) const {
  const Curve table = tableOf(stored, repeated, location());
  CurveOrigin origin = originOf(*this, *session_, stored);
  if (!repeated.isStoredCurve()) {
    origin.stand.reset();  // the budget would lack the curve's own uncertainty
    return FittedCurve(table, stored.name, origin);
  }
  Fit fit = repeated.fit;
  fit.curve = stored.curve;  // to the last digit
  return FittedCurve(fit, origin, observer.stop);
}

}  // namespace pelmora::calibration
