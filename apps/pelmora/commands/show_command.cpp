// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/stored_tables.h"
#include "apps/pelmora/trouble.h"

#include <memory>

namespace pelmora::cli {
namespace {

struct ShowOptions {
  DatabaseOption curves;
  std::string meter, series;
  std::int16_t reCalID = -1;
  bool asJson = false;
};

std::string contents(CurveSession& session, const ShowOptions& options) {
  if (options.meter.empty()) return options.asJson ? metersJson(session) : metersText(session);
  const MeterInfo meter = session.requireMeter(options.meter, options.reCalID);
  if (options.series.empty()) {
    return options.asJson ? meterContentsJson(session, meter) : meterContentsText(session, meter);
  }
  const MeterInfo stored = session.requireSeries(meter, options.series);
  return options.asJson ? seriesContentsJson(stored) : seriesContentsText(stored);
}

void show(const ShowOptions& options) {
  if (options.meter.empty() && (!options.series.empty() || options.reCalID >= 0)) {
    throw Trouble(ExitCode::usage, "--series and --calibration need a meter",
                  "give --meter SN as well");
  }
  CurveSession session(options.curves, Access::read);
  const std::string text = contents(session, options);
  session.progress().clear();
  printData(text);
}

}  // namespace

void addShowCommand(Program& program) {
  Command command = program.add(
      "show",
      "Show all meters; with --meter its runs and series; with --series its curve and report");
  const auto options = std::make_shared<ShowOptions>();
  addDatabase(command, options->curves);
  addMeter(command, options->meter, false);
  addSeries(command, options->series, false);
  addCalibration(command, options->reCalID);
  addJson(command, options->asJson);
  command.onRun([options] { show(*options); });
}

}  // namespace pelmora::cli
