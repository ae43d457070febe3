// SPDX-License-Identifier: MIT
#include "report/html_points.h"

#include "base/readable_number.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/printed_values.h"
#include "report/report_details.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace pelmora::report {
namespace {

using calibration::PointState;
using calibration::StandReading;

// Which columns have anything to show.
struct ShownColumns {
  bool readings = false, nominalFlow = false, uncertainty = false, factor = false;
};

ShownColumns columnsOf(const SeriesReport& series) {
  ShownColumns shown;
  if (const auto& span = series.pointUncertainty) {
    shown.uncertainty = true;
    shown.factor =
        printedCoverageFactor(span->lowestFactor) != printedCoverageFactor(span->highestFactor);
  }
  for (const RawPart& part : series.parts) {
    for (const MeasuredPoint& point : part.points) {
      if (!point.reading) continue;
      shown.readings = true;
      if (point.reading->nominalFlow) shown.nominalFlow = true;
    }
  }
  return shown;
}

std::vector<HtmlColumn> pointColumns(const Report& report, const SeriesReport& series,
                                     const ShownColumns& shown) {
  std::vector<HtmlColumn> columns{{"No.", false}};
  if (shown.nominalFlow)
    columns.push_back({withUnit(report, "Nominal flow", "nominal-flow-unit"), true});
  if (shown.readings) {
    columns.insert(columns.end(), {{withUnit(report, "f", "frequency-unit"), true},
                                   {withUnit(report, "q", "flow-unit"), true},
                                   {withUnit(report, "T", "temperature-unit"), true},
                                   {withUnit(report, "\u03BD", "viscosity-unit"), true}});
  }
  columns.insert(columns.end(),
                 {{withUnit(report, "Roshko", "roshko-unit"), true},
                  {isQuotient(series) ? "Ratio" : withUnit(report, "K", "strouhal-unit"), true}});
  if (shown.uncertainty) columns.push_back({"U", true});
  if (shown.factor) columns.push_back({"k", true});
  columns.insert(columns.end(), {{"Dev. %", true}, {"State", false}});
  return columns;
}

std::vector<std::string> cellsOf(const MeasuredPoint& point, const ShownColumns& shown) {
  std::vector<std::string> cells{std::to_string(point.number)};
  const StandReading reading = point.reading.value_or(StandReading());
  if (shown.nominalFlow) cells.push_back(printedNominalFlow(reading.nominalFlow));
  if (shown.readings) {
    cells.insert(cells.end(),
                 {printedFrequency(reading.frequency), printedFlow(reading.flow),
                  printedTemperature(reading.temperature), printedViscosity(reading.viscosity)});
  }
  cells.insert(cells.end(), {printedRoshko(point.roshko), printedFactor(point.strouhal)});
  const auto& u = point.uncertainty;
  if (shown.uncertainty) cells.push_back(u ? printedUncertainty(u->expanded) : "-");
  if (shown.factor) cells.push_back(u ? printedCoverageFactor(u->coverageFactor) : "-");
  cells.insert(cells.end(),
               {printedDeviation(point.deviationPercent), calibration::pointStateKey(point.state)});
  return cells;
}

// What the reader should know about a point besides its numbers.
std::string noteOf(const MeasuredPoint& point) {
  if (point.exclusion) {
    const calibration::Exclusion& why = *point.exclusion;
    return "Excluded" + (why.userName.empty() ? "" : " by " + why.userName) + " on " +
           why.excludedAt + ": " + why.reason;
  }
  const std::string off =
      point.sigmas ? fixedText(std::fabs(*point.sigmas), 1) + " sigmas off" : "off";
  if (point.isSetAside())
    return "Distrusted: " + off + " its neighbours; the curve was fitted without it";
  if (point.state != PointState::used || !point.isDistrusted) return {};
  return "Suspect: " + off + " its neighbours, not excluded";
}

std::string cutText(const RawPart& part) {
  const auto count = std::ranges::count_if(part.points, &MeasuredPoint::isCut);
  if (count == 0) return {};
  double most = 0;
  for (const MeasuredPoint& point : part.points)
    most = std::max(most, std::fabs(point.cutPercent.value_or(0)));
  return "<p class=\"fine\">Cut by the merge: " + std::to_string(count) +
         (count == 1 ? " point" : " points") +
         (most > 0 ? ", up to " + significantText(most, 3) + " % off the merged points" : "") +
         ".</p>\n";
}

// The deviation above which used points are listed, so that the tables stay short; 0: all are.
double listedDeviation(const SeriesReport& series) {
  std::vector<double> deviations;
  std::size_t count = 0;
  for (const RawPart& part : series.parts) {
    count += part.points.size();
    for (const MeasuredPoint& point : part.points) {
      if (point.state == PointState::used && point.deviationPercent)
        deviations.push_back(std::fabs(*point.deviationPercent));
    }
  }
  constexpr std::size_t listedUsed = mostListedPoints / 4;
  if (count <= mostListedPoints || deviations.size() <= listedUsed) return 0;
  std::ranges::nth_element(deviations, deviations.begin() + listedUsed, std::greater<>());
  return deviations[listedUsed];
}

}  // namespace

