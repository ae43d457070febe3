// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/fit_input.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/fit_options.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/output_file.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"

#include <pelmora/calibration/report.h>

#include <array>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::ReportKind;

struct Format {
  const char* option;
  ReportKind kind;
  const char* help;
};
constexpr std::array formats{
    Format{"--html", ReportKind::html, "Write a web page"},
    Format{"--json", ReportKind::json, "Write JSON"},
    Format{"--csv", ReportKind::csv, "Write CSV: all tables below one header line"},
    Format{"--xlsx", ReportKind::xlsx, "Write an Excel workbook, a sheet for each table"},
    Format{"--svg", ReportKind::svg, "Write the plots as one SVG picture"},
};

struct ReportRequest {
  DatabaseOption curves;
  std::string meter, output;
  std::vector<std::string> series;
  std::int16_t calibration = calibration::latestCalibration;
  FitTests unkept;
  std::vector<Format> chosen;
};

ReportKind kindOf(const ReportRequest& request) {
  if (request.chosen.size() > 1) {
    throw Trouble(ExitCode::usage,
                  std::string(request.chosen[0].option) + " and " + request.chosen[1].option +
                      " exclude each other",
                  "write one format at a time");
  }
  if (request.chosen.size() == 1) return request.chosen.front().kind;
  if (request.output == "-") return ReportKind::html;
  if (const auto told = calibration::reportKindOf(request.output)) return *told;
  throw Trouble(ExitCode::usage, "--output: '" + request.output + "' does not tell a format",
                "end the name in one of .html, .json, .csv, .xlsx, .svg, or give the format's "
                "option");
}

// Of a folder, only the files that the series need.
calibration::UnkeptSettings unkeptSettings(const FitTests& tests,
                                           const std::vector<std::string>& series) {
  calibration::UnkeptSettings unkept{tests.band, tests.points, {}, {}};
  if (tests.equations.empty()) return unkept;
  for (const std::string& name : series) {
    const bool isRatio = name == "Ratio";
    auto& equations = isRatio ? unkept.ratioEquations : unkept.equations;
    if (!equations) equations = readEquations(tests.equations, isRatio);
  }
  return unkept;
}

void writeReport(const ReportRequest& request) {
  const ReportKind reportKind = kindOf(request);
  const bool isStandardOutput = request.output == "-";
  if (!isStandardOutput) requireOutputFile(request.output, request.curves.path);
  Session session(request.curves, calibration::Mode::read);
  const calibration::Database& lab = session.database();
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  const auto series = request.series.empty() ? lab.seriesOf(meter) : request.series;
  const std::string content = calibration::makeReport(
      lab, meter, reportKind,
      {request.series, unkeptSettings(request.unkept, series), session.observer()});
  session.progress().clear();
  noteOldCurves(session.path(), request.calibration, lab.everySeries(meter, request.series));
  if (isStandardOutput) return printData(content);
  writeOutputFile(request.output, content);
  printData(wrapped("Wrote the report of meter " + meter.serial + ", calibration " +
                        std::to_string(meter.calibration) + ", " + std::to_string(series.size()) +
                        " series, to " + request.output + " (" +
                        std::to_string((content.size() + 512) / 1024) + " KB).",
                    0));
}

}  // namespace

void addReportCommand(Program& program) {
  Command command = program.add(
      "report",
      "Write the report of a calibration: an HTML page that works offline and prints, or the same "
      "numbers for other tools. Nothing stored is changed.");
  const auto request = std::make_shared<ReportRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeriesList(command, request->series);
  addCalibration(command, request->calibration);
  addPath(command,
          {"-o,--output", "FILE",
           "File to write; - is standard output. Its extension decides the format", true},
          request->output);
  for (const Format& format : formats) {
    command.addFlag(
        format.option, [request, format] { request->chosen.push_back(format); }, format.help);
  }
  addFitTests(command, request->unkept);
  command.setFooter(
      "Points, band and equations apply to curves that were stored without their settings.");
  command.onRun([request] { writeReport(*request); });
}

}  // namespace pelmora::cli
