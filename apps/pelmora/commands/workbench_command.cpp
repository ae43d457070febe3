// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/workbench/workbench.h"

#include <memory>

namespace pelmora::cli {
namespace {

struct WorkbenchRequest {
  DatabaseOption curves;
  workbench::WorkbenchOptions options;
};

void openWorkbench(const WorkbenchRequest& request) {
  Session session(request.curves, calibration::Mode::write);
  workbench::runWorkbench(session, request.options);
}

}  // namespace

void addWorkbenchCommand(Program& program) {
  Command command = program.add(
      "workbench",
      "Open a page in the browser to look at calibrations, leave points out, fit again, sign and "
      "import. It is served to this machine alone, at 127.0.0.1; over ssh, forward its port: "
      "ssh -L PORT:127.0.0.1:PORT HOST");
  const auto request = std::make_shared<WorkbenchRequest>();
  addDatabase(command, request->curves);
  constexpr std::int64_t highestPort = 65535, longestIdle = 10080;
  command.addText({"--port", "N", "Port of 127.0.0.1 (default: a free one)"},
                  [request](const std::string& text) {
                    request->options.port =
                        static_cast<std::uint16_t>(integerOption("--port", text, 1, highestPort));
                  });
  command.addFlag(
      "--no-browser", [request] { request->options.opensBrowser = false; },
      "Print the address and open no browser");
  command.addText({"--idle", "MINUTES", "End when nobody has used it that long (default 120)"},
                  [request](const std::string& text) {
                    request->options.idle =
                        std::chrono::minutes(integerOption("--idle", text, 1, longestIdle));
                  });
  command.onRun([request] { openWorkbench(*request); });
}

}  // namespace pelmora::cli
