// SPDX-License-Identifier: MIT
#include "report/html_report.h"

#include "report/html_series.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/page_files.h"
#include "report/plot_data.h"
#include "base/readable_number.h"
#include "report/series_plot.h"
#include "report/sha256.h"
#include "report/svg_report.h"
#include "report/text_list.h"
#include "report/verdict_words.h"

#include <algorithm>

namespace pelmora::report {
namespace {

bool hasScripts() { return !packedScript().empty(); }

// Each text once.
template <class Member>
std::string distinct(const Report& report, Member member) {
  std::vector<std::string> texts;
  for (const CalSetupInfo& setup : report.setups) {
    const std::string text = member(setup);
    if (!text.empty() && std::find(texts.begin(), texts.end(), text) == texts.end())
      texts.push_back(text);
  }
  return joined(texts);
}

std::string numberOrNone(std::int32_t number) { return number < 0 ? "" : std::to_string(number); }

std::string orNotRecorded(const std::string& text) { return text.empty() ? "not recorded" : text; }

std::string style() {
  return ":root{" + lightColours() + "}@media screen and (prefers-color-scheme:dark){:root{" +
         darkColours() + "}}" + std::string(plotLibraryStyle()) + std::string(pageStyle()) +
         plotStyle();
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

std::string facts(const Report& report) {
  const MeterInfo& meter = report.meter;
  const auto fluid = [](const CalSetupInfo& s) { return s.Fluid; };
  const auto person = [](const CalSetupInfo& s) { return s.Operator; };
  const auto date = [](const CalSetupInfo& s) { return s.DateTaken; };
  const auto stand = [](const CalSetupInfo& s) { return numberOrNone(s.Stand); };
  const auto position = [](const CalSetupInfo& s) { return numberOrNone(s.Position); };
  const auto jobs = [](const CalSetupInfo& s) { return joined(s.JobRecordIDs); };
  return "<dl class=\"facts\">\n" + htmlFact("Meter", meter.SerialNumber) +
         htmlFact("Adjusted serial number", meter.SerialNumberAdjusted) +
         htmlFact("Calibration", std::to_string(meter.ReCalID)) +
         htmlFact("Stand", orNotRecorded(distinct(report, stand))) +
         htmlFact("Position", orNotRecorded(distinct(report, position))) +
         htmlFact("Fluids", orNotRecorded(distinct(report, fluid))) +
         htmlFact("Operators", orNotRecorded(distinct(report, person))) +
         htmlFact("Dates", orNotRecorded(distinct(report, date))) +
         htmlFact("Jobs", orNotRecorded(distinct(report, jobs))) +
         htmlFact("Curve database", report.database) +
         htmlFact("Software", "pelmora " + report.softwareVersion) +
         htmlFact("Report made", report.createdAt) +
         htmlFact("SHA-256 of the raw points of all series", report.rawDataHash, "wide hash") +
         "</dl>\n";
}

std::string setups(const Report& report) {
  if (report.setups.empty()) return {};
  HtmlTable table("Set-ups",
                  {{"Raw part", false},
                   {"Fluid", false},
                   {"Jobs", false},
                   {"Operator", false},
                   {"Date", false},
                   {"Stand", true},
                   {"Position", true},
                   {"Points", true}},
                  "keep");
  const auto orNone = [](const std::string& text) {
    return text.empty() ? std::string("-") : text;
  };
  for (std::size_t k = 0; k < report.setups.size(); ++k) {
    const CalSetupInfo& setup = report.setups[k];
    table.addRow({k < 4 ? std::to_string(k + 1) : "-", orNone(setup.Fluid),
                  orNone(joined(setup.JobRecordIDs)), orNone(setup.Operator),
                  orNone(setup.DateTaken), orNone(numberOrNone(setup.Stand)),
                  orNone(numberOrNone(setup.Position)), std::to_string(setup.Points)});
  }
  return "<h2>Set-ups</h2>\n" + table.take();
}

std::string summary(const Report& report) {
  HtmlTable table("Results",
                  {{"Series", false},
                   {"Equation", false},
                   {"Adj. R\u00B2", true},
                   {"Worst %", true},
                   {"Band %", true},
                   {"Points", true},
                   {"Shift %", true},
                   {"Warnings", true}},
                  "keep");
  for (const SeriesReport& series : report.series) {
    const EquationOutcome* chosen = nullptr;
    for (const RankedEquation& equation : series.equations) {
      if (equation.outcome.Verdict == EquationVerdict::chosen && !series.curve.empty())
        chosen = &equation.outcome;
    }
    const bool hasShift = series.previous && !series.previous->shifts.empty();
    table.addRow({series.name,
                  chosen != nullptr      ? chosen->Name
                  : series.curve.empty() ? "no curve stored"
                                         : "not repeated",
                  chosen != nullptr ? fixedText(chosen->Statistics.AdjustedRSquared, 6) : "-",
                  chosen != nullptr ? percentText(chosen->WorstResidualRatio * 100) : "-",
                  significantText(series.settings.BandPercent, 4),
                  std::to_string(series.curve.size()),
                  hasShift ? percentText(series.previous->meanPercent) : "-",
                  std::to_string(series.remarks.size())});
  }
  return "<h2>Results</h2>\n" + table.take() +
         "<p class=\"fine\">Worst: largest residual of the chosen equation at a merged point. "
         "Roshko and Strouhal numbers are "
         "in the units of the stand; the database keeps no units.</p>\n";
}

// On paper only, below the results.
std::string signatures() {
  return "<div class=\"sign\"><div>Calibrated by, date</div><div>Signature</div>"
         "<div>Approved by, date</div><div>Signature</div></div>\n";
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

std::string htmlReport(const Report& report) {
  const std::string css = style();
  const std::string name = "Meter " + report.meter.SerialNumber + ", calibration " +
                           std::to_string(report.meter.ReCalID);
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
      policy(css) +
      "\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
      escaped(name) + " - calibration report</title>\n<style>" + css + "</style>\n";
  if (hasScripts()) html += "<script>" + std::string(startScript()) + "</script>\n";
  html += "</head>\n<body>\n<header>\n<h1>Calibration report</h1>\n<p class=\"sub\">" +
          escaped(name) + "</p>\n" + facts(report) + "</header>\n" + navigation(report) +
          "<main>\n<svg width=\"0\" height=\"0\" aria-hidden=\"true\" class=\"defs\">" +
          plotDefinitions() + "</svg>\n" + setups(report) + summary(report) + signatures();
  for (std::size_t i = 0; i < report.series.size(); ++i)
    html += htmlSeries(report.series[i], sectionId(i));
  html += "</main>\n";
  return html + scripts(report) + "</body>\n</html>\n";
}

}  // namespace pelmora::report
