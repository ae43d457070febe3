// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/meter_list.h"
#include "apps/pelmora/output/shown_units.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/stored_tables.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"

#include <memory>

namespace pelmora::cli {
namespace {

struct ShowRequest {
  DatabaseOption curves;
  std::string meter, series;
  std::vector<std::string> units;
  std::int16_t calibration = calibration::latestCalibration;
  bool asJson = false;
};

void showMeters(const calibration::Database& lab, bool asJson) {
  asJson ? printMetersJson(lab) : printMeters(lab);
}

void show(const ShowRequest& request) {
  if (request.meter.empty() &&
      (!request.series.empty() || request.calibration != calibration::latestCalibration)) {
    throw Trouble(ExitCode::usage, "--series and --calibration need a meter",
                  "give --meter SN as well");
  }
  if (request.series.empty() && !request.units.empty()) {
    throw Trouble(ExitCode::usage, "--unit needs a series", "give --series NAME as well");
  }
  Session session(request.curves, calibration::Mode::read);
  const calibration::Database& lab = session.database();
  if (request.meter.empty()) return showMeters(lab, request.asJson);
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  if (!request.series.empty()) {
    calibration::StoredSeries series = lab.series(meter, request.series);
    const ShownUnits units = shownUnits(lab, series, request.units);
    noteOldCurves(session.path(), request.calibration, {series});
    convert(series, units);
    return printData(request.asJson ? seriesJson(series, units) : seriesText(series, units));
  }
  const CalibrationContents contents{session.path(), meter, lab.runs(meter),
                                     lab.everySeries(meter)};
  noteOldCurves(session.path(), request.calibration, contents.series);
  printData(request.asJson ? calibrationJson(contents) : calibrationText(contents));
}

}  // namespace

void addShowCommand(Program& program) {
  Command command = program.add(
      "show",
      "Show all meters; with --meter its runs and series; with --series its curve and report");
  const auto request = std::make_shared<ShowRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, false);
  addSeries(command, request->series, false);
  addCalibration(command, request->calibration);
  addUnits(command, request->units);
  addJson(command, request->asJson);
  command.onRun([request] { show(*request); });
}

}  // namespace pelmora::cli
