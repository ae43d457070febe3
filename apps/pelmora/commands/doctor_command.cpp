// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/salvage_output.h"
#include "apps/pelmora/stored_change.h"
#include "apps/pelmora/output/terminal_colour.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "doctor/examination.h"
#include "doctor/integrity.h"
#include "doctor/repair.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;
using doctor::Finding;
using doctor::Severity;

struct DoctorOptions {
  DatabaseOption curves;
  std::string salvage;
  bool repairs = false, isDryRun = false, asJson = false;
};

struct Examination {
  std::vector<Finding> before, after;  // after: what a repair has left, or before
};

// In JSON, where names are never changed, and for people.
std::string severityText(Severity severity) {
  switch (severity) {
    case Severity::note: return "note";
    case Severity::warning: return "warning";
    case Severity::error: return "error";
  }
  return "error";
}

bool isLeft(const Examination& examination, const Finding& finding) {
  return std::any_of(examination.after.begin(), examination.after.end(),
                     [&](const Finding& left) { return left.ID == finding.ID; });
}

Examination examined(StoredChange& change, bool repairs) {
  const ConnectionPtr& curves = change.session().connection();
  return asDatabaseTrouble("examining '" + change.session().path() + "'", [&] {
    Examination result;
    result.before = doctor::examine(curves);
    result.after = result.before;
    if (!repairs) return result;
    change.begin();
    for (const std::int64_t entry : doctor::repair(curves, change.kept())) change.noteEntry(entry);
    result.after = doctor::examine(curves);
    return result;
  });
}

std::string repairText(const Examination& examination, const Finding& finding,
                       const StoredChange& change) {
  if (isLeft(examination, finding)) return finding.CanBeRepaired ? "--repair" : "-";
  return change.isDryRun() ? "would be" : "repaired";
}

std::string findingLines(const Finding& finding) {
  const Colour colour = finding.Level == Severity::error     ? Colour::red
                        : finding.Level == Severity::warning ? Colour::yellow
                                                             : Colour::green;
  std::string text =
      coloured(stdout, colour, severityText(finding.Level)) + " " + finding.ID + "\n" +
      wrapped(finding.Text + ": " + std::to_string(finding.Count) +
                  (finding.Example.empty() ? "" : "; for example " + finding.Example) + ".",
              2);
  if (!finding.Remedy.empty()) text += wrapped("Remedy: " + finding.Remedy + ".", 2);
  return text;
}

std::string examinationText(const Examination& examination, const StoredChange& change,
                            const std::string& path) {
  if (examination.before.empty()) return wrapped("Nothing is wrong with " + path + ".", 0);
  TextTable table({{"Level", Align::left},
                   {"Check", Align::left},
                   {"Count", Align::right},
                   {"Repair", Align::left}});
  std::string details;
  for (const Finding& finding : examination.before) {
    table.addRow({severityText(finding.Level), finding.ID, std::to_string(finding.Count),
                  repairText(examination, finding, change)});
    details += "\n" + findingLines(finding);
  }
  return table.text() + details;
}

nlohmann::json examinationJson(const Examination& examination) {
  nlohmann::json findings = nlohmann::json::array();
  for (const Finding& finding : examination.before) {
    findings.push_back({{"id", finding.ID},
                        {"severity", severityText(finding.Level)},
                        {"count", finding.Count},
                        {"text", finding.Text},
                        {"example", finding.Example},
                        {"repairable", finding.CanBeRepaired},
                        {"repaired", !isLeft(examination, finding)},
                        {"remedy", finding.Remedy}});
  }
  return findings;
}

// Says what a damaged file still holds; nothing else can be checked then.
void describeDamage(const DoctorOptions& options, const std::vector<IntegrityProblem>& problems) {
  const SalvageReport held = asDatabaseTrouble("reading '" + options.curves.path + "'", [&] {
    return salvageDatabase(options.curves.path);
  });
  const char* remedy = "restore it from a copy, or bring over what can be read with --salvage NEW";
  if (options.asJson) {
    const Finding finding{
        "damaged-file",      Severity::error, problems.size(), "The file is damaged",
        problems[0].Example, false,           remedy};
    printData(jsonText({{"database", options.curves.path},
                        {"integrity", integrityJson(problems)},
                        {"findings", examinationJson({{finding}, {finding}})},
                        {"held", salvageJson(held)},
                        {"problemsRemain", true},
                        {"dryRun", options.isDryRun},
                        {"historyEntries", nlohmann::json::array()}}));
  } else {
    printData(integrityText(problems) + "\n" +
              wrapped(held.isWhole() ? "All rows can be read:" : "What can be read:", 0) + "\n" +
              salvageText(held));
  }
  throw Trouble(ExitCode::badInput, "'" + options.curves.path + "' is damaged", remedy);
}

