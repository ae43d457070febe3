// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/output_file.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/session.h"
#include "report/csv_report.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct ExportRequest {
  DatabaseOption curves;
  std::string meter, output = "-", what = "all";
  std::vector<std::string> series;
  std::int16_t calibration = calibration::latestCalibration;
  bool asJson = false;
};

// One table of points of a series.
struct PointTable {
  std::string series, kind;  // "raw1" to "raw4", "merged", "curve"
  PointArray points;
};

bool isWanted(const std::string& what, const std::string& kind) {
  return what == "all" || kind.starts_with(what);
}

std::vector<PointTable> tablesOf(const std::vector<calibration::StoredSeries>& all,
                                 const std::string& what) {
  std::vector<PointTable> tables;
  const auto add = [&](const std::string& series, const std::string& kind,
                       const PointArray& points) {
    if (isWanted(what, kind) && !points.empty()) tables.push_back({series, kind, points});
  };
  for (const calibration::StoredSeries& series : all) {
    for (std::size_t part = 0; part < series.raw.size(); ++part)
      add(series.name, "raw" + std::to_string(part + 1), series.raw[part]);
    add(series.name, "merged", series.merged);
    add(series.name, "curve", series.curve);
  }
  return tables;
}

std::string tablesCsv(const std::vector<PointTable>& tables) {
  std::string text = "series,points,roshko,strouhal\n";
  for (const PointTable& table : tables) {
    const std::string begin = report::csvCell(table.series) + "," + table.kind + ",";
    for (std::size_t i = 0; i < table.points.size(); ++i) {
      text += begin + report::csvCell(table.points(i, 0)) + "," +
              report::csvCell(table.points(i, 1)) + "\n";
    }
  }
  return text;
}

std::string tablesJson(const std::string& database, const calibration::Meter& meter,
                       const std::vector<calibration::StoredSeries>& all,
                       const std::vector<PointTable>& tables) {
  nlohmann::json value{{"database", database},
                       {"meter", report::meterJson(meter)},
                       {"curveAges", nlohmann::json::array()},
                       {"tables", nlohmann::json::array()}};
  for (const calibration::StoredSeries& series : all)
    value["curveAges"].push_back(
        {{"series", series.name}, {"curveAge", calibration::curveAgeKey(series.age)}});
  for (const PointTable& table : tables) {
    value["tables"].push_back({{"series", table.series},
                               {"points", table.kind},
                               {"values", report::pointsJson(table.points)}});
  }
  return report::jsonText(value);
}

void exportPoints(const ExportRequest& request) {
  if (request.output != "-") requireOutputFile(request.output, request.curves.path);
  Session session(request.curves, calibration::Mode::read);
  const calibration::Database& lab = session.database();
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  const auto all = lab.everySeries(meter, request.series);
  const auto tables = tablesOf(all, request.what);
  const std::string text =
      request.asJson ? tablesJson(session.path(), meter, all, tables) : tablesCsv(tables);
  if (request.what != "raw") noteOldCurves(session.path(), request.calibration, all);
  if (request.output == "-") return printData(text);
  writeOutputFile(request.output, text);
}

}  // namespace

void addExportCommand(Program& program) {
  Command command = program.add("export", "Write stored points as CSV or JSON, every digit");
  const auto request = std::make_shared<ExportRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeriesList(command, request->series);
  addCalibration(command, request->calibration);
  command.addChoice({"--points", "all|raw|merged|curve", "Which points (default: all)"},
                    request->what);
  addPath(command, {"-o,--output", "FILE", "File to write (default: standard output)"},
          request->output);
  addJson(command, request->asJson);
  command.onRun([request] { exportPoints(*request); });
}

}  // namespace pelmora::cli
