// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/import_runs.h"
#include "apps/pelmora/output/import_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct ImportCommand {
  DatabaseOption curves;
  ImportOptions import;
  bool asJson = false, isDryRun = false;
};

void import(const ImportCommand& command) {
  const ImportRequest request = importRequest(command.import);
  Session session(command.curves, calibration::Mode::write);
  CommandChange change(session, "import", command.isDryRun);
  const ImportOutcome outcome = importRuns(change, request);
  change.finish();
  session.progress().clear();
  if (command.asJson) {
    nlohmann::json value = importJson(outcome);
    change.addTo(value);
    printData(report::jsonText(value));
  } else {
    printData(importText(session.path(), outcome) + change.closingText());
  }
  if (outcome.trouble) throw Trouble(*outcome.trouble);
}

}  // namespace

void addImportCommand(Program& program) {
  Command command =
      program.add("import",
                  "Copy runs of a stand into a meter and derive its series. An unknown meter is "
                  "registered; a run in a fluid that the meter has already replaces that run.");
  const auto request = std::make_shared<ImportCommand>();
  addDatabase(command, request->curves);
  addImport(command, request->import);
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { import(*request); });
}

}  // namespace pelmora::cli
