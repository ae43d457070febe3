// SPDX-License-Identifier: MIT
#include "report/uncertainty_tables.h"

#include "report/table_values.h"

namespace pelmora::report {

std::vector<std::string> uncertaintyColumns() {
  return {"expandedUncertainty", "expandedUncertaintyPercent", "coverageFactor", "probability"};
}

std::vector<Value> uncertaintyCells(const std::optional<StatedUncertainty>& uncertainty) {
  if (!uncertainty) return std::vector<Value>(uncertaintyColumns().size());
  return {numberCell(uncertainty->expanded), numberCell(uncertainty->percent),
          numberCell(uncertainty->coverageFactor), numberCell(uncertainty->probability)};
}

ReportTable uncertaintyTable(const Report& report) {
  ReportTable table{
      "uncertainty",
      {"series", "stated", "text", "stand", "containsStand", "cmcPercent", "of", "lowestPercent",
       "highestPercent", "lowestCoverageFactor", "highestCoverageFactor", "probability"},
      {}};
  for (const SeriesReport& series : report.series) {
    const UncertaintyStatement& u = series.uncertainty;
    const auto add = [&](const char* of, const std::optional<UncertaintySpan>& span) {
      const auto cell = [&](double UncertaintySpan::*member) {
        return span ? numberCell(*span.*member) : Value();
      };
      table.rows.push_back(
          {textCell(series.name), wholeCell(u.isStated()), textCell(uncertaintyText(u)),
           textCell(u.stand), wholeCell(u.hasStand),
           u.cmcPercent > 0 ? numberCell(u.cmcPercent) : Value(), Value(of),
           cell(&UncertaintySpan::lowestPercent), cell(&UncertaintySpan::highestPercent),
           cell(&UncertaintySpan::lowestFactor), cell(&UncertaintySpan::highestFactor),
           cell(&UncertaintySpan::probability)});
    };
    add("curve", u.isStated() ? std::optional(u.span) : std::nullopt);
    if (series.pointUncertainty) add("points", series.pointUncertainty);
  }
  return table;
}

ReportTable budgetTable(const Report& report) {
  ReportTable table{
      "budget",
      {"series", "roshko", "strouhal", "cause", "label", "standardUncertainty", "unit",
       "distribution", "type", "degreesOfFreedom", "sensitivity", "contribution"},
      {}};
  for (const SeriesReport& series : report.series) {
    for (const UncertaintyStatement::Place& place : series.uncertainty.budgets) {
      for (const calibration::BudgetRow& row : place.budget.rows) {
        table.rows.push_back({textCell(series.name), numberCell(place.roshko),
                              numberCell(place.strouhal), textCell(row.cause), textCell(row.label),
                              numberCell(row.standardUncertainty), textCell(row.unit),
                              textCell(row.distribution), Value(std::string(1, row.type)),
                              numberCell(row.degreesOfFreedom), numberCell(row.sensitivity),
                              numberCell(row.contribution)});
      }
    }
  }
  return table;
}

}  // namespace pelmora::report
