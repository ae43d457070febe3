// SPDX-License-Identifier: MIT
#include "base/readable_number.h"
#include "calibration/evaluation/fitted_curve_body.h"
#include "uncertainty/monte_carlo.h"
#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

// The slope of the straight line through the two outermost points.
double slopeBeyond(const Curve& table, double x) {
  const auto& points = table.points();
  const std::size_t k = x < points.front().roshko ? 1 : points.size() - 1;
  return (points[k].strouhal - points[k - 1].strouhal) / (points[k].roshko - points[k - 1].roshko);
}

CurveEstimate estimateOf(const FittedCurve::Body& body, const FittedCurve::Body::Place& at) {
  CurveEstimate estimate;
  estimate.roshko = at.place.roshko;
  estimate.strouhal = at.place.strouhal;
  estimate.slope = at.value.slope;
  if (at.value.uncertainty)
    estimate.budget = publicBudget(uncertainty::curveBudget(at.place, at.stand), body.hasStand);
  return estimate;
}

}  // namespace

std::string checkStandStatement(const StandStatement& statement) {
  return uncertainty::readStandUncertainty(statement.text, statement.file).name;
}

const char* curveSourceName(CurveSource source) {
  if (source == CurveSource::equation) return "equation";
  return source == CurveSource::reference ? "reference curve" : "table";
}

const char* tableReadingKey(ReadAs reading) {
  switch (reading) {
    case ReadAs::none: return "";
    case ReadAs::linear: return "linear";
    case ReadAs::log: return "log";
    case ReadAs::cubic: break;
  }
  return "cubic";
}

std::optional<ReadAs> tableReadingOf(const std::string& key) {
  for (const ReadAs each : {ReadAs::none, ReadAs::linear, ReadAs::log, ReadAs::cubic}) {
    if (key == tableReadingKey(each)) return each;
  }
  return std::nullopt;
}

std::optional<double> CurveEstimate::expandedRoshko() const {
  if (!budget || slope == 0) return std::nullopt;
  return budget->expanded / std::abs(slope);
}

FittedCurve::FittedCurve(const Fit& fit, const std::optional<StandStatement>& statement)
    : FittedCurve(fit, CurveOrigin{statement}) {}

FittedCurve::FittedCurve(const Fit& fit, const CurveOrigin& origin, const std::stop_token& stop) {
  auto function = functionOf(fit, stop);
  const auto body =
      std::make_shared<Body>(Curve(pointsWithBands(fit.curve, fit.outcome)), fit.chosen().Name,
                             fit.series, fit.settings.ratio, std::move(function), origin);
  for (const CurveWarning& warning : fit.outcome.Warnings) body->warnings.push_back(warning.Text);
  body_ = body;
}

FittedCurve::FittedCurve(const Curve& table, const std::string& series, const CurveOrigin& origin)
    : body_(std::make_shared<const Body>(table, "", series, false, functionOf(table), origin)) {}

CurveSource FittedCurve::source() const { return body_->function->source(); }
const std::string& FittedCurve::name() const { return body_->name; }
const std::vector<std::string>& FittedCurve::warnings() const { return body_->warnings; }
const Curve& FittedCurve::table() const { return body_->table; }

std::vector<double> FittedCurve::operator()(std::span<const double> roshko) const {
  std::vector<double> inside, y(roshko.size());
  for (const double x : roshko) {
    const double settled = body_->settled(x);
    if (body_->isInside(settled)) inside.push_back(settled);
  }
  const std::vector<double> found =
      inside.empty() ? std::vector<double>() : body_->function->values(inside);
  std::size_t next = 0;
  for (std::size_t i = 0; i < y.size(); ++i) {
    const bool isInside = body_->isInside(body_->settled(roshko[i]));
    y[i] = isInside ? found[next++] : body_->table(roshko[i]).strouhal;
  }
  return y;
}

std::vector<double> FittedCurve::read(std::span<const double> roshko, ReadAs reading) const {
  if (reading == ReadAs::none) return (*this)(roshko);
  const tables::TableReader read = body_->reader(reading);
  std::vector<double> y;
  for (const double x : roshko) {
    const double settled = body_->settled(x);
    y.push_back(body_->isInside(settled) ? read(settled) : body_->table(x).strouhal);
  }
  return y;
}

std::vector<double> FittedCurve::slopes(std::span<const double> roshko) const {
  std::vector<double> found;
  for (const double x : roshko) {
    const double settled = body_->settled(x);
    found.push_back(body_->isInside(settled) ? body_->function->at({&settled, 1}).front().slope
                                             : slopeBeyond(body_->table, x));
  }
  return found;
}

