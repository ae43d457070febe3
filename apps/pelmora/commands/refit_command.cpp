// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/refit/refit_all.h"
#include "apps/pelmora/output/refit_output.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/trouble.h"
#include "apps/pelmora/unreadable_series.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

namespace pelmora::cli {
namespace {

constexpr std::int64_t mostThreads = 256;

struct RefitOptions {
  DatabaseOption curves;
  std::string meter;
  std::vector<std::string> series;
  std::int16_t reCalID = -1;
  RefitRequest request{{}, std::max(1U, std::thread::hardware_concurrency()), 0.01};
  bool all = false, isDryRun = false, asJson = false;
};

void requireSelection(const RefitOptions& options) {
  if (options.all && (!options.meter.empty() || !options.series.empty())) {
    throw Trouble(ExitCode::usage,
                  "--all fits every series: it goes with no --meter and no --series",
                  "leave --all out to fit those that you name");
  }
  if (!options.all && options.meter.empty()) {
    throw Trouble(ExitCode::usage, "no series is named",
                  "give --all, or --meter SN with or without --series");
  }
}

std::string placeOf(const RefitTask& task) {
  return "'" + task.series + "' of meter '" + task.meter.SerialNumber + "', calibration " +
         std::to_string(task.meter.ReCalID);
}

void requireRead(const std::vector<RefitResult>& results) {
  UnreadableSeries unreadable;
  for (const RefitResult& result : results) {
    if (result.kind != RefitResult::Kind::unreadable) continue;
    unreadable.add(placeOf(result.task), {ExitCode::badInput, result.reason, lookForCause});
  }
  unreadable.throwIfAny();
}

void requireFitted(const std::vector<RefitResult>& results) {
  const auto isMissing = [](const RefitResult& result) {
    return result.kind == RefitResult::Kind::notFitted;
  };
  const auto first = std::ranges::find_if(results, isMissing);
  if (first == results.end()) return;
  const auto missing = static_cast<std::size_t>(std::ranges::count_if(results, isMissing));
  throw Trouble(ExitCode::notFitted,
                counted(missing, "series", "series") + " got no curve, the first being series '" +
                    first->task.series + "' of meter '" + first->task.meter.SerialNumber + "'",
                "look at them with 'pelmora fit'; their curves of before are unchanged");
}

void refit(RefitOptions& options) {
  requireSelection(options);
  CurveSession session(options.curves, options.isDryRun ? Access::read : Access::write);
  // The count of series is the progress.
  session.data().StatusUpdate = [](const std::string&) { requireNotInterrupted(); };
  (void)session.equationFolder();  // every fit needs one
  options.request.tasks = refitTasks(session, options.meter, options.reCalID, options.series);
  options.request.threads =
      std::min(options.request.threads, std::max<std::size_t>(1, options.request.tasks.size()));
  StoredChange change(session, "refit", options.isDryRun);
  const auto begin = std::chrono::steady_clock::now();
  RefitSummary summary{session.path(), options.request, refitAll(change, options.request), 0,
                       options.isDryRun};
  summary.hasReplaced = !change.entries().empty();
  summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  session.progress().clear();
  printData(options.asJson ? refitJson(summary) : refitText(summary));
  requireRead(summary.results);
  requireFitted(summary.results);
}

}  // namespace

void addRefitCommand(Program& program) {
  Command command = program.add("refit",
                                "Fit stored series again, each with the settings of its "
                                "curve, and list the curves that changed");
  const auto options = std::make_shared<RefitOptions>();
  addDatabase(command, options->curves);
  command.addFlag("--all", options->all, "Every series of every calibration of every meter");
  addMeter(command, options->meter, false);
  addSeriesList(command, options->series);
  addCalibration(command, options->reCalID);
  command.addText(
      {"--jobs", "N", "Series fitted at the same time (default: one for each processor)"},
      [options](const std::string& text) {
        options->request.threads =
            static_cast<std::size_t>(integerOption("--jobs", text, 1, mostThreads));
      });
  command.addText(
      {"--changed", "PERCENT", "Report curves that moved by more than PERCENT % (default 0.01)"},
      [options](const std::string& text) {
        options->request.changedPercent = numberOption("--changed", text);
        if (options->request.changedPercent >= 0) return;
        throw Trouble(ExitCode::usage, "--changed: '" + text + "' is negative",
                      "give per cent, 0 or more");
      });
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] { refit(*options); });
}

}  // namespace pelmora::cli
