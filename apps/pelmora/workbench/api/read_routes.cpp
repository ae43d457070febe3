// Requests that read what is stored.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/drift_output.h"
#include "apps/pelmora/output/history_output.h"
#include "apps/pelmora/output/point_output.h"
#include "apps/pelmora/output/shown_units.h"
#include "apps/pelmora/output/stored_tables.h"
#include "apps/pelmora/workbench/api/comparison_json.h"
#include "apps/pelmora/workbench/api/failure_answer.h"
#include "apps/pelmora/workbench/api/routes.h"
#include "apps/pelmora/workbench/api/settings_json.h"
#include "base/version.h"
#include "report/json_null.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace pelmora::cli::workbench {
namespace {

using calibration::Database;
using calibration::Meter;
using calibration::StoredSeries;
using nlohmann::json;
using report::orNull;

// In columns: tens of thousands of points are drawn at once.
json columnsOf(const StoredSeries& series) {
  json part = json::array(), number = json::array(), roshko = json::array(),
       strouhal = json::array();
  const auto add = [&](int ofPart, std::size_t place, double x, double y) {
    part.push_back(ofPart);
    number.push_back(place);
    roshko.push_back(x);
    strouhal.push_back(y);
  };
  for (int ofPart = 1; ofPart <= 4; ++ofPart) {
    const PointArray& raw = series.raw.at(static_cast<std::size_t>(ofPart - 1));
    for (std::size_t i = 0; i < raw.size(); ++i)
      add(ofPart, series.numberOf(ofPart, i), raw(i, 0), raw(i, 1));
  }
  for (const calibration::ExcludedPoint& point : series.excluded)
    add(point.part, point.number, point.roshko, point.strouhal);
  return {{"part", std::move(part)},
          {"number", std::move(number)},
          {"roshko", std::move(roshko)},
          {"strouhal", std::move(strouhal)}};
}

json excludedJson(const StoredSeries& series) {
  json list = json::array();
  for (const calibration::ExcludedPoint& point : series.excluded) {
    list.push_back({{"part", point.part},
                    {"number", point.number},
                    {"reason", point.exclusion.reason},
                    {"user", point.exclusion.userName},
                    {"excludedAt", point.exclusion.excludedAt}});
  }
  return list;
}

json signOffsJson(const Database& lab, const StoredSeries& series) {
  json list = json::array();
  const auto entries = lab.signOffs(series);
  const std::string now = entries.empty() ? "" : signedFingerprint(series);
  for (const calibration::SignOff& entry : entries)
    list.push_back(report::signatureJson(entry, entry.fingerprint == now));
  return list;
}

json calibrationAnswer(Bench& bench, const Meter& meter) {
  const CalibrationContents contents{bench.location(), meter, bench.lab().runs(meter),
                                     bench.lab().everySeries(meter)};
  json value = calibrationValue(contents);
  for (std::size_t i = 0; i < contents.series.size(); ++i) {
    const json signatures = signOffsJson(bench.lab(), contents.series[i]);
    value["series"][i]["signed"] =
        signatures.empty() ? json() : json(signatures[0]["valid"].get<bool>());
  }
  return value;
}

}  // namespace

http::Response getState(Bench& bench, const http::Request& request) {
  Arguments::ofQuery(request.query).requireOnly({});
  return jsonAnswer({{"database", bench.location()}, {"softwareVersion", version}});
}

http::Response getMeters(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"search", "from", "limit"});
  constexpr std::int64_t most = 1000, usual = 50, highest = 1000000000;
  const auto from = arguments.findInteger("from", 0, highest).value_or(0);
  const auto limit = arguments.findInteger("limit", 1, most).value_or(usual);
  const FoundSerials found =
      bench.serials.find(bench.lab(), arguments.findText("search").value_or(""),
                         static_cast<std::size_t>(from), static_cast<std::size_t>(limit));
  return jsonAnswer(
      {{"serialNumbers", found.serials}, {"matching", found.matching}, {"total", found.total}});
}

http::Response getMeter(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter"});
  const Meter latest = bench.lab().meter(arguments.text("meter"));
  json list = json::array();
  std::vector<Meter> meters = bench.lab().calibrations(latest.serial);
  for (auto meter = meters.rbegin(); meter != meters.rend(); ++meter)
    list.push_back(calibrationAnswer(bench, *meter));
  return jsonAnswer({{"serialNumber", latest.serial}, {"calibrations", list}});
}

