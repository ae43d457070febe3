// Files to keep: reports, tables for flow computers, and the description of the interface.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/flow_table_output.h"
#include "apps/pelmora/recorded_expansion.h"
#include "apps/pelmora/workbench/api/failure_answer.h"
#include "apps/pelmora/workbench/api/routes.h"
#include "apps/pelmora/workbench/page/page_files.h"
#include "base/ascii_character.h"
#include "report/csv_report.h"
#include "report/xlsx_report.h"

#include <pelmora/calibration/report.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace pelmora::cli::workbench {
namespace {

struct Format {
  std::string_view name, type;
};

constexpr std::array<Format, 7> formats{
    {{"html", "text/html; charset=utf-8"},
     {"pdf", "application/pdf"},
     {"xml", "application/xml"},
     {"json", "application/json"},
     {"csv", "text/csv; charset=utf-8"},
     {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
     {"svg", "image/svg+xml"}}};

// A name that every system takes, of a serial number that may hold anything.
std::string plainName(const std::string& text) {
  std::string name;
  for (const char c : text) {
    const bool isPlain = isLetter(c) || isDigit(c) || c == '-' || c == '_';
    name += isPlain ? c : '_';
  }
  constexpr std::size_t longest = 60;
  return name.substr(0, longest);
}

std::string fileName(const calibration::Meter& meter) {
  return plainName(meter.serial) + "-calibration-" + std::to_string(meter.calibration);
}

// wanted: one of `formats`.
http::Response fileToKeep(const std::string& wanted, const std::string& name, std::string bytes) {
  const auto* const format = std::ranges::find(formats, wanted, &Format::name);
  return {200,
          std::string(format->type),
          std::move(bytes),
          {{"Content-Disposition", "attachment; filename=\"" + name + "." + wanted + "\""}}};
}

calibration::TableForm tableFormOf(const std::string& key) {
  using calibration::TableForm;
  for (const TableForm form : {TableForm::roshko, TableForm::uvc, TableForm::linear}) {
    if (key == calibration::tableFormKey(form)) return form;
  }
  throw calibration::BadData({"'for' must be roshko, uvc or linear", "the request", "correct it"});
}

calibration::ReadAs tableReading(const std::string& key) {
  if (const auto reading = calibration::tableReadingOf(key)) return *reading;
  throw calibration::BadData({"'read' must be linear, log or cubic", "the request", "correct it"});
}

calibration::TableOptions tableOptionsOf(const Arguments& arguments) {
  constexpr std::int64_t mostPoints = 5000;
  calibration::TableOptions options;
  if (const auto form = arguments.findText("for")) options.form = tableFormOf(*form);
  if (const auto reading = arguments.findText("read")) options.reading = tableReading(*reading);
  if (const auto points = arguments.findInteger("points", 2, mostPoints))
    options.points = static_cast<std::size_t>(*points);
  options.viscosity = arguments.findNumber("viscosity");
  options.celsius = arguments.findNumber("temperature").value_or(options.celsius);
  options.xUnit = arguments.findText("xUnit").value_or("");
  options.yUnit = arguments.findText("yUnit").value_or("");
  return options;
}

}  // namespace

http::Response getReport(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series", "format"});
  const calibration::Meter meter = meterOf(bench, arguments);
  const std::string wanted = arguments.text("format");
  if (std::ranges::find(formats, wanted, &Format::name) == formats.end()) {
    throw calibration::BadData(
        {"'format' must be html, pdf, xml, json, csv, xlsx or svg", "the request", "correct it"});
  }
  calibration::ReportOptions options;
  if (const auto series = arguments.findText("series")) options.series = {*series};
  options.observer = bench.session.observer();
  const auto kind = calibration::reportKindOf("report." + wanted);
  std::string bytes = calibration::makeReport(bench.lab(), meter, kind.value(), options);
  bench.session.progress().clear();
  return fileToKeep(wanted, fileName(meter), std::move(bytes));
}

http::Response getTable(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series", "for", "read", "points", "viscosity",
                         "temperature", "xUnit", "yUnit", "format"});
  const SeriesPlace place = placeOf(bench, arguments);
  calibration::TableOptions options = tableOptionsOf(arguments);
  options.expansionPerKelvin = recordedExpansion(bench.lab(), place.meter);
  const std::string format = arguments.findText("format").value_or("");
  if (!format.empty() && format != "json" && format != "csv" && format != "xlsx") {
    throw calibration::BadData({"'format' must be json, csv or xlsx", "the request", "correct it"});
  }
  const calibration::StoredSeries series = bench.lab().series(place.meter, place.series);
  const calibration::FlowComputerTable table =
      calibration::tableFor(bench.lab().fittedCurve(series, bench.session.observer()), options);
  bench.session.progress().clear();
  http::Response asJson = jsonAnswer(flowTableJson(table, bench.location(), series));
  if (format.empty()) return asJson;
  const std::string name = fileName(series.meter) + "-" + plainName(series.name) + "-" +
                           calibration::tableFormKey(options.form);
  const report::ReportTable rows = flowTable(table);
  return fileToKeep(format, name,
                    format == "json"  ? std::move(asJson.body)
                    : format == "csv" ? report::csvTable(rows)
                                      : report::xlsxTable(rows));
}

http::Response getInterface(Bench& /*bench*/, const http::Request& /*request*/) {
  return {200, "application/json", std::string(page::file("openapi.json")->text)};
}

}  // namespace pelmora::cli::workbench