std::vector<CurveEstimate> FittedCurve::at(std::span<const double> roshko,
                                           const EvaluateOptions& options) const {
  std::vector<double> inside;
  for (const double x : roshko) {
    const double settled = body_->settled(x);
    if (body_->isInside(settled)) inside.push_back(settled);
  }
  std::vector<Body::Place> places;
  if (!inside.empty()) places = body_->places(inside, options);
  std::vector<CurveEstimate> estimates;
  std::size_t next = 0;
  for (const double x : roshko) {
    requireGoOn(options);
    if (body_->isInside(body_->settled(x))) {
      estimates.push_back(estimateOf(*body_, places[next++]));
    } else {
      CurveEstimate beyond;
      beyond.strouhal = body_->table(x).strouhal;
      beyond.slope = slopeBeyond(body_->table, x);
      beyond.isExtrapolated = true;
      estimates.push_back(beyond);
    }
    estimates.back().roshko = x;
  }
  return estimates;
}

CurveEstimate FittedCurve::at(double roshko, const EvaluateOptions& options) const {
  return at({&roshko, 1}, options).front();
}

std::vector<std::optional<Budget>> FittedCurve::measured(std::span<const double> roshko,
                                                         std::span<const double> strouhal,
                                                         const EvaluateOptions& options) const {
  EvaluateOptions ofCurve = options;
  ofCurve.reading = ReadAs::none;
  std::vector<std::size_t> inside;
  std::vector<double> settled;
  for (std::size_t i = 0; i < std::min(roshko.size(), strouhal.size()); ++i) {
    const double x = body_->settled(roshko[i]);
    if (!body_->isInside(x) || !std::isfinite(strouhal[i]) || strouhal[i] == 0) continue;
    inside.push_back(i);
    settled.push_back(x);
  }
  std::vector<std::optional<Budget>> budgets(roshko.size());
  if (inside.empty()) return budgets;
  const std::vector<Body::Place> places = body_->places(settled, ofCurve);
  for (std::size_t k = 0; k < inside.size(); ++k) {
    requireGoOn(options);
    const FunctionValue& value = places[k].value;
    if (!value.scatter) continue;
    uncertainty::CurvePlace place = places[k].place;
    place.strouhal = strouhal[inside[k]];
    place.operating = body_->operatingAt(roshko[inside[k]], place.strouhal, options);
    place.fitUncertainty = *value.scatter;
    place.curve = nullptr;  // the tangent, through the point
    Budget& made = budgets[inside[k]].emplace(
        publicBudget(uncertainty::curveBudget(place, body_->stand), body_->hasStand));
    made.isOfPoint = true;
    made.rows.front().cause = "scatter";
  }
  return budgets;
}

CurveEstimate FittedCurve::inverse(double strouhal, const EvaluateOptions& options) const {
  const CurveValue start = body_->table.inverse(strouhal);
  double x = start.roshko;
  if (!start.isExtrapolated && options.reading != ReadAs::linear) {
    // Every reading meets the curve at the points of the table. The answer is therefore in the same
    // segment, which bisection cannot leave.
    const auto above = [&](double place) {
      return read({&place, 1}, options.reading).front() - strouhal;
    };
    const auto& points = body_->table.points();
    const std::size_t segment = body_->segmentAt(x);
    double low = points[segment].roshko, high = points[segment + 1].roshko;
    const bool startsBelow = above(low) < 0;
    if (startsBelow != (above(high) < 0)) {
      constexpr int halvings = 60;
      for (int i = 0; i < halvings && high - low > 1e-14 * high; ++i) {
        const double middle = (low + high) / 2;
        ((above(middle) < 0) == startsBelow ? low : high) = middle;
      }
      x = (low + high) / 2;
    }
  }
  CurveEstimate found = at(x, options);
  found.strouhal = strouhal;
  found.isExtrapolated = start.isExtrapolated;
  return found;
}

MonteCarloCheck FittedCurve::monteCarlo(double roshko, const EvaluateOptions& options,
                                        std::size_t mostTrials, std::uint64_t seed) const {
  const double x = body_->settled(roshko);
  if (!body_->isInside(x)) {
    throw BadData({"the curve does not reach Roshko " + significantText(roshko, 6), "",
                   "choose one from " + significantText(lowestRoshko(), 6) + " to " +
                       significantText(highestRoshko(), 6)});
  }
  const Body::Place at = body_->places({&x, 1}, options).front();
  if (!at.value.uncertainty)
    throw BadData({"the uncertainty of the curve is not known", "", "fit the series again"});
  const uncertainty::CurveMeasurement measured = uncertainty::curveMeasurement(at.place, at.stand);
  const uncertainty::MonteCarloResult drawn =
      uncertainty::monteCarlo(measured.model, measured.inputs, measured.correlations,
                              {.mostTrials = mostTrials,
                               .probability = at.stand.probability,
                               .seed = seed,
                               .goOn = [&options] { requireGoOn(options); }});
  return {drawn.mean, drawn.standardDeviation, drawn.low, drawn.high, drawn.trials, drawn.isStable};
}

}  // namespace pelmora::calibration
