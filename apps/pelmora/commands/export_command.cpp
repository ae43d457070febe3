// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/service_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/flow_table_output.h"
#include "apps/pelmora/output/output_file.h"
#include "apps/pelmora/output/shown_units.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "report/csv_report.h"
#include "report/json_values.h"
#include "report/xlsx_report.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::TableForm;

enum class FileKind { csv, xlsx, json };

struct ExportRequest {
  DatabaseOption curves;
  std::string meter, output = "-", points, form;
  std::vector<std::string> series, units;
  std::int16_t calibration = calibration::latestCalibration;
  calibration::TableOptions table;
  FluidOptions fluid;
  report::CsvForm csv;
  bool asJson = false;
};

FileKind kindOf(const ExportRequest& request) {
  const std::string& file = request.output;
  if (file == "-") return request.asJson ? FileKind::json : FileKind::csv;
  if (file.ends_with(".json")) return FileKind::json;
  if (!request.asJson && file.ends_with(".csv")) return FileKind::csv;
  if (!request.asJson && file.ends_with(".xlsx")) return FileKind::xlsx;
  if (request.asJson) {
    throw Trouble(ExitCode::usage,
                  "--output: '" + file + "' does not end in .json, as --json requires",
                  "end the name in .json, or leave --json out");
  }
  throw Trouble(ExitCode::usage, "--output: '" + file + "' has no known ending",
                "end the name in .csv, .xlsx or .json");
}

// One table of points of a series.
struct PointTable {
  std::string series, kind;  // "raw1" to "raw4", "merged", "curve"
  PointArray points;
  ShownUnits units;
};

bool isWanted(const std::string& what, const std::string& kind) {
  return what == "all" || kind.starts_with(what);
}

std::vector<PointTable> tablesOf(const calibration::Database& lab,
                                 const std::vector<calibration::StoredSeries>& all,
                                 const std::string& what, const std::vector<std::string>& wanted) {
  std::vector<PointTable> tables;
  for (const calibration::StoredSeries& series : all) {
    const ShownUnits units = shownUnits(lab, series, wanted);
    const auto add = [&](const std::string& kind, PointArray points) {
      if (!isWanted(what, kind) || points.empty()) return;
      convert(points, units);
      tables.push_back({series.name, kind, std::move(points), units});
    };
    for (std::size_t part = 0; part < series.raw.size(); ++part)
      add("raw" + std::to_string(part + 1), series.raw[part]);
    add("merged", series.merged);
    add("curve", series.curve);
  }
  return tables;
}

// Converted columns name their unit: a reader must not take them for the stored ones.
std::string columnTitle(const std::string& name, const ShownUnit& unit) {
  return unit.shown == unit.recorded ? name : name + " (" + unit.shown + ")";
}

report::ReportTable pointRows(const std::vector<PointTable>& tables) {
  report::ReportTable made{"points", {"series", "points", "roshko", "strouhal"}, {}};
  if (!tables.empty()) {
    made.columns[2] = columnTitle("roshko", tables.front().units.roshko);
    made.columns[3] = columnTitle("strouhal", tables.front().units.strouhal);
  }
  for (const PointTable& table : tables) {
    for (std::size_t i = 0; i < table.points.size(); ++i) {
      std::vector<Value>& cells = made.rows.emplace_back(4);
      cells[0] = table.series;
      cells[1] = table.kind;
      cells[2] = table.points(i, 0);
      cells[3] = table.points(i, 1);
    }
  }
  return made;
}

std::string tablesJson(const std::string& database, const calibration::Meter& meter,
                       const std::vector<calibration::StoredSeries>& all,
                       const std::vector<PointTable>& tables) {
  nlohmann::json value{{"database", database},
                       {"meter", report::meterJson(meter)},
                       {"curveAges", curveAgesJson(all)},
                       {"tables", nlohmann::json::array()}};
  for (const PointTable& table : tables) {
    value["tables"].push_back({{"series", table.series},
                               {"points", table.kind},
                               {"units", unitsJson(table.units)},
                               {"values", report::pointsJson(table.points)}});
  }
  return report::jsonText(value);
}

// Which points --points names. With --for it gives their number instead.
std::string wantedPoints(const ExportRequest& request) {
  if (request.points.empty()) return "all";
  for (const char* word : {"all", "raw", "merged", "curve"}) {
    if (request.points == word) return word;
  }
  throw Trouble(ExitCode::usage, "--points: '" + request.points + "' is not one of its values",
                "give all, raw, merged or curve; a number of points goes with --for");
}

std::string contentOf(const ExportRequest& request, FileKind kind, const report::ReportTable& table,
                      const std::string& json) {
  if (kind == FileKind::json) return json;
  return kind == FileKind::csv ? report::csvTable(table, request.csv) : report::xlsxTable(table);
}

void writeContent(const ExportRequest& request, const std::string& content) {
  if (request.output == "-") return printData(content);
  writeOutputFile(request.output, content);
}

