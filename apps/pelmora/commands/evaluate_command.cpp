// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/report_source.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/build_report.h"
#include "curves/curve_evaluation.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

struct EvaluateOptions {
  DatabaseOption curves;
  std::string meter, series;
  std::vector<std::string> numbers;
  std::int16_t reCalID = -1;
  bool isInverse = false, asJson = false;
};

report::SeriesReport seriesWithCurve(CurveSession& session, const MeterInfo& meter,
                                     const std::string& series) {
  auto report = report::buildReport(reportInput(session, meter, {series}, {}));
  if (report.series.front().curve.size() > 1) return std::move(report.series.front());
  throw Trouble(ExitCode::badInput,
                "series '" + series + "' of meter '" + meter.SerialNumber + "' has no stored curve",
                "fit it with 'pelmora fit'");
}

std::vector<calibration::CurveValue> valuesOf(const EvaluateOptions& options,
                                              const report::SeriesReport& series) {
  std::vector<calibration::CurveValue> values;
  for (const std::string& text : options.numbers) {
    const double number = numberOption(options.isInverse ? "STROUHAL" : "ROSHKO", text);
    try {
      values.push_back(options.isInverse ? calibration::roshkoAt(series.curve, number)
                                         : calibration::strouhalAt(series.curve, number));
    } catch (const Error& error) {
      throw Trouble(
          ExitCode::badInput,
          "series '" + series.name + "' cannot be evaluated: " + oneLine(error.what()),
          options.isInverse ? "look for Strouhal at given Roshko instead" : "fit it again");
    }
  }
  return values;
}

std::string halfWidth(const std::optional<double>& width) {
  return width ? significantText(*width, 3) : "-";
}

std::string valuesText(const EvaluateOptions& options, const report::SeriesReport& series,
                       const std::vector<calibration::CurveValue>& values) {
  const auto right = TextTable::Align::right;
  const std::string of = options.isInverse ? "Roshko" : "Strouhal";
  TextTable table({{options.isInverse ? "Strouhal" : "Roshko", right},
                   {of, right},
                   {"95 % confidence +-", right},
                   {"95 % prediction +-", right},
                   {""}});
  bool isAnyExtrapolated = false;
  for (const calibration::CurveValue& value : values) {
    isAnyExtrapolated |= value.isExtrapolated;
    const std::string roshko = significantText(value.roshko, 8),
                      strouhal = significantText(value.strouhal, 8);
    table.addRow({options.isInverse ? strouhal : roshko, options.isInverse ? roshko : strouhal,
                  halfWidth(value.confidence), halfWidth(value.prediction),
                  value.isExtrapolated ? "extrapolated" : ""});
  }
  std::string text = table.text();
  if (!isAnyExtrapolated) return text;
  return text + "\n" +
         wrapped("Extrapolated: beyond the curve, which reaches from Roshko " +
                     significantText(series.curve.front().roshko, 6) + " to " +
                     significantText(series.curve.back().roshko, 6) +
                     "; the straight line of its last two points, and nobody knows how far off.",
                 0);
}

nlohmann::json numberOrNull(const std::optional<double>& number) {
  return number ? nlohmann::json(*number) : nlohmann::json();
}

nlohmann::json valuesJson(const std::vector<calibration::CurveValue>& values) {
  nlohmann::json list = nlohmann::json::array();
  for (const calibration::CurveValue& value : values) {
    list.push_back({{"roshko", value.roshko},
                    {"strouhal", value.strouhal},
                    {"confidenceHalfWidth", numberOrNull(value.confidence)},
                    {"predictionHalfWidth", numberOrNull(value.prediction)},
                    {"extrapolated", value.isExtrapolated}});
  }
  return list;
}

void evaluate(const EvaluateOptions& options) {
  CurveSession session(options.curves, Access::read);
  const MeterInfo meter = session.requireMeter(options.meter, options.reCalID);
  const report::SeriesReport series = seriesWithCurve(session, meter, options.series);
  const std::vector<calibration::CurveValue> values = valuesOf(options, series);
  session.progress().clear();
  if (!options.asJson) return printData(valuesText(options, series, values));
  printData(report::jsonText({{"database", session.path()},
                              {"meter", report::meterJson(meter)},
                              {"series", series.name},
                              {"halfWidthsOf", options.isInverse ? "roshko" : "strouhal"},
                              {"values", valuesJson(values)}}));
}

}  // namespace

void addEvaluateCommand(Program& program) {
  Command command =
      program.add("evaluate", "Read a stored curve at given Roshko numbers, with its uncertainty");
  const auto options = std::make_shared<EvaluateOptions>();
  addDatabase(command, options->curves);
  command.addValues({"X", "NUMBER", "Roshko numbers; with --inverse Strouhal numbers"},
                    options->numbers);
  addMeter(command, options->meter, true);
  addSeries(command, options->series, true);
  addCalibration(command, options->reCalID);
  command.addFlag("--inverse", options->isInverse,
                  "Roshko at given Strouhal, if the curve has a single answer");
  addJson(command, options->asJson);
  command.onRun([options] { evaluate(*options); });
}

}  // namespace pelmora::cli
