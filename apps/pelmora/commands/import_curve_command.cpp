// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/saved_file.h"
#include "apps/pelmora/stored_change.h"
#include "apps/pelmora/temporary_folder.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <system_error>

namespace pelmora::cli {
namespace {

struct ImportCurveOptions {
  DatabaseOption curves;
  std::string meter, series, file;
  std::int16_t reCalID = -1;
  bool asJson = false, isDryRun = false;
};

// Before anything is stored: the text as the component reads it, and the folder where the file is
// to be renamed. Nobody else is kept waiting meanwhile.
//
// Errors: Trouble badInput; file and database are as they were.
void requireUsable(CurveSession& session, const ImportCurveOptions& options,
                   const std::string& text) {
  const std::string& file = options.file;
  const TemporaryFolder folder;  // the component renames what it reads: it gets a copy
  session.messages().forget();
  bool isEmpty = true;
  const PointArray points = session.data().readTCresults(folder.write("results", text), isEmpty);
  session.progress().clear();
  const std::string remedy =
      "expected are three header lines and then lines of two numbers with blanks between them, "
      "each line ended by CR LF; nothing was changed";
  session.messages().throwIfAny(ExitCode::badInput,
                                "'" + file + "' cannot be read as a TableCurve result", remedy);
  if (points.size() < 2) {
    throw Trouble(ExitCode::badInput, "'" + file + "' holds " + counted(points.size(), "point"),
                  "at least two are stored; nothing was changed");
  }
  if (options.isDryRun || isFolderWritable(file)) return;
  throw Trouble(ExitCode::badInput,
                "'" + file + "' cannot be renamed to '" + freeSavedName(file) +
                    "' when its points are stored: its folder cannot be written",
                "copy the file to a folder of your own and import it from there; nothing was "
                "changed");
}

// Removes the curve and adds the points to the merged ones, in the change.
PointArray store(StoredChange& change, const MeterInfo& meter, const std::string& series,
                 const std::string& text) {
  CurveSession& session = change.session();
  const std::int32_t seriesID = session.requireSeriesID(meter, series);
  change.keep(history::fittedCurve(meter.MeterID, seriesID));
  const TemporaryFolder folder;
  session.messages().forget();
  bool isEmpty = true;
  PointArray points = session.data().ImportCurvedData(folder.write("results", text), series,
                                                      meter.SerialNumber, isEmpty, meter.ReCalID);
  session.progress().clear();
  session.messages().throwIfAny(ExitCode::database,
                                "importing the curve of series '" + series + "'",
                                "nothing was changed, and the file has its name");
  return points;
}

std::string renamed(const std::string& file, const std::string& database) {
  try {
    return renameToSaved(file);
  } catch (const std::system_error& error) {
    throw Trouble(ExitCode::unexpected,
                  "the points are stored in '" + database + "', but '" + file +
                      "' cannot be renamed: " + error.code().message(),
                  "move it away yourself, so that nobody imports it twice");
  }
}

void importCurve(const ImportCurveOptions& options) {
  const std::string text = readInputFile(options.file);
  CurveSession session(options.curves, Access::write);
  requireUsable(session, options, text);

  StoredChange change(session, "import-curve", options.isDryRun);
  change.begin();
  const MeterInfo meter = session.requireMeter(options.meter, options.reCalID);
  const PointArray points = store(change, meter, options.series, text);
  change.finish();
  const std::string kept =
      options.isDryRun ? freeSavedName(options.file) : renamed(options.file, session.path());
  if (options.asJson) {
    nlohmann::json value{{"meter", meterJson(meter)},
                         {"series", options.series},
                         {"keptFile", kept},
                         {"points", pointsJson(points)}};
    change.addTo(value);
    return printData(jsonText(value));
  }
  printData(wrapped("Read " + counted(points.size(), "point") + " for series '" + options.series +
                        "', meter " + meter.SerialNumber + ", calibration " +
                        std::to_string(meter.ReCalID) +
                        ": removed its curve and added the points to its merged points. The file " +
                        (options.isDryRun ? "would be kept as " : "is kept as ") + kept + ".",
                    0) +
            change.closingText());
}

}  // namespace

void addImportCurveCommand(Program& program) {
  Command command = program.add(
      "import-curve",
      "Read the fitted points of a TableCurve result file: the series' curve is removed and the "
      "points are added to its merged points. When that is stored, the file is renamed with .sav "
      "behind its name, or .sav.1, .sav.2 ... where there is such a file.");
  const auto options = std::make_shared<ImportCurveOptions>();
  addDatabase(command, options->curves);
  addPath(command,
          {"RESULTS", "FILE",
           "Result file: three header lines, then Roshko and Strouhal in each line", true},
          options->file);
  addMeter(command, options->meter, true);
  addSeries(command, options->series, true);
  addCalibration(command, options->reCalID);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] { importCurve(*options); });
}

}  // namespace pelmora::cli
