// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/saved_file.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <system_error>

namespace pelmora::cli {
namespace {

struct ImportCurveRequest {
  DatabaseOption curves;
  std::string meter, series, file;
  std::int16_t calibration = calibration::latestCalibration;
  bool asJson = false, isDryRun = false;
};

// Before anything is stored: the file is to be renamed afterwards.
void requireRenaming(const std::string& file) {
  if (isFolderWritable(file)) return;
  throw Trouble(ExitCode::badInput,
                "'" + file + "' cannot be renamed to '" + freeSavedName(file) +
                    "' when its points are stored: its folder cannot be written",
                "copy the file to a folder of your own and import it from there; nothing was "
                "changed");
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

void importCurve(const ImportCurveRequest& request) {
  const PointArray points =
      calibration::resultPoints(readInputFile(request.file), "'" + request.file + "'");
  if (!request.isDryRun) requireRenaming(request.file);
  Session session(request.curves, calibration::Mode::write);
  calibration::Database& lab = session.database();
  CommandChange change(session, "import-curve", request.isDryRun);
  change.begin();
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  (void)lab.importResult(meter, request.series, points);
  change.finish();
  const std::string kept =
      request.isDryRun ? freeSavedName(request.file) : renamed(request.file, session.path());
  if (request.asJson) {
    nlohmann::json value{{"meter", report::meterJson(meter)},
                         {"series", request.series},
                         {"keptFile", kept},
                         {"points", report::pointsJson(points)}};
    change.addTo(value);
    return printData(report::jsonText(value));
  }
  printData(wrapped("Read " + counted(points.size(), "point") + " for series '" + request.series +
                        "', meter " + meter.serial + ", calibration " +
                        std::to_string(meter.calibration) +
                        ": removed its curve and added the points to its merged points. The file " +
                        (request.isDryRun ? "would be kept as " : "is kept as ") + kept + ".",
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
  const auto request = std::make_shared<ImportCurveRequest>();
  addDatabase(command, request->curves);
  addPath(command,
          {"RESULTS", "FILE",
           "Result file: three header lines, then Roshko and Strouhal in each line", true},
          request->file);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  addCalibration(command, request->calibration);
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { importCurve(*request); });
}

}  // namespace pelmora::cli
