// SPDX-License-Identifier: MIT
#include "calibration/evaluation/fitted_curve_body.h"

#include "base/text_case.h"
#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

using uncertainty::Cause;
using uncertainty::SeriesKind;

// The ends of a table and those of the points that it was fitted to differ by rounding.
constexpr double sameEnd = 1e-9;
constexpr int placesPerSegment = 33;
// Between two looks at a stop.
constexpr std::size_t portion = 1024;
constexpr const char *usualRoshkoUnit = "Hz/cSt", *usualStrouhalUnit = "pulses/gal";

SeriesKind seriesKindOf(const std::string& series, bool isRatio) {
  if (equalNames(series, "Rotor Sum")) return SeriesKind::quotientAB;
  if (isRatio || equalNames(series, "Ratio")) return SeriesKind::quotientBA;
  return SeriesKind::rotor;
}

// The largest error within each segment, from places that are evenly spaced in ln x.
std::vector<double> readingErrorsOf(const CurveFunction& function, std::span<const double> x,
                                    std::span<const double> y, tables::Reading reading) {
  const tables::TableReader read(x, y, reading);
  std::vector<double> places;
  for (std::size_t i = 0; i + 1 < x.size(); ++i) {
    for (int k = 1; k < placesPerSegment; ++k)
      places.push_back(x[i] * std::pow(x[i + 1] / x[i], static_cast<double>(k) / placesPerSegment));
  }
  const std::vector<double> truth = function.values(places);
  std::vector<double> errors(x.size() - 1);
  for (std::size_t i = 0; i < places.size(); ++i) {
    double& error = errors[i / (placesPerSegment - 1)];
    error = std::max(error, 100 * std::abs(read(places[i]) / truth[i] - 1));
  }
  return errors;
}

}  // namespace

void requireGoOn(const EvaluateOptions& options) {
  if (options.stop.stop_requested())
    throw Cancelled({"evaluating the curve was cancelled", "", ""});
}

tables::Reading readingOf(ReadAs reading) {
  if (reading == ReadAs::log) return tables::Reading::logarithmic;
  return reading == ReadAs::cubic ? tables::Reading::cubic : tables::Reading::linear;
}

FittedCurve::Body::Body(Curve curveTable, std::string curveName, const std::string& series,
                        bool isRatio, std::shared_ptr<const CurveFunction> behind,
                        const CurveOrigin& origin)
    : table(std::move(curveTable)),
      name(std::move(curveName)),
      kind(seriesKindOf(series, isRatio)),
      function(std::move(behind)),
      hasStand(origin.stand.has_value()),
      roshkoUnit(origin.roshkoUnit.empty() ? usualRoshkoUnit : origin.roshkoUnit),
      strouhalUnit(origin.strouhalUnit.empty() ? usualStrouhalUnit : origin.strouhalUnit),
      hertzPerCentistoke(
          units::converted(1, units::unitOf(usualRoshkoUnit), units::unitOf(roshkoUnit))),
      measuredAt(origin) {
  if (origin.stand)
    stand = uncertainty::readStandUncertainty(origin.stand->text, origin.stand->file);
}

double FittedCurve::Body::settled(double roshko) const {
  const double low = table.lowestRoshko(), high = table.highestRoshko();
  if (roshko < low && roshko >= low - sameEnd * std::abs(low)) return low;
  if (roshko > high && roshko <= high + sameEnd * std::abs(high)) return high;
  return roshko;
}

bool FittedCurve::Body::isInside(double roshko) const {
  return roshko >= table.lowestRoshko() && roshko <= table.highestRoshko();
}

tables::TableReader FittedCurve::Body::reader(ReadAs reading) const {
  const PointArray points = table.table();
  return {points.column(0), points.column(1), readingOf(reading)};
}

std::size_t FittedCurve::Body::segmentAt(double roshko) const {
  const auto& points = table.points();
  const auto behind =
      std::upper_bound(points.begin() + 1, points.end() - 1, roshko,
                       [](double x, const CurvePoint& point) { return x < point.roshko; });
  return static_cast<std::size_t>(behind - points.begin()) - 1;
}

double FittedCurve::Body::readingErrorAt(double roshko, ReadAs reading) const {
  std::vector<double>& errors = readingErrors_[static_cast<std::size_t>(reading)];
  if (errors.empty()) {
    const PointArray points = table.table();
    errors = readingErrorsOf(*function, points.column(0), points.column(1), readingOf(reading));
  }
  return errors[segmentAt(roshko)];
}

