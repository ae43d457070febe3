// Signing, restoring, and importing dropped files.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"
#include "apps/pelmora/import_runs.h"
#include "apps/pelmora/input/csv_points.h"
#include "apps/pelmora/options/names.h"
#include "apps/pelmora/output/history_output.h"
#include "apps/pelmora/output/import_output.h"
#include "apps/pelmora/workbench/api/failure_answer.h"
#include "apps/pelmora/workbench/api/routes.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <utility>

namespace pelmora::cli::workbench {
namespace {

using calibration::Meter;
using calibration::StoredSeries;
using nlohmann::json;

std::optional<std::vector<std::string>> jobsOf(Bench& bench, const Upload& upload,
                                               std::string& why) {
  try {
    return bench.session.openStand(upload.path.string(), {}).jobs();
  } catch (const calibration::Locked&) {
    throw;
  } catch (const calibration::Failure& failure) {
    why = failure.what();
  } catch (const Trouble& trouble) {
    why = trouble.what();
  }
  return std::nullopt;
}

// The first points are enough to see whether the right columns were read.
json firstPoints(const PointArray& points) {
  constexpr std::size_t enough = 5;
  json list = json::array();
  for (std::size_t i = 0; i < std::min(enough, points.size()); ++i)
    list.push_back({points(i, 0), points(i, 1)});
  return list;
}

json previewOf(Bench& bench, const Upload& upload) {
  json value{{"upload", upload.id}, {"name", upload.name}};
  std::string why;
  if (const auto jobs = jobsOf(bench, upload, why)) {
    value["kind"] = "stand";
    value["jobs"] = *jobs;
    return value;
  }
  try {
    const CsvPoints read = readCsvPoints(upload.path.string(), {});
    const PointArray& points = read.points;
    const auto xs = points.column(0);
    const auto [lowest, highest] = std::minmax_element(xs.begin(), xs.end());
    value["kind"] = "points";
    value["count"] = points.size();
    value["range"] = {{"min", *lowest}, {"max", *highest}};
    value["first"] = firstPoints(points);
    value["recognised"] = read.recognised.words();
    return value;
  } catch (const Trouble& trouble) {
    throw calibration::BadData(
        {"'" + upload.name + "' is neither a stand's file (" + why + ") nor a table of points (" +
             trouble.what() + ")",
         upload.name,
         "drop a stand's database, its export with the header JobRecordID,V1..V37, or a CSV file "
         "with columns Roshko and Strouhal"});
  }
}

ImportOptions importOptions(const Upload& upload, const Arguments& arguments) {
  ImportOptions options;
  options.meter = arguments.text("meter");
  options.stand = upload.path.string();
  options.newCalibration = arguments.flag("newCalibration", false);
  for (const Arguments& run : arguments.list("runs")) {
    run.requireOnly({"job", "fluid", "operator"});
    options.jobs.push_back(run.text("job"));
    options.fluids.push_back(run.text("fluid"));
    options.operators.push_back(run.findText("operator").value_or(""));
  }
  const auto isEmpty = [](const std::string& name) { return name.empty(); };
  if (std::all_of(options.operators.begin(), options.operators.end(), isEmpty))
    options.operators.clear();
  std::replace_if(options.operators.begin(), options.operators.end(), isEmpty, "Unknown");
  if (options.jobs.empty())
    throw calibration::BadData({"no run is chosen", upload.name, "tick a job and name its fluid"});
  return options;
}

}  // namespace

http::Response postSign(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofBody(request.body);
  arguments.requireOnly({"meter", "calibration", "series", "revision", "name", "remark"});
  const SeriesPlace place = placeOf(bench, arguments);
  const StoredSeries seen = bench.lab().series(place.meter, place.series);
  requireRevision(bench.lab(), seen, arguments);
  const calibration::SignOff entry = bench.lab().signOff(
      seen, arguments.findText("name").value_or(""), arguments.findText("remark").value_or(""));
  return jsonAnswer({{"name", entry.name},
                     {"signedAt", entry.signedAt},
                     {"fingerprint", entry.fingerprint},
                     {"revision", revisionOf(bench.lab(), seen)}});
}

http::Response postRestore(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofBody(request.body);
  arguments.requireOnly({"entry", "meter", "calibration", "series", "revision"});
  const calibration::HistoryEntryId entry = arguments.integer("entry", 1, INT64_MAX);
  CommandChange change(bench.session, "restore", false);
  change.begin();
  const SeriesPlace place = placeOf(bench, arguments);
  requireRevision(bench.lab(), bench.lab().series(place.meter, place.series), arguments);
  const calibration::Restored restored = bench.lab().restore(entry);
  change.finish();
  bench.serials.forget();
  json value = restoredJson(restored);
  change.addTo(value);
  return jsonAnswer(value);
}

http::Response postUpload(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"name"});
  const std::string name = arguments.text("name");
  requireNewName("the name of the file", name);
  return jsonAnswer(previewOf(bench, bench.uploads.add(name, request.body)));
}

http::Response postImport(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofBody(request.body);
  arguments.requireOnly({"upload", "meter", "newCalibration", "runs", "dryRun"});
  const Upload& upload = bench.uploads.get(arguments.text("upload"));
  const ImportRequest wanted = importRequest(importOptions(upload, arguments));
  CommandChange change(bench.session, "import", arguments.flag("dryRun", false));
  const ImportOutcome outcome = importRuns(change, wanted);
  change.finish();
  bench.session.progress().clear();
  bench.serials.forget();
  json value = importJson(outcome);
  change.addTo(value);
  return jsonAnswer(value);
}

http::Response postPoints(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofBody(request.body);
  arguments.requireOnly({"upload", "meter", "newCalibration", "series", "part", "dryRun"});
  const Upload& upload = bench.uploads.get(arguments.text("upload"));
  const std::string serial = arguments.text("meter"), series = arguments.text("series");
  const int part = static_cast<int>(arguments.integer("part", 1, 4));
  requireNewName("the meter", serial);
  requireNewName("the series", series);
  const PointArray points = readCsvPoints(upload.path.string(), {}).points;
  CommandChange change(bench.session, "raw", arguments.flag("dryRun", false));
  change.begin();
  const Meter meter = bench.lab().registerMeter(serial, arguments.flag("newCalibration", false));
  const calibration::StoredPoints stored = bench.lab().storeRaw(meter, series, part, points);
  change.finish();
  bench.serials.forget();
  json value{{"meter", report::meterJson(meter)},
             {"series", series},
             {"rawPart", part},
             {"newSeries", stored.isNewSeries},
             {"points", report::pointsJson(points)}};
  change.addTo(value);
  return jsonAnswer(value);
}

}  // namespace pelmora::cli::workbench
