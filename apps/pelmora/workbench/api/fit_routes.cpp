// Trying a fit, and storing it with the exclusions that it is made of.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/workbench/api/comparison_json.h"
#include "apps/pelmora/workbench/api/draft.h"
#include "apps/pelmora/workbench/api/failure_answer.h"
#include "apps/pelmora/workbench/api/routes.h"
#include "apps/pelmora/workbench/api/settings_json.h"
#include "base/readable_number.h"
#include "report/json_values.h"

#include <pelmora/calibration/advice.h>
#include <pelmora/calibration/words.h>

#include <nlohmann/json.hpp>

#include <utility>

namespace pelmora::cli::workbench {
namespace {

using calibration::Fit;
using calibration::FitSettings;
using calibration::StoredSeries;
using nlohmann::json;

std::vector<DraftExclusion> exclusionsOf(const Arguments& arguments) {
  constexpr std::int64_t highestNumber = 32767;
  std::vector<DraftExclusion> list;
  for (const Arguments& point : arguments.list("excluded")) {
    point.requireOnly({"part", "number", "reason"});
    list.push_back({{static_cast<int>(point.integer("part", 1, 4)),
                     static_cast<std::size_t>(point.integer("number", 1, highestNumber))},
                    point.findText("reason").value_or("")});
  }
  return list;
}

// The fit as a command to type, for the advice.
FitCall callOf(Bench& bench, const StoredSeries& series, const FitSettings& settings) {
  FitCall call;
  call.database = bench.location();
  call.meter = series.meter.serial;
  call.series = series.name;
  call.calibration = static_cast<std::int16_t>(series.meter.calibration);
  call.tests.band = settings.band;
  call.tests.points = settings.points;
  call.min = settings.min;
  call.max = settings.max;
  call.ratio = settings.ratio;
  call.inverted = settings.inverted;
  call.ignoreResiduals = settings.ignoreResiduals;
  return call;
}

json rankingJson(const Fit& fit) {
  json list = json::array();
  for (const calibration::RankedEquation& equation : fit.equations()) {
    const bool isSolved = calibration::hasSolution(equation.outcome);
    list.push_back(
        {{"rank", equation.rank},
         {"name", equation.outcome.Name},
         {"expression", equation.outcome.Expression},
         {"verdict", calibration::verdictKey(equation.outcome.Verdict)},
         {"verdictText", calibration::verdictText(equation.outcome.Verdict)},
         {"why", calibration::rejection(equation.outcome)},
         {"adjustedR2", isSolved ? json(equation.outcome.Statistics.AdjustedRSquared) : json()},
         {"aicc", equation.outcome.Aicc ? json(*equation.outcome.Aicc) : json()},
         {"worstResidualPercent",
          isSolved ? json(equation.outcome.WorstResidualRatio * 100) : json()}});
  }
  return list;
}

json judgedJson(const Fit& fit) {
  json list = json::array();
  if (!fit.trust) return list;
  for (const calibration::JudgedPoint& point : fit.trust->judged) {
    list.push_back({{"part", point.part},
                    {"number", point.number},
                    {"sigmas", point.sigmas()},
                    {"distrusted", point.use == calibration::PointUse::distrusted}});
  }
  return list;
}

json referenceTable(const Fit& fit) {
  json list = json::array();
  if (!fit.trust) return list;
  for (const calibration::ReferenceValue& value : fit.trust->table)
    list.push_back({value.roshko, value.strouhal, value.curveSd, value.newPointSd});
  return list;
}

json previewJson(Bench& bench, const StoredSeries& stored, const Fit& fit) {
  CheckedFit checked;
  checked.fit = fit;
  if (!fit.accepted()) checked.trouble = noCurveTrouble(fit);
  json value = fitJson(checked, callOf(bench, stored, fit.settings));
  value["meter"] = report::meterJson(stored.meter);
  value["revision"] = revisionOf(bench.lab(), stored);
  value["reason"] = fit.reason();
  value["ranking"] = rankingJson(fit);
  value["judged"] = judgedJson(fit);
  value["referenceCurve"] = referenceTable(fit);
  value["confidence"] = fit.outcome.ConfidenceHalfWidth;
  value["prediction"] = fit.outcome.PredictionHalfWidth;
  value["difference"] = comparisonJson(stored.curve, fit.curve);
  return value;
}

// That points or settings allow no fit is what the preview has to say, not a wrong request.
http::Response refusedFit(const char* kind, const calibration::Failure& failure) {
  return jsonAnswer({{"refused",
                      {{"kind", kind},
                       {"what", withShortNumbers(failure.what())},
                       {"where", failure.where()},
                       {"remedy", failure.remedy()}}}});
}

// In words for the page, without options of a command.
calibration::NoFit noCurve(const StoredSeries& stored, const Fit& fit) {
  const auto advice = calibration::adviceFor(fit);
  return calibration::NoFit({"no curve was stored: " + fit.reason(), "series '" + stored.name + "'",
                             advice.empty() ? "change the settings" : advice.front().text});
}

}  // namespace

http::Response postFit(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofBody(request.body);
  arguments.requireOnly({"meter", "calibration", "series", "excluded", "settings"});
  const SeriesPlace place = placeOf(bench, arguments);
  const StoredSeries stored = bench.lab().series(place.meter, place.series);
  const StoredSeries draft =
      arguments.has("excluded") ? withExclusions(stored, exclusionsOf(arguments)) : stored;
  const FitSettings settings =
      arguments.has("settings") ? settingsOf(arguments.member("settings")) : settingsFor(stored);
  try {
    const Fit fit = bench.lab().fit(draft, settings, bench.session.observer());
    bench.session.progress().clear();
    return jsonAnswer(previewJson(bench, stored, fit));
  } catch (const calibration::OutOfRange& failure) {
    return refusedFit("outOfRange", failure);
  } catch (const calibration::BadData& failure) {
    return refusedFit("badData", failure);
  }
}

http::Response postStore(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofBody(request.body);
  arguments.requireOnly(
      {"meter", "calibration", "series", "revision", "excluded", "settings", "fit", "alsoDerived"});
  const auto wanted = exclusionsOf(arguments);
  const FitSettings settings = settingsOf(arguments.member("settings"));
  const bool fits = arguments.flag("fit", true);
  CommandChange change(bench.session, "workbench", false);
  change.begin();
  const SeriesPlace place = placeOf(bench, arguments);
  const StoredSeries stored = bench.lab().series(place.meter, place.series);
  requireRevision(bench.lab(), stored, arguments);
  storeExclusions(bench.lab(), stored, wanted, arguments.flag("alsoDerived", false));
  if (fits) {
    const Fit fit = bench.lab().fit(place.meter, place.series, settings, bench.session.observer());
    if (!fit.accepted()) throw noCurve(stored, fit);
    bench.lab().store(fit);
  }
  change.finish();
  bench.session.progress().clear();
  json value{{"meter", report::meterJson(place.meter)},
             {"series", stored.name},
             {"stored", fits},
             {"revision", revisionOf(bench.lab(), bench.lab().series(place.meter, place.series))}};
  change.addTo(value);
  return jsonAnswer(value);
}

}  // namespace pelmora::cli::workbench
