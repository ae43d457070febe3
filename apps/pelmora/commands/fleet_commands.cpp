// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/lock_holder.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/fit_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/fleet_output.h"
#include "apps/pelmora/output/progress.h"
#include "apps/pelmora/output/refit_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <pelmora/calibration/fleet.h>

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <array>
#include <chrono>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::FleetState;
using calibration::FleetStatus;
using calibration::RefitResult;
using calibration::RefitResultKind;

constexpr std::int64_t mostSeries = 1000000, mostWorkers = 256, longestLease = 86400,
                       mostRanges = 1000000000;

calibration::OpenOptions openOptions(const DatabaseOption& curves, Progress& progress) {
  calibration::OpenOptions open;
  open.patience = patienceWith(curves.path, curves.wait, progress);
  return open;
}

// A database that is missing or foreign ends the command as it ends any other.
void requireDatabase(const DatabaseOption& curves) {
  const Session session(curves, calibration::Mode::read);
}

struct FleetRequest {
  std::string action;
  DatabaseOption curves;
  calibration::FleetOptions options;
  FitChoices choices;
  bool asJson = false;
};

nlohmann::json resultList(const std::vector<RefitResult>& results, bool areChanged) {
  nlohmann::json list = nlohmann::json::array();
  for (const RefitResult& result : results) {
    const bool isChanged = result.kind == RefitResultKind::changed;
    if (isChanged == areChanged) list.push_back(resultJson(result, result.isStored));
  }
  return list;
}

void printStatus(const FleetRequest& request, const calibration::OpenOptions& open) {
  const auto jobs = calibration::fleetStatus(request.curves.path, open);
  std::vector<RefitResult> results;
  if (!jobs.empty()) {
    results = calibration::fleetResults(request.curves.path, jobs.front().job,
                                        {RefitResultKind::changed, RefitResultKind::notFitted,
                                         RefitResultKind::unreadable, RefitResultKind::gone},
                                        0, open);
  }
  if (!request.asJson) {
    return printData(jobs.empty() ? "No job has been started here.\n"
                                  : jobText(jobs.front(), results));
  }
  nlohmann::json list = nlohmann::json::array();
  for (const FleetStatus& job : jobs) list.push_back(jobJson(job));
  printData(report::jsonText({{"database", request.curves.path},
                              {"jobs", list},
                              {"changed", resultList(results, true)},
                              {"failed", resultList(results, false)}}));
}

FleetStatus changed(const FleetRequest& request, const calibration::OpenOptions& open) {
  const std::string& path = request.curves.path;
  if (request.action == "start") {
    calibration::FleetOptions options = request.options;
    options.change = request.choices.change();
    options.isStrict = request.choices.isStrict;
    return calibration::startFleet(path, options, open);
  }
  const FleetState state = request.action == "pause"    ? FleetState::paused
                           : request.action == "resume" ? FleetState::running
                                                        : FleetState::cancelled;
  return calibration::setFleetState(path, state, open);
}

void runFleet(const FleetRequest& request) {
  requireDatabase(request.curves);
  Progress progress;
  const calibration::OpenOptions open = openOptions(request.curves, progress);
  if (request.action == "status") return printStatus(request, open);
  const FleetStatus job = changed(request, open);
  noteStored();
  if (request.asJson) {
    nlohmann::json value{{"database", request.curves.path},
                         {"jobs", nlohmann::json::array({jobJson(job)})}};
    return printData(report::jsonText(value));
  }
  std::string text = jobText(job);
  if (request.action == "start")
    text += "\n" + wrapped("Start any number of workers: pelmora worker " + request.curves.path, 0);
  printData(text);
}

struct WorkerRequest {
  DatabaseOption curves;
  calibration::FleetWorkerOptions options;
  bool asJson = false;
};

std::string nameOfProcess() {
  std::array<char, 256> host{};
  if (gethostname(host.data(), host.size() - 1) != 0) host[0] = '?';
  return std::string(host.data()) + ":" + std::to_string(getpid());
}

