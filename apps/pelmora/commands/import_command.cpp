// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/stand_import.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct ImportCommand {
  DatabaseOption curves;
  ImportOptions import;
  bool asJson = false, isDryRun = false;
};

void import(const ImportCommand& options) {
  const ImportRequest request = importRequest(options.import);
  CurveSession session(options.curves, Access::write);
  StoredChange change(session, "import", options.isDryRun);
  const ImportOutcome outcome = importRuns(change, request);
  change.finish();
  session.progress().clear();
  if (options.asJson) {
    nlohmann::json value = importJson(outcome);
    change.addTo(value);
    printData(jsonText(value));
  } else {
    printData(importHead(session, outcome) + importTable(outcome) + change.closingText());
  }
  if (const auto trouble = outcome.anyTrouble()) throw Trouble(*trouble);
}

}  // namespace

void addImportCommand(Program& program) {
  Command command =
      program.add("import",
                  "Copy runs of a stand into a meter and derive its series. An unknown meter is "
                  "registered; a run in a fluid that the meter has already replaces that run.");
  const auto options = std::make_shared<ImportCommand>();
  addDatabase(command, options->curves);
  addImport(command, options->import);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] { import(*options); });
}

}  // namespace pelmora::cli
