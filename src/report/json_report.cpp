// SPDX-License-Identifier: MIT
#include "report/json_report.h"

#include "report/json_null.h"
#include "report/json_stream.h"
#include "report/json_uncertainty.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::report {
namespace {

using nlohmann::json;

constexpr const char* schemaName = "pelmora-report/1";

template <class Point>
json pointJson(const Point& point) {
  return {{"roshko", point.roshko},
          {"strouhal", point.strouhal},
          {"deviationPercent", orNull(point.deviationPercent)}};
}

using ListWriter = std::function<void(JsonStream&)>;

// In the order of the keys, as every object is written.
void writeObject(JsonStream& stream, const json& members,
                 const std::map<std::string, ListWriter>& lists) {
  auto list = lists.begin();
  const auto writeList = [&] {
    stream.key(list->first);
    list->second(stream);
    ++list;
  };
  stream.beginObject();
  for (const auto& [key, value] : members.items()) {
    while (list != lists.end() && list->first < key) writeList();
    stream.key(key);
    stream.value(value);
  }
  while (list != lists.end()) writeList();
  stream.end();
}

// As the raw tables hold them: without the excluded points.
void writeParts(JsonStream& stream, const Report& report, const std::vector<RawPart>& parts) {
  stream.beginList();
  for (const RawPart& part : parts) {
    const auto points = [&](JsonStream& list) {
      list.beginList();
      for (const MeasuredPoint& point : part.points) {
        report.requireGoOn();
        if (point.isExcluded()) continue;
        json entry = pointJson(point);
        entry["cut"] = point.isCut();
        list.value(entry);
      }
      list.end();
    };
    writeObject(stream, {{"part", part.number}, {"fluid", orNull(part.fluid)}},
                {{"points", points}});
  }
  stream.end();
}

void writeRawPoints(JsonStream& stream, const Report& report, const std::vector<RawPart>& parts) {
  stream.beginList();
  for (const RawPart& part : parts) {
    for (const MeasuredPoint& point : part.points) {
      report.requireGoOn();
      json entry = rawPointJson(point);
      entry["deviationPercent"] = orNull(point.deviationPercent);
      addUncertainty(entry, point.uncertainty);
      stream.value(entry);
    }
  }
  stream.end();
}

json resultJson(const SeriesResult& result) {
  json flows = json::array();
  for (const FlowResult& flow : result.flows) {
    flows.push_back({{"part", flow.part},
                     {"fluid", orNull(flow.fluid)},
                     {"nominalFlow", flow.nominalFlow},
                     {"points", flow.points},
                     {"meanFactor", flow.meanFactor},
                     {"repeatabilityPercent", orNull(flow.repeatabilityPercent)},
                     {"hysteresisPercent", orNull(flow.hysteresisPercent)}});
  }
  return {{"used", result.used},
          {"cut", result.cut},
          {"excluded", result.excluded},
          {"outsideRange", result.outside},
          {"distrusted", result.distrusted},
          {"lowestRoshko", orNull(result.lowestRoshko)},
          {"highestRoshko", orNull(result.highestRoshko)},
          {"lowestFlow", orNull(result.lowestFlow)},
          {"highestFlow", orNull(result.highestFlow)},
          {"turndown", orNull(result.turndown)},
          {"meanFactor", orNull(result.meanFactor)},
          {"linearityPercent", orNull(result.linearityPercent)},
          {"largestDeviationPercent", orNull(result.worstPercent)},
          {"largestDeviationRoshko", result.worstPercent ? json(result.worstRoshko) : json()},
          {"repeatabilityPercent", orNull(result.repeatabilityPercent)},
          {"hysteresisPercent", orNull(result.hysteresisPercent)},
          {"limitPercent", orNull(result.limitPercent)},
          {"passes", orNull(result.passes)},
          {"flows", flows}};
}

json attemptJson(const std::optional<Attempt>& attempt) {
  if (!attempt) return nullptr;
  return {{"equation", attempt->equation},
          {"accepted", attempt->isAccepted},
          {"reason", orNull(attempt->reason)},
          {"curve", pointsJson(attempt->curve)}};
}

json curveJson(const SeriesReport& series) {
  json list = json::array();
  for (const CurvePoint& point : series.curve) {
    list.push_back({{"roshko", point.roshko},
                    {"strouhal", point.strouhal},
                    {"confidenceHalfWidth", orNull(point.confidence)},
                    {"predictionHalfWidth", orNull(point.prediction)}});
    const auto& uncertainties = series.uncertainty.curve;
    const std::size_t i = list.size() - 1;
    addUncertainty(list.back(), i < uncertainties.size() ? uncertainties[i] : std::nullopt);
  }
  return list;
}

json settingsJson(const SeriesReport& series) {
  const CurveSettings& settings = series.settings;
  return {{"kept", series.settingsAreKept},
          {"bandPercent", settings.BandPercent},
          {"points", settings.Points},
          {"min", orNull(settings.Min)},
          {"max", orNull(settings.Max)},
          {"ratio", settings.RatioCurve},
          {"inverted", settings.Inverted},
          {"ignoreResiduals", settings.IgnoreResiduals},
          {"choose", settings.Choice.empty() ? "adjusted-r2" : settings.Choice},
          {"fitMin", orNull(settings.FitMin)},
          {"fitMax", orNull(settings.FitMax)},
          {"only", settings.Only},
          {"without", settings.Without},
          {"maxOrder", orNull(settings.MaxOrder)},
          {"mergeBand", orNull(settings.MergeBandPercent)},
          {"cutsOverlap", !settings.KeepsOverlap},
          {"spacing", settings.Spacing.empty() ? "usual" : settings.Spacing},
          {"equations", orNull(settings.Equations)},
          {"softwareVersion", orNull(settings.SoftwareVersion)},
          {"fittedAt", orNull(settings.FittedAt)}};
}

json shiftJson(const Shift& shift) {
  return {{"roshko", shift.roshko}, {"percent", shift.percent}};
}

json comparisonJson(const PreviousCurve& comparison) {
  json shifts = json::array();
  for (const Shift& shift : comparison.shifts) shifts.push_back(shiftJson(shift));
  const bool isEmpty = comparison.shifts.empty();
  return {{"calibration", comparison.calibration},
          {"date", orNull(comparison.date)},
          {"shifts", shifts},
          {"meanPercent", isEmpty ? json() : json(comparison.meanPercent)},
          {"lowest", isEmpty ? json() : shiftJson(comparison.lowest)},
          {"highest", isEmpty ? json() : shiftJson(comparison.highest)}};
}

json historyJson(const std::vector<calibration::HistoryEntry>& history) {
  json list = json::array();
  for (const calibration::HistoryEntry& entry : history) {
    list.push_back({{"entry", entry.id},
                    {"changedAt", entry.changedAt},
                    {"command", entry.command},
                    {"series", orNull(entry.series)},
                    {"user", entry.userName},
                    {"softwareVersion", entry.version}});
  }
  return list;
}

void writeMerged(JsonStream& stream, const Report& report, const std::vector<MergedPoint>& points) {
  stream.beginList();
  for (const MergedPoint& point : points) {
    report.requireGoOn();
    stream.value(pointJson(point));
  }
  stream.end();
}

void writeSeries(JsonStream& stream, const Report& report, const SeriesReport& series) {
  json equations = json::array(), remarks = json::array(), signatures = json::array();
  for (const RankedEquation& equation : series.equations) {
    equations.push_back(equationJson(equation.outcome));
    equations.back()["rank"] = equation.rank;
    equations.back()["covariance"] = equation.outcome.Covariance;
  }
  for (const Remark& remark : series.remarks)
    remarks.push_back({{"kind", remark.kind}, {"text", remark.text}});
  for (const Signature& signature : series.signatures)
    signatures.push_back(signatureJson(signature.entry, signature.isValid));
  const json members{{"name", series.name},
                     {"seriesId", series.seriesID},
                     {"rawDataSha256", series.rawDataHash},
                     {"result", resultJson(series.result)},
                     {"attempt", attemptJson(series.attempt)},
                     {"curveAge", calibration::curveAgeKey(series.curveAge)},
                     {"curve", curveJson(series)},
                     {"uncertainty", uncertaintyJson(series.uncertainty, series.pointUncertainty)},
                     {"settings", settingsJson(series)},
                     {"equations", equations},
                     {"chosen", orNull(series.chosen)},
                     {"warnings", remarks},
                     {"report", series.storedText},
                     {"previous", series.previous ? comparisonJson(*series.previous) : json()},
                     {"signatures", signatures}};
  writeObject(stream, members,
              {{"raw", [&](JsonStream& list) { writeParts(list, report, series.parts); }},
               {"rawPoints", [&](JsonStream& list) { writeRawPoints(list, report, series.parts); }},
               {"merged", [&](JsonStream& list) { writeMerged(list, report, series.merged); }}});
}

}  // namespace

std::string jsonReport(const Report& report) {
  std::string text;
  JsonStream stream([&](std::string_view piece) { text += piece; });
  const auto writeEverySeries = [&](JsonStream& list) {
    list.beginList();
    for (const SeriesReport& series : report.series) writeSeries(list, report, series);
    list.end();
  };
  writeObject(stream,
              {{"schema", schemaName},
               {"database", report.database},
               {"softwareVersion", report.softwareVersion},
               {"createdAt", report.createdAt},
               {"meter", meterJson(report.meter)},
               {"laboratory", report.laboratory},
               {"details", report.details},
               {"setups", runsJson(report.runs)},
               {"rawDataSha256", report.rawDataHash},
               {"history", historyJson(report.history)}},
              {{"series", writeEverySeries}});
  return text;
}

}  // namespace pelmora::report