http::Response getSeries(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series"});
  const SeriesPlace place = placeOf(bench, arguments);
  const StoredSeries series = bench.lab().series(place.meter, place.series);
  return jsonAnswer({{"meter", report::meterJson(series.meter)},
                     {"series", series.name},
                     {"seriesId", series.id},
                     {"revision", revisionOf(bench.lab(), series)},
                     {"points", columnsOf(series)},
                     {"excluded", excludedJson(series)},
                     {"curve", report::pointsJson(series.curve)},
                     {"curveAge", calibration::curveAgeKey(series.age)},
                     {"ageWarning", orNull(series.ageWarning())},
                     {"equation", orNull(series.equation)},
                     {"settings", settingsJson(settingsFor(series))},
                     {"settingsAreKept", series.settings.has_value()},
                     {"fittedAt", series.settings ? orNull(series.settings->FittedAt) : json()},
                     {"signatures", signOffsJson(bench.lab(), series)}});
}

http::Response getRevision(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series"});
  const SeriesPlace place = placeOf(bench, arguments);
  const StoredSeries series = bench.lab().series(place.meter, place.series);
  return jsonAnswer({{"revision", revisionOf(bench.lab(), series)}});
}

http::Response getPoints(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series"});
  const SeriesPlace place = placeOf(bench, arguments);
  const StoredSeries series = bench.lab().series(place.meter, place.series);
  json list = json::array();
  const auto points = bench.lab().points(series, bench.session.observer());
  for (const auto& point : points) list.push_back(report::rawPointJson(point));
  json former = json::array();
  for (const auto& point : series.excludedBefore) {
    former.push_back(
        droppedJson({{series.name, point.part, point.number, point.roshko, point.strouhal},
                     point.job,
                     point.exclusion.reason,
                     "another program has stored the part again"}));
  }
  return jsonAnswer({{"database", bench.location()},
                     {"meter", report::meterJson(series.meter)},
                     {"series", series.name},
                     {"curve", calibration::curveAgeKey(bench.lab().curveAge(series))},
                     {"units", unitsJson(shownUnits(bench.lab(), series, {}))},
                     {"points", list},
                     {"excludedBefore", former}});
}

http::Response getCheck(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series"});
  const SeriesPlace place = placeOf(bench, arguments);
  const StoredSeries series = bench.lab().series(place.meter, place.series);
  json warnings = json::array();
  json reproduced;
  if (!series.curve.empty()) {
    const calibration::Repeated repeated = bench.lab().repeat(series);
    for (const CurveWarning& warning : repeated.fit.outcome.Warnings)
      warnings.push_back(report::warningJson(warning));
    reproduced = repeated.isStoredCurve();
  }
  return jsonAnswer({{"curveAge", calibration::curveAgeKey(bench.lab().curveAge(series))},
                     {"ageWarning", orNull(series.ageWarning())},
                     {"warnings", warnings},
                     {"reproduced", reproduced}});
}

http::Response getDrift(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "series", "limit"});
  const Meter latest = bench.lab().meter(arguments.text("meter"));
  const std::string name = arguments.text("series");
  calibration::DriftOptions options;
  options.limitPercent = arguments.findNumber("limit");
  if (options.limitPercent && *options.limitPercent <= 0)
    throw calibration::BadData({"'limit' must be above 0", "the request", "give per cent"});
  const MeterDrift drift = meterDrift(bench.session, latest.serial, name, options);
  bench.session.progress().clear();
  json changes = json::array();
  const PointArray* earlier = nullptr;
  std::vector<PointArray> tables;
  for (const calibration::DatedCurve& each : drift.drift.calibrations)
    tables.push_back(each.curve.table().table());
  for (const PointArray& table : tables) {
    changes.push_back(earlier == nullptr ? json() : comparisonJson(*earlier, table));
    earlier = &table;
  }
  json value = driftJson(drift);
  value["database"] = bench.location();
  value["serialNumber"] = latest.serial;
  value["series"] = name;
  value["changes"] = changes;
  return jsonAnswer(value);
}

http::Response getHistory(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series"});
  calibration::HistoryFilter filter;
  filter.serial = arguments.findText("meter").value_or("");
  filter.series = arguments.findText("series").value_or("");
  constexpr std::int64_t highest = 32767;
  if (const auto number = arguments.findInteger("calibration", 0, highest))
    filter.calibration = static_cast<int>(*number);
  return jsonAnswer(
      {{"database", bench.location()}, {"entries", entriesJson(bench.lab().history(filter))}});
}

}  // namespace pelmora::cli::workbench
