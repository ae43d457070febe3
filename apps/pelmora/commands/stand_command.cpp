// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/service_options.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

using calibration::HistoryEntryId;
using calibration::Meter;
using calibration::StandStatement;

struct StandRequest {
  DatabaseOption curves;
  std::string action, meter, file;
  std::int16_t calibration = calibration::latestCalibration;
  bool isRemoved = false, asJson = false;
};

void requireOneAction(const StandRequest& request) {
  if (request.file.empty() || !request.isRemoved) return;
  throw Trouble(ExitCode::usage, "--remove and a file exclude each other", "leave one of them out");
}

nlohmann::json statementJson(const std::optional<StandStatement>& statement) {
  if (!statement) return nullptr;
  return {{"name", calibration::checkStandStatement(*statement)},
          {"file", statement->file},
          {"storedAt", statement->storedAt},
          {"user", statement->userName},
          {"text", statement->text}};
}

std::string statementText(const Meter& meter, const StandRequest& request,
                          const std::optional<StandStatement>& statement, HistoryEntryId kept) {
  const std::string place =
      "meter " + meter.serial + ", calibration " + std::to_string(meter.calibration);
  std::string text;
  if (!request.file.empty()) {
    text = "Stored the uncertainty of the stand with " + place + ".";
  } else if (request.isRemoved) {
    text = kept != 0 ? "Removed the uncertainty of the stand from " + place + "."
                     : "No uncertainty of a stand is stored with " + place + ".";
  } else if (!statement) {
    text = "No uncertainty of a stand is stored with " + place +
           ": U contains the scatter of the points alone. Store one with 'pelmora stand "
           "uncertainty CURVES FILE --meter " +
           meter.serial + "'.";
  } else {
    return wrapped("The uncertainty of the stand of " + place + ", stored " + statement->storedAt +
                       " from " + statement->file + ":",
                   0) +
           "\n" + statement->text + (statement->text.ends_with('\n') ? "" : "\n");
  }
  if (kept != 0)
    text += " The history keeps the previous one as entry " + std::to_string(kept) + ".";
  return wrapped(text, 0);
}

void runStand(const StandRequest& request) {
  requireOneAction(request);
  const bool isChange = !request.file.empty() || request.isRemoved;
  std::optional<StandStatement> given;
  if (!request.file.empty()) given = readStatement(request.file);
  Session session(request.curves, isChange ? calibration::Mode::write : calibration::Mode::read);
  calibration::Database& lab = session.database();
  const Meter meter = lab.meter(request.meter, request.calibration);
  HistoryEntryId kept = 0;
  if (given) kept = lab.setStandUncertainty(meter, *given);
  if (request.isRemoved) kept = lab.removeStandUncertainty(meter);
  const auto statement = lab.standUncertainty(meter);
  if (!request.asJson) return printData(statementText(meter, request, statement, kept));
  printData(report::jsonText({{"database", session.path()},
                              {"meter", report::meterJson(meter)},
                              {"entry", kept != 0 ? nlohmann::json(kept) : nlohmann::json()},
                              {"standUncertainty", statementJson(statement)}}));
}

}  // namespace

void addStandCommand(Program& program) {
  Command command = program.add(
      "stand",
      "Store what the stand contributes to the uncertainty of a calibration, or show what is "
      "stored. U of its curves contains it from then on.");
  const auto request = std::make_shared<StandRequest>();
  command.addChoice({"ACTION", "uncertainty", "What to store or show about the stand", true},
                    request->action);
  addDatabase(command, request->curves);
  addPath(command,
          {"FILE,--file", "FILE",
           "File with the uncertainties, as docs/file_formats.md describes it (default: show what "
           "is stored)"},
          request->file);
  addMeter(command, request->meter, true);
  addCalibration(command, request->calibration);
  command.addFlag("--remove", request->isRemoved, "Remove what is stored");
  addJson(command, request->asJson);
  command.onRun([request] { runStand(*request); });
}

}  // namespace pelmora::cli
