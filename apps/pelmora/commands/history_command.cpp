// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/question.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/history_output.h"
#include "apps/pelmora/output/long_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "base/time_text.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace pelmora::cli {
namespace {

constexpr std::int64_t secondsOfDay = 86400;
constexpr std::int64_t mostDays = 36500;
constexpr std::int64_t mostEntries = 1000000000;
constexpr std::size_t shownEntries = 1000;  // in a list for people; --all shows the others

struct HistoryRequest {
  DatabaseOption curves;
  std::string meter, series;
  std::int16_t calibration = calibration::latestCalibration;
  bool isPruning = false, isDryRun = false, asJson = false, all = false;
  std::optional<std::int64_t> olderThan, keep;
  Consent consent;
};

// Rows are read twice, first for the widths of the columns and then for the lines, so that memory
// does not grow with their number.
void listText(Session& session, calibration::HistoryFilter filter, bool all) {
  TableLayout table(entryColumns());
  std::size_t count = 0;
  if (!all) filter.newest = shownEntries + 1;
  session.database().visitHistory(filter, [&](const calibration::HistoryEntry& entry) {
    requireNotInterrupted();
    if (all || count < shownEntries) table.measure(entryCells(entry));
    ++count;
  });
  if (count == 0) return printData("Nothing that was replaced is kept here.\n");
  LongText text;
  text.add(table.head());
  if (!all) filter.newest = shownEntries;
  session.database().visitHistory(filter, [&](const calibration::HistoryEntry& entry) {
    requireNotInterrupted();
    text.add(table.line(entryCells(entry)));
  });
  text.add("\n" +
           wrapped("Points are those that were there before each command, Out those that were "
                   "excluded. Bring an entry's rows back with 'pelmora restore " +
                       session.path() + " #'.",
                   0));
  if (!all && count > shownEntries) {
    text.add("\n" + wrapped("These are the newest " + std::to_string(shownEntries) +
                                " entries. There are older ones, which --all lists too.",
                            0));
  }
  text.end();
}

void listJson(Session& session, const calibration::HistoryFilter& filter) {
  LongList list({{"database", session.path()}}, "entries");
  session.database().visitHistory(filter, [&](const calibration::HistoryEntry& entry) {
    requireNotInterrupted();
    list.add(entryJson(entry));
  });
  list.end();
}

void list(const HistoryRequest& request) {
  Session session(request.curves, calibration::Mode::read);
  calibration::HistoryFilter filter{request.meter, request.series, {}};
  if (request.calibration != calibration::latestCalibration)
    filter.calibration = request.calibration;
  request.asJson ? listJson(session, filter) : listText(session, filter, request.all);
}

void prune(const HistoryRequest& request) {
  if (!request.olderThan && !request.keep) {
    throw Trouble(ExitCode::usage, "--prune does not say which entries to remove",
                  "give --older-than DAYS, --keep N or both");
  }
  Session session(request.curves, calibration::Mode::write);
  calibration::Database& lab = session.database();
  calibration::HistoryPruning pruning;
  if (request.olderThan) pruning.before = utcText(*request.olderThan * secondsOfDay);
  pruning.keep = static_cast<std::size_t>(request.keep.value_or(0));
  const auto old = lab.prunable(pruning);
  if (!request.asJson) printData(old.empty() ? "No entry is to be removed.\n" : entriesTable(old));
  const std::string entries = counted(old.size(), "entry", "entries");
  if (!request.isDryRun && !old.empty()) {
    requireConsent("Remove " + entries + " for good?", request.consent);
    lab.prune(old);
    noteStored();
  }
  if (request.asJson) {
    return printData(report::jsonText({{"database", session.path()},
                                       {"removed", entriesJson(old)},
                                       {"dryRun", request.isDryRun}}));
  }
  if (request.isDryRun) return printData("\nDry run: nothing was changed.\n");
  if (!old.empty()) printData("\nRemoved " + entries + ".\n");
}

void addCount(Command& command, const std::string& name, std::optional<std::int64_t>& value,
              std::int64_t most, const std::string& unit, const std::string& help) {
  command.addText({name, unit, help}, [&value, name, most](const std::string& text) {
    value = integerOption(name, text, 0, most);
  });
}

void showHistory(const HistoryRequest& request) {
  if (request.meter.empty() && (!request.series.empty() || request.calibration >= 0)) {
    throw Trouble(ExitCode::usage, "--series and --calibration need a meter",
                  "give --meter SN as well");
  }
  const bool hasFilter = !request.meter.empty();
  const bool hasPruneOption =
      request.olderThan || request.keep || request.isDryRun || request.consent.isGiven;
  if (!request.isPruning && hasPruneOption) {
    throw Trouble(ExitCode::usage, "--older-than, --keep, --dry-run and --yes belong to --prune",
                  "add --prune");
  }
  if (!request.isPruning) return list(request);
  if (request.all)
    throw Trouble(ExitCode::usage, "--all does not belong to --prune", "leave it out");
  if (hasFilter)
    throw Trouble(ExitCode::usage, "--prune takes no meter", "give --older-than DAYS or --keep N");
  prune(request);
}

}  // namespace

void addHistoryCommand(Program& program) {
  Command command = program.add("history",
                                "Show what commands have replaced or deleted, newest "
                                "first; --prune removes old entries for good");
  const auto request = std::make_shared<HistoryRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, false);
  addSeries(command, request->series, false);
  addCalibration(command, request->calibration);
  command.addFlag("--all", request->all,
                  "List every entry, not only the newest " + std::to_string(shownEntries) +
                      " (JSON always has all)");
  command.addFlag("--prune", request->isPruning, "Remove old entries");
  addCount(command, "--older-than", request->olderThan, mostDays, "DAYS",
           "Prune entries older than this many days");
  addCount(command, "--keep", request->keep, mostEntries, "N", "Always keep the newest N entries");
  addConsent(command, request->consent);
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { showHistory(*request); });
}

}  // namespace pelmora::cli
