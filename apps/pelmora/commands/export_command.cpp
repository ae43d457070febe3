// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/output/output_file.h"
#include "apps/pelmora/trouble.h"
#include "report/csv_report.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct ExportOptions {
  DatabaseOption curves;
  std::string meter, output = "-", what = "all";
  std::vector<std::string> series;
  std::int16_t reCalID = -1;
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

std::vector<PointTable> tablesOf(CurveSession& session, const ExportOptions& options,
                                 const MeterInfo& meter) {
  std::vector<PointTable> tables;
  const auto add = [&](const std::string& series, const std::string& kind,
                       const PointArray& points) {
    if (isWanted(options.what, kind) && !points.empty()) tables.push_back({series, kind, points});
  };
  for (const SeriesInfo& stored : session.requireAllSeries(meter, options.series)) {
    const std::string& name = stored.SeriesName;
    for (std::size_t part = 0; part < stored.Raw.size(); ++part) {
      add(name, "raw" + std::to_string(part + 1), stored.Raw[part].Points);
    }
    add(name, "merged", stored.Merged);
    add(name, "curve", stored.Fitted);
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

std::string tablesJson(const CurveSession& session, const MeterInfo& meter,
                       const std::vector<PointTable>& tables) {
  nlohmann::json value{{"database", session.path()},
                       {"meter", report::meterJson(meter)},
                       {"tables", nlohmann::json::array()}};
  for (const PointTable& table : tables) {
    value["tables"].push_back({{"series", table.series},
                               {"points", table.kind},
                               {"values", report::pointsJson(table.points)}});
  }
  return report::jsonText(value);
}

void exportPoints(const ExportOptions& options) {
  if (options.output != "-") requireOutputFile(options.output, options.curves.path);
  CurveSession session(options.curves, Access::read);
  const MeterInfo meter = session.requireMeter(options.meter, options.reCalID);
  const auto tables = tablesOf(session, options, meter);
  session.progress().clear();
  const std::string text = options.asJson ? tablesJson(session, meter, tables) : tablesCsv(tables);
  if (options.output == "-") return printData(text);
  writeOutputFile(options.output, text);
}

}  // namespace

void addExportCommand(Program& program) {
  Command command = program.add("export", "Write stored points as CSV or JSON, every digit");
  const auto options = std::make_shared<ExportOptions>();
  addDatabase(command, options->curves);
  addMeter(command, options->meter, true);
  addSeriesList(command, options->series);
  addCalibration(command, options->reCalID);
  command.addChoice({"--points", "all|raw|merged|curve", "Which points (default: all)"},
                    options->what);
  addPath(command, {"-o,--output", "FILE", "File to write (default: standard output)"},
          options->output);
  addJson(command, options->asJson);
  command.onRun([options] { exportPoints(*options); });
}

}  // namespace pelmora::cli
