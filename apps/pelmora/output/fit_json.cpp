// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_output.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {

using nlohmann::json;
using report::equationJson;
using report::warningJson;

json fitJson(const SeriesFit& fit) {
  json equations = json::array();
  for (auto equation = fit.outcome.Equations.rbegin(); equation != fit.outcome.Equations.rend();
       ++equation) {
    equations.push_back(equationJson(*equation));
  }
  json warnings = json::array();
  for (const CurveWarning& warning : fit.outcome.Warnings) {
    warnings.push_back(warningJson(warning));
  }
  const auto& chosen = fit.outcome.Chosen;
  return {{"series", fit.series},
          {"seriesId", fit.seriesID},
          {"stored", fit.isStored},
          {"changedMeanwhile", fit.changedMeanwhile},
          {"error", fit.trouble ? json(errorLine(*fit.trouble)) : json()},
          {"chosen", chosen ? json(fit.outcome.Equations[*chosen].Name) : json()},
          {"band", fit.options.band},
          {"ratio", fit.options.ratio},
          {"inverted", fit.options.inverted},
          {"range", {{"min", fit.min}, {"max", fit.max}}},
          {"rawPoints", fit.rawPoints},
          {"merged", pointsJson(fit.merged)},
          {"curve", pointsJson(fit.curve)},
          {"equations", equations},
          {"warnings", warnings},
          {"report", fit.report}};
}

json importJson(const ImportOutcome& import) {
  json series = json::array();
  for (const DerivedSeries& derived : import.series) {
    series.push_back({{"name", derived.name},
                      {"seriesId", derived.seriesID},
                      {"rawPoints", derived.trouble ? json() : json(derived.points)}});
  }
  const auto trouble = import.anyTrouble();
  return {{"meter", meterJson(import.meter)},
          {"newCalibration", import.meterIsNew},
          {"setups", setupsJson(import.setups)},
          {"series", series},
          {"notes", import.notes},
          {"error", trouble ? json(errorLine(*trouble)) : json()}};
}

}  // namespace pelmora::cli
