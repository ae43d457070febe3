// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_output.h"

#include "report/json_null.h"

#include <pelmora/calibration/words.h>

#include <nlohmann/json.hpp>

namespace pelmora::cli {

using nlohmann::json;
using report::equationJson;
using report::orNull;
using report::warningJson;

namespace {

json cutJson(const calibration::Fit& fit) {
  json list = json::array();
  for (const calibration::CutPoint& point : fit.cut) {
    list.push_back({{"part", point.part},
                    {"number", point.number},
                    {"roshko", point.roshko},
                    {"strouhal", point.strouhal},
                    {"offPercent", orNull(point.offPercent)}});
  }
  return list;
}

json referenceJson(const calibration::Fit& fit) {
  if (!fit.trust) return {};
  const calibration::Trust& trust = *fit.trust;
  return {{"points", trust.points},       {"flows", trust.flows},
          {"relative", trust.isRelative}, {"lengthDecades", trust.lengthDecades},
          {"noiseHigh", trust.noiseHigh}, {"noiseLow", trust.noiseLow}};
}

json adviceJson(const std::vector<AdvisedStep>& steps) {
  json list = json::array();
  for (const AdvisedStep& step : steps) {
    json points = json::array();
    for (const calibration::JudgedPoint& point : step.advice.points) {
      points.push_back({{"part", point.part},
                        {"number", point.number},
                        {"roshko", point.roshko},
                        {"strouhal", point.strouhal},
                        {"sigmas", point.sigmas()}});
    }
    list.push_back({{"kind", calibration::adviceKey(step.advice.kind)},
                    {"text", step.advice.text},
                    {"commands", step.commands},
                    {"points", points},
                    {"measure", step.advice.measure}});
  }
  return list;
}

}  // namespace

json fitJson(const CheckedFit& checked, const FitCall& call) {
  const calibration::Fit& fit = checked.fit;
  const calibration::FitSettings& settings = fit.settings;
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
          {"band", settings.band},
          {"ratio", settings.ratio},
          {"inverted", settings.inverted},
          {"choose", calibration::choiceKey(settings.choice)},
          {"only", settings.only},
          {"without", settings.without},
          {"maxOrder", orNull(settings.maxOrder)},
          {"fitRange", {{"min", orNull(settings.fitMin)}, {"max", orNull(settings.fitMax)}}},
          {"mergeBand", orNull(settings.mergeBand)},
          {"cutsOverlap", settings.cutsOverlap},
          {"spacing", calibration::spacingKey(settings.spacing)},
          {"range", {{"min", fit.min}, {"max", fit.max}}},
          {"rawPoints", fit.rawPoints},
          {"merged", pointsJson(fit.merged)},
          {"fittedPoints", fit.fitted.size()},
          {"cut", cutJson(fit)},
          {"reference", referenceJson(fit)},
          {"curve", pointsJson(fit.curve)},
          {"equations", equations},
          {"warnings", warnings},
          {"advice", adviceJson(stepsFor(fit, call))},
          {"report", fit.report}};
}

}  // namespace pelmora::cli
