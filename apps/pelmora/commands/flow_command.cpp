// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/service_options.h"
#include "apps/pelmora/output/budget_output.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "report/budget_json.h"
#include "report/budget_text.h"
#include "report/json_null.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::cli {
namespace {

using calibration::FittedCurve;
using calibration::ReadAs;
using calibration::RotorFlow;
using calibration::ServiceFlow;
using calibration::ServiceReading;
using calibration::StoredSeries;

struct FlowRequest {
  DatabaseOption curves;
  std::string meter, series, instruments, unit;
  std::int16_t calibration = calibration::latestCalibration;
  double frequency = 0;
  std::optional<double> frequencyB;
  FluidOptions fluid;
  bool readsTable = false, showsBudget = false, asJson = false;
};

ServiceReading readingOf(const FlowRequest& request, const calibration::Database& lab,
                         const calibration::Meter& meter) {
  ServiceReading reading;
  reading.frequency = request.frequency;
  reading.frequencyB = request.frequencyB;
  reading.viscosity = viscosityOf(request.fluid, lab);
  reading.celsius = celsiusOf(request.fluid);
  reading.expansionPerKelvin = expansionOf(request.fluid, lab, meter);
  if (!request.instruments.empty()) reading.instruments = readStatement(request.instruments);
  if (request.readsTable) reading.reading = ReadAs::linear;
  return reading;
}

// The series that the flow is computed from. With both frequencies these are rotors A and B, and
// their quotient if the viscosity is not known.
std::vector<StoredSeries> seriesFor(const FlowRequest& request, const calibration::Database& lab,
                                    const calibration::Meter& meter, bool isViscosityKnown) {
  std::vector<std::string> names{request.series.empty() ? "Rotor A" : request.series};
  if (request.frequencyB) names.emplace_back("Rotor B");
  if (request.frequencyB && !isViscosityKnown) names.emplace_back("Rotor Sum");
  std::vector<StoredSeries> found;
  for (const std::string& name : names) found.push_back(lab.series(meter, name));
  return found;
}

ServiceFlow flowFrom(const std::vector<StoredSeries>& series, const calibration::Database& lab,
                     const ServiceReading& reading, const calibration::Observer& observer) {
  std::vector<FittedCurve> curves;
  for (const StoredSeries& each : series) curves.push_back(lab.fittedCurve(each, observer));
  if (curves.size() == 1) return calibration::flowOf(curves[0], reading);
  const FittedCurve* quotient = curves.size() > 2 ? &curves[2] : nullptr;
  return calibration::flowOf(curves[0], curves[1], quotient, reading);
}

bool isExtrapolated(const ServiceFlow& flow) {
  return flow.rotor.isExtrapolated || (flow.rotorB && flow.rotorB->isExtrapolated);
}

std::string differenceText(const ServiceFlow& flow) {
  if (!flow.differencePercent) return {};
  const auto& uncertainty = flow.differenceUncertaintyPercent;
  const bool isFar = uncertainty && std::abs(*flow.differencePercent) > *uncertainty;
  return wrapped("Rotor B differs from rotor A by " + percentText(*flow.differencePercent) + " %" +
                     (uncertainty ? ", with U = " + significantText(*uncertainty, 2) + " %" : "") +
                     (isFar ? ": one of the rotors no longer follows its curve." : "."),
                 0);
}

std::string unitOf(const FlowRequest& request, const ServiceFlow& flow) {
  return request.unit.empty() ? flow.unit : request.unit;
}

std::string flowText(const FlowRequest& request, const std::string& series,
                     const ServiceReading& reading, const ServiceFlow& flow) {
  const auto right = TextAlign::right;
  const std::string unit = unitOf(request, flow);
  TextTable table({{""}, {"Roshko", right}, {"Strouhal", right}, {"Flow " + unit, right}});
  const double factor = calibration::conversionFactor(flow.unit, unit);
  const auto addRotor = [&](const std::string& name, const RotorFlow& rotor) {
    table.addRow({name, significantText(rotor.roshko, 8), significantText(rotor.strouhal, 8),
                  significantText(rotor.flow * factor, 8)});
  };
  addRotor(series, flow.rotor);
  if (flow.rotorB) addRotor("Rotor B", *flow.rotorB);
  if (flow.rotorB) table.addRow({"both", "", "", significantText(flow.flow * factor, 8)});
  std::string text = table.text() + "\n";
  std::string result = "Flow " + significantText(flow.flow * factor, 8) + " " + unit;
  if (flow.budget) {
    result += ", U = " + expandedText(scaled(*flow.budget, factor)) + " " + unit + " (" +
              report::expandedPercentText(flow.budget) + " %).";
  } else {
    result += isExtrapolated(flow)
                  ? "; beyond the calibrated range, so its uncertainty is not known."
                  : "; its uncertainty is not known: fit the series again.";
  }
  text += wrapped(result, 0);
  text +=
      wrapped("Viscosity " + significantText(flow.viscosity, 6) + " cSt" +
                  (flow.isViscosityOfQuotient ? ", from the ratio of the two frequencies" : "") +
                  ", at " + significantText(reading.celsius, 5) + " C." +
                  (reading.expansionPerKelvin
                       ? " Linear expansion of the meter's body " +
                             significantText(*reading.expansionPerKelvin, 6) + " 1/K."
                       : ""),
              0);
  text += differenceText(flow);
  if (!flow.budget) return text;
  const char* advice = reading.instruments ? "" : " Give their uncertainty with --instruments.";
  text += wrapped(flow.budget->contents() + advice, 0);
  if (request.showsBudget) text += "\n" + budgetText(*flow.budget);
  return text;
}

nlohmann::json rotorJson(const RotorFlow& rotor, double factor) {
  return {{"roshko", rotor.roshko},
          {"strouhal", rotor.strouhal},
          {"flow", rotor.flow * factor},
          {"extrapolated", rotor.isExtrapolated}};
}

std::string flowJson(const FlowRequest& request, const std::string& path,
                     const std::vector<StoredSeries>& series, const ServiceReading& reading,
                     const ServiceFlow& flow) {
  const std::string unit = unitOf(request, flow);
  const double factor = calibration::conversionFactor(flow.unit, unit);
  nlohmann::json value{{"database", path},
                       {"meter", report::meterJson(series.front().meter)},
                       {"series", series.front().name},
                       {"curveAges", curveAgesJson(series)},
                       {"frequency", reading.frequency},
                       {"viscosity", flow.viscosity},
                       {"viscosityFromRotors", flow.isViscosityOfQuotient},
                       {"temperatureC", reading.celsius},
                       {"roshko", flow.rotor.roshko},
                       {"strouhal", flow.rotor.strouhal},
                       {"flow", flow.flow * factor},
                       {"flowUnit", unit},
                       {"extrapolated", isExtrapolated(flow)}};
  if (flow.rotorB) {
    value["frequencyB"] = *reading.frequencyB;
    value["rotorA"] = rotorJson(flow.rotor, factor);
    value["rotorB"] = rotorJson(*flow.rotorB, factor);
    value["differencePercent"] = report::orNull(flow.differencePercent);
    value["differenceUncertaintyPercent"] = report::orNull(flow.differenceUncertaintyPercent);
  }
  report::addBudget(value, flow.budget, factor);
  return report::jsonText(value);
}

void showFlow(const FlowRequest& request) {
  if (request.frequencyB && !request.series.empty()) {
    throw Trouble(ExitCode::usage, "--series and --frequency-b exclude each other",
                  "both frequencies belong to Rotor A and Rotor B: leave --series out");
  }
  Session session(request.curves, calibration::Mode::read);
  const calibration::Database& lab = session.database();
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  const ServiceReading reading = readingOf(request, lab, meter);
  const auto series = seriesFor(request, lab, meter, reading.viscosity.has_value());
  const ServiceFlow flow = flowFrom(series, lab, reading, session.observer());
  session.progress().clear();
  noteOldCurves(session.path(), request.calibration, series);
  printData(request.asJson ? flowJson(request, session.path(), series, reading, flow)
                           : flowText(request, series.front().name, reading, flow));
}

}  // namespace

