// SPDX-License-Identifier: MIT
#include "report/html_report.h"

#include "base/ascii_character.h"
#include "base/sha256.h"
#include "report/html_certificate.h"
#include "report/html_series.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/page_files.h"
#include "report/plot_data.h"
#include "report/report_details.h"
#include "report/series_plot.h"
#include "report/svg_report.h"
#include "report/text_list.h"

#include <algorithm>

namespace pelmora::report {
namespace {

bool hasScripts() { return !packedScript().empty(); }

// A text inside quotes of a style sheet.
std::string cssString(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    const bool isPlain = isDigit(c) || isLetter(c) || c == ' ' || c == ',' || code >= 0x80;
    constexpr const char* hexDigits = "0123456789abcdef";
    if (isPlain) {
      result += c;
    } else if (code >= 0x20 && code != 0x7F) {
      result += std::string("\\") + hexDigits[code / 16] + hexDigits[code % 16] + " ";
    } else {
      result += "?";
    }
  }
  return result + "\"";
}

// The name of the report and the page number, in the margin of each printed page.
std::string pageMargins(const Report& report) {
  return "@media print{@page{@bottom-left{content:" + cssString(pageName(report)) +
         "}@bottom-right{content:\"Page \" counter(page) \" of \" counter(pages)}}}";
}

std::string style(const Report& report) {
  return ":root{" + lightColours() + "}@media screen and (prefers-color-scheme:dark){:root{" +
         darkColours() + "}}" + std::string(plotLibraryStyle()) + std::string(pageStyle()) +
         plotStyle() + pageMargins(report);
}

// For a program without CSS grids. The picture of the first page leaves room for what is recorded.
std::string paperStyle(const Report& report) {
  constexpr std::size_t fewDetails = 20;
  const bool hasFew = report.details.size() + report.laboratory.size() <= fewDetails;
  return std::string(".front .plot{width:") + (hasFew ? "62%" : "42%") +
         "}"
         ".blocks,.pair{display:table;width:100%}.block,.pair>div{display:table-cell;"
         "padding-right:5mm}.block{width:33%}.pair>div{width:50%}"
         "dl.facts,dl.facts div{display:block}dl.facts dt,dl.facts dd{display:inline;font-size:8pt}"
         "dl.facts dt:after{content:\": \"}"
         ".sign{display:table;width:100%;table-layout:fixed;border-spacing:6mm 0;margin:9mm 0 2mm}"
         ".sign div{display:table-cell;font-size:8pt;border-top:.3mm solid #4a5666}"
         ".front figure{margin:0}#series-1 .sheet{break-before:auto}"
         ".legend li,.legend .key{display:inline}.legend "
         "li{margin-right:5mm}.legend svg{margin-right:1mm}"
         ".scroll{overflow:visible}";
}

std::string policy(const std::string& css) {
  const auto source = [](std::string_view text) { return "'sha256-" + sha256Base64(text) + "'"; };
  std::string text =
      "default-src 'none'; base-uri 'none'; form-action 'none'; style-src " + source(css);
  if (!hasScripts()) return text;
  return text + "; script-src " + source(startScript()) + " " + source(unpackScript()) +
         " 'sha256-" + std::string(packedScriptHash()) + "'";
}

std::string scripts(const Report& report) {
  if (!hasScripts()) return {};
  return "<script type=\"application/json\" id=\"data\">" + plotData(report) +
         "</script>\n<!-- uPlot (MIT) and the page's script, gzip as base64 -->\n"
         "<script type=\"text/plain\" id=\"script\">" +
         std::string(packedScript()) + "</script>\n<script>" + std::string(unpackScript()) +
         "</script>\n";
}

// About the report itself.
std::string origin(const Report& report) {
  return "<dl class=\"facts\">\n" + htmlFact("Curve database", report.database) +
         htmlFact("Software", "pelmora " + report.softwareVersion) +
         htmlFact("Report made", report.createdAt) +
         htmlFact("SHA-256 of the raw points of all series", report.rawDataHash, "wide hash") +
         "</dl>\n";
}

std::string runs(const Report& report) {
  if (report.runs.empty()) return {};
  HtmlTable table("Runs",
                  {{"Raw part", false},
                   {"Fluid", false},
                   {"Jobs", false},
                   {"Operator", false},
                   {"Imported", false},
                   {"Stand", true},
                   {"Position", true},
                   {"Points", true}},
                  "keep");
  const auto orNone = [](const std::string& text) {
    return text.empty() ? std::string("-") : text;
  };
  const auto number = [](int value) { return value < 0 ? "-" : std::to_string(value); };
  for (std::size_t k = 0; k < report.runs.size(); ++k) {
    const calibration::Run& run = report.runs[k];
    table.addRow({k < 4 ? std::to_string(k + 1) : "-", orNone(run.fluid), orNone(joined(run.jobs)),
                  orNone(run.operatorName), orNone(run.date), number(run.stand),
                  number(run.position), std::to_string(run.points)});
  }
  return "<h3>Runs</h3>\n" + table.take();
}

// What was replaced since the calibration was imported.
std::string changes(const Report& report) {
  constexpr std::size_t mostListed = 20;
  if (report.history.empty()) return {};
  HtmlTable table("Changes",
                  {{"Entry", false},
                   {"Changed at (UTC)", false},
                   {"Command", false},
                   {"Series", false},
                   {"User", false}},
                  "keep");
  const std::size_t listed = std::min(report.history.size(), mostListed);
  for (std::size_t i = 0; i < listed; ++i) {
    const calibration::HistoryEntry& entry = report.history[i];
    table.addRow({std::to_string(entry.id), entry.changedAt, entry.command,
                  entry.series.empty() ? "all" : entry.series,
                  entry.userName.empty() ? "-" : entry.userName});
  }
  std::string html = "<h3>Changes</h3>\n" + table.take();
  if (listed < report.history.size()) {
    html += "<p class=\"fine\">The newest " + std::to_string(listed) + " of " +
            std::to_string(report.history.size()) + " changes.</p>\n";
  }
  return html;
}

std::string remarkLines(const Report& report) {
  const auto lines = detailLines(report, "remark");
  if (lines.empty()) return {};
  std::string html = "<h2>Remarks</h2>\n";
  for (const std::string& line : lines) html += "<p>" + escaped(line) + "</p>\n";
  return html;
}

// On paper only, below the results: a line for each signatory.
std::string signatures(const Report& report) {
  auto names = detailLines(report, "signatory");
  if (names.empty()) names = {"Calibrated by", "Approved by"};
  std::string html = "<div class=\"sign\">";
  for (const std::string& name : names) html += "<div>" + escaped(name) + "; date, signature</div>";
  return html + "</div>\n";
}

std::string navigation(const Report& report) {
  std::string html = "<nav aria-label=\"Series\"><p>";
  for (std::size_t i = 0; i < report.series.size(); ++i) {
    html += (i == 0 ? "<a href=\"#" : " \u00B7 <a href=\"#") + sectionId(i) + "\">" +
            escaped(report.series[i].name) + "</a>";
  }
  return html + "</p></nav>\n";
}

}  // namespace

