// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/question.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/history_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::Meter;
using calibration::Removal;

struct DeleteRequest {
  DatabaseOption curves;
  std::string meter, series;
  std::int16_t calibration = calibration::latestCalibration;
  bool wholeMeter = false, isDryRun = false, asJson = false;
  Consent consent;
};

void requireOneTarget(const DeleteRequest& request) {
  const bool isSeries = !request.series.empty(), isCalibration = request.calibration >= 0;
  if (!isSeries && !isCalibration && !request.wholeMeter) {
    throw Trouble(ExitCode::usage, "nothing is named to delete from meter '" + request.meter + "'",
                  "give --series NAME, --calibration N or --whole-meter");
  }
  if (request.wholeMeter && (isSeries || isCalibration)) {
    throw Trouble(ExitCode::usage, "--whole-meter deletes all calibrations with all series",
                  "leave --series and --calibration out, or leave it out");
  }
}

// What is asked for, as it is now.
std::vector<Removal> removals(const calibration::Database& lab, const DeleteRequest& request) {
  const Meter meter = lab.meter(request.meter, request.calibration);
  if (!request.series.empty()) return {lab.removal(meter, request.series)};
  if (!request.wholeMeter) return {lab.removal(meter)};
  std::vector<Meter> all = lab.calibrations(request.meter);
  std::ranges::reverse(all);  // from the latest to the first
  std::vector<Removal> list;
  for (const Meter& calibration : all) list.push_back(lab.removal(calibration));
  return list;
}

std::string placeOf(const Removal& removal) {
  return placeText(removal.meter.serial, removal.meter.calibration, removal.series);
}

[[noreturn]] void refuseChanged(const std::string& place) {
  throw Trouble(ExitCode::declined, "another program has changed " + place + " since it was shown",
                "nothing was deleted; run the command again to see what is there now");
}

// What was confirmed is what was shown, and nothing else.
void remove(CommandChange& change, const DeleteRequest& request,
            const std::vector<Removal>& shown) {
  change.begin();
  calibration::Database& lab = change.session().database();
  if (request.wholeMeter && lab.calibrations(request.meter).size() != shown.size())
    refuseChanged("meter " + request.meter);
  for (const Removal& removal : shown) {
    try {
      (void)lab.remove(removal);
    } catch (const calibration::Changed&) {
      refuseChanged(placeOf(removal));
    }
  }
  change.finish();
}

std::string removalsTable(const std::vector<Removal>& list) {
  TextTable table({{"Of"}, {"What"}, {"Rows", TextAlign::right}});
  for (const Removal& removal : list) {
    std::string place = placeOf(removal);
    for (const auto& [name, rows] : namedCounts(removal.rows)) {
      table.addRow({place, name, std::to_string(rows)});
      place.clear();  // told once
    }
  }
  return table.text();
}

nlohmann::json removalsJson(const std::vector<Removal>& list) {
  nlohmann::json deleted = nlohmann::json::array();
  for (const Removal& removal : list) {
    deleted.push_back(
        {{"meter", removal.meter.serial},
         {"calibration", removal.meter.calibration},
         {"series", removal.series.empty() ? nlohmann::json() : nlohmann::json(removal.series)},
         {"rows", countsJson(removal.rows)}});
  }
  return deleted;
}

void deleteStored(const DeleteRequest& request) {
  requireOneTarget(request);
  Session session(request.curves, calibration::Mode::write);
  CommandChange change(session, "delete", request.isDryRun);
  const bool isAsked = !request.isDryRun && !request.consent.isGiven;
  // Nobody shall wait for the database while somebody thinks about the question.
  if (!isAsked) change.begin();
  const std::vector<Removal> list = removals(session.database(), request);
  if (isAsked && !request.asJson) printData(removalsTable(list) + "\n");
  if (isAsked) requireConsent("Delete this?", request.consent);
  remove(change, request, list);
  if (request.asJson) {
    nlohmann::json value{{"database", session.path()}, {"deleted", removalsJson(list)}};
    change.addTo(value);
    return printData(report::jsonText(value));
  }
  if (!isAsked) printData(removalsTable(list) + "\n");
  printData((request.isDryRun ? "" : "Deleted.\n") + change.closingText());
}

}  // namespace

void addDeleteCommand(Program& program) {
  Command command =
      program.add("delete",
                  "Delete a series (--series), a calibration (--calibration) or all of a "
                  "meter (--whole-meter) with everything that "
                  "belongs to it. What is deleted is kept in the history.");
  const auto request = std::make_shared<DeleteRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addName(command, {"--series", "NAME", "Delete this series of the calibration"}, request->series);
  addCalibration(command, request->calibration);
  command.addFlag("--whole-meter", request->wholeMeter, "Delete all calibrations of the meter");
  addConsent(command, request->consent);
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { deleteStored(*request); });
}

}  // namespace pelmora::cli
