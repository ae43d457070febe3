// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/fit_options.h"
#include "apps/pelmora/options/names.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/refit_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "apps/pelmora/unreadable_series.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

namespace pelmora::cli {
namespace {

using calibration::RefitResult;
using calibration::RefitResultKind;
using calibration::RefitTask;

constexpr std::int64_t mostThreads = 256;

struct RefitRequest {
  DatabaseOption curves;
  std::string meter;
  std::vector<std::string> series;
  std::int16_t calibration = -1;
  std::size_t threads = std::max(1U, std::thread::hardware_concurrency());
  double changedPercent = calibration::RefitOptions().changedPercent;
  FitChoices choices;
  bool all = false, isDryRun = false, asJson = false;
};

void requireSelection(const RefitRequest& request) {
  if (request.all && (!request.meter.empty() || !request.series.empty())) {
    throw Trouble(ExitCode::usage,
                  "--all fits every series: it goes with no --meter and no --series",
                  "leave --all out to fit those that you name");
  }
  if (!request.all && request.meter.empty()) {
    throw Trouble(ExitCode::usage, "no series is named",
                  "give --all, or --meter SN with or without --series");
  }
}

std::vector<RefitTask> tasksOf(const RefitRequest& request, const calibration::Database& lab) {
  if (request.all) return lab.allSeries();
  requireName("--meter", request.meter);
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  std::vector<RefitTask> tasks;
  for (const std::string& name : request.series) {
    requireName("--series", name);
    (void)lab.seriesID(meter, name);
    tasks.push_back({meter, name});
  }
  if (!tasks.empty()) return tasks;
  for (const std::string& name : lab.seriesOf(meter)) tasks.push_back({meter, name});
  return tasks;
}

std::string placeOf(const RefitTask& task) {
  return "'" + task.series + "' of meter '" + task.meter.serial + "', calibration " +
         std::to_string(task.meter.calibration);
}

void requireRead(const std::vector<RefitResult>& results) {
  UnreadableSeries unreadable;
  for (const RefitResult& result : results) {
    if (result.kind != RefitResultKind::unreadable) continue;
    unreadable.add(placeOf(result.task), {ExitCode::badInput, result.reason, lookForCause});
  }
  unreadable.throwIfAny();
}

void requireFitted(const std::vector<RefitResult>& results) {
  const auto isMissing = [](const RefitResult& result) {
    return result.kind == RefitResultKind::notFitted;
  };
  const auto first = std::ranges::find_if(results, isMissing);
  if (first == results.end()) return;
  const auto missing = static_cast<std::size_t>(std::ranges::count_if(results, isMissing));
  throw Trouble(ExitCode::notFitted,
                counted(missing, "series", "series") + " got no curve, the first being series '" +
                    first->task.series + "' of meter '" + first->task.meter.serial + "'",
                "look at them with 'pelmora fit'; their previous curves are kept");
}

void refit(const RefitRequest& request) {
  requireSelection(request);
  Session session(request.curves,
                  request.isDryRun ? calibration::Mode::read : calibration::Mode::write);
  const auto tasks = tasksOf(request, session.database());
  calibration::RefitOptions options;
  options.threads = std::clamp<std::size_t>(tasks.size(), 1, request.threads);
  options.changedPercent = request.changedPercent;
  options.isDryRun = request.isDryRun;
  options.change = request.choices.change();
  options.isStrict = request.choices.isStrict;
  options.portionStored = [&](std::size_t curves) { noteSeriesStored(curves, tasks.size()); };
  calibration::Observer observer = session.observer();
  observer.progress = [&](std::size_t done, std::size_t of) {
    requireNotInterrupted();
    session.progress().count("Refitting", done, of);
  };
  const auto begin = std::chrono::steady_clock::now();
  RefitSummary summary{session.path(), options, session.database().refit(tasks, options, observer),
                       0};
  summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  requireNotInterrupted();
  session.progress().clear();
  printData(request.asJson ? refitJson(summary) : refitText(summary));
  requireRead(summary.outcome.results);
  requireFitted(summary.outcome.results);
}

}  // namespace

void addRefitCommand(Program& program) {
  Command command = program.add("refit",
                                "Fit stored series again, each with the settings of its "
                                "curve, and list the curves that changed");
  const auto request = std::make_shared<RefitRequest>();
  addDatabase(command, request->curves);
  command.addFlag("--all", request->all, "Every series of every calibration of every meter");
  addMeter(command, request->meter, false);
  addSeriesList(command, request->series);
  addCalibration(command, request->calibration);
  command.addText(
      {"--jobs", "N", "Series fitted at the same time (default: one for each processor)"},
      [request](const std::string& text) {
        request->threads = static_cast<std::size_t>(integerOption("--jobs", text, 1, mostThreads));
      });
  addChangedPercent(command, "Report curves that moved by more than PERCENT % (default 0.01)",
                    [request](double percent) { request->changedPercent = percent; });
  addFitChoices(command, request->choices,
                "as the curve was fitted; " + usualChoice() + " for a series without a curve");
  command.setFooter(
      "An option replaces the setting that is kept with each curve, and is kept with the new "
      "curve. 'pelmora fit' begins with none.");
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { refit(*request); });
}

}  // namespace pelmora::cli
