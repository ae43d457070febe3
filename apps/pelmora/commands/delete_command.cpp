// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/history_output.h"
#include "apps/pelmora/input/question.h"
#include "apps/pelmora/stored_change.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "history/deleting.h"
#include "history/fingerprint.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;

struct DeleteOptions {
  DatabaseOption curves;
  std::string meter, series;
  std::int16_t reCalID = -1;
  bool wholeMeter = false, isDryRun = false, asJson = false;
  Consent consent;
};

// A series or a calibration that is to go.
struct Target {
  MeterInfo meter;
  std::string series;  // empty: the whole calibration
  history::Scope scope;
  std::uint64_t fingerprint = 0;  // of its rows
  history::DeleteOutcome outcome;
};

void requireOneTarget(const DeleteOptions& options) {
  const bool isSeries = !options.series.empty(), isCalibration = options.reCalID >= 0;
  if (!isSeries && !isCalibration && !options.wholeMeter) {
    throw Trouble(ExitCode::usage, "it is not said what to delete of meter '" + options.meter + "'",
                  "give --series NAME, --calibration N or --whole-meter");
  }
  if (options.wholeMeter && (isSeries || isCalibration)) {
    throw Trouble(ExitCode::usage, "--whole-meter deletes all calibrations with all series",
                  "leave --series and --calibration out, or leave it out");
  }
}

std::vector<Target> targets(CurveSession& session, const DeleteOptions& options) {
  std::vector<Target> list;
  if (!options.wholeMeter) {
    Target target{session.requireMeter(options.meter, options.reCalID), options.series, {}, 0, {}};
    const std::int32_t id = target.meter.MeterID;
    target.scope =
        options.series.empty()
            ? history::wholeCalibration(id)
            : history::wholeSeries(id, session.requireSeriesID(target.meter, options.series));
    return {target};
  }
  (void)session.requireMeter(options.meter, -1);
  for (const MeterInfo& calibration : session.calibrationsOf(options.meter)) {
    Target target{session.requireMeter(options.meter, calibration.ReCalID), "", {}, 0, {}};
    target.scope = history::wholeCalibration(target.meter.MeterID);
    list.push_back(std::move(target));
  }
  return list;
}

// Reads and removes what is asked for; nobody else can write from here to change.finish().
std::vector<Target> remove(StoredChange& change, const DeleteOptions& options) {
  CurveSession& session = change.session();
  change.begin();
  std::vector<Target> list = targets(session, options);
  for (Target& target : list) {
    asDatabaseTrouble("deleting from '" + session.path() + "'", [&] {
      target.fingerprint = history::fingerprint(session.connection(), target.scope);
      target.outcome = history::removeKept(session.connection(), change.kept(), target.scope);
    });
    change.noteEntry(target.outcome.KeptAs);
  }
  return list;
}

// What was confirmed is what was shown, and nothing else.
void requireSame(const std::vector<Target>& shown, const std::vector<Target>& now) {
  const auto isSame = [](const Target& a, const Target& b) {
    return a.scope == b.scope && a.fingerprint == b.fingerprint;
  };
  const auto [was, is] = std::ranges::mismatch(shown, now, isSame);
  if (was == shown.end() && is == now.end()) return;
  const Target& changed = was == shown.end() ? *is : *was;
  throw Trouble(ExitCode::declined,
                "another program has changed " +
                    placeText(changed.meter.SerialNumber, changed.meter.ReCalID, changed.series) +
                    " since it was shown",
                "nothing was deleted; run the command again to see what is there now");
}

std::string targetsTable(const std::vector<Target>& list) {
  TextTable table({{"Of", Align::left}, {"What", Align::left}, {"Rows", Align::right}});
  for (const Target& target : list) {
    std::string place = placeText(target.meter.SerialNumber, target.meter.ReCalID, target.series);
    for (const auto& [name, rows] : target.outcome.Rows) {
      table.addRow({place, rowsName(name), std::to_string(rows)});
      place.clear();  // told once
    }
  }
  return table.text();
}

nlohmann::json targetsJson(const std::vector<Target>& list) {
  nlohmann::json deleted = nlohmann::json::array();
  for (const Target& target : list) {
    nlohmann::json rows = nlohmann::json::object();
    for (const auto& [name, count] : target.outcome.Rows) rows[rowsKey(name)] = count;
    deleted.push_back(
        {{"meter", target.meter.SerialNumber},
         {"calibration", target.meter.ReCalID},
         {"series", target.series.empty() ? nlohmann::json() : nlohmann::json(target.series)},
         {"rows", rows}});
  }
  return deleted;
}

void deleteStored(const DeleteOptions& options) {
  requireOneTarget(options);
  CurveSession session(options.curves, Access::write);
  const auto show = [&](const std::vector<Target>& list) {
    if (!options.asJson) printData(targetsTable(list) + "\n");
  };
  StoredChange change(session, "delete", options.isDryRun);
  std::vector<Target> list;
  if (options.isDryRun || options.consent.isGiven) {
    list = remove(change, options);
    change.finish();
    show(list);
  } else {
    // Nobody shall wait for the database while somebody thinks about the question.
    StoredChange look(session, "delete", true);
    const std::vector<Target> shown = remove(look, options);
    look.finish();
    show(shown);
    requireConsent("Delete this?", options.consent);
    list = remove(change, options);
    requireSame(shown, list);
    change.finish();
  }
  if (!options.asJson)
    return printData((options.isDryRun ? "" : "Deleted.\n") + change.closingText());
  nlohmann::json value{{"database", session.path()}, {"deleted", targetsJson(list)}};
  change.addTo(value);
  printData(jsonText(value));
}

}  // namespace

void addDeleteCommand(Program& program) {
  Command command =
      program.add("delete",
                  "Delete a series (--series), a calibration (--calibration) or all of a "
                  "meter (--whole-meter) with everything that "
                  "belongs to it. What is deleted is kept in the history.");
  const auto options = std::make_shared<DeleteOptions>();
  addDatabase(command, options->curves);
  addMeter(command, options->meter, true);
  command.addText({"--series", "NAME", "Delete this series of the calibration"}, options->series);
  addCalibration(command, options->reCalID);
  command.addFlag("--whole-meter", options->wholeMeter, "Delete all calibrations of the meter");
  addConsent(command, options->consent);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] { deleteStored(*options); });
}

}  // namespace pelmora::cli
