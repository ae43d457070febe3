// SPDX-License-Identifier: MIT
#include "apps/pelmora/fit_output.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {

using nlohmann::json;

namespace {

// Names in JSON are never changed; the words for people may be.
const char* verdictKey(EquationVerdict verdict) {
  switch (verdict) {
    case EquationVerdict::notTried: return "notTried";
    case EquationVerdict::noSolution: return "noSolution";
    case EquationVerdict::residualTestFailed: return "residualTestFailed";
    case EquationVerdict::ratioTestFailed: return "ratioTestFailed";
    case EquationVerdict::bandTestFailed: return "bandTestFailed";
    case EquationVerdict::accepted: return "accepted";
    case EquationVerdict::chosen: return "chosen";
  }
  return "unknown";
}

const char* warningKey(CurveWarningKind kind) {
  switch (kind) {
    case CurveWarningKind::pole: return "pole";
    case CurveWarningKind::oscillation: return "oscillation";
    case CurveWarningKind::fewLevels: return "fewLevels";
    case CurveWarningKind::extrapolation: return "extrapolation";
    case CurveWarningKind::tableReading: return "tableReading";
  }
  return "unknown";
}

json equationJson(const EquationOutcome& equation) {
  json parameters = json::array();
  for (const FitParameter& parameter : equation.Parameters) {
    parameters.push_back({{"name", parameter.Name},
                          {"value", parameter.Value},
                          {"standardError", parameter.StandardError}});
  }
  const FitStatistics& statistics = equation.Statistics;
  return {{"name", equation.Name},
          {"expression", equation.Expression},
          {"verdict", verdictKey(equation.Verdict)},
          {"reason", equation.Reason},
          {"r2", statistics.RSquared},
          {"adjustedR2", statistics.AdjustedRSquared},
          {"residualStandardError", statistics.ResidualStandardError},
          {"observations", statistics.Observations},
          {"worstResidualPercent", equation.WorstResidualRatio * 100},
          {"worstResidualRoshko", equation.WorstResidualX},
          {"parameters", parameters}};
}

}  // namespace

json pointsJson(const PointArray& points) {
  json list = json::array();
  for (std::size_t i = 0; i < points.size(); ++i) list.push_back({points(i, 0), points(i, 1)});
  return list;
}

json meterJson(const MeterInfo& meter) {
  return {{"serialNumber", meter.SerialNumber},
          {"serialNumberAdjusted", meter.SerialNumberAdjusted},
          {"calibration", meter.ReCalID},
          {"meterId", meter.MeterID}};
}

json setupsJson(const std::vector<CalSetupInfo>& setups) {
  json list = json::array();
  for (std::size_t k = 0; k < setups.size(); ++k) {
    const CalSetupInfo& setup = setups[k];
    list.push_back({{"rawPart", k < 4 ? json(k + 1) : json()},
                    {"fluid", setup.Fluid},
                    {"operator", setup.Operator},
                    {"date", setup.DateTaken},
                    {"stand", setup.Stand},
                    {"position", setup.Position},
                    {"jobs", setup.JobRecordIDs},
                    {"points", setup.Points}});
  }
  return list;
}

json fitJson(const SeriesFit& fit) {
  json equations = json::array();
  for (auto equation = fit.outcome.Equations.rbegin(); equation != fit.outcome.Equations.rend();
       ++equation) {
    equations.push_back(equationJson(*equation));
  }
  json warnings = json::array();
  for (const CurveWarning& warning : fit.outcome.Warnings) {
    warnings.push_back({{"kind", warningKey(warning.Kind)},
                        {"fromRoshko", warning.FromX},
                        {"toRoshko", warning.ToX},
                        {"percent", warning.Percent},
                        {"text", warning.Text}});
  }
  const auto& chosen = fit.outcome.Chosen;
  return {{"series", fit.series},
          {"seriesId", fit.seriesID},
          {"stored", fit.isStored},
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
    series.push_back(
        {{"name", derived.name}, {"seriesId", derived.seriesID}, {"rawPoints", derived.points}});
  }
  return {{"meter", meterJson(import.meter)},
          {"newCalibration", import.meterIsNew},
          {"setups", setupsJson(import.setups)},
          {"series", series},
          {"notes", import.notes},
          {"error", import.trouble ? json(errorLine(*import.trouble)) : json()}};
}

std::string jsonText(const json& value) {
  constexpr int indent = 2;
  return value.dump(indent, ' ', false, json::error_handler_t::replace) + "\n";
}

}  // namespace pelmora::cli