void FittedCurve::Body::addDeparture(const FunctionValue& value,
                                     uncertainty::StandUncertainty& to) const {
  if (!(value.departure > 0)) return;
  uncertainty::Component component;
  component.cause = Cause::model;
  component.label = "off reference curve";
  // Half the distance, so that U of two standard uncertainties reaches the reference curve.
  component.standard = {100 * value.departure / 2 / std::abs(value.strouhal), &units::unitOf("%")};
  component.evaluation = uncertainty::Evaluation::a;
  to.components.push_back(component);
}

uncertainty::OperatingPoint FittedCurve::Body::operatingAt(double roshko, double strouhal,
                                                           const EvaluateOptions& options) const {
  uncertainty::OperatingPoint made;
  if (options.viscosity) {
    const BodyExpansion expansion;
    const double frequency = roshko / hertzPerCentistoke * *options.viscosity /
                             expansion.roshkoFactor(options.temperatureF);
    made.viscosity = {*options.viscosity, &units::unitOf("cSt")};
    made.frequency = {frequency, &units::unitOf("Hz")};
    if (kind == SeriesKind::rotor && strouhal > 0) {
      made.flow = {frequency * expansion.strouhalFactor(options.temperatureF) / strouhal,
                   &units::unitOf(flowUnitOf(strouhalUnit))};
    }
  } else {
    made = measuredAt.of(roshko, strouhal);
  }
  // Roshko is the sum of both rotors there; each counter has its own error.
  if (kind != SeriesKind::rotor && made.frequency)
    made.frequency->value *= std::min(strouhal, 1.0) / (1 + strouhal);
  return made;
}

std::vector<FittedCurve::Body::Place> FittedCurve::Body::places(
    std::span<const double> roshko, const EvaluateOptions& options) const {
  std::optional<tables::TableReader> read;
  if (options.reading != ReadAs::none) read = reader(options.reading);
  std::vector<Place> found;
  for (std::size_t first = 0; first < roshko.size(); first += portion)
    addPlaces(roshko.subspan(first, std::min(portion, roshko.size() - first)), read, options,
              found);
  return found;
}

void FittedCurve::Body::addPlaces(std::span<const double> roshko,
                                  const std::optional<tables::TableReader>& read,
                                  const EvaluateOptions& options, std::vector<Place>& found) const {
  requireGoOn(options);
  const std::vector<FunctionValue> values = function->at(roshko);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const FunctionValue& value = values[i];
    const double x = roshko[i];
    Place made;
    made.value = value;
    made.stand = stand;
    uncertainty::CurvePlace& place = made.place;
    place.kind = kind;
    place.roshko = x;
    place.slope = value.slope;
    place.strouhal = read ? (*read)(x) : value.strouhal;
    place.fitUncertainty = value.uncertainty.value_or(0);
    place.fitDegrees = value.degrees > 0 ? value.degrees : uncertainty::knownExactly;
    place.temperatureF = options.temperatureF;
    if (read) place.readingErrorPercent = readingErrorAt(x, options.reading);
    place.curve = [y = place.strouhal, x, slope = value.slope, bend = value.bend](double at) {
      return y + (at - x) * (slope + bend * (at - x) / 2);
    };
    place.operating = operatingAt(x, place.strouhal, options);
    addDeparture(value, made.stand);
    found.push_back(std::move(made));
  }
}

std::vector<CurvePoint> pointsWithBands(const PointArray& curve, const FitOutcome& outcome) {
  std::vector<CurvePoint> points(curve.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i] = {curve(i, 0), curve(i, 1), {}, {}};
    if (i < outcome.ConfidenceHalfWidth.size())
      points[i].confidence = outcome.ConfidenceHalfWidth[i];
    if (i < outcome.PredictionHalfWidth.size())
      points[i].prediction = outcome.PredictionHalfWidth[i];
  }
  return points;
}

std::optional<uncertainty::Budget> FittedCurve::Body::budgetAt(
    double roshko, const EvaluateOptions& options) const {
  const double x = settled(roshko);
  if (!isInside(x)) return std::nullopt;
  const std::vector<Place> at = places({&x, 1}, options);
  if (!at.front().value.uncertainty) return std::nullopt;
  return uncertainty::curveBudget(at.front().place, at.front().stand);
}

}  // namespace pelmora::calibration
