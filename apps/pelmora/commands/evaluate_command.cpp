// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

using calibration::Curve;
using calibration::CurveValue;

struct EvaluateRequest {
  DatabaseOption curves;
  std::string meter, series;
  std::vector<std::string> numbers;
  std::int16_t calibration = calibration::latestCalibration;
  bool isInverse = false, asJson = false;
};

std::vector<double> numbersOf(const EvaluateRequest& request) {
  std::vector<double> numbers;
  for (const std::string& text : request.numbers)
    numbers.push_back(numberOption(request.isInverse ? "STROUHAL" : "ROSHKO", text));
  return numbers;
}

std::vector<CurveValue> valuesAt(const Curve& curve, const std::vector<double>& numbers,
                                 bool isInverse) {
  std::vector<CurveValue> values;
  for (const double number : numbers)
    values.push_back(isInverse ? curve.inverse(number) : curve(number));
  return values;
}

std::string halfWidth(const std::optional<double>& width) {
  return width ? significantText(*width, 3) : "-";
}

std::string valuesText(const Curve& curve, const std::vector<CurveValue>& values, bool isInverse) {
  const auto right = TextAlign::right;
  const std::string of = isInverse ? "Roshko" : "Strouhal";
  TextTable table({{isInverse ? "Strouhal" : "Roshko", right},
                   {of, right},
                   {"95 % confidence +-", right},
                   {"95 % prediction +-", right},
                   {""}});
  bool isAnyExtrapolated = false;
  for (const CurveValue& value : values) {
    isAnyExtrapolated |= value.isExtrapolated;
    const std::string roshko = significantText(value.roshko, 8),
                      strouhal = significantText(value.strouhal, 8);
    table.addRow({isInverse ? strouhal : roshko, isInverse ? roshko : strouhal,
                  halfWidth(value.confidence), halfWidth(value.prediction),
                  value.isExtrapolated ? "extrapolated" : ""});
  }
  std::string text = table.text();
  if (!isAnyExtrapolated) return text;
  return text + "\n" +
         wrapped("Extrapolated: beyond the curve, which covers Roshko " +
                     significantText(curve.lowestRoshko(), 6) + " to " +
                     significantText(curve.highestRoshko(), 6) +
                     "; on the straight line through its two outermost points, with an error that "
                     "nobody knows.",
                 0);
}

nlohmann::json numberOrNull(const std::optional<double>& number) {
  return number ? nlohmann::json(*number) : nlohmann::json();
}

nlohmann::json valuesJson(const std::vector<CurveValue>& values) {
  nlohmann::json list = nlohmann::json::array();
  for (const CurveValue& value : values) {
    list.push_back({{"roshko", value.roshko},
                    {"strouhal", value.strouhal},
                    {"confidenceHalfWidth", numberOrNull(value.confidence)},
                    {"predictionHalfWidth", numberOrNull(value.prediction)},
                    {"extrapolated", value.isExtrapolated}});
  }
  return list;
}

void evaluate(const EvaluateRequest& request) {
  const std::vector<double> numbers = numbersOf(request);
  Session session(request.curves, calibration::Mode::read);
  const calibration::Database& lab = session.database();
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  const calibration::StoredSeries series = lab.series(meter, request.series);
  const Curve curve = lab.curve(series, session.observer());
  const std::vector<CurveValue> values = valuesAt(curve, numbers, request.isInverse);
  session.progress().clear();
  noteOldCurves(session.path(), request.calibration, {series});
  if (!request.asJson) return printData(valuesText(curve, values, request.isInverse));
  printData(report::jsonText({{"database", session.path()},
                              {"meter", report::meterJson(meter)},
                              {"series", series.name},
                              {"curveAge", calibration::curveAgeKey(series.age)},
                              {"halfWidthsOf", request.isInverse ? "roshko" : "strouhal"},
                              {"values", valuesJson(values)}}));
}

}  // namespace

void addEvaluateCommand(Program& program) {
  Command command =
      program.add("evaluate", "Read a stored curve at given Roshko numbers, with its uncertainty");
  const auto request = std::make_shared<EvaluateRequest>();
  addDatabase(command, request->curves);
  command.addValues({"X", "NUMBER", "Roshko numbers; with --inverse Strouhal numbers"},
                    request->numbers);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  addCalibration(command, request->calibration);
  command.addFlag("--inverse", request->isInverse,
                  "Roshko at given Strouhal, if the curve has a single answer");
  addJson(command, request->asJson);
  command.onRun([request] { evaluate(*request); });
}

}  // namespace pelmora::cli
