// SPDX-License-Identifier: MIT
#include "calibration/steps/fit_report.h"

#include "base/number_text.h"
#include "base/text_lines.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace pelmora::calibration::steps {
namespace {

// Written and read.
constexpr std::string_view equationLabel = "Description: ";
constexpr std::string_view bandLabel = "Band Percentage = ";

// What stands behind the label in its first line, up to `end` or the line's end.
std::optional<std::string> behind(std::string_view label, const std::string& report,
                                  std::string_view end) {
  const std::size_t at = report.find("\n" + std::string(label));
  if (at == std::string::npos) return std::nullopt;
  const std::size_t begin = at + 1 + label.size();
  return report.substr(begin, report.find_first_of(end, begin) - begin);
}

// A text built line by line.
class Lines {
 public:
  template <class... Parts>
  Lines& line(const Parts&... parts) {
    (text_.append(parts), ...);
    text_.append(lineBreak);
    return *this;
  }
  [[nodiscard]] std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

std::string pointLines(const PointArray& points) {
  constexpr std::size_t mostOfALine = 48;
  const NumberTexts numbers;
  std::string text;
  text.reserve(mostOfALine * points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    numbers.append(text, i);
    text += ":\t";
    numbers.append(text, points(i, 0));
    text += '\t';
    numbers.append(text, points(i, 1));
    text += lineBreak;
  }
  return text;
}

}  // namespace

std::string rawListing(const FitLabels& labels, const PointArray& points) {
  return Lines().line("Raw ", labels.x, "/", labels.y).take() + pointLines(points);
}

std::string residualListing(std::span<const double> ratios) {
  Lines lines;
  lines.line("Residuals ").line("===========");
  for (std::size_t k = 0; k < ratios.size(); ++k) {
    lines.line(numberText(k), ":\t", numberText(ratios[k]));
  }
  return lines.take();
}

std::string reportHead(const std::string& meterSerialNumber, const std::string& seriesName,
                       const ModelDefinition& definition) {
  return Lines()
      .line("\t\tMeter Serial Number: ", meterSerialNumber)
      .line("\t\tSeries Name: ", seriesName)
      .line("Results for model: ")
      .line("Y = ", definition.Expression)
      .line(equationLabel, definition.Name)
      .line()
      .take();
}

std::string reportBody(const ReportBody& body) {
  Lines lines;
  const FitStatistics& statistics = body.statistics;
  lines.line("Independent Variable (X): ", body.labels.x)
      .line("Dependent Variable (Y): ", body.labels.y)
      .line("Number of Observations = ", numberText(statistics.Observations))
      .line("Min X value = ", numberText(body.minX))
      .line("Max X value = ", numberText(body.maxX))
      .line()
      .line("Parameter Results:");
  for (const FitParameter& parameter : body.parameters) {
    lines.line(parameter.Name, " = ", numberText(parameter.Value),
               ", Standard Error = ", numberText(parameter.StandardError));
  }
  lines.line("Number of Nonlinear Iterations = ", numberText(statistics.Iterations))
      .line("Residual Tolerance = ", numberText(body.residualTolerance))
      .line("Residual Standard Error = ", numberText(statistics.ResidualStandardError))
      .line("R2 Value = ", numberText(statistics.RSquared))
      .line("R2adjusted Value = ", numberText(statistics.AdjustedRSquared))
      .line("Regression Sum of Squares = ", numberText(statistics.RegressionSumOfSquares))
      .line("Residual Sum of Squares = ", numberText(statistics.ResidualSumOfSquares))
      .line(bandLabel, numberText(body.bandPercent), "%")
      .line("Specified Number of Fitted Points = ", numberText(body.numberOfFittedPoints))
      .line("Predicted", body.labels.x, " Min value = ", numberText(body.predictedXmin))
      // The y label beside the largest x: readers of stored reports expect it there.
      .line("Predicted", body.labels.y, " Max value = ", numberText(body.predictedXmax))
      .line();
  return lines.take();
}

std::string predictedListing(const FitLabels& labels, const PointArray& predicted) {
  return Lines().line().line("Predicted ", labels.x, "/", labels.y).take() + pointLines(predicted);
}

std::string noSolutionText(const std::string* logFolder) {
  Lines lines;
  lines.line("Solution failed.");
  if (logFolder != nullptr) lines.line("See ", *logFolder, "\\log.txt");
  return lines.take();
}

std::string residualFailureText(std::span<const double> ratios) {
  return Lines()
      .line("Solution failed.")
      .line("Residuals beyond 10%")
      .line(residualListing(ratios))
      .take();
}

std::string equationOfReport(const std::string& report) {
  const std::string label = "\n" + std::string(equationLabel);
  const std::size_t first = report.find(label);
  if (first == std::string::npos || report.find(label, first + 1) != std::string::npos) return {};
  return behind(equationLabel, report, "\r\n").value_or("");
}

std::optional<double> bandOfReport(const std::string& report) {
  auto text = behind(bandLabel, report, "%\r\n");
  if (!text) return std::nullopt;
  std::replace(text->begin(), text->end(), ',', '.');  // a locale's decimal separator
  double band = 0;
  const auto [end, code] = std::from_chars(text->data(), text->data() + text->size(), band);
  const bool isNumber = code == std::errc() && end == text->data() + text->size();
  return isNumber && band >= 0 ? std::optional(band) : std::nullopt;
}

}  // namespace pelmora::calibration::steps