std::string htmlPoints(const Report& report, const SeriesReport& series) {
  if (series.parts.empty()) return {};
  const ShownColumns shown = columnsOf(series);
  const double least = listedDeviation(series);
  std::string html;
  std::size_t leftOut = 0, listed = 0;
  for (const RawPart& part : series.parts) {
    const std::string name =
        "Raw part " + std::to_string(part.number) + (part.fluid.empty() ? "" : ", " + part.fluid);
    HtmlTable table(name + ", points of " + series.name, pointColumns(report, series, shown),
                    "points measured");
    for (const MeasuredPoint& point : part.points) {
      report.requireGoOn();
      const bool isListed =
          listed < mostListedPoints &&
          (point.state != PointState::used || point.isDistrusted || least <= 0 ||
           (point.deviationPercent && std::fabs(*point.deviationPercent) > least));
      if (!isListed) {
        ++leftOut;
        continue;
      }
      ++listed;
      table.addRow(cellsOf(point, shown), point.state == PointState::used ? "" : "unused");
      if (const std::string note = noteOf(point); !note.empty()) table.addNote(note);
    }
    html += "<h4>" + escaped(name) + "</h4>\n" + cutText(part) + table.take();
  }
  if (leftOut > 0) {
    html += "<p class=\"fine\">" + std::to_string(leftOut) +
            " points are not listed here, only those that deviate most, are suspect or are not "
            "used. The report's JSON, CSV and workbook have all of them.</p>\n";
  }
  const std::string about = pointUncertaintyText(series.uncertainty, series.pointUncertainty);
  return "<h3>Measured points</h3>\n" +
         (about.empty() ? "" : "<p class=\"fine\">" + escaped(about) + "</p>\n") + html;
}

std::string htmlFlows(const Report& report, const SeriesReport& series) {
  const auto& flows = series.result.flows;
  const bool isRepeated =
      std::ranges::any_of(flows, [](const FlowResult& flow) { return flow.points > 1; });
  if (!isRepeated || flows.size() > mostListedPoints) return {};
  HtmlTable table(
      "Repeatability of " + series.name,
      {{"Fluid", false},
       {withUnit(report, "Nominal flow", "nominal-flow-unit"), true},
       {"Points", true},
       {isQuotient(series) ? "Mean" : withUnit(report, "Mean K", "strouhal-unit"), true},
       {"Repeatability %", true},
       {"Hysteresis %", true}},
      "points");
  for (const FlowResult& flow : flows) {
    table.addRow({flow.fluid.empty() ? "Part " + std::to_string(flow.part) : flow.fluid,
                  printedNominalFlow(flow.nominalFlow), std::to_string(flow.points),
                  printedFactor(flow.meanFactor),
                  flow.repeatabilityPercent ? fixedText(*flow.repeatabilityPercent, 3) : "-",
                  printedDeviation(flow.hysteresisPercent)});
  }
  return "<h3>Repeatability</h3>\n<p class=\"fine\">Of the used points at each nominal flow: the "
         "largest difference of their deviations from the curve, and their mean deviation with "
         "falling flow less that with rising flow.</p>\n" +
         table.take();
}

}  // namespace pelmora::report
