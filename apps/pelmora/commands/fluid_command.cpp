// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/service_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/suggested_command.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "base/readable_number.h"
#include "report/json_null.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::FluidLaw;

struct FluidRequest {
  DatabaseOption curves;
  std::string action, name, law;
  std::vector<std::string> points, constants;
  std::optional<double> lowest, highest, celsius;
  bool asJson = false;
};

// "20C:1.2", "20 C:1.2 cSt"; a bare temperature is in F.
calibration::ViscosityAt pointOf(const std::string& text) {
  const auto colon = text.find(':');
  if (colon == std::string::npos) {
    throw Trouble(ExitCode::usage, "--point: '" + text + "' is not a temperature and a viscosity",
                  "write it like 20C:1.2cSt");
  }
  return {celsiusOption("--point", text.substr(0, colon)),
          measureOption("--point", text.substr(colon + 1), "cSt")};
}

FluidLaw lawOf(const FluidRequest& request) {
  FluidLaw fluid;
  fluid.name = request.name;
  if (!request.law.empty()) fluid.kind = *calibration::viscosityLawOf(request.law);
  for (const std::string& text : request.points) fluid.points.push_back(pointOf(text));
  for (const std::string& text : request.constants)
    fluid.constants.push_back(numberOption("--constant", text));
  if (fluid.points.empty() == fluid.constants.empty()) {
    throw Trouble(ExitCode::usage, "a viscosity law is made of points or of constants",
                  "give --point T:NU twice or more, or --law with --constant for each constant");
  }
  if (!fluid.constants.empty() && (!request.lowest || !request.highest)) {
    throw Trouble(ExitCode::usage, "the range in which the constants hold is missing",
                  "give --from and --to");
  }
  fluid.lowestCelsius = request.lowest.value_or(0);
  fluid.highestCelsius = request.highest.value_or(0);
  return fluid;
}

// The stored law of this name, if there is one.
std::optional<FluidLaw> storedLaw(const calibration::Database& lab, const std::string& name) {
  try {
    return lab.fluidLaw(name);
  } catch (const calibration::NotFound&) {
    return std::nullopt;
  }
}

// The command that stores a replaced or removed law again.
std::string setCommand(const std::string& database, const FluidLaw& fluid) {
  std::vector<std::string> words{"fluid",
                                 "set",
                                 database,
                                 "--name",
                                 fluid.name,
                                 "--law",
                                 calibration::viscosityLawKey(fluid.kind)};
  for (const auto& point : fluid.points) {
    words.insert(words.end(), {"--point", exactText(point.celsius) +
                                              "C:" + exactText(point.centistokes) + "cSt"});
  }
  // With '=', because a negative number looks like an option.
  for (const double constant : fluid.constants)
    words.push_back("--constant=" + exactText(constant));
  if (!fluid.constants.empty()) {
    words.push_back("--from=" + exactText(fluid.lowestCelsius) + "C");
    words.push_back("--to=" + exactText(fluid.highestCelsius) + "C");
  }
  return suggestedCommand(words);
}

// In cSt. Nothing outside the range of the law.
//
// Errors: OutOfRange instead, if this fluid was asked for by name.
std::optional<double> viscosityAt(const FluidRequest& request, const FluidLaw& fluid) {
  try {
    return fluid.viscosity(*request.celsius);
  } catch (const calibration::OutOfRange&) {
    if (!request.name.empty() && request.action == "show") throw;
    return std::nullopt;
  }
}

nlohmann::json fluidJson(const FluidRequest& request, const FluidLaw& fluid) {
  nlohmann::json value{
      {"name", fluid.name},           {"law", calibration::viscosityLawKey(fluid.kind)},
      {"constants", fluid.constants}, {"points", nlohmann::json::array()},
      {"storedAt", fluid.storedAt},   {"user", fluid.userName}};
  for (const auto& point : fluid.points)
    value["points"].push_back({{"temperatureC", point.celsius}, {"viscosity", point.centistokes}});
  if (!fluid.constants.empty()) value["rangeC"] = {fluid.lowestCelsius, fluid.highestCelsius};
  if (request.celsius) {
    value["temperatureC"] = *request.celsius;
    value["viscosity"] = report::orNull(viscosityAt(request, fluid));
  }
  return value;
}

