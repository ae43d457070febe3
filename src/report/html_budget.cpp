// SPDX-License-Identifier: MIT
#include "report/html_budget.h"

#include "base/readable_number.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/printed_values.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace pelmora::report {
namespace {

using calibration::BudgetRow;
using Place = UncertaintyStatement::Place;

constexpr int contributionDigits = 2, sizeDigits = 3, placeDigits = 4;

// The rows of all budgets, each once, in their order. A row may be missing in some of them.
std::vector<const BudgetRow*> allRows(const std::vector<Place>& places) {
  std::vector<const BudgetRow*> rows;
  for (const Place& place : places) {
    for (const BudgetRow& row : place.budget.rows) {
      const bool isKnown = std::ranges::any_of(rows, [&](const BudgetRow* known) {
        return known->cause == row.cause && known->label == row.label;
      });
      if (!isKnown) rows.push_back(&row);
    }
  }
  return rows;
}

const BudgetRow* rowIn(const Place& place, const BudgetRow& wanted) {
  const auto& rows = place.budget.rows;
  const auto found = std::ranges::find_if(rows, [&](const BudgetRow& row) {
    return row.cause == wanted.cause && row.label == wanted.label;
  });
  return found == rows.end() ? nullptr : &*found;
}

std::string degreesText(double degrees) {
  return std::isfinite(degrees) ? significantText(std::floor(degrees), 6) : "\u221E";
}

// Of the stand's rows, which are the same everywhere.
std::string sizeText(const BudgetRow& row, const std::vector<Place>& places) {
  const bool isSame = std::ranges::all_of(places, [&](const Place& place) {
    const BudgetRow* there = rowIn(place, row);
    return there != nullptr && there->standardUncertainty == row.standardUncertainty;
  });
  if (!isSame || row.unit.empty()) return "varies";
  return significantText(row.standardUncertainty, sizeDigits) + " " + row.unit;
}

std::string contributionText(const Place& place, double contribution) {
  return significantText(100 * std::abs(contribution / place.budget.value), contributionDigits);
}

}  // namespace

std::string htmlBudget(const SeriesReport& series) {
  if (series.curve.empty()) return {};
  const UncertaintyStatement& statement = series.uncertainty;
  const std::string html = "<h3>Uncertainty budget</h3>\n<p class=\"fine\">" +
                           escaped(uncertaintyText(statement)) + "</p>\n";
  if (!statement.isStated()) return html;
  std::vector<HtmlColumn> columns{
      {"Cause", false}, {"u", true}, {"Distribution", false}, {"Type", false}, {"DoF", true}};
  for (const Place& place : statement.budgets)
    columns.push_back({"% at Roshko " + significantText(place.roshko, placeDigits), true});
  HtmlTable table("Uncertainty budget of " + series.name, columns, "points budget keep");
  for (const BudgetRow* row : allRows(statement.budgets)) {
    std::vector<std::string> cells{row->cause + (row->label.empty() ? "" : ": " + row->label),
                                   sizeText(*row, statement.budgets), row->distribution,
                                   std::string(1, row->type), degreesText(row->degreesOfFreedom)};
    for (const Place& place : statement.budgets) {
      const BudgetRow* there = rowIn(place, *row);
      cells.push_back(there == nullptr ? "-" : contributionText(place, there->contribution));
    }
    table.addRow(cells);
  }
  const auto addSum = [&](const std::string& name, auto text) {
    std::vector<std::string> cells{name, "", "", "", ""};
    for (const Place& place : statement.budgets) cells.push_back(text(place));
    table.addRow(cells);
  };
  addSum("Combined, %", [](const Place& place) {
    return contributionText(place, place.budget.standardUncertainty);
  });
  addSum("Degrees of freedom",
         [](const Place& place) { return degreesText(place.budget.degreesOfFreedom); });
  addSum("k",
         [](const Place& place) { return printedCoverageFactor(place.budget.coverageFactor); });
  addSum("U, %", [](const Place& place) {
    return printedUncertainty(place.budget.roundedPercent()) + (place.budget.isCmc ? " (CMC)" : "");
  });
  return html + table.take();
}

}  // namespace pelmora::report
