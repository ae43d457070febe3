// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/output_file.h"
#include "apps/pelmora/report_source.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/csv_report.h"
#include "report/html_report.h"
#include "report/json_report.h"
#include "report/svg_report.h"
#include "report/xlsx_report.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>

namespace pelmora::cli {
namespace {

struct Format {
  const char* option;
  const char* extension;
  const char* help;
  std::string (*write)(const report::Report&);
};
const std::array formats{
    Format{"--html", ".html", "Write a web page", report::htmlReport},
    Format{"--json", ".json", "Write JSON", report::jsonReport},
    Format{"--csv", ".csv", "Write CSV: all tables below one header line", report::csvReport},
    Format{"--xlsx", ".xlsx", "Write an Excel workbook, a sheet for each table",
           report::xlsxReport},
    Format{"--svg", ".svg", "Write the plots as one SVG picture", report::svgReport},
};

struct ReportOptions {
  DatabaseOption curves;
  std::string meter, output;
  std::vector<std::string> series;
  std::int16_t reCalID = -1;
  FitTests unkept;
  std::vector<const Format*> chosen;
};

const Format& formatOf(const ReportOptions& options) {
  if (options.chosen.size() > 1) {
    throw Trouble(ExitCode::usage,
                  std::string(options.chosen[0]->option) + " and " + options.chosen[1]->option +
                      " exclude each other",
                  "write one format at a time");
  }
  if (options.chosen.size() == 1) return *options.chosen.front();
  if (options.output == "-") return formats.front();
  std::string extension = std::filesystem::path(options.output).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  std::string known;
  for (const Format& format : formats) {
    if (extension == format.extension) return format;
    known += (known.empty() ? "" : ", ") + std::string(format.extension);
  }
  throw Trouble(ExitCode::usage, "--output: '" + options.output + "' does not tell a format",
                "end the name in one of " + known + ", or give the format's option");
}

void writeReport(const ReportOptions& options, const UnkeptSettings& unkept) {
  const Format& format = formatOf(options);
  const bool isStandardOutput = options.output == "-";
  if (!isStandardOutput) requireOutputFile(options.output, options.curves.path);
  CurveSession session(options.curves, Access::read);
  const MeterInfo meter = session.requireMeter(options.meter, options.reCalID);
  const report::Report report =
      report::buildReport(reportInput(session, meter, options.series, unkept));
  session.progress().clear();
  const std::string content = format.write(report);
  if (isStandardOutput) return printData(content);
  writeOutputFile(options.output, content);
  printData(wrapped("Wrote the report of meter " + meter.SerialNumber + ", calibration " +
                        std::to_string(meter.ReCalID) + ", " +
                        std::to_string(report.series.size()) + " series, to " + options.output +
                        " (" + std::to_string((content.size() + 512) / 1024) + " KB).",
                    0));
}

}  // namespace

void addReportCommand(Program& program) {
  Command command = program.add(
      "report",
      "Write the report of a calibration: an HTML page that works offline and prints, or the same "
      "numbers for other tools. Nothing stored is changed.");
  const auto options = std::make_shared<ReportOptions>();
  addDatabase(command, options->curves);
  addMeter(command, options->meter, true);
  addSeriesList(command, options->series);
  addCalibration(command, options->reCalID);
  addPath(command,
          {"-o,--output", "FILE",
           "File to write; - is standard output. Its extension decides the format", true},
          options->output);
  for (const Format& format : formats) {
    command.addFlag(
        format.option, [options, &format] { options->chosen.push_back(&format); }, format.help);
  }
  addFitTests(command, options->unkept);
  command.setFooter(
      "Points, band and equations apply to curves that were stored without their settings.");
  command.onRun([options] {
    writeReport(*options,
                {options->unkept.band, options->unkept.points, options->unkept.equations});
  });
}

}  // namespace pelmora::cli
