// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/service_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/budget_output.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/shown_units.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "report/budget_json.h"
#include "report/budget_text.h"
#include "report/json_null.h"
#include "report/json_values.h"
#include "report/printed_values.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>
#include <stop_token>

namespace pelmora::cli {
namespace {

using calibration::CurveEstimate;
using calibration::CurveSource;
using calibration::CurveValue;
using calibration::EvaluateOptions;
using calibration::FittedCurve;
using calibration::MonteCarloCheck;
using calibration::ReadAs;

struct EvaluateRequest {
  DatabaseOption curves;
  std::string meter, series;
  std::vector<std::string> numbers, units;
  std::int16_t calibration = calibration::latestCalibration;
  EvaluateOptions options;
  std::int64_t trials = 0;
  bool isInverse = false, showsBudget = false, asJson = false;
};

// A value of the curve, with the confidence and prediction bands of its table.
struct Evaluated {
  CurveEstimate estimate;
  CurveValue bands;
  std::optional<MonteCarloCheck> check;
  double scale = 1;  // turns an uncertainty of Strouhal into one of the value asked for
};

void scale(std::optional<double>& number, double factor) {
  if (number) *number *= factor;
}

// Everything in the units that are shown. number: as it was given, to the last digit.
void convert(Evaluated& value, const ShownUnits& units, bool isInverse, double number) {
  const double ofRoshko = units.roshko.factor, ofStrouhal = units.strouhal.factor;
  CurveEstimate& at = value.estimate;
  at.roshko = isInverse ? at.roshko * ofRoshko : number;
  at.strouhal = isInverse ? number : at.strouhal * ofStrouhal;
  at.slope *= ofStrouhal / ofRoshko;
  if (at.budget) at.budget = scaled(*at.budget, ofStrouhal);
  scale(value.bands.confidence, isInverse ? ofRoshko : ofStrouhal);
  scale(value.bands.prediction, isInverse ? ofRoshko : ofStrouhal);
  if (!value.check) return;
  for (double* each :
       {&value.check->mean, &value.check->standardDeviation, &value.check->low, &value.check->high})
    *each *= ofStrouhal;
}

std::vector<Evaluated> evaluated(const FittedCurve& curve, const EvaluateRequest& request,
                                 const ShownUnits& units, const std::stop_token& stop) {
  EvaluateOptions options = request.options;
  options.stop = stop;
  std::vector<Evaluated> values;
  for (const std::string& text : request.numbers) {
    const double given = numberOption(request.isInverse ? "STROUHAL" : "ROSHKO", text);
    const double number = given / (request.isInverse ? units.strouhal.factor : units.roshko.factor);
    Evaluated value;
    value.estimate = request.isInverse ? curve.inverse(number, options) : curve.at(number, options);
    value.bands = request.isInverse ? curve.table().inverse(number) : curve.table()(number);
    if (request.trials > 0 && value.estimate.budget) {
      value.check = curve.monteCarlo(value.estimate.roshko, options,
                                     static_cast<std::size_t>(request.trials));
    }
    convert(value, units, request.isInverse, given);
    if (request.isInverse) {
      // Where the curve is level, Strouhal does not determine Roshko.
      if (value.estimate.slope == 0) {
        value.estimate.budget.reset();
        value.check.reset();
      } else {
        value.scale = 1 / std::abs(value.estimate.slope);
      }
    }
    values.push_back(std::move(value));
  }
  return values;
}

std::string halfWidth(const std::optional<double>& width) {
  return width ? significantText(*width, 3) : "-";
}

std::string sourceText(const FittedCurve& curve, ReadAs reading) {
  if (reading != ReadAs::none) {
    return "Read from the stored table of " + counted(curve.table().points().size(), "point") +
           "; the reading error is part of U.";
  }
  if (curve.source() == CurveSource::table) {
    return "Read linearly from the stored table: a new fit does not give this curve again, so its "
           "equation and its uncertainty are not known; fit the series again.";
  }
  return "Values of the " + std::string(curveSourceName(curve.source())) +
         (curve.source() == CurveSource::equation ? " '" + curve.name() + "'" : "") + " itself.";
}

std::string notesText(const FittedCurve& curve, const std::vector<Evaluated>& values,
                      ReadAs reading, const ShownUnits& units) {
  std::string text = unitsLine(units) + wrapped(sourceText(curve, reading), 0);
  bool isAnyExtrapolated = false;
  std::vector<calibration::Budget> budgets;
  for (const Evaluated& value : values) {
    isAnyExtrapolated |= value.estimate.isExtrapolated;
    if (value.estimate.budget) budgets.push_back(*value.estimate.budget);
  }
  if (!budgets.empty()) text += wrapped(calibration::contentsOf(budgets), 0);
  text += wrapped(
      "The 95 % bands contain the scatter of the points alone: of the curve (confidence), of one "
      "more measured point (prediction).",
      0);
  if (!isAnyExtrapolated) return text;
  return text +
         wrapped("Extrapolated: beyond the curve, which covers Roshko " +
                     significantText(curve.lowestRoshko() * units.roshko.factor, 6) + " to " +
                     significantText(curve.highestRoshko() * units.roshko.factor, 6) +
                     "; on the straight line through its two outermost points, with an unknown "
                     "error.",
                 0);
}

std::string valuesText(const FittedCurve& curve, const std::vector<Evaluated>& values,
                       const EvaluateRequest& request, const ShownUnits& units) {
  const auto right = TextAlign::right;
  const bool isInverse = request.isInverse;
  TextTable table({{isInverse ? "Strouhal" : "Roshko", right},
                   {isInverse ? "Roshko" : "Strouhal", right},
                   {"U +-", right},
                   {"U %", right},
                   {"95 % conf. +-", right},
                   {"95 % pred. +-", right},
                   {""}});
  std::string details;
  for (const Evaluated& value : values) {
    const CurveEstimate& at = value.estimate;
    const std::string roshko = significantText(at.roshko, 8),
                      strouhal = significantText(at.strouhal, 8);
    const auto& budget = at.budget;
    std::string percent = report::expandedPercentText(budget);
    if (isInverse && budget) {
      percent = report::printedUncertainty(100 * budget->roundedExpanded() * value.scale /
                                           std::abs(at.roshko));
    }
    table.addRow({isInverse ? strouhal : roshko, isInverse ? roshko : strouhal,
                  expandedText(budget, value.scale), percent, halfWidth(value.bands.confidence),
                  halfWidth(value.bands.prediction), at.isExtrapolated ? "extrapolated" : ""});
    if (request.showsBudget && budget) {
      details += "\nStrouhal " + strouhal + " at Roshko " + roshko + ":\n" + budgetText(*budget);
    }
    if (value.check && budget) {
      details +=
          wrapped("Monte Carlo at Roshko " + roshko +
                      ": U = " + significantText(value.check->halfWidth() * value.scale, 3) +
                      " of " + std::to_string(value.check->trials) + " trials" +
                      (value.check->isStable ? "" : ", not stable yet") + "; by the budget " +
                      significantText(
                          budget->coverageFactor * budget->standardUncertainty * value.scale, 3) +
                      ".",
                  0);
    }
  }
  return table.text() + details + "\n" + notesText(curve, values, request.options.reading, units);
}

nlohmann::json valuesJson(const std::vector<Evaluated>& values, bool isInverse) {
  nlohmann::json list = nlohmann::json::array();
  for (const Evaluated& value : values) {
    nlohmann::json each{{"roshko", value.estimate.roshko},
                        {"strouhal", value.estimate.strouhal},
                        {"confidenceHalfWidth", report::orNull(value.bands.confidence)},
                        {"predictionHalfWidth", report::orNull(value.bands.prediction)},
                        {"extrapolated", value.estimate.isExtrapolated}};
    const auto of = isInverse ? std::optional(value.estimate.roshko) : std::nullopt;
    report::addBudget(each, value.estimate.budget, value.scale, of);
    if (value.check) each["monteCarlo"] = monteCarloJson(*value.check, value.scale);
    list.push_back(std::move(each));
  }
  return list;
}

void evaluate(const EvaluateRequest& request) {
  Session session(request.curves, calibration::Mode::read);
  const calibration::Database& lab = session.database();
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  const calibration::StoredSeries series = lab.series(meter, request.series);
  const calibration::Observer observer = session.observer();
  const FittedCurve curve = lab.fittedCurve(series, observer);
  const ShownUnits units = shownUnits(lab, series, request.units);
  const std::vector<Evaluated> values = evaluated(curve, request, units, observer.stop);
  session.progress().clear();
  noteOldCurves(session.path(), request.calibration, {series});
  if (!request.asJson) return printData(valuesText(curve, values, request, units));
  const std::string reading = calibration::tableReadingKey(request.options.reading);
  printData(
      report::jsonText({{"database", session.path()},
                        {"meter", report::meterJson(meter)},
                        {"series", series.name},
                        {"curveAge", calibration::curveAgeKey(series.age)},
                        {"units", unitsJson(units)},
                        {"source", reading.empty() ? curveSourceName(curve.source()) : "table"},
                        {"reading", report::orNull(reading)},
                        {"equation", curve.name()},
                        {"halfWidthsOf", request.isInverse ? "roshko" : "strouhal"},
                        {"values", valuesJson(values, request.isInverse)}}));
}

void addValueOptions(Command& command, const std::shared_ptr<EvaluateRequest>& request) {
  command.addFlag("--inverse", request->isInverse,
                  "Roshko at given Strouhal, if the curve has a single answer");
  command.addFlag(
      "--table",
      [request] {
        if (request->options.reading == ReadAs::none) request->options.reading = ReadAs::linear;
      },
      "Read the stored table as a flow computer does, instead of the curve itself; the reading "
      "error is then part of U");
  addReading(command, "How --table reads it (default: linear)", request->options.reading);
  command.addFlag("--budget", request->showsBudget, "Show the uncertainty budget of each value");
  command.addText({"--monte-carlo", "N", "Check U with up to N draws of all errors"},
                  [request](const std::string& text) {
                    request->trials = integerOption("--monte-carlo", text, 1, 100'000'000);
                  });
  command.addText(
      {"--viscosity", "CST",
       "Viscosity of the fluid, for a stand whose uncertainty is stated in units rather "
       "than in % (default: what the stand read near the Roshko number)"},
      [request](const std::string& text) {
        request->options.viscosity = numberOption("--viscosity", text);
      });
}

}  // namespace

void addEvaluateCommand(Program& program) {
  Command command = program.add(
      "evaluate", "Evaluate a stored curve at given Roshko numbers, with its uncertainty");
  const auto request = std::make_shared<EvaluateRequest>();
  addDatabase(command, request->curves);
  command.addValues({"X", "NUMBER", "Roshko numbers; with --inverse Strouhal numbers"},
                    request->numbers);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  addCalibration(command, request->calibration);
  addValueOptions(command, request);
  addUnits(command, request->units);
  addJson(command, request->asJson);
  command.onRun([request] { evaluate(*request); });
}

}  // namespace pelmora::cli
