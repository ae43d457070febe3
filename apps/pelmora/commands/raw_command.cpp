// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/csv_points.h"
#include "apps/pelmora/input/sheet_input.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/names.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/suggested_command.h"
#include "apps/pelmora/output/point_output.h"
#include "apps/pelmora/output/text_table.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

struct RawRequest {
  DatabaseOption curves;
  std::string meter, series, file;
  std::int16_t calibration = -1, part = 1;
  PointColumns columns;
  std::vector<std::string> filters;
  bool registerMeter = false, asJson = false, isDryRun = false;
};

std::string summary(const RawRequest& request, const calibration::Meter& meter,
                    const PointArray& points) {
  const auto [lowest, highest] =
      std::minmax_element(points.column(0).begin(), points.column(0).end());
  std::string text = std::string(request.isDryRun ? "To be stored: " : "Stored ") +
                     counted(points.size(), "point") + " as raw part " +
                     std::to_string(request.part) + " of series '" + request.series + "', meter " +
                     meter.serial + ", calibration " + std::to_string(meter.calibration) +
                     "; x from " + significantText(*lowest, 6) + " to " +
                     significantText(*highest, 6) + ".";
  if (points.size() == 1) text += " note: a fit leaves out a part of one point.";
  return wrapped(text, 0);
}

void warnOfFarPoints(const std::string& file, const CsvPoints& read,
                     const calibration::StoredPoints& stored) {
  const auto warn = [&](std::size_t line, const std::string& what) {
    printNote("file '" + file + "', line " + std::to_string(line) + ", column " +
              read.roshkoColumn + ": " + what + "; check the unit of the viscosity");
  };
  if (stored.farFactor != 1) {
    warn(read.lines.front(), "from here on the Roshko numbers are " +
                                 significantText(stored.farFactor, 2) +
                                 " times those of the meter's other points");
  }
  for (const calibration::FarPoint& far : stored.farPoints) {
    warn(read.lines[far.index], "the Roshko number is " + significantText(far.factor, 2) +
                                    " times the median of the file's other points");
  }
}

// Suggests the command that fits the new points.
std::string nextStep(const RawRequest& request) {
  if (request.isDryRun) return {};
  std::vector<std::string> words{"fit", request.curves.path};
  addSeriesWords(words, request.meter, request.calibration, request.series);
  return "Fit them: " + suggestedCommand(words) + "\n";
}

void raw(const RawRequest& request) {
  requireNewName("--meter", request.meter);
  requireNewName("--series", request.series);
  const CsvPoints read = readCsvPoints(request.file, request.columns);
  const PointArray& points = read.points;
  sayRecognised(request.file, read.recognised);
  if (!read.derivation.empty()) printNote(read.derivation);
  if (!read.assumption.empty()) printNote(read.assumption);
  Session session(request.curves, calibration::Mode::write);
  calibration::Database& lab = session.database();
  CommandChange change(session, "raw", request.isDryRun);
  change.begin();
  const bool mayRegister = request.registerMeter && request.calibration < 0;
  const calibration::Meter meter = mayRegister ? lab.registerMeter(request.meter)
                                               : lab.meter(request.meter, request.calibration);
  const calibration::StoredPoints stored =
      lab.storeRaw(meter, request.series, request.part, points);
  change.finish();
  warnOfFarPoints(request.file, read, stored);
  if (!request.asJson)
    return printData(summary(request, meter, points) +
                     exclusionText(stored.excluded, stored.dropped) + nextStep(request) +
                     change.closingText());
  nlohmann::json value{{"meter", report::meterJson(meter)},
                       {"series", request.series},
                       {"rawPart", request.part},
                       {"points", report::pointsJson(points)}};
  change.addTo(value);
  printData(report::jsonText(value));
}

}  // namespace

void addRawCommand(Program& program) {
  Command command = program.add(
      "raw",
      "Store the points of a text file as a raw part of a series, in place of its old points. The "
      "meter must be "
      "known unless --register is given; the series is created if needed.");
  const auto request = std::make_shared<RawRequest>();
  addDatabase(command, request->curves);
  addPath(command,
          {"POINTS", "FILE",
           "Text file with columns for x and y, such as CSV; how it is written is "
           "recognised",
           true},
          request->file);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  command.addText({"--part", "N", "Raw part, 1 to 4 (default 1)"},
                  [request](const std::string& text) {
                    request->part = static_cast<std::int16_t>(integerOption("--part", text, 1, 4));
                  });
  command.addText({"--x", "COLUMN", "Column of x: its name, or its number from 1 (default Roshko)"},
                  request->columns.x);
  command.addText({"--y", "COLUMN", "Column of y (default Strouhal)"}, request->columns.y);
  command.addText(
      {"--columns", "q=COLUMN,f=...",
       "Derive x and y from the columns of flow (q), frequency (f), viscosity (nu) and, "
       "if it is known, temperature (t), each with a unit in the header or here: "
       "q=Flow:l/min,f=Freq:Hz,nu=Visc:cSt,t=Temp:C"},
      [request](const std::string& text) { request->columns.derived = columnChoice(text); });
  addSheetStyle(command, request->columns.style);
  command.addTexts(
      {"--where", "COLUMN=VALUE", "Take only rows whose column has this value; may be repeated"},
      request->filters);
  addCalibration(command, request->calibration);
  command.addFlag("--register", request->registerMeter, "Register the meter if it is unknown");
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] {
    const PointColumns& columns = request->columns;
    if (columns.derived && (!columns.x.empty() || !columns.y.empty())) {
      throw Trouble(ExitCode::usage, "--columns derives x and y, and --x or --y names them",
                    "give one or the other");
    }
    for (const std::string& filter : request->filters)
      request->columns.where.push_back(rowFilter(filter));
    raw(*request);
  });
}

}  // namespace pelmora::cli
