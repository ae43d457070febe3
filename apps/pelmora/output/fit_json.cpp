// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_output.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {

using nlohmann::json;
using report::equationJson;
using report::warningJson;

json fitJson(const CheckedFit& checked) {
  const calibration::Fit& fit = checked.fit;
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
          {"stored", checked.isStored},
          {"changedMeanwhile", checked.changedMeanwhile},
          {"error", checked.trouble ? json(errorLine(*checked.trouble)) : json()},
          {"chosen", chosen ? json(fit.outcome.Equations[*chosen].Name) : json()},
          {"band", fit.settings.band},
          {"ratio", fit.settings.ratio},
          {"inverted", fit.settings.inverted},
          {"range", {{"min", fit.min}, {"max", fit.max}}},
          {"rawPoints", fit.rawPoints},
          {"merged", pointsJson(fit.merged)},
          {"curve", pointsJson(fit.curve)},
          {"equations", equations},
          {"warnings", warnings},
          {"report", fit.report}};
}

}  // namespace pelmora::cli