void exportPoints(const ExportRequest& request, FileKind kind, Session& session,
                  const calibration::Meter& meter) {
  const auto all = session.database().everySeries(meter, request.series);
  const std::string which = wantedPoints(request);
  const auto tables = tablesOf(session.database(), all, which, request.units);
  const std::string json =
      kind == FileKind::json ? tablesJson(session.path(), meter, all, tables) : "";
  if (which != "raw") noteOldCurves(session.path(), request.calibration, all);
  writeContent(request, contentOf(request, kind, pointRows(tables), json));
}

// Writes a table of one series for a flow computer.
void exportTable(const ExportRequest& request, FileKind kind, Session& session,
                 const calibration::Meter& meter) {
  const calibration::Database& lab = session.database();
  if (request.series.size() != 1) {
    throw Trouble(ExitCode::usage, "a table for a flow computer holds one series",
                  "name it with --series NAME");
  }
  calibration::TableOptions options = request.table;
  if (!request.points.empty()) {
    constexpr std::int64_t mostPoints = 5000;
    options.points =
        static_cast<std::size_t>(integerOption("--points", request.points, 2, mostPoints));
  }
  options.form = request.form == "uvc"      ? TableForm::uvc
                 : request.form == "linear" ? TableForm::linear
                                            : TableForm::roshko;
  options.viscosity = viscosityOf(request.fluid, lab);
  options.celsius = celsiusOf(request.fluid);
  options.expansionPerKelvin = expansionOf(request.fluid, lab, meter);
  const calibration::StoredSeries series = lab.series(meter, request.series.front());
  const calibration::FlowComputerTable table =
      calibration::tableFor(lab.fittedCurve(series, session.observer()), options);
  session.progress().clear();
  noteOldCurves(session.path(), request.calibration, {series});
  const std::string json = report::jsonText(flowTableJson(table, session.path(), series));
  writeContent(request, contentOf(request, kind, flowTable(table), json));
  // Standard output is for the data alone.
  const std::string summary = flowTableText(table);
  if (request.output != "-")
    return printData(wrapped("Wrote " + request.output + ".", 0) + summary);
  std::fputs(summary.c_str(), stderr);
}

void runExport(const ExportRequest& request) {
  const FileKind kind = kindOf(request);
  if (request.form.empty()) (void)wantedPoints(request);
  if (!request.form.empty() && !request.units.empty()) {
    throw Trouble(ExitCode::usage, "--unit is for stored points",
                  "with --for give --x-unit and --y-unit");
  }
  if (request.csv.separator == request.csv.decimal) {
    throw Trouble(ExitCode::usage, "the separator and the decimal sign are the same",
                  "give --separator semicolon or tab with --decimal comma");
  }
  if (request.output != "-") requireOutputFile(request.output, request.curves.path);
  Session session(request.curves, calibration::Mode::read);
  const calibration::Meter meter = session.database().meter(request.meter, request.calibration);
  if (request.form.empty()) return exportPoints(request, kind, session, meter);
  exportTable(request, kind, session, meter);
}

void addTableOptions(Command& command, const std::shared_ptr<ExportRequest>& request) {
  command.addChoice({"--for", "roshko|uvc|linear",
                     "Write a table for a flow computer instead: Strouhal over Roshko, K over "
                     "f/v (universal viscosity curve), or K over f in one fluid. Its points lie "
                     "where reading between them errs least"},
                    request->form);
  addReading(command, "How the flow computer reads between points (default: linear)",
             request->table.reading);
  command.addFlag("--even", request->table.evenly,
                  "Space the points evenly in the logarithm instead");
  addFluid(command, request->fluid);
  command.addText(
      {"--x-unit", "UNIT",
       "Unit of the first column (default: as recorded, else Hz/cSt; of frequencies Hz)"},
      request->table.xUnit);
  command.addText(
      {"--y-unit", "UNIT", "Unit of K and Strouhal (default: as recorded, else pulses/gal)"},
      request->table.yUnit);
  command.addChoice({"--separator", "comma|semicolon|tab", "Of a CSV file (default: comma)"},
                    [request](const std::string& word) {
                      request->csv.separator = word == "tab" ? '\t' : word == "comma" ? ',' : ';';
                    });
  command.addChoice(
      {"--decimal", "point|comma", "Decimal sign of a CSV file (default: point)"},
      [request](const std::string& word) { request->csv.decimal = word == "comma" ? ',' : '.'; });
}

}  // namespace

void addExportCommand(Program& program) {
  Command command =
      program.add("export", "Write stored points, every digit, or a table for a flow computer");
  const auto request = std::make_shared<ExportRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeriesList(command, request->series);
  addCalibration(command, request->calibration);
  command.addText({"--points", "WHICH|N",
                   "Which points: all, raw, merged or curve (default: all); with --for how many "
                   "(default: 40)"},
                  request->points);
  addUnits(command, request->units);
  addTableOptions(command, request);
  addPath(command,
          {"-o,--output", "FILE",
           "File to write: .csv, .xlsx or .json (default: CSV on standard output)"},
          request->output);
  addJson(command, request->asJson);
  command.onRun([request] { runExport(*request); });
}

}  // namespace pelmora::cli