void addFlowCommand(Program& program) {
  Command command = program.add(
      "flow",
      "Show the volume flow that a calibrated meter indicates in service, with its uncertainty. "
      "With the frequencies of both rotors the viscosity may be left out.");
  const auto request = std::make_shared<FlowRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addName(command, {"--series", "NAME", "Name of the rotor's series (default: Rotor A)"},
          request->series);
  addCalibration(command, request->calibration);
  command.addText(
      {"--frequency", "F", "Frequency of the rotor, or of rotor A, such as '120 Hz'", true},
      [request](const std::string& text) {
        request->frequency = measureOption("--frequency", text, "Hz");
      });
  command.addText({"--frequency-b", "F",
                   "Frequency of rotor B: the flow by both rotors, from the series Rotor A and "
                   "Rotor B"},
                  [request](const std::string& text) {
                    request->frequencyB = measureOption("--frequency-b", text, "Hz");
                  });
  addFluid(command, request->fluid);
  addPath(command,
          {"--instruments", "FILE",
           "Uncertainty of the instruments in service, in a file like a stand's"},
          request->instruments);
  command.addFlag("--table", request->readsTable,
                  "Read the stored table linearly, as a flow computer does; the reading error is "
                  "then part of U");
  command.addText({"--unit", "UNIT",
                   "Unit of the flow (default: the volume of the recorded unit of Strouhal per "
                   "second, else gal/s)"},
                  [request](const std::string& text) {
                    requireUnit("--unit", text, "gal/s");
                    request->unit = text;
                  });
  command.addFlag("--budget", request->showsBudget, "Show the uncertainty budget");
  addJson(command, request->asJson);
  command.onRun([request] { showFlow(*request); });
}

}  // namespace pelmora::cli
