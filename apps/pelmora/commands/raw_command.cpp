// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/input/csv_points.h"
#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/stored_change.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

struct RawOptions {
  DatabaseOption curves;
  std::string meter, series, file;
  std::int16_t reCalID = -1, part = 1;
  PointColumns columns;
  std::vector<std::string> filters;
  bool registerMeter = false, asJson = false, isDryRun = false;
};

MeterInfo meterFor(CurveSession& session, const RawOptions& options) {
  if (!options.registerMeter || options.reCalID >= 0)
    return session.requireMeter(options.meter, options.reCalID);
  MeterInfo meter = session.findMeter(options.meter, -1);
  if (meter.Source == 1) return meter;
  session.messages().forget();
  session.data().setMeterSN(options.meter);
  session.messages().throwIfAny(ExitCode::database, "registering meter '" + options.meter + "'",
                                "nothing was stored");
  return session.requireMeter(options.meter, -1);
}

// What the part holds so far; nothing where the series is new.
void keepOldPoints(StoredChange& change, const RawOptions& options, const MeterInfo& meter) {
  const MeterInfo found = change.session().data().findMeterInfo(
      meter.SerialNumber, change.session().connection(), meter.ReCalID, options.series);
  if (found.Source != 1 || found.Series.empty()) return;
  change.keep(history::rawPart(meter.MeterID, found.Series.front().SeriesID, options.part));
}

std::string summary(const RawOptions& options, const MeterInfo& meter, const PointArray& points) {
  const auto [lowest, highest] =
      std::minmax_element(points.column(0).begin(), points.column(0).end());
  std::string text = std::string(options.isDryRun ? "To be stored: " : "Stored ") +
                     counted(points.size(), "point") + " as raw part " +
                     std::to_string(options.part) + " of series '" + options.series + "', meter " +
                     meter.SerialNumber + ", calibration " + std::to_string(meter.ReCalID) +
                     "; x from " + significantText(*lowest, 6) + " to " +
                     significantText(*highest, 6) + ".";
  if (points.size() == 1) text += " note: a fit leaves out a part of one point.";
  return wrapped(text, 0);
}

void raw(const RawOptions& options) {
  requireNewName("--meter", options.meter);
  requireNewName("--series", options.series);
  const PointArray points = readCsvPoints(options.file, options.columns);
  CurveSession session(options.curves, Access::write);
  StoredChange change(session, "raw", options.isDryRun);
  change.begin();
  const MeterInfo meter = meterFor(session, options);
  session.messages().forget();
  keepOldPoints(change, options, meter);
  const bool isStored =
      session.data().SetRaw(options.series, meter.SerialNumber, points,
                            static_cast<std::int16_t>(options.part - 1), false, meter.ReCalID);
  session.progress().clear();
  session.messages().throwIfAny(ExitCode::database,
                                "storing points of series '" + options.series + "'",
                                "nothing was changed");
  if (!isStored) throw Trouble(ExitCode::unexpected, "the points were not stored", "try again");
  change.finish();
  if (!options.asJson) return printData(summary(options, meter, points) + change.closingText());
  nlohmann::json value{{"meter", meterJson(meter)},
                       {"series", options.series},
                       {"rawPart", options.part},
                       {"points", pointsJson(points)}};
  change.addTo(value);
  printData(jsonText(value));
}

}  // namespace

void addRawCommand(Program& program) {
  Command command = program.add(
      "raw",
      "Store the points of a CSV file as a raw part of a series, in place of its old points. The "
      "meter must be "
      "known unless --register is given; the series is created if needed.");
  const auto options = std::make_shared<RawOptions>();
  addDatabase(command, options->curves);
  addPath(command, {"POINTS", "FILE", "CSV file: x,y, a header line allowed", true}, options->file);
  addMeter(command, options->meter, true);
  addSeries(command, options->series, true);
  command.addText({"--part", "N", "Raw part, 1 to 4 (default 1)"},
                  [options](const std::string& text) {
                    options->part = static_cast<std::int16_t>(integerOption("--part", text, 1, 4));
                  });
  command.addText({"--x", "COLUMN", "Column of x: its name, or its number from 1 (default Roshko)"},
                  options->columns.x);
  command.addText({"--y", "COLUMN", "Column of y (default Strouhal)"}, options->columns.y);
  command.addTexts(
      {"--where", "COLUMN=VALUE", "Take only rows whose column has this value; may be repeated"},
      options->filters);
  addCalibration(command, options->reCalID);
  command.addFlag("--register", options->registerMeter, "Register the meter if it is unknown");
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] {
    for (const std::string& filter : options->filters)
      options->columns.where.push_back(rowFilter(filter));
    raw(*options);
  });
}

}  // namespace pelmora::cli
