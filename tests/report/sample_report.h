// Small inputs whose report can be worked out by hand.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/build_report.h"

#include <string>
#include <utility>

namespace pelmora::report::test {

inline calibration::RawPoint rawPoint(
    int part, std::size_t number, const std::string& fluid, double roshko, double strouhal,
    calibration::PointState state = calibration::PointState::used) {
  calibration::RawPoint point;
  point.part = part;
  point.number = number;
  point.fluid = fluid;
  point.roshko = roshko;
  point.strouhal = strouhal;
  point.state = state;
  return point;
}

// A straight curve from (1, 10) to (100, 1000); two raw parts, of which the second loses its first
// point to the merge; a refit that repeats the curve.
inline SeriesInput straightSeries(const std::string& name = "Rotor A") {
  SeriesInput input;
  input.stored.name = name;
  input.stored.id = 7;
  input.stored.raw[0] = PointArray{{1, 10}, {50, 505}};
  input.stored.raw[1] = PointArray{{20, 100}, {100, 1000}};
  input.points = {rawPoint(1, 1, "water", 1, 10), rawPoint(1, 2, "water", 50, 505),
                  rawPoint(2, 1, "oil", 20, 100, calibration::PointState::cut),
                  rawPoint(2, 2, "oil", 100, 1000)};
  input.stored.merged = PointArray{{1, 10}, {50, 505}, {100, 1000}};
  input.stored.curve = PointArray{{1, 10}, {100, 1000}};
  input.stored.report = "Results for model: \r\nDescription: Line\r\n";
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
  line.Predicted = input.stored.curve;
  input.refit.outcome.Equations = {line};
  input.refit.outcome.Chosen = 0;
  input.refit.outcome.ConfidenceHalfWidth = {0.5, 20};
  input.refit.outcome.PredictionHalfWidth = {1, 40};
  input.refit.curve = input.stored.curve;
  return input;
}

inline ReportInput reportOf(SeriesInput series) {
  ReportInput input;
  input.meter = {"M1", "M1", 0, 1};
  input.runs.push_back({1, 2, 3, "Ada", "water", "2026-11-20", {"1001"}, 2});
  input.runs.push_back({2, 2, 3, "Bob", "oil", "2026-11-21", {"1002"}, 2});
  input.database = "curves.db";
  input.softwareVersion = "1.2.3";
  input.createdAt = "2026-11-21T13:40:00Z";
  input.series.push_back(std::move(series));
  return input;
}

}  // namespace pelmora::report::test
