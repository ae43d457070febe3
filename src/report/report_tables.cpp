// SPDX-License-Identifier: MIT
#include "report/report_tables.h"

#include "report/text_list.h"
#include "report/verdict_words.h"

#include <cmath>
#include <sstream>

namespace pelmora::report {
namespace {

Value number(double value) { return std::isfinite(value) ? Value(value) : Value(); }
Value number(const std::optional<double>& value) { return value ? number(*value) : Value(); }
Value whole(std::int64_t value) { return value; }
Value text(const std::string& value) { return value.empty() ? Value() : Value(value); }

ReportTable calibrationTable(const Report& report) {
  const MeterInfo& meter = report.meter;
  return {"calibration",
          {"serialNumber", "serialNumberAdjusted", "calibration", "database", "softwareVersion",
           "createdAt", "rawDataSha256"},
          {{text(meter.SerialNumber), text(meter.SerialNumberAdjusted), whole(meter.ReCalID),
            text(report.database), text(report.softwareVersion), text(report.createdAt),
            text(report.rawDataHash)}}};
}

ReportTable setupsTable(const Report& report) {
  ReportTable table{
      "setups", {"part", "fluid", "jobs", "operator", "date", "stand", "position", "count"}, {}};
  for (std::size_t k = 0; k < report.setups.size(); ++k) {
    const CalSetupInfo& setup = report.setups[k];
    table.rows.push_back({k < 4 ? whole(static_cast<std::int64_t>(k) + 1) : Value(),
                          text(setup.Fluid), text(joined(setup.JobRecordIDs)), text(setup.Operator),
                          text(setup.DateTaken), whole(setup.Stand), whole(setup.Position),
                          whole(static_cast<std::int64_t>(setup.Points))});
  }
  return table;
}

ReportTable seriesTable(const Report& report) {
  ReportTable table{"series",
                    {"series",
                     "chosen",
                     "bandPercent",
                     "count",
                     "min",
                     "max",
                     "ratio",
                     "inverted",
                     "ignoreResiduals",
                     "settingsKept",
                     "softwareVersion",
                     "fittedAt",
                     "rawDataSha256",
                     "previousCalibration",
                     "date",
                     "meanShiftPercent",
                     "lowestShiftPercent",
                     "highestShiftPercent",
                     "choose",
                     "curveAge"},
                    {}};
  for (const SeriesReport& series : report.series) {
    const CurveSettings& settings = series.settings;
    const bool hasShift = series.previous && !series.previous->shifts.empty();
    const auto shift = [&](double value) { return hasShift ? number(value) : Value(); };
    const PreviousCurve previous = series.previous.value_or(PreviousCurve());
    table.rows.push_back({text(series.name),
                          text(series.chosen),
                          number(settings.BandPercent),
                          whole(settings.Points),
                          number(settings.Min),
                          number(settings.Max),
                          whole(settings.RatioCurve),
                          whole(settings.Inverted),
                          whole(settings.IgnoreResiduals),
                          whole(series.settingsAreKept),
                          text(settings.SoftwareVersion),
                          text(settings.FittedAt),
                          text(series.rawDataHash),
                          series.previous ? whole(previous.reCalID) : Value(),
                          text(previous.date),
                          shift(previous.meanPercent),
                          shift(previous.lowest.percent),
                          shift(previous.highest.percent),
                          Value(settings.Choice.empty() ? "adjusted-r2" : settings.Choice),
                          Value(calibration::curveAgeKey(series.curveAge))});
  }
  return table;
}

ReportTable points(const Report& report) {
  ReportTable table{
      "points",
      {"series", "kind", "part", "fluid", "cut", "roshko", "strouhal", "deviationPercent"},
      {}};
  for (const SeriesReport& series : report.series) {
    for (const RawPart& part : series.parts) {
      for (const MeasuredPoint& point : part.points) {
        table.rows.push_back({text(series.name), Value("raw"), whole(part.number), text(part.fluid),
                              whole(point.isCut), number(point.roshko), number(point.strouhal),
                              number(point.deviationPercent)});
      }
    }
    for (const MeasuredPoint& point : series.merged) {
      table.rows.push_back({text(series.name), Value("merged"), Value(), Value(), Value(),
                            number(point.roshko), number(point.strouhal),
                            number(point.deviationPercent)});
    }
  }
  return table;
}

// Every raw point, those that were left out too.
ReportTable rawPoints(const Report& report) {
  ReportTable table{
      "rawPoints",
      {"series", "part", "number", "job", "fluid", "roshko", "strouhal", "residualPercent",
       "sigmas", "suspect", "state", "cutPercent", "reason", "user", "excludedAt"},
      {}};
  for (const SeriesReport& series : report.series) {
    for (const calibration::RawPoint& point : series.points) {
      const calibration::Exclusion exclusion = point.exclusion.value_or(calibration::Exclusion());
      table.rows.push_back(
          {text(series.name), whole(point.part), whole(static_cast<std::int64_t>(point.number)),
           text(point.job), text(point.fluid), number(point.roshko), number(point.strouhal),
           number(point.residualPercent), number(point.sigmas), whole(point.isDistrusted),
           Value(calibration::pointStateKey(point.state)), number(point.cutPercent),
           text(exclusion.reason), text(exclusion.userName), text(exclusion.excludedAt)});
    }
  }
  return table;
}

ReportTable curve(const Report& report) {
  ReportTable table{
      "curve",
      {"series", "number", "roshko", "strouhal", "confidenceHalfWidth", "predictionHalfWidth"},
      {}};
  for (const SeriesReport& series : report.series) {
    for (std::size_t i = 0; i < series.curve.size(); ++i) {
      const CurvePoint& point = series.curve[i];
      table.rows.push_back({text(series.name), whole(static_cast<std::int64_t>(i) + 1),
                            number(point.roshko), number(point.strouhal), number(point.confidence),
                            number(point.prediction)});
    }
  }
  return table;
}

ReportTable equations(const Report& report) {
  ReportTable table{
      "equations",
      {"series", "rank", "equation", "expression", "verdict", "reason", "observations", "r2",
       "adjustedR2", "residualStandardError", "residualSumOfSquares", "aicc", "bic",
       "worstResidualPercent", "worstResidualRoshko"},
      {}};
  for (const SeriesReport& series : report.series) {
    for (const RankedEquation& ranked : series.equations) {
      const EquationOutcome& equation = ranked.outcome;
      const FitStatistics& s = equation.Statistics;
      table.rows.push_back(
          {text(series.name), whole(ranked.rank), text(equation.Name), text(equation.Expression),
           Value(verdictKey(equation.Verdict)), text(equation.Reason), whole(s.Observations),
           number(s.RSquared), number(s.AdjustedRSquared), number(s.ResidualStandardError),
           number(s.ResidualSumOfSquares), number(equation.Aicc), number(equation.Bic),
           number(equation.WorstResidualRatio * 100), number(equation.WorstResidualX)});
    }
  }
  return table;
}

ReportTable parameters(const Report& report) {
  ReportTable table{
      "parameters", {"series", "equation", "parameter", "value", "standardError"}, {}};
  for (const SeriesReport& series : report.series) {
    for (const RankedEquation& ranked : series.equations) {
      for (const FitParameter& parameter : ranked.outcome.Parameters) {
        table.rows.push_back({text(series.name), text(ranked.outcome.Name), text(parameter.Name),
                              number(parameter.Value), number(parameter.StandardError)});
      }
    }
  }
  return table;
}

ReportTable warnings(const Report& report) {
  ReportTable table{"warnings", {"series", "kind", "text"}, {}};
  for (const SeriesReport& series : report.series) {
    for (const Remark& remark : series.remarks)
      table.rows.push_back({text(series.name), text(remark.kind), text(remark.text)});
  }
  return table;
}

ReportTable shifts(const Report& report) {
  ReportTable table{"shifts", {"series", "roshko", "percent"}, {}};
  for (const SeriesReport& series : report.series) {
    if (!series.previous) continue;
    for (const Shift& shift : series.previous->shifts)
      table.rows.push_back({text(series.name), number(shift.roshko), number(shift.percent)});
  }
  return table;
}

// A row for each line: a cell of a spreadsheet holds 32767 characters at most.
ReportTable reports(const Report& report) {
  ReportTable table{"reports", {"series", "number", "text"}, {}};
  for (const SeriesReport& series : report.series) {
    std::istringstream lines(series.storedText);
    std::int64_t count = 0;
    for (std::string line; std::getline(lines, line);)
      table.rows.push_back({text(series.name), whole(++count), text(line)});
  }
  return table;
}

}  // namespace

std::vector<ReportTable> reportTables(const Report& report) {
  return {calibrationTable(report), setupsTable(report), seriesTable(report), points(report),
          rawPoints(report),        curve(report),       equations(report),   parameters(report),
          warnings(report),         shifts(report),      reports(report)};
}

}  // namespace pelmora::report