calibration::FleetWork work(const WorkerRequest& request) {
  Progress progress;
  calibration::FleetWorkerOptions options = request.options;
  options.name = nameOfProcess();
  options.open = openOptions(request.curves, progress);
  options.rangeDone = [&](std::size_t ranges, std::size_t series) {
    noteStored();
    progress.show(counted(ranges, "range") + " with " + counted(series, "series", "series") +
                  " stored");
  };
  calibration::Observer observer;
  const StopAtSignal stop;
  observer.stop = stop.token();
  return calibration::workOnFleet(request.curves.path, options, observer);
}

void runWorker(const WorkerRequest& request) {
  requireDatabase(request.curves);
  const auto begin = std::chrono::steady_clock::now();
  const calibration::FleetWork done = work(request);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  requireNotInterrupted();
  if (request.asJson) {
    return printData(report::jsonText({{"database", request.curves.path},
                                       {"ranges", done.ranges},
                                       {"series", done.series},
                                       {"stored", done.stored},
                                       {"lostRanges", done.lostRanges},
                                       {"seconds", seconds}}));
  }
  std::string text = "Fitted " + counted(done.series, "series", "series") + " in " +
                     counted(done.ranges, "range") + ", " + significantText(seconds, 3) + " s; " +
                     counted(done.stored, "curve") + " replaced or added.";
  if (done.lostRanges > 0)
    text += " Other workers took over " + counted(done.lostRanges, "range") + " meanwhile.";
  printData(wrapped(text, 0));
}

}  // namespace

void addFleetCommand(Program& program) {
  Command command = program.add(
      "fleet",
      "Refit all series of a shared curve database with many workers: 'start' divides them into "
      "ranges for 'pelmora worker', 'status' shows progress and the curves that changed");
  const auto request = std::make_shared<FleetRequest>();
  request->options.changedPercent = calibration::FleetOptions().changedPercent;
  command.addChoice({"ACTION", "start|status|pause|resume|cancel", "What to do", true},
                    request->action);
  addDatabase(command, request->curves);
  command.addText({"--range", "N", "start: series in a range, stored together (default 1000)"},
                  [request](const std::string& text) {
                    request->options.rangeSize =
                        static_cast<std::size_t>(integerOption("--range", text, 1, mostSeries));
                  });
  addChangedPercent(command, "start: list curves that move by more than PERCENT % (default 1)",
                    [request](double percent) { request->options.changedPercent = percent; });
  addFitChoices(command, request->choices,
                "as the curve was fitted; " + usualChoice() + " for a series without a curve");
  command.setFooter(
      "The options of fits are for 'start'. A job that is paused or cancelled keeps what is "
      "stored; "
      "the history has every curve that was replaced.");
  addJson(command, request->asJson);
  command.onRun([request] { runFleet(*request); });
}

void addWorkerCommand(Program& program) {
  Command command = program.add(
      "worker",
      "Fit ranges of series for the job that 'pelmora fleet start' has made, until it has ended. "
      "Start as many as you like, on any machine; if one ends, others do its work.");
  const auto request = std::make_shared<WorkerRequest>();
  addDatabase(command, request->curves);
  command.addText({"--jobs", "N", "Ranges at the same time, each with a connection (default 1)"},
                  [request](const std::string& text) {
                    request->options.threads =
                        static_cast<std::size_t>(integerOption("--jobs", text, 1, mostWorkers));
                  });
  command.addText({"--ranges", "N", "End after N ranges (default: when the job has ended)"},
                  [request](const std::string& text) {
                    request->options.mostRanges =
                        static_cast<std::size_t>(integerOption("--ranges", text, 1, mostRanges));
                  });
  command.addText(
      {"--lease", "SECONDS",
       "Others take a range over when its worker gives no sign for so long (default 120)"},
      [request](const std::string& text) {
        request->options.lease =
            std::chrono::seconds(integerOption("--lease", text, 1, longestLease));
      });
  addJson(command, request->asJson);
  command.onRun([request] { runWorker(*request); });
}

}  // namespace pelmora::cli
