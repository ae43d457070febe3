// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/report.h>

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace pelmora::cli {
namespace {

struct CheckRequest {
  std::string file;
  std::optional<double> cmcPercent;
  bool asJson = false;
};

std::vector<calibration::CertificateFlaw> flawsOf(const CheckRequest& request) {
  const std::string xml = readInputFile(request.file);
  try {
    return calibration::checkCertificate(xml, request.file, request.cmcPercent);
  } catch (const calibration::BadData& failure) {
    throw Trouble(ExitCode::badInput, "'" + request.file + "': " + failure.what(),
                  failure.remedy());
  }
}

void checkDcc(const CheckRequest& request) {
  const auto flaws = flawsOf(request);
  if (request.asJson) {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& flaw : flaws) list.push_back({{"line", flaw.line}, {"text", flaw.what}});
    printData(report::jsonText({{"file", request.file}, {"flaws", list}}));
  } else {
    std::string text;
    for (const auto& flaw : flaws)
      text += "Line " + std::to_string(flaw.line) + ": " + flaw.what + ".\n";
    if (flaws.empty())
      text = wrapped("No flaw was found in " + request.file +
                         ". The schema of the certificate and its signature were not checked.",
                     0);
    printData(text);
  }
  if (flaws.empty()) return;
  throw Trouble(ExitCode::badInput, "'" + request.file + "' has " + counted(flaws.size(), "flaw"),
                "ask the laboratory for a corrected certificate");
}

}  // namespace

void addCheckDccCommand(Program& program) {
  Command command = program.add(
      "check-dcc",
      "Check in a digital calibration certificate what its schema does not check: units of the SI, "
      "lists of equal length, finite values, and uncertainties with coverage factor and "
      "probability. Exit code 5 if there is a flaw.");
  const auto request = std::make_shared<CheckRequest>();
  addPath(command, {"FILE", "FILE", "The certificate, XML", true}, request->file);
  command.addText(
      {"--cmc", "PERCENT", "The laboratory's capability: no expanded uncertainty may be below it"},
      [request](const std::string& text) { request->cmcPercent = numberOption("--cmc", text); });
  addJson(command, request->asJson);
  command.onRun([request] { checkDcc(*request); });
}

}  // namespace pelmora::cli
