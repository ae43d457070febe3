// SPDX-License-Identifier: MIT
#include "report/point_tables.h"

#include "report/table_values.h"
#include "report/uncertainty_tables.h"

namespace pelmora::report {

ReportTable resultsTable(const Report& report) {
  ReportTable table{
      "results",
      {"series", "used", "cut", "excluded", "outsideRange", "distrusted", "lowestRoshko",
       "highestRoshko", "lowestFlow", "highestFlow", "turndown", "meanFactor", "linearityPercent",
       "largestDeviationPercent", "largestDeviationRoshko", "repeatabilityPercent",
       "hysteresisPercent", "limitPercent", "passes"},
      {}};
  const auto count = [](std::size_t value) { return wholeCell(static_cast<std::int64_t>(value)); };
  for (const SeriesReport& series : report.series) {
    const SeriesResult& r = series.result;
    table.rows.push_back(
        {textCell(series.name), count(r.used), count(r.cut), count(r.excluded), count(r.outside),
         count(r.distrusted), numberCell(r.lowestRoshko), numberCell(r.highestRoshko),
         numberCell(r.lowestFlow), numberCell(r.highestFlow), numberCell(r.turndown),
         numberCell(r.meanFactor), numberCell(r.linearityPercent), numberCell(r.worstPercent),
         r.worstPercent ? numberCell(r.worstRoshko) : Value(), numberCell(r.repeatabilityPercent),
         numberCell(r.hysteresisPercent), numberCell(r.limitPercent),
         r.passes ? wholeCell(*r.passes) : Value()});
  }
  return table;
}

ReportTable flowsTable(const Report& report) {
  ReportTable table{"flows",
                    {"series", "part", "fluid", "nominalFlow", "count", "meanFactor",
                     "repeatabilityPercent", "hysteresisPercent"},
                    {}};
  for (const SeriesReport& series : report.series) {
    for (const FlowResult& flow : series.result.flows) {
      table.rows.push_back({textCell(series.name), wholeCell(flow.part), textCell(flow.fluid),
                            numberCell(flow.nominalFlow),
                            wholeCell(static_cast<std::int64_t>(flow.points)),
                            numberCell(flow.meanFactor), numberCell(flow.repeatabilityPercent),
                            numberCell(flow.hysteresisPercent)});
    }
  }
  return table;
}

ReportTable pointsTable(const Report& report) {
  ReportTable table{"points",
                    {"series",
                     "part",
                     "number",
                     "job",
                     "fluid",
                     "nominalFlow",
                     "frequency",
                     "flow",
                     "temperature",
                     "viscosity",
                     "roshko",
                     "strouhal",
                     "deviationPercent",
                     "sigmas",
                     "suspect",
                     "state",
                     "cutPercent",
                     "reason",
                     "user",
                     "excludedAt"},
                    {}};
  for (const std::string& name : uncertaintyColumns()) table.columns.push_back(name);
  for (const SeriesReport& series : report.series) {
    for (const RawPart& part : series.parts) {
      for (const MeasuredPoint& point : part.points) {
        report.requireGoOn();
        const auto reading = point.reading.value_or(calibration::StandReading());
        const auto exclusion = point.exclusion.value_or(calibration::Exclusion());
        table.rows.push_back({textCell(series.name),
                              wholeCell(part.number),
                              wholeCell(static_cast<std::int64_t>(point.number)),
                              textCell(point.job),
                              textCell(part.fluid),
                              numberCell(reading.nominalFlow),
                              numberCell(reading.frequency),
                              numberCell(reading.flow),
                              numberCell(reading.temperature),
                              numberCell(reading.viscosity),
                              numberCell(point.roshko),
                              numberCell(point.strouhal),
                              numberCell(point.deviationPercent),
                              numberCell(point.sigmas),
                              wholeCell(point.isDistrusted),
                              Value(calibration::pointStateKey(point.state)),
                              numberCell(point.cutPercent),
                              textCell(exclusion.reason),
                              textCell(exclusion.userName),
                              textCell(exclusion.excludedAt)});
        appendCells(table.rows.back(), uncertaintyCells(point.uncertainty));
      }
    }
  }
  return table;
}

ReportTable mergedTable(const Report& report) {
  ReportTable table{"merged", {"series", "roshko", "strouhal", "deviationPercent"}, {}};
  for (const SeriesReport& series : report.series) {
    for (const MergedPoint& point : series.merged) {
      report.requireGoOn();
      table.rows.push_back({textCell(series.name), numberCell(point.roshko),
                            numberCell(point.strouhal), numberCell(point.deviationPercent)});
    }
  }
  return table;
}

}  // namespace pelmora::report
