// Small inputs whose report can be told by hand.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/build_report.h"

#include <string>
#include <utility>

namespace pelmora::report::test {

// A straight curve from (1, 10) to (100, 1000); two raw parts, of which the second loses its first
// point to the merge; a refit that repeats the curve.
inline SeriesInput straightSeries(const std::string& name = "Rotor A") {
  SeriesInput input;
  input.stored.SeriesName = name;
  input.stored.SeriesID = 7;
  input.stored.Raw[0].Points = PointArray{{1, 10}, {50, 505}};
  input.stored.Raw[1].Points = PointArray{{20, 100}, {100, 1000}};
  input.stored.Merged = PointArray{{1, 10}, {50, 505}, {100, 1000}};
  input.stored.Fitted = PointArray{{1, 10}, {100, 1000}};
  input.stored.Summary = "Results for model: \r\nDescription: Line\r\n";
  input.settings.BandPercent = 2;
  input.settings.Points = 2;
  input.settingsAreKept = true;
  EquationOutcome line;
  line.Name = "Line";
  line.Expression = "a+b*x";
  line.Verdict = EquationVerdict::chosen;
  line.Statistics.Observations = 3;
  line.Statistics.RSquared = line.Statistics.AdjustedRSquared = 0.99;
  line.Parameters = {{"a", 0, 0.5}, {"b", 10, 0.25}};
  line.Predicted = input.stored.Fitted;
  input.refit.outcome.Equations = {line};
  input.refit.outcome.Chosen = 0;
  input.refit.outcome.ConfidenceHalfWidth = {0.5, 20};
  input.refit.outcome.PredictionHalfWidth = {1, 40};
  input.refit.curve = input.stored.Fitted;
  input.refit.merged = input.stored.Merged;
  return input;
}

inline ReportInput reportOf(SeriesInput series) {
  ReportInput input;
  input.meter.SerialNumber = input.meter.SerialNumberAdjusted = "M1";
  input.setups.push_back({1, 2, 3, "water", "Ada", "2026-11-20", {"1001"}, 2});
  input.setups.push_back({2, 2, 3, "oil", "Bob", "2026-11-21", {"1002"}, 2});
  input.database = "curves.db";
  input.softwareVersion = "1.2.3";
  input.createdAt = "2026-11-21T13:40:00Z";
  input.series.push_back(std::move(series));
  return input;
}

}  // namespace pelmora::report::test
