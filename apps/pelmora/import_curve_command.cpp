// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands.h"
#include "apps/pelmora/common_options.h"
#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/fit_output.h"
#include "apps/pelmora/input_file.h"
#include "apps/pelmora/stored_change.h"
#include "apps/pelmora/temporary_folder.h"
#include "apps/pelmora/text_table.h"
#include "apps/pelmora/trouble.h"

#include <CLI/App.hpp>
#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct ImportCurveOptions {
  std::string path, meter, series, file;
  std::int16_t reCalID = -1;
  bool asJson = false, isDryRun = false;
};

// The component removes the stored curve before it looks at the points, so they are looked at
// first.
//
// Errors: Trouble badInput; file and database are as they were.
void requireUsable(CurveSession& session, const std::string& file) {
  const TemporaryFolder folder;  // reading consumes a result file: a copy is tried
  const std::string copy = folder.write("results", readInputFile(file));
  session.messages().forget();
  bool isEmpty = true;
  const PointArray points = session.data().readTCresults(copy, isEmpty);
  session.progress().clear();
  const std::string remedy =
      "expected are three header lines and then lines of two numbers with blanks between them, "
      "each line "
      "ended by CR LF; nothing was changed";
  session.messages().throwIfAny(ExitCode::badInput,
                                "'" + file + "' cannot be read as a TableCurve result", remedy);
  if (points.size() < 2) {
    throw Trouble(ExitCode::badInput, "'" + file + "' holds " + counted(points.size(), "point"),
                  "at least two are stored; nothing was changed");
  }
}

void importCurve(const ImportCurveOptions& options) {
  CurveSession session(options.path, Access::write);
  const MeterInfo meter = session.requireMeter(options.meter, options.reCalID);
  const MeterInfo stored = session.requireSeries(meter, options.series);
  requireUsable(session, options.file);

  StoredChange change(session, "import-curve", options.isDryRun);
  change.keep(history::fittedCurve(meter.MeterID, stored.Series.front().SeriesID));
  const TemporaryFolder folder;
  // Reading renames the file: a dry run reads a copy.
  const std::string file =
      options.isDryRun ? folder.write("results", readInputFile(options.file)) : options.file;
  session.messages().forget();
  bool isEmpty = true;
  const PointArray points = session.data().ImportCurvedData(
      file, options.series, meter.SerialNumber, isEmpty, meter.ReCalID);
  session.progress().clear();
  session.messages().throwIfAny(
      ExitCode::database, "importing the curve of series '" + options.series + "'",
      "nothing stored was changed; the file is kept as '" + options.file + ".sav'");
  change.finish();
  if (options.asJson) {
    nlohmann::json value{{"meter", meterJson(meter)},
                         {"series", options.series},
                         {"keptFile", options.file + ".sav"},
                         {"points", pointsJson(points)}};
    change.addTo(value);
    return printData(jsonText(value));
  }
  printData(wrapped("Read " + counted(points.size(), "point") + " for series '" + options.series +
                        "', meter " + meter.SerialNumber + ", calibration " +
                        std::to_string(meter.ReCalID) +
                        ": removed its curve and added the points to its merged points. The file "
                        "is kept as " +
                        options.file + ".sav.",
                    0) +
            change.closingText());
}

}  // namespace

void addImportCurveCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "import-curve",
      "Read the fitted points of a TableCurve result file: the series' curve is removed and the "
      "points "
      "are added to its merged points. The file is renamed with .sav behind its name.");
  const auto options = std::make_shared<ImportCurveOptions>();
  addDatabase(command, options->path);
  command
      .add_option("RESULTS", options->file,
                  "Result file: three header lines, then Roshko and Strouhal in each line")
      ->required()
      ->type_name("FILE");
  addMeter(command, options->meter, true);
  addSeries(command, options->series, true);
  addCalibration(command, options->reCalID);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.callback([options] { importCurve(*options); });
}

}  // namespace pelmora::cli
