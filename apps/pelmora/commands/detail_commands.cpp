// meter and laboratory: what certificates state besides the measured numbers.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {
namespace {

using calibration::DetailField;
using calibration::DetailKind;
using calibration::DetailOf;
using calibration::Details;

// Names of details are shorter.
constexpr std::size_t valueIndent = 26;

struct DetailRequest {
  DatabaseOption curves;
  std::string action, meter;  // no meter: the laboratory
  std::int16_t reCalID = calibration::latestCalibration;
  Details changes;
  std::vector<std::string> cleared;
  bool isLaboratory = false, isDryRun = false, asJson = false;
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

nlohmann::json detailsJson(const Details& details) {
  nlohmann::json value = nlohmann::json::object();
  for (const auto& [key, text] : details) {
    if (calibration::detailField(key).kind == DetailKind::list)
      value[key] = linesOf(text);
    else
      value[key] = text;
  }
  return value;
}

std::string detailsTable(const Details& details) {
  TextTable table({{"Detail", TextAlign::left}, {"Value", TextAlign::left}});
  for (const DetailField& field : calibration::detailFields()) {
    const auto found = details.find(field.key);
    if (found == details.end()) continue;
    // Everything, as a certificate will state it: each text on as many lines as it needs.
    std::string name = "--" + field.key;
    for (const std::string& text : linesOf(found->second)) {
      std::string lines = wrapped(text, valueIndent);
      while (lines.ends_with('\n')) lines.pop_back();
      for (const std::string& line : linesOf(lines)) {
        table.addRow({name, line.substr(std::min(line.find_first_not_of(' '), line.size()))});
        name.clear();
      }
    }
  }
  return table.text();
}

Details changesOf(const DetailRequest& request) {
  Details changes = request.changes;
  for (const std::string& key : request.cleared) {
    (void)calibration::detailField(key);
    if (changes.contains(key))
      throw Trouble(ExitCode::usage, "--clear " + key + " and --" + key + " exclude each other",
                    "give one of them");
    changes[key] = "";
  }
  const bool isSet = request.action == "set";
  if (isSet == changes.empty()) {
    throw Trouble(
        ExitCode::usage, isSet ? "there is nothing to set" : "'show' takes no details to set",
        isSet ? "give a detail, such as " + std::string(request.isLaboratory ? "--name" : "--maker")
              : "use 'set'");
  }
  return changes;
}

void changeOrShow(const DetailRequest& request) {
  const Details changes = changesOf(request);
  const bool isSet = request.action == "set";
  Session session(request.curves, isSet ? calibration::Mode::write : calibration::Mode::read);
  calibration::Database& lab = session.database();
  std::optional<calibration::Meter> meter;
  std::optional<CommandChange> change;
  if (isSet)
    change.emplace(session, request.isLaboratory ? "laboratory" : "meter", request.isDryRun)
        .begin();
  if (!request.isLaboratory) meter = lab.meter(request.meter, request.reCalID);
  if (isSet && meter) (void)lab.setDetails(*meter, changes);
  if (isSet && !meter) lab.setLaboratory(changes);
  const Details details = meter ? lab.details(*meter) : lab.laboratory();
  if (change) change->finish();
  if (request.asJson) {
    nlohmann::json value{{"database", session.path()}, {"details", detailsJson(details)}};
    if (meter) value["meter"] = report::meterJson(*meter);
    if (change) change->addTo(value);
    return printData(report::jsonText(value));
  }
  const std::string whose =
      meter ? "meter " + meter->serial + ", calibration " + std::to_string(meter->calibration)
            : "the laboratory";
  std::string text = details.empty()
                         ? wrapped("Nothing is recorded for " + whose + ".", 0)
                         : wrapped("Details of " + whose + ":", 0) + "\n" + detailsTable(details);
  if (change) text += change->closingText();
  printData(text);
}

void addDetails(Command& command, const std::shared_ptr<DetailRequest>& request) {
  for (const DetailField& field : calibration::detailFields()) {
    if ((field.of == DetailOf::laboratory) != request->isLaboratory) continue;
    const bool isList = field.kind == DetailKind::list;
    const OptionText option{"--" + field.key, isList ? "TEXT" : "VALUE", field.help};
    if (!isList) {
      command.addText(option, [request, key = field.key](const std::string& text) {
        request->changes[key] = text;
      });
      continue;
    }
    command.addEachText(option, [request, key = field.key](const std::string& text) {
      std::string& all = request->changes[key];
      all += (all.empty() ? "" : "\n") + text;
    });
  }
  command.addTexts({"--clear", "DETAIL", "Remove a detail, such as 'maker'; may be repeated"},
                   request->cleared);
}

void addRest(Command& command, const std::shared_ptr<DetailRequest>& request) {
  addDetails(command, request);
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { changeOrShow(*request); });
}

std::shared_ptr<DetailRequest> begun(Command& command, bool isLaboratory) {
  const auto request = std::make_shared<DetailRequest>();
  request->isLaboratory = isLaboratory;
  command.addChoice({"ACTION", "set|show", "Record details, or show what is recorded", true},
                    request->action);
  addDatabase(command, request->curves);
  return request;
}

}  // namespace

void addMeterCommand(Program& program) {
  Command command = program.add(
      "meter",
      "Record what a certificate states about a meter and its calibration: maker, customer, dates, "
      "conditions, units. Details of the meter and the customer also apply to later calibrations. "
      "Units are labels: nothing is converted.");
  const auto request = begun(command, false);
  addMeter(command, request->meter, true);
  addCalibration(command, request->reCalID);
  addRest(command, request);
}

void addLaboratoryCommand(Program& program) {
  Command command =
      program.add("laboratory", "Record what every certificate states about the laboratory.");
  addRest(command, begun(command, true));
}

}  // namespace pelmora::cli
