// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/history_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <memory>

namespace pelmora::cli {
namespace {

struct RestoreRequest {
  DatabaseOption curves;
  std::vector<std::string> entries;
  bool isDryRun = false, asJson = false;
};

void restore(const RestoreRequest& request) {
  std::vector<calibration::HistoryEntryId> ids;
  for (const std::string& text : request.entries)
    ids.push_back(integerOption("ENTRY", text, 1, std::numeric_limits<std::int64_t>::max()));
  Session session(request.curves, calibration::Mode::write);
  std::string text;
  nlohmann::json list = nlohmann::json::array();
  CommandChange change(session, "restore", request.isDryRun);
  change.begin();
  for (const calibration::HistoryEntryId id : ids) {
    const calibration::Restored restored = session.database().restore(id);
    text += (text.empty() ? "" : "\n") + restoredTable(restored);
    list.push_back(restoredJson(restored));
  }
  change.finish();
  if (!request.asJson) return printData(text + "\n" + change.closingText());
  nlohmann::json value{{"database", session.path()}, {"restored", list}};
  change.addTo(value);
  printData(report::jsonText(value));
}

}  // namespace

void addRestoreCommand(Program& program) {
  Command command = program.add("restore",
                                "Bring back what a command has replaced or deleted, with "
                                "its ids. What is there now is kept in turn, so that a "
                                "restore can be undone by another one.");
  const auto request = std::make_shared<RestoreRequest>();
  addDatabase(command, request->curves);
  command.addValues(
      {"ENTRY", "N", "Numbers of entries as shown by 'pelmora history'; first to last"},
      request->entries);
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { restore(*request); });
}

}  // namespace pelmora::cli
