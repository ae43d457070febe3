// SPDX-License-Identifier: MIT
#include "report/json_values.h"

#include "report/json_null.h"
#include "report/report_model.h"
#include "report/verdict_words.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace pelmora::report {

using nlohmann::json;

json pointsJson(const PointArray& points) {
  json list = json::array();
  for (std::size_t i = 0; i < points.size(); ++i) list.push_back({points(i, 0), points(i, 1)});
  return list;
}

json meterJson(const calibration::Meter& meter) {
  return {{"serialNumber", meter.serial},
          {"serialNumberAdjusted", meter.adjusted},
          {"calibration", meter.calibration},
          {"meterId", meter.id}};
}

json runsJson(const std::vector<calibration::Run>& runs) {
  json list = json::array();
  for (const calibration::Run& run : runs) {
    list.push_back({{"rawPart", list.size() < 4 ? json(list.size() + 1) : json()},
                    {"fluid", run.fluid},
                    {"operator", run.operatorName},
                    {"date", run.date},
                    {"stand", run.stand},
                    {"position", run.position},
                    {"jobs", run.jobs},
                    {"points", run.points}});
  }
  return list;
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
          {"iterations", statistics.Iterations},
          {"residualSumOfSquares", statistics.ResidualSumOfSquares},
          {"aicc", orNull(equation.Aicc)},
          {"bic", orNull(equation.Bic)},
          {"linear", equation.Linear},
          {"worstResidualPercent", equation.WorstResidualRatio * 100},
          {"worstResidualRoshko", equation.WorstResidualX},
          {"parameters", parameters}};
}

json warningJson(const CurveWarning& warning) {
  return {{"kind", warningKey(warning.Kind)},
          {"fromRoshko", warning.FromX},
          {"toRoshko", warning.ToX},
          {"percent", warning.Percent},
          {"text", warning.Text}};
}

json signatureJson(const calibration::SignOff& entry, bool isValid) {
  return {{"name", entry.name},
          {"remark", entry.remark},
          {"signedAt", entry.signedAt},
          {"user", entry.userName},
          {"fingerprint", entry.fingerprint},
          {"softwareVersion", entry.softwareVersion},
          {"valid", isValid}};
}

json rawPointJson(const calibration::RawPoint& point) {
  json exclusion, reading;
  if (point.reading) {
    reading = {{"nominalFlow", orNull(point.reading->nominalFlow)},
               {"frequency", orNull(point.reading->frequency)},
               {"flow", orNull(point.reading->flow)},
               {"temperature", orNull(point.reading->temperature)},
               {"viscosity", orNull(point.reading->viscosity)}};
  }
  if (point.exclusion) {
    exclusion = {{"reason", point.exclusion->reason},
                 {"user", point.exclusion->userName},
                 {"excludedAt", point.exclusion->excludedAt}};
  }
  return {{"part", point.part},
          {"number", point.number},
          {"job", orNull(point.job)},
          {"fluid", orNull(point.fluid)},
          {"roshko", point.roshko},
          {"strouhal", point.strouhal},
          {"residualPercent", orNull(point.residualPercent)},
          {"sigmas", orNull(point.sigmas)},
          {"suspect", point.isDistrusted},
          {"state", calibration::pointStateKey(point.state)},
          {"cutPercent", orNull(point.cutPercent)},
          {"exclusion", exclusion},
          {"reading", reading}};
}

std::string jsonText(const json& value) {
  constexpr int indent = 2;
  return value.dump(indent, ' ', false, json::error_handler_t::replace) + "\n";
}

}  // namespace pelmora::report
