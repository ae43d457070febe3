// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/lock_holder.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/finding_output.h"
#include "apps/pelmora/output/salvage_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::Finding;
using calibration::Severity;
using report::jsonText;

struct DoctorRequest {
  DatabaseOption curves;
  std::string salvage;
  bool repairs = false, isDryRun = false, asJson = false;
};

// Without a repair, both are the same.
using Examination = calibration::Repaired;

bool isLeft(const Examination& examination, const Finding& finding) {
  return std::any_of(examination.after.begin(), examination.after.end(),
                     [&](const Finding& left) { return left.id == finding.id; });
}

Examination examined(CommandChange& change, bool repairs) {
  calibration::Database& lab = change.session().database();
  if (!repairs) {
    const std::vector<Finding> findings = lab.examine();
    return {findings, findings};
  }
  change.begin();
  return lab.repair();
}

std::string repairText(const Examination& examination, const Finding& finding,
                       const CommandChange& change) {
  if (isLeft(examination, finding)) return finding.canBeRepaired ? "--repair" : "-";
  return change.isDryRun() ? "would be" : "repaired";
}

std::string examinationText(const Examination& examination, const CommandChange& change,
                            const std::string& path) {
  if (examination.before.empty()) return wrapped("Nothing is wrong with " + path + ".", 0);
  TextTable table({{"Level", TextAlign::left},
                   {"Check", TextAlign::left},
                   {"Count", TextAlign::right},
                   {"Repair", TextAlign::left}});
  std::string details;
  for (const Finding& finding : examination.before) {
    table.addRow({severityText(finding.severity), finding.id, std::to_string(finding.count),
                  repairText(examination, finding, change)});
    details += "\n" + findingLines(finding);
  }
  return table.text() + details;
}

nlohmann::json examinationJson(const Examination& examination) {
  nlohmann::json findings = nlohmann::json::array();
  for (const Finding& finding : examination.before) {
    nlohmann::json value = findingJson(finding);
    value["repaired"] = !isLeft(examination, finding);
    findings.push_back(std::move(value));
  }
  return findings;
}

// Runs `body`, which reads the file itself. Errors: Trouble database where there is no such file.
template <class Body>
auto readingFile(Body&& body) {
  try {
    return body();
  } catch (const calibration::NotFound& missing) {
    throw Trouble(ExitCode::database, missing.what(), missing.remedy());
  }
}

// Copies what can be read to `newPath`. Without a path it is only counted.
SalvageReport salvaged(const DatabaseOption& curves, const std::string& newPath = {}) {
  Progress progress;
  return readingFile([&] {
    return calibration::salvage(curves.path, newPath,
                                patienceWith(curves.path, curves.wait, progress));
  });
}

// Says what a damaged file still holds; nothing else can be checked then.
void describeDamage(const DoctorRequest& request, const std::vector<IntegrityProblem>& problems) {
  const std::string& path = request.curves.path;
  const SalvageReport held = salvaged(request.curves);
  const char* remedy = "restore it from a copy, or salvage what can be read with --salvage NEW";
  if (request.asJson) {
    const Finding finding{
        "damaged-file",      Severity::error, problems.size(), "The file is damaged",
        problems[0].Example, false,           remedy};
    printData(jsonText({{"database", path},
                        {"integrity", integrityJson(problems)},
                        {"findings", examinationJson({{finding}, {finding}})},
                        {"held", salvageJson(held)},
                        {"problemsRemain", true},
                        {"dryRun", request.isDryRun},
                        {"historyEntries", nlohmann::json::array()}}));
  } else {
    printData(integrityText(problems) + "\n" +
              wrapped(held.isWhole() ? "All rows can be read:" : "What can be read:", 0) + "\n" +
              salvageText(held));
  }
  throw Trouble(ExitCode::badInput, "'" + path + "' is damaged", remedy);
}

void salvage(const DoctorRequest& request) {
  if (request.repairs || request.isDryRun) {
    throw Trouble(ExitCode::usage, "--salvage cannot be combined with --repair or --dry-run",
                  "salvage first and repair the new database then");
  }
  const std::string& path = request.curves.path;
  const SalvageReport report = salvaged(request.curves, request.salvage);
  if (request.asJson) {
    nlohmann::json value = salvageJson(report);
    value["database"] = path;
    value["newDatabase"] = request.salvage;
    printData(jsonText(value));
  } else {
    printData(wrapped("Brought over from " + path + " into " + request.salvage + ":", 0) + "\n" +
              salvageText(report) +
              (report.isWhole() ? "\n" + wrapped("Nothing is missing.", 0) : ""));
  }
  if (report.isWhole()) return;
  throw Trouble(ExitCode::badInput, "not everything in '" + path + "' could be read",
                "'" + request.salvage + "' holds what is listed above");
}

// The file itself comes first: other checks may stumble over damage.
std::vector<IntegrityProblem> damageOf(const DatabaseOption& curves) {
  Progress progress;
  return readingFile([&] {
    return calibration::damageOf(curves.path, patienceWith(curves.path, curves.wait, progress));
  });
}

void print(const DoctorRequest& request, const Examination& examination,
           const CommandChange& change) {
  if (request.asJson) {
    nlohmann::json value{{"database", request.curves.path},
                         {"integrity", nlohmann::json::array()},
                         {"findings", examinationJson(examination)},
                         {"problemsRemain", calibration::hasProblems(examination.after)}};
    change.addTo(value);
    return printData(jsonText(value));
  }
  const std::string closing = request.repairs ? change.closingText() : "";
  printData(examinationText(examination, change, request.curves.path) +
            (closing.empty() ? "" : "\n") + closing);
}

void examine(const DoctorRequest& request) {
  if (!request.salvage.empty()) return salvage(request);
  if (request.isDryRun && !request.repairs) {
    throw Trouble(ExitCode::usage, "--dry-run belongs to --repair",
                  "without --repair nothing is changed anyway");
  }
  const auto problems = damageOf(request.curves);
  if (!problems.empty()) return describeDamage(request, problems);
  Session session(request.curves,
                  request.repairs ? calibration::Mode::write : calibration::Mode::read);
  CommandChange change(session, "doctor", request.isDryRun);
  const Examination examination = examined(change, request.repairs);
  change.finish();
  print(request, examination, change);
  if (!calibration::hasProblems(examination.after)) return;
  const bool helps = std::ranges::any_of(examination.after, &Finding::canBeRepaired);
  throw Trouble(ExitCode::badInput, "'" + session.path() + "' has problems",
                helps ? "repair what is safe with --repair; remedies for the rest are listed above"
                      : "the remedies are listed above");
}

}  // namespace

void addDoctorCommand(Program& program) {
  Command command =
      program.add("doctor",
                  "Check a curve database: damage to the file, invalid numbers, duplicates, "
                  "orphaned rows, series without points, curves older than their points, "
                  "missing indexes. Ends with 5 if problems remain.");
  const auto request = std::make_shared<DoctorRequest>();
  addDatabase(command, request->curves);
  command.addFlag("--repair", request->repairs,
                  "Repair what is safe; removed rows are kept in the history");
  command.addText(
      {"--salvage", "NEW",
       "Create the curve database NEW and copy whatever can be read from a damaged one"},
      request->salvage);
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { examine(*request); });
}

}  // namespace pelmora::cli
