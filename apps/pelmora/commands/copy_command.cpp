// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/lock_holder.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/progress.h"
#include "apps/pelmora/output/proof_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <pelmora/calibration/copy.h>
#include <pelmora/calibration/failure.h>

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

constexpr std::int64_t largestPortion = 1000000;

struct CopyRequest {
  std::string from;
  DatabaseOption to;
  calibration::CopyOptions options;
  bool asJson = false;
};

calibration::ProofSheet copied(const CopyRequest& request) {
  Progress progress;
  calibration::CopyOptions options = request.options;
  options.open.patience = patienceWith(request.to.path, request.to.wait, progress);
  calibration::Observer observer;
  observer.status = [&](const std::string& text) {
    requireNotInterrupted();
    progress.show(text);
  };
  try {
    return calibration::copyCurves(request.from, request.to.path, options, observer);
  } catch (const calibration::Exists& taken) {
    const bool needsNewIds = taken.remedy().ends_with("new ids");
    throw Trouble(ExitCode::database, taken.what(),
                  taken.remedy() + (needsNewIds ? " with --new-ids" : ""));
  }
}

void copyCurves(const CopyRequest& request) {
  const calibration::ProofSheet sheet = copied(request);
  noteStored();
  if (request.asJson) {
    nlohmann::json value = proofJson(sheet);
    value["from"] = request.from;
    value["database"] = request.to.path;
    printData(report::jsonText(value));
  } else {
    const std::string heading = "Copied from " + request.from + " into " + request.to.path + ":";
    printData(wrapped(heading, 0) + "\n" + proofText(sheet) +
              (sheet.isComplete() ? "\n" + wrapped("Nothing is missing.", 0) : ""));
  }
  if (sheet.isComplete()) return;
  throw Trouble(ExitCode::badInput, "not everything in '" + request.from + "' was copied",
                "'" + request.to.path + "' holds the rest; 'pelmora doctor' examines the source");
}

}  // namespace

void addCopyCommand(Program& program) {
  Command command = program.add(
      "copy",
      "Copy curves from one curve database to another, whatever keeps them: a file, an Access file "
      "or a server. Prints a proof sheet: the rows that each table should have, those that were "
      "read and written, and every row or value that is missing, with the reason. Ends with 5 if "
      "anything is missing.");
  const auto request = std::make_shared<CopyRequest>();
  addDatabase(command, {"FROM", "FILE", "Curve database; it is only read", true}, request->from);
  addDatabase(command,
              {"TO", "FILE", "Curve database; a file is created if it does not exist", true},
              request->to.path);
  addWait(command, request->to);
  command.addTexts({"--meter", "SN",
                    "Copy this meter, with all its calibrations; repeat for more (default: "
                    "everything, into an empty database)"},
                   request->options.meters);
  command.addFlag("--new-ids", request->options.newIds,
                  "Give the rows new ids, to add them to a database that holds others");
  command.addText({"--portion", "N",
                   "Store N series at a time; a copy that was interrupted continues when it is "
                   "started again (default: all or nothing)"},
                  [request](const std::string& text) {
                    request->options.portion = static_cast<std::size_t>(
                        integerOption("--portion", text, 1, largestPortion));
                  });
  command.setFooter(
      "Without --meter and --new-ids every row keeps its id, and the history comes along. Tables "
      "that are not part of a curve database are not copied. On a server, make the target first "
      "with 'pelmora init'.");
  addJson(command, request->asJson);
  command.onRun([request] { copyCurves(*request); });
}

}  // namespace pelmora::cli
