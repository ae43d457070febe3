// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/history_output.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/stored_change.h"
#include "apps/pelmora/trouble.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <memory>

namespace pelmora::cli {
namespace {

struct RestoreOptions {
  DatabaseOption curves;
  std::vector<std::string> entries;
  bool isDryRun = false, asJson = false;
};

Trouble restoreTrouble(const CurveSession& session, std::int64_t entryID, const Error& error) {
  if (error.number() == history::noSuchEntry) {
    return {ExitCode::unknownName, std::string(error.what()) + " in '" + session.path() + "'",
            "list the entries with 'pelmora history'; nothing was changed"};
  }
  const std::string doing = "restoring entry " + std::to_string(entryID) + ": ";
  const ExitCode code =
      error.number() == history::standsInTheWay ? ExitCode::badInput : ExitCode::database;
  return {code, doing + error.what(), "nothing was changed"};
}

void restore(const RestoreOptions& options) {
  std::vector<std::int64_t> ids;
  for (const std::string& text : options.entries) {
    ids.push_back(integerOption("ENTRY", text, 1, std::numeric_limits<std::int64_t>::max()));
  }
  CurveSession session(options.curves, Access::write);
  std::string text;
  nlohmann::json restored = nlohmann::json::array();
  StoredChange change(session, "restore", options.isDryRun);
  change.begin();
  for (const std::int64_t id : ids) {
    try {
      const history::RestoreOutcome outcome =
          history::restore(session.connection(), change.kept(), id);
      change.noteEntry(outcome.KeptAs);
      text += (text.empty() ? "" : "\n") + restoredTable(outcome);
      restored.push_back(restoredJson(outcome));
    } catch (const Error& error) {
      throw restoreTrouble(session, id, error);
    }
  }
  change.finish();
  if (!options.asJson) return printData(text + "\n" + change.closingText());
  nlohmann::json value{{"database", session.path()}, {"restored", restored}};
  change.addTo(value);
  printData(jsonText(value));
}

}  // namespace

void addRestoreCommand(Program& program) {
  Command command = program.add("restore",
                                "Bring back what a command has replaced or deleted, with "
                                "its ids. What is there now is kept in turn, so that a "
                                "restore can be undone by another one.");
  const auto options = std::make_shared<RestoreOptions>();
  addDatabase(command, options->curves);
  command.addValues(
      {"ENTRY", "N", "Numbers of entries as shown by 'pelmora history'; first to last"},
      options->entries);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] { restore(*options); });
}

}  // namespace pelmora::cli
