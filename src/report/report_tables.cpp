// SPDX-License-Identifier: MIT
#include "report/report_tables.h"

#include "report/point_tables.h"
#include "report/report_details.h"
#include "report/table_values.h"
#include "report/text_list.h"
#include "report/uncertainty_tables.h"
#include "report/verdict_words.h"

#include <sstream>

namespace pelmora::report {
namespace {

ReportTable calibrationTable(const Report& report) {
  const calibration::Meter& meter = report.meter;
  return {"calibration",
          {"serialNumber", "serialNumberAdjusted", "calibration", "database", "softwareVersion",
           "createdAt", "rawDataSha256"},
          {{textCell(meter.serial), textCell(meter.adjusted), wholeCell(meter.calibration),
            textCell(report.database), textCell(report.softwareVersion), textCell(report.createdAt),
            textCell(report.rawDataHash)}}};
}

ReportTable setupsTable(const Report& report) {
  ReportTable table{
      "setups", {"part", "fluid", "jobs", "operator", "date", "stand", "position", "count"}, {}};
  for (std::size_t k = 0; k < report.runs.size(); ++k) {
    const calibration::Run& run = report.runs[k];
    table.rows.push_back({k < 4 ? wholeCell(static_cast<std::int64_t>(k) + 1) : Value(),
                          textCell(run.fluid), textCell(joined(run.jobs)),
                          textCell(run.operatorName), textCell(run.date), wholeCell(run.stand),
                          wholeCell(run.position),
                          wholeCell(static_cast<std::int64_t>(run.points))});
  }
  return table;
}

ReportTable detailsTable(const Report& report) {
  ReportTable table{"details", {"detail", "label", "value"}, {}};
  for (const calibration::DetailField& field : calibration::detailFields()) {
    const std::string value = detailOf(report, field.key);
    if (!value.empty()) table.rows.push_back({Value(field.key), Value(field.label), Value(value)});
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
    const auto shift = [&](double value) { return hasShift ? numberCell(value) : Value(); };
    const PreviousCurve previous = series.previous.value_or(PreviousCurve());
    table.rows.push_back({textCell(series.name),
                          textCell(series.chosen),
                          numberCell(settings.BandPercent),
                          wholeCell(settings.Points),
                          numberCell(settings.Min),
                          numberCell(settings.Max),
                          wholeCell(settings.RatioCurve),
                          wholeCell(settings.Inverted),
                          wholeCell(settings.IgnoreResiduals),
                          wholeCell(series.settingsAreKept),
                          textCell(settings.SoftwareVersion),
                          textCell(settings.FittedAt),
                          textCell(series.rawDataHash),
                          series.previous ? wholeCell(previous.calibration) : Value(),
                          textCell(previous.date),
                          shift(previous.meanPercent),
                          shift(previous.lowest.percent),
                          shift(previous.highest.percent),
                          Value(settings.Choice.empty() ? "adjusted-r2" : settings.Choice),
                          Value(calibration::curveAgeKey(series.curveAge))});
  }
  return table;
}

ReportTable curve(const Report& report) {
  ReportTable table{
      "curve",
      {"series", "number", "roshko", "strouhal", "confidenceHalfWidth", "predictionHalfWidth"},
      {}};
  for (const std::string& name : uncertaintyColumns()) table.columns.push_back(name);
  for (const SeriesReport& series : report.series) {
    for (std::size_t i = 0; i < series.curve.size(); ++i) {
      const CurvePoint& point = series.curve[i];
      table.rows.push_back({textCell(series.name), wholeCell(static_cast<std::int64_t>(i) + 1),
                            numberCell(point.roshko), numberCell(point.strouhal),
                            numberCell(point.confidence), numberCell(point.prediction)});
      const auto& uncertainties = series.uncertainty.curve;
      appendCells(table.rows.back(),
                  uncertaintyCells(i < uncertainties.size() ? uncertainties[i] : std::nullopt));
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
          {textCell(series.name), wholeCell(ranked.rank), textCell(equation.Name),
           textCell(equation.Expression), Value(verdictKey(equation.Verdict)),
           textCell(equation.Reason), wholeCell(s.Observations), numberCell(s.RSquared),
           numberCell(s.AdjustedRSquared), numberCell(s.ResidualStandardError),
           numberCell(s.ResidualSumOfSquares), numberCell(equation.Aicc), numberCell(equation.Bic),
           numberCell(equation.WorstResidualRatio * 100), numberCell(equation.WorstResidualX)});
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
        table.rows.push_back({textCell(series.name), textCell(ranked.outcome.Name),
                              textCell(parameter.Name), numberCell(parameter.Value),
                              numberCell(parameter.StandardError)});
      }
    }
  }
  return table;
}

ReportTable warnings(const Report& report) {
  ReportTable table{"warnings", {"series", "kind", "text"}, {}};
  for (const SeriesReport& series : report.series) {
    for (const Remark& remark : series.remarks)
      table.rows.push_back({textCell(series.name), textCell(remark.kind), textCell(remark.text)});
  }
  return table;
}

ReportTable shifts(const Report& report) {
  ReportTable table{"shifts", {"series", "roshko", "percent"}, {}};
  for (const SeriesReport& series : report.series) {
    if (!series.previous) continue;
    for (const Shift& shift : series.previous->shifts)
      table.rows.push_back(
          {textCell(series.name), numberCell(shift.roshko), numberCell(shift.percent)});
  }
  return table;
}

ReportTable signatureTable(const Report& report) {
  ReportTable table{
      "signatures",
      {"series", "name", "signedAt", "valid", "remark", "user", "fingerprint", "softwareVersion"},
      {}};
  for (const SeriesReport& series : report.series) {
    for (const auto& [entry, isValid] : series.signatures) {
      table.rows.push_back({textCell(series.name), textCell(entry.name), textCell(entry.signedAt),
                            wholeCell(isValid), textCell(entry.remark), textCell(entry.userName),
                            textCell(entry.fingerprint), textCell(entry.softwareVersion)});
    }
  }
  return table;
}

ReportTable history(const Report& report) {
  ReportTable table{
      "history", {"entry", "changedAt", "command", "series", "user", "softwareVersion"}, {}};
  for (const calibration::HistoryEntry& entry : report.history) {
    table.rows.push_back({wholeCell(entry.id), textCell(entry.changedAt), textCell(entry.command),
                          textCell(entry.series), textCell(entry.userName),
                          textCell(entry.version)});
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
      table.rows.push_back({textCell(series.name), wholeCell(++count), textCell(line)});
  }
  return table;
}

}  // namespace

std::vector<ReportTable> reportTables(const Report& report) {
  return {calibrationTable(report), detailsTable(report), setupsTable(report),
          resultsTable(report),     flowsTable(report),   seriesTable(report),
          pointsTable(report),      mergedTable(report),  curve(report),
          uncertaintyTable(report), budgetTable(report),  equations(report),
          parameters(report),       warnings(report),     shifts(report),
          signatureTable(report),   history(report),      reports(report)};
}

}  // namespace pelmora::report
