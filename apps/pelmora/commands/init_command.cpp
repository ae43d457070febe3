// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/trouble.h"
#include "history/kept_tables.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>

namespace pelmora::cli {
namespace {

struct InitOptions {
  std::string path;
  bool asJson = false;
};

void init(const InitOptions& options) {
  try {
    createCurveDatabase(options.path);
    const ConnectionPtr curves = openDatabase(options.path);
    Transaction transaction(curves);
    history::createHistoryTables(curves);
    transaction.commit();
    noteStored();
  } catch (const Error& error) {
    throw Trouble(ExitCode::database, error.what(), "");
  }
  if (options.asJson) return printData(jsonText({{"database", options.path}, {"created", true}}));
  printData("Created the curve database " + options.path + ".\n");
}

}  // namespace

void addInitCommand(Program& program) {
  Command command = program.add("init", "Create a new, empty curve database");
  const auto options = std::make_shared<InitOptions>();
  addDatabase(command, options->path);
  addJson(command, options->asJson);
  command.onRun([options] { init(*options); });
}

}  // namespace pelmora::cli
