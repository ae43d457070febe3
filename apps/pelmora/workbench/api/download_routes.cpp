// Files to keep: reports, tables, and the description of the interface.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/routes.h"
#include "apps/pelmora/workbench/page/page_files.h"

#include <pelmora/calibration/report.h>

#include <array>
#include <string_view>

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
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                         (c >= '0' && c <= '9') || c == '-' || c == '_';
    name += isPlain ? c : '_';
  }
  constexpr std::size_t longest = 60;
  return name.substr(0, longest);
}

}  // namespace

http::Response getReport(Bench& bench, const http::Request& request) {
  const Arguments arguments = Arguments::ofQuery(request.query);
  arguments.requireOnly({"meter", "calibration", "series", "format"});
  const calibration::Meter meter = meterOf(bench, arguments);
  const std::string wanted = arguments.text("format");
  for (const Format& format : formats) {
    if (format.name != wanted) continue;
    calibration::ReportOptions options;
    if (const auto series = arguments.findText("series")) options.series = {*series};
    options.observer = bench.session.observer();
    const auto kind = calibration::reportKindOf("report." + wanted);
    std::string bytes = calibration::makeReport(bench.lab(), meter, kind.value(), options);
    bench.session.progress().clear();
    return {200,
            std::string(format.type),
            std::move(bytes),
            {{"Content-Disposition", "attachment; filename=\"" + plainName(meter.serial) +
                                         "-calibration-" + std::to_string(meter.calibration) + "." +
                                         wanted + "\""}}};
  }
  throw calibration::BadData(
      {"'format' must be html, pdf, xml, json, csv, xlsx or svg", "the request", "correct it"});
}

http::Response getInterface(Bench& /*bench*/, const http::Request& /*request*/) {
  return {200, "application/json", std::string(page::file("openapi.json")->text)};
}

}  // namespace pelmora::cli::workbench
