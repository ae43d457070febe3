// What the uncertainty of a stored curve consists of.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/failure_answer.h"
#include "apps/pelmora/workbench/api/routes.h"
#include "report/budget_json.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace pelmora::cli::workbench {
namespace {

// The middle of the curve, in the logarithm.
double middleOf(const calibration::FittedCurve& curve) {
  return std::sqrt(curve.lowestRoshko() * curve.highestRoshko());
}

}  // namespace

http::Response getBudget(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series", "roshko", "viscosity"});
  const SeriesPlace place = placeOf(bench, arguments);
  const calibration::StoredSeries series = bench.lab().series(place.meter, place.series);
  const calibration::FittedCurve curve = bench.lab().fittedCurve(series, bench.session.observer());
  bench.session.progress().clear();
  calibration::EvaluateOptions options;
  options.viscosity = arguments.findNumber("viscosity");
  const calibration::CurveEstimate at =
      curve.at(arguments.findNumber("roshko").value_or(middleOf(curve)), options);
  nlohmann::json value{{"source", calibration::curveSourceName(curve.source())},
                       {"equation", curve.name()},
                       {"roshko", at.roshko},
                       {"strouhal", at.strouhal},
                       {"extrapolated", at.isExtrapolated}};
  report::addBudget(value, at.budget);
  return jsonAnswer(value);
}

}  // namespace pelmora::cli::workbench
