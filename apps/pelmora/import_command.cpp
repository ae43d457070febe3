// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands.h"
#include "apps/pelmora/common_options.h"
#include "apps/pelmora/fit_output.h"
#include "apps/pelmora/stand_import.h"

#include <CLI/App.hpp>
#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct ImportOptions {
  DatabaseOption curves;
  ImportRequest request;
  RunOptions runs;
  bool asJson = false, isDryRun = false;
};

void import(ImportOptions& options) {
  options.request.runs = standRuns(options.runs.jobs, options.runs.fluids, options.runs.operators);
  CurveSession session(options.curves, Access::write);
  StoredChange change(session, "import", options.isDryRun);
  const ImportOutcome outcome = importRuns(change, options.request);
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

void addImportCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "import",
      "Copy runs of a stand into a meter and derive its series. An unknown meter is "
      "registered; a run in a fluid that the meter has already replaces that run.");
  const auto options = std::make_shared<ImportOptions>();
  addDatabase(command, options->curves);
  addImport(command, options->request, options->runs);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.callback([options] { import(*options); });
}

}  // namespace pelmora::cli