std::string htmlReport(const Report& report, const PageOptions& options) {
  const bool isScripted = hasScripts() && !options.isPaper;
  const std::string css = style(report) + (options.isPaper ? paperStyle(report) : "");
  const std::string title = reportTitle(report), name = pageName(report);
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
      policy(css) +
      "\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
      escaped(name + " - " + title) + "</title>\n<style>" + css + "</style>\n";
  if (isScripted) html += "<script>" + std::string(startScript()) + "</script>\n";
  html += "</head>\n<body>\n<header>\n<h1>" + title + "</h1>\n<p class=\"sub\">" + escaped(name) +
          "</p>\n" + htmlFacts(report) + "</header>\n" +
          (options.isPaper ? "" : navigation(report)) +
          "<main>\n<svg width=\"0\" height=\"0\" aria-hidden=\"true\" class=\"defs\">" +
          plotDefinitions() + "</svg>\n" + htmlResults(report) + remarkLines(report) +
          signatures(report);
  if (options.isPaper && !report.series.empty())
    html += "<div class=\"front\">" + htmlPicture(report.series.front(), options) + "</div>\n";
  for (std::size_t i = 0; i < report.series.size(); ++i) {
    report.requireGoOn();
    html += htmlSeries(report, report.series[i], sectionId(i), i == 0, options);
  }
  html += "<footer>\n<h2>Origin</h2>\n" + runs(report) + changes(report) + origin(report) +
          "</footer>\n</main>\n";
  return html + (isScripted ? scripts(report) : "") + "</body>\n</html>\n";
}

}  // namespace pelmora::report
