// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/history_output.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/input/question.h"
#include "apps/pelmora/stored_change.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/time_text.h"
#include "apps/pelmora/trouble.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace pelmora::cli {
namespace {

constexpr std::int64_t secondsOfDay = 86400;
constexpr std::int64_t mostDays = 36500;
constexpr std::int64_t mostEntries = 1000000000;

struct HistoryOptions {
  DatabaseOption curves;
  std::string meter, series;
  std::int16_t reCalID = -1;
  bool isPruning = false, isDryRun = false, asJson = false;
  std::optional<std::int64_t> olderThan, keep;
  Consent consent;
};

nlohmann::json entriesJson(const std::vector<history::Entry>& entries) {
  nlohmann::json list = nlohmann::json::array();
  for (const history::Entry& entry : entries) list.push_back(entryJson(entry));
  return list;
}

void list(const HistoryOptions& options) {
  CurveSession session(options.curves, Access::read);
  history::EntryFilter filter{options.meter, options.series, std::nullopt};
  if (options.reCalID >= 0) filter.ReCalID = options.reCalID;
  const auto entries = asDatabaseTrouble("reading the history of '" + session.path() + "'", [&] {
    return history::entries(session.connection(), filter);
  });
  if (options.asJson)
    return printData(jsonText({{"database", session.path()}, {"entries", entriesJson(entries)}}));
  if (entries.empty()) return printData("Nothing that was replaced is kept here.\n");
  printData(
      entriesTable(entries) + "\n" +
      wrapped(
          "Points are those that were there before each command. Bring an entry's rows back with "
          "'pelmora restore " +
              session.path() + " #'.",
          0));
}

void prune(const HistoryOptions& options) {
  if (!options.olderThan && !options.keep) {
    throw Trouble(ExitCode::usage, "--prune does not say what may go",
                  "give --older-than DAYS, --keep N or both");
  }
  CurveSession session(options.curves, Access::write);
  history::Pruning pruning;
  if (options.olderThan) pruning.Before = timeText(*options.olderThan * secondsOfDay);
  pruning.Keep = static_cast<std::size_t>(options.keep.value_or(0));
  const auto old = history::prunable(session.connection(), pruning);
  if (!options.asJson) printData(old.empty() ? "No entry is to go.\n" : entriesTable(old));
  if (!options.isDryRun && !old.empty()) {
    requireConsent("Remove " + counted(old.size(), "entry", "entries") + " for good?",
                   options.consent);
    asDatabaseTrouble("removing entries of '" + session.path() + "'",
                      [&] { history::removeEntries(session.connection(), old); });
    noteStored();
  }
  if (options.asJson) {
    return printData(jsonText({{"database", session.path()},
                               {"removed", entriesJson(old)},
                               {"dryRun", options.isDryRun}}));
  }
  if (options.isDryRun) return printData("\nDry run: nothing was changed.\n");
  if (!old.empty()) printData("\nRemoved " + counted(old.size(), "entry", "entries") + ".\n");
}

void addCount(Command& command, const std::string& name, std::optional<std::int64_t>& value,
              std::int64_t most, const std::string& unit, const std::string& help) {
  command.addText({name, unit, help}, [&value, name, most](const std::string& text) {
    value = integerOption(name, text, 0, most);
  });
}

void history(const HistoryOptions& options) {
  if (options.meter.empty() && (!options.series.empty() || options.reCalID >= 0)) {
    throw Trouble(ExitCode::usage, "--series and --calibration need a meter",
                  "give --meter SN as well");
  }
  const bool hasFilter = !options.meter.empty();
  const bool hasPruneOption =
      options.olderThan || options.keep || options.isDryRun || options.consent.isGiven;
  if (!options.isPruning && hasPruneOption) {
    throw Trouble(ExitCode::usage, "--older-than, --keep, --dry-run and --yes belong to --prune",
                  "add --prune");
  }
  if (!options.isPruning) return list(options);
  if (hasFilter)
    throw Trouble(ExitCode::usage, "--prune takes no meter", "give --older-than DAYS or --keep N");
  prune(options);
}

}  // namespace

void addHistoryCommand(Program& program) {
  Command command = program.add("history",
                                "Show what commands have replaced or deleted, newest "
                                "first; --prune removes old entries for good");
  const auto options = std::make_shared<HistoryOptions>();
  addDatabase(command, options->curves);
  addMeter(command, options->meter, false);
  addSeries(command, options->series, false);
  addCalibration(command, options->reCalID);
  command.addFlag("--prune", options->isPruning, "Remove old entries");
  addCount(command, "--older-than", options->olderThan, mostDays, "DAYS",
           "Prune entries older than this many days");
  addCount(command, "--keep", options->keep, mostEntries, "N", "Always keep the newest N entries");
  addConsent(command, options->consent);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] { history(*options); });
}

}  // namespace pelmora::cli
