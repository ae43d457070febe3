// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/drift_output.h"

#include "apps/pelmora/output/shift_output.h"
#include "report/budget_json.h"
#include "report/json_null.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace pelmora::cli {
namespace {

using calibration::DatedCurve;
using calibration::Drift;
using calibration::DriftPlace;
using calibration::DriftValue;

nlohmann::json placeJson(const Drift& drift, const DriftPlace& place) {
  nlohmann::json value{{"roshko", place.roshko}, {"values", nlohmann::json::array()}};
  for (std::size_t i = 0; i < place.values.size(); ++i) {
    const DriftValue& each = place.values[i];
    nlohmann::json one{{"calibration", drift.calibrations[i].calibration},
                       {"strouhal", each.strouhal},
                       {"percent", each.percent},
                       {"sinceFirst", judgedShiftJson(each.sinceFirst)},
                       {"sincePrevious", judgedShiftJson(each.sincePrevious)},
                       {"isBeyondLimits", each.isBeyondLimits}};
    report::addBudget(one, each.budget);
    value["values"].push_back(std::move(one));
  }
  value["controlLimits"] = nullptr;
  if (place.chart) {
    value["controlLimits"] = {{"centre", place.chart->centre},
                              {"low", place.chart->low},
                              {"high", place.chart->high},
                              {"sigma", place.chart->sigma},
                              {"fromUncertainty", place.chart->isFromUncertainty}};
  }
  value["interval"] = nullptr;
  if (place.interval) {
    value["interval"] = {{"years", place.interval->years},
                         {"isCapped", place.interval->isCapped},
                         {"ratePercentPerYear", place.interval->ratePercentPerYear},
                         {"rateUncertainty", place.interval->rateUncertainty},
                         {"dispersionPercent", place.interval->dispersionPercent},
                         {"coverageFactor", place.interval->coverageFactor}};
  }
  return value;
}

}  // namespace

nlohmann::json driftJson(const MeterDrift& result) {
  const Drift& drift = result.drift;
  nlohmann::json value{{"calibrations", nlohmann::json::array()},
                       {"places", nlohmann::json::array()},
                       {"notes", result.notes},
                       {"intervalYears", report::orNull(drift.intervalYears)},
                       {"whyNoInterval", drift.whyNoInterval},
                       {"assumptions", drift.assumptions()}};
  for (const DatedCurve& each : drift.calibrations) {
    value["calibrations"].push_back({{"calibration", each.calibration},
                                     {"date", each.date},
                                     {"years", report::orNull(each.years)}});
  }
  for (const DriftPlace& place : drift.places) value["places"].push_back(placeJson(drift, place));
  return value;
}

}  // namespace pelmora::cli
