// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/point_output.h"
#include "apps/pelmora/output/series_drawing.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/terminal_colour.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"

#include <memory>

namespace pelmora::cli {
namespace {

struct PlotRequest {
  DatabaseOption curves;
  std::string meter, series;
  std::int16_t reCalID = -1;
  bool isAscii = false;
};

void plot(const PlotRequest& request) {
  Session session(request.curves, calibration::Mode::read);
  calibration::Database& lab = session.database();
  const calibration::Meter meter = lab.meter(request.meter, request.reCalID);
  const calibration::StoredSeries stored = lab.series(meter, request.series);
  DrawnSeries series{lab.points(stored, session.observer()), stored.curve, 0};
  if (stored.settings) series.bandPercent = stored.settings->BandPercent;
  const PlotStyle style = request.isAscii ? PlotStyle::ascii : PlotStyle::unicode;
  const std::string picture = drawing(series, drawingSize(), style, showsColour(stdout));
  if (picture.empty())
    throw Trouble(ExitCode::badInput, "series '" + stored.name + "' has nothing to draw",
                  "import a run or store points");
  std::string head = "Series '" + stored.name + "' of meter " + meter.serial + ", calibration " +
                     std::to_string(meter.calibration) + ": " + pointCounts(series.points);
  if (stored.curve.empty()) head += "; no stored curve";
  printData(wrapped(head, 0) + picture);
  noteOldCurves(session.path(), request.reCalID, {stored});
}

}  // namespace

void addPlotCommand(Program& program) {
  Command command = program.add(
      "plot",
      "Draw a series in the terminal: its points, the stored curve, and how far each point lies "
      "off it. The drawing has the size of the window (or COLUMNS x LINES); NO_COLOR=1 draws "
      "without colours.");
  const auto request = std::make_shared<PlotRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  addCalibration(command, request->reCalID);
  command.addFlag("--ascii", request->isAscii, "Draw with ASCII characters alone");
  command.onRun([request] { plot(*request); });
}

}  // namespace pelmora::cli
