// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/standard_output.h"
#include "report/json_values.h"

#include <pelmora/calibration/database.h>

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct InitRequest {
  std::string path;
  bool asJson = false;
};

void init(const InitRequest& request) {
  (void)calibration::create(request.path);
  noteStored();
  if (request.asJson)
    return printData(report::jsonText({{"database", request.path}, {"created", true}}));
  printData("Created the curve database " + request.path + ".\n");
}

}  // namespace

void addInitCommand(Program& program) {
  Command command = program.add("init", "Create a new, empty curve database");
  const auto request = std::make_shared<InitRequest>();
  addDatabase(command, request->path);
  addJson(command, request->asJson);
  command.onRun([request] { init(*request); });
}

}  // namespace pelmora::cli
