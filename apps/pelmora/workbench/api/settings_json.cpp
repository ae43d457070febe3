// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/settings_json.h"

#include "report/json_null.h"

#include <pelmora/calibration/failure.h>

#include <array>
#include <limits>
#include <string_view>
#include <utility>

namespace pelmora::cli::workbench {
namespace {

using calibration::BadData;
using calibration::FitSettings;
using calibration::RangePolicy;
using nlohmann::json;
using report::orNull;

constexpr std::array<std::pair<std::string_view, RangePolicy>, 3> policies{
    {{"refuse", RangePolicy::refuse},
     {"wholeRange", RangePolicy::wholeRange},
     {"extrapolate", RangePolicy::extrapolate}}};

RangePolicy policyOf(const std::string& key) {
  for (const auto& [name, policy] : policies) {
    if (name == key) return policy;
  }
  throw BadData({"'settings.outside' must be refuse, wholeRange or extrapolate", "the request",
                 "correct it"});
}

std::string keyOf(RangePolicy wanted) {
  for (const auto& [name, policy] : policies) {
    if (policy == wanted) return std::string(name);
  }
  return {};
}

calibration::Choice requiredChoice(const std::string& key) {
  if (const auto choice = calibration::choiceOf(key)) return *choice;
  throw BadData({"'settings.choose' must be trusted or adjusted-r2", "the request", "correct it"});
}

calibration::PointSpacing requiredSpacing(const std::string& key) {
  if (const auto spacing = calibration::spacingOf(key)) return *spacing;
  throw BadData({"'settings.spacing' must be usual or optimal", "the request", "correct it"});
}

struct Range {
  std::optional<double> min, max;
};

Range rangeOf(const Arguments& settings, const std::string& name) {
  const Arguments range = settings.member(name);
  range.requireOnly({"min", "max"});
  return {range.findNumber("min"), range.findNumber("max")};
}

// A band, in per cent.
void requireBand(const std::optional<double>& band, const std::string& name) {
  constexpr double widest = 100;
  if (band && (*band < 0 || *band > widest))
    throw BadData({"'settings." + name + "' must be from 0 to 100 %", "the request", "correct it"});
}

}  // namespace

json settingsJson(const FitSettings& settings) {
  return {{"band", settings.band},
          {"points", settings.points},
          {"spacing", calibration::spacingKey(settings.spacing)},
          {"range", {{"min", orNull(settings.min)}, {"max", orNull(settings.max)}}},
          {"fitRange", {{"min", orNull(settings.fitMin)}, {"max", orNull(settings.fitMax)}}},
          {"ratio", settings.ratio},
          {"inverted", settings.inverted},
          {"ignoreResiduals", settings.ignoreResiduals},
          {"mergeBand", orNull(settings.mergeBand)},
          {"cutsOverlap", settings.cutsOverlap},
          {"choose", calibration::choiceKey(settings.choice)},
          {"only", settings.only},
          {"without", settings.without},
          {"maxOrder", orNull(settings.maxOrder)},
          {"outside", keyOf(settings.outside)},
          {"equations", orNull(settings.equations.text())}};
}

FitSettings settingsOf(const Arguments& given) {
  given.requireOnly({"band", "points", "spacing", "range", "fitRange", "ratio", "inverted",
                     "ignoreResiduals", "mergeBand", "cutsOverlap", "choose", "only", "without",
                     "maxOrder", "outside", "equations"});
  constexpr std::int64_t highest = std::numeric_limits<std::int16_t>::max();
  FitSettings settings;
  settings.band = given.findNumber("band").value_or(settings.band);
  settings.mergeBand = given.findNumber("mergeBand");
  requireBand(settings.band, "band");
  requireBand(settings.mergeBand, "mergeBand");
  if (const auto points = given.findInteger("points", 2, highest))
    settings.points = static_cast<std::int16_t>(*points);
  if (const auto spacing = given.findText("spacing")) settings.spacing = requiredSpacing(*spacing);
  const Range range = rangeOf(given, "range"), fitRange = rangeOf(given, "fitRange");
  settings.min = range.min, settings.max = range.max;
  settings.fitMin = fitRange.min, settings.fitMax = fitRange.max;
  settings.ratio = given.flag("ratio", false);
  settings.inverted = given.flag("inverted", false);
  settings.ignoreResiduals = given.flag("ignoreResiduals", false);
  settings.cutsOverlap = given.flag("cutsOverlap", true);
  if (const auto choice = given.findText("choose")) settings.choice = requiredChoice(*choice);
  settings.only = given.texts("only");
  settings.without = given.texts("without");
  if (const auto order = given.findInteger("maxOrder", 0, highest))
    settings.maxOrder = static_cast<int>(*order);
  if (const auto outside = given.findText("outside")) settings.outside = policyOf(*outside);
  if (const auto equations = given.findText("equations"); equations && !equations->empty())
    settings.equations = calibration::EquationList::parse(*equations, "your equations");
  return settings;
}

FitSettings settingsFor(const calibration::StoredSeries& series) {
  if (series.settings) return calibration::settingsToRepeat(*series.settings);
  FitSettings settings;
  settings.ratio = series.name == "Ratio";
  return settings;
}

}  // namespace pelmora::cli::workbench
