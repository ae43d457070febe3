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
    Format{"--pdf", ReportKind::pdf,
           "Write PDF/A-3b with the digital certificate attached; needs the program weasyprint"},
    Format{"--dcc", ReportKind::dcc, "Write a digital calibration certificate, XML"},
    Format{"--csv", ReportKind::csv, "Write CSV: one table below the other"},
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
  std::string table;
  calibration::Signer signer;
  bool storedText = false;
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
  throw Trouble(
      ExitCode::usage, "--output: '" + request.output + "' has no ending of a report",
      "end the name in one of .html, .pdf, .xml, .json, .csv, .xlsx, .svg, or give the format's "
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

// Refuses options that the format does not support, before anything is computed.
calibration::ReportOptions optionsOf(const ReportRequest& request, ReportKind kind) {
  const bool isSigned = !request.signer.keyFile.empty();
  if (isSigned == request.signer.certificateFile.empty())
    throw Trouble(ExitCode::usage, "--sign and --certificate belong together", "give both");
  if (isSigned && kind != ReportKind::dcc && kind != ReportKind::pdf)
    throw Trouble(ExitCode::usage, "--sign signs a digital certificate alone",
                  "write .xml, or .pdf with the certificate attached");
  if (!request.table.empty() && kind != ReportKind::csv)
    throw Trouble(ExitCode::usage, "--table is for CSV alone", "write .csv");
  calibration::ReportOptions options;
  options.series = request.series;
  options.storedText = request.storedText;
  options.table = request.table;
  if (isSigned) options.signer = request.signer;
  options.note = [](const std::string& words) { printNote(words); };
  return options;
}

void writeReport(const ReportRequest& request) {
  const ReportKind reportKind = kindOf(request);
  calibration::ReportOptions options = optionsOf(request, reportKind);
  const bool isStandardOutput = request.output == "-";
  if (!isStandardOutput) requireOutputFile(request.output, request.curves.path);
  Session session(request.curves, calibration::Mode::read);
  const calibration::Database& lab = session.database();
  const calibration::Meter meter = lab.meter(request.meter, request.calibration);
  const auto series = request.series.empty() ? lab.seriesOf(meter) : request.series;
  options.unkept = unkeptSettings(request.unkept, series);
  options.observer = session.observer();
  const std::string content = calibration::makeReport(lab, meter, reportKind, options);
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
      "Write the certificate of a calibration: an HTML page that works offline and prints, PDF, a "
      "digital calibration certificate, or the same numbers for other tools. Nothing stored is "
      "changed.");
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
  command.addText(
      {"--table", "NAME", "Write this table of the CSV alone, such as points, curve or results"},
      request->table);
  command.addFlag("--stored-report", request->storedText,
                  "Add the text report that is stored with each curve to the page");
  addPath(command,
          {"--sign", "KEY.pem",
           "Sign the digital certificate with this private key (XMLDSig, by the program xmlsec1)"},
          request->signer.keyFile);
  addPath(command, {"--certificate", "FILE.pem", "X.509 certificate of the key"},
          request->signer.certificateFile);
  addFitTests(command, request->unkept);
  command.setFooter(
      "Points, band and equations apply to curves that were stored without their settings.");
  command.onRun([request] { writeReport(*request); });
}

}  // namespace pelmora::cli
