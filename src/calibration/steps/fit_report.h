// The texts of a fit report. Hosts store and compare them, so every character counts.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_engine.h>
#include <pelmora/types.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace pelmora::calibration::steps {

struct FitLabels {
  std::string x, y;
};

// "Raw x/y" and one line per point: index, x, y.
[[nodiscard]] std::string rawListing(const FitLabels& labels, const PointArray& points);

// "Residuals " and one line per row: index, residual / observed y.
[[nodiscard]] std::string residualListing(std::span<const double> ratios);

// Meter, series and equation.
[[nodiscard]] std::string reportHead(const std::string& meterSerialNumber,
                                     const std::string& seriesName,
                                     const ModelDefinition& definition);

// What the body of an accepted equation's report is made from.
struct ReportBody {
  const FitLabels& labels;
  double minX, maxX;  // of the fitted points
  std::span<const FitParameter> parameters;
  const FitStatistics& statistics;
  double residualTolerance;
  float bandPercent;
  std::int16_t numberOfFittedPoints;
  double predictedXmin, predictedXmax;
};
[[nodiscard]] std::string reportBody(const ReportBody& body);

// "Predicted x/y" and one line per predicted point, an empty line before them.
[[nodiscard]] std::string predictedListing(const FitLabels& labels, const PointArray& predicted);

// Names the folder of log.txt, unless it is null.
[[nodiscard]] std::string noSolutionText(const std::string* logFolder);
[[nodiscard]] std::string residualFailureText(std::span<const double> ratios);

// What a stored report says of its curve. Curves that a host has stored have nothing else.
//
// The description of the chosen equation; empty if the report names none or several.
[[nodiscard]] std::string equationOfReport(const std::string& report);
// The band in per cent; nothing if the report does not say.
[[nodiscard]] std::optional<double> bandOfReport(const std::string& report);

}  // namespace pelmora::calibration::steps