void salvage(const DoctorOptions& options) {
  if (options.repairs || options.isDryRun) {
    throw Trouble(ExitCode::usage, "--salvage goes without --repair and --dry-run",
                  "salvage first and repair the new database then");
  }
  const SalvageReport report = asDatabaseTrouble("salvaging '" + options.curves.path + "'", [&] {
    return salvageDatabase(options.curves.path, options.salvage);
  });
  if (options.asJson) {
    nlohmann::json value = salvageJson(report);
    value["database"] = options.curves.path;
    value["newDatabase"] = options.salvage;
    printData(jsonText(value));
  } else {
    printData(
        wrapped("Brought over from " + options.curves.path + " into " + options.salvage + ":", 0) +
        "\n" + salvageText(report) +
        (report.isWhole() ? "\n" + wrapped("Nothing is missing.", 0) : ""));
  }
  if (report.isWhole()) return;
  throw Trouble(ExitCode::badInput, "not everything in '" + options.curves.path + "' could be read",
                "'" + options.salvage + "' holds what is listed above");
}

// The file itself comes first: other checks may stumble over damage.
std::vector<IntegrityProblem> integrityOf(const DatabaseOption& curves) {
  Progress progress;
  try {
    return doctor::damageOf(curves.path, patienceWith(curves.path, curves.wait, progress));
  } catch (const Error& error) {
    throw databaseTrouble("the curve database cannot be opened", error);
  }
}

void examine(const DoctorOptions& options) {
  if (!options.salvage.empty()) return salvage(options);
  if (options.isDryRun && !options.repairs) {
    throw Trouble(ExitCode::usage, "--dry-run belongs to --repair",
                  "without --repair nothing is changed anyway");
  }
  const auto problems = integrityOf(options.curves);
  if (!problems.empty()) return describeDamage(options, problems);
  CurveSession session(options.curves, options.repairs ? Access::write : Access::read);
  StoredChange change(session, "doctor", options.isDryRun);
  const Examination examination = examined(change, options.repairs);
  change.finish();
  const bool hasProblems = doctor::hasProblems(examination.after);
  if (options.asJson) {
    nlohmann::json value{{"database", session.path()},
                         {"integrity", nlohmann::json::array()},
                         {"findings", examinationJson(examination)},
                         {"problemsRemain", hasProblems}};
    change.addTo(value);
    printData(jsonText(value));
  } else {
    const std::string closing = options.repairs ? change.closingText() : "";
    printData(examinationText(examination, change, session.path()) + (closing.empty() ? "" : "\n") +
              closing);
  }
  if (!hasProblems) return;
  const bool helps = std::any_of(examination.after.begin(), examination.after.end(),
                                 [](const Finding& finding) { return finding.CanBeRepaired; });
  throw Trouble(ExitCode::badInput, "'" + session.path() + "' has problems",
                helps ? "mend what is safe with --repair; the rest is told above"
                      : "what helps is told above");
}

}  // namespace

void addDoctorCommand(Program& program) {
  Command command =
      program.add("doctor",
                  "Check a curve database: damage to the file, invalid numbers, duplicates, "
                  "orphaned rows, series without points, curves older than their points, "
                  "missing indexes. Ends with 5 if problems remain.");
  const auto options = std::make_shared<DoctorOptions>();
  addDatabase(command, options->curves);
  command.addFlag("--repair", options->repairs,
                  "Repair what is safe; removed rows are kept in the history");
  command.addText(
      {"--salvage", "NEW",
       "Create the curve database NEW and copy whatever can be read from a damaged one"},
      options->salvage);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] { examine(*options); });
}

}  // namespace pelmora::cli