std::string rangeText(const FluidLaw& fluid) {
  double low = fluid.lowestCelsius, high = fluid.highestCelsius;
  if (!fluid.points.empty()) {
    const auto [least, most] =
        std::ranges::minmax(fluid.points, {}, &calibration::ViscosityAt::celsius);
    low = least.celsius;
    high = most.celsius;
  }
  return significantText(low, 5) + " to " + significantText(high, 5);
}

std::string listText(const FluidRequest& request, const std::vector<FluidLaw>& fluids) {
  if (fluids.empty()) return "No viscosity law is stored.\n";
  TextTable table(
      {{"Fluid"}, {"Law"}, {"From"}, {"C"}, {request.celsius ? "cSt" : "", TextAlign::right}});
  for (const FluidLaw& fluid : fluids) {
    const auto viscosity = request.celsius ? viscosityAt(request, fluid) : std::nullopt;
    table.addRow(
        {fluid.name, calibration::viscosityLawKey(fluid.kind),
         fluid.constants.empty() ? counted(fluid.points.size(), "point")
                                 : counted(fluid.constants.size(), "constant"),
         rangeText(fluid),
         viscosity ? significantText(*viscosity, 6) : std::string(request.celsius ? "-" : "")});
  }
  return table.text();
}

void runFluid(const FluidRequest& request) {
  const bool isChange = request.action == "set" || request.action == "remove";
  if (isChange && request.name.empty())
    throw Trouble(ExitCode::usage, "the name of the fluid is missing", "give --name NAME");
  std::optional<FluidLaw> given;
  if (request.action == "set") given = lawOf(request);
  Session session(request.curves, isChange ? calibration::Mode::write : calibration::Mode::read);
  calibration::Database& lab = session.database();
  const auto previous = isChange ? storedLaw(lab, request.name) : std::nullopt;
  if (given) lab.setFluidLaw(*given);
  if (request.action == "remove") lab.removeFluidLaw(request.name);
  std::vector<FluidLaw> fluids = lab.fluidLaws();
  if (!isChange && !request.name.empty()) fluids = {lab.fluidLaw(request.name)};
  if (!request.asJson) {
    std::string done;
    if (isChange) {
      done = wrapped(std::string(given ? "Stored" : "Removed") + " the viscosity law of '" +
                         request.name + "'.",
                     0);
    }
    if (previous)
      done +=
          wrapped("To restore the previous law:", 0) + setCommand(session.path(), *previous) + "\n";
    return printData(done + (done.empty() ? "" : "\n") + listText(request, fluids));
  }
  nlohmann::json list = nlohmann::json::array();
  for (const FluidLaw& fluid : fluids) list.push_back(fluidJson(request, fluid));
  printData(
      report::jsonText({{"database", session.path()},
                        {"previous", previous ? fluidJson(request, *previous) : nlohmann::json()},
                        {"fluids", list}}));
}

}  // namespace

void addFluidCommand(Program& program) {
  Command command = program.add(
      "fluid",
      "Store the viscosity laws of fluids for 'flow' and 'export', or show them. Laws: ASTM D341 "
      "and Andrade, by two points or more or by their constants, or a table.");
  const auto request = std::make_shared<FluidRequest>();
  command.addChoice({"ACTION", "set|show|remove", "What to do", true}, request->action);
  addDatabase(command, request->curves);
  command.addText({"--name", "NAME", "Name of the fluid"}, request->name);
  command.addChoice({"--law", "table|d341|andrade",
                     "How the viscosity depends on the temperature (default: table)"},
                    request->law);
  command.addTexts({"--point", "T:NU",
                    "A temperature and the viscosity there, such as "
                    "20C:1.2cSt; repeat"},
                   request->points);
  command.addTexts({"--constant", "NUMBER", "A constant of the law, in the order a, b, c; repeat"},
                   request->constants);
  const auto addTemperature = [&](const std::string& name, const std::string& help,
                                  std::optional<double>& to) {
    command.addText({name, "T", help},
                    [&to, name](const std::string& text) { to = celsiusOption(name, text); });
  };
  addTemperature("--from", "Lowest temperature at which constants hold", request->lowest);
  addTemperature("--to", "Highest temperature at which constants hold", request->highest);
  addTemperature("--temperature", "Show the viscosity at this temperature", request->celsius);
  addJson(command, request->asJson);
  command.onRun([request] { runFluid(*request); });
}

}  // namespace pelmora::cli
